// SPDX-License-Identifier: MIT
#include "Signals.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace app {

namespace {

int pipeEnds[2] = {-1, -1};

// Nothing but a write is safe in a signal's handler; the event loop does the rest.
void tellEventLoop(int) {
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
}

} // namespace

void closeOnSignals(QWidget& window) {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, &window);
    QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
        char bytes[16];
        [[maybe_unused]] const auto drained = read(pipeEnds[0], bytes, sizeof bytes);
        // A question is left unanswered.
        if (auto* question = QApplication::activeModalWidget())
            question->close();
        window.close();
    });
    struct sigaction action {};
    action.sa_handler = tellEventLoop;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
}

} // namespace app
