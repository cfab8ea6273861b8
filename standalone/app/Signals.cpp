// SPDX-License-Identifier: MIT
#include "Signals.h"

#include <QApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>
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

/// Closes a window when nothing is open above it, and gives up after some attempts.
class Closer : public QObject {
public:
    explicit Closer(QWidget& window) : QObject(&window), m_window(window) {
        connect(&m_again, &QTimer::timeout, this, [this] { step(); });
        m_again.setSingleShot(true);
        m_again.start(0);
    }

private:
    void step() {
        // Before anything else, because what is done here may run an event loop of its own, which needs this too.
        m_again.start(5);
        if (auto* popup = QApplication::activePopupWidget())
            popup->close();
        else if (auto* question = QApplication::activeModalWidget())
            question->close();
        else if (!m_closing && QThread::currentThread()->loopLevel() <= 1)
            close();
    }
    void close() {
        // The first attempt says what could not be saved, the second leaves it to the journal.
        constexpr int mostAttempts = 2;
        const bool isLast = ++m_attempts > mostAttempts;
        if (isLast)
            m_again.stop(); // its user is to answer now
        m_closing = true;
        const bool closed = m_window.close();
        m_closing = false;
        if (closed || isLast)
            deleteLater();
    }

    QWidget& m_window;
    QTimer m_again;
    int m_attempts = 0;
    bool m_closing = false;
};

} // namespace

void closeUnasked(QWidget& window) {
    static QPointer<Closer> closer; // there is one window, and it is closed once
    if (!closer)
        closer = new Closer(window);
}

void closeOnSignals(QWidget& window) {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, &window);
    QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
        char bytes[16];
        [[maybe_unused]] const auto drained = read(pipeEnds[0], bytes, sizeof bytes);
        closeUnasked(window);
    });
    struct sigaction action {};
    action.sa_handler = tellEventLoop;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
}

} // namespace app
