// SPDX-License-Identifier: MIT
#include "Commands.h"
#include "WindowLibrary.h"

#include <store/Store.h>

#include <QString>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <malloc.h>

namespace {

/// Documents are full of streams that live for a moment. By default each large one would be asked of the system anew.
void keepMemory() {
    constexpr int largestKept = 32 << 20; // the most the allocator takes
    mallopt(M_MMAP_THRESHOLD, largestKept);
    mallopt(M_TRIM_THRESHOLD, 4 * largestKept);
    // Small pieces that are kept apart for speed are all joined whenever a large one is asked for.
    mallopt(M_MXFAST, 0);
}

/// Keeps to itself what libraries say about files: what a person needs to know of it stands in the program's own lines.
void sayNothing(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg)
        std::cerr << "imprinter: " << message.toStdString() << '\n';
}

/// The same for libraries that write to the stream itself. What this program says goes to std::cerr, which keeps the
/// descriptor that it began with.
void closeStream() {
#ifdef __GLIBC__ // where the stream is a variable like any other
    if (auto* const nowhere = std::fopen("/dev/null", "w"))
        stderr = nowhere;
#endif
}

/// Answers the exit status.
int openWindow(int& argc, char** argv, const std::filesystem::path& store,
               const std::vector<std::filesystem::path>& documents) {
    const int status =
        cli::hasDisplay() ? cli::windowLibrary().runWindow(argc, argv, store, documents) : app::noDisplay;
    if (status == app::noDisplay)
        std::cerr << "imprinter: there is no display to open a window on; `imprinter --help` shows what works without "
                     "one\n";
    return status;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::filesystem::path store = store::Store::defaultPath();
    if (!arguments.empty() && arguments[0] == "--store") {
        if (arguments.size() < 2 || arguments[1].empty()) {
            std::cerr << "imprinter: --store needs a value\n";
            return cli::usage;
        }
        store = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    // A file that may not become so large is a file that cannot be written, like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        if (arguments.empty())
            return openWindow(argc, argv, store, {});
        const auto command = arguments.front();
        arguments.erase(arguments.begin());
        const auto work = cli::commandCalled(command);
        if (work || command == "pictures" || command == "open") {
            if (cli::askForHelp(arguments)) {
                std::cout << cli::helpText;
                return cli::done;
            }
            if (cli::nameAStore(arguments)) {
                std::cerr << "imprinter: --store stands before the command: imprinter --store FILE " << command
                          << " ...\n";
                return cli::usage;
            }
        }
        if (work) {
            keepMemory();
            qInstallMessageHandler(sayNothing);
            closeStream();
            return work(store, arguments);
        }
        if (command == "open" && !arguments.empty() && arguments.front().starts_with("-")) {
            std::cerr << "imprinter: `open` takes files, and no option " << arguments.front() << '\n';
            return cli::usage;
        }
        if (command == "open")
            return openWindow(argc, argv, store, {arguments.begin(), arguments.end()});
        if (command == "pictures") {
            if (arguments.size() != 1) {
                std::cerr << "imprinter: `pictures` takes the folder to leave them in\n";
                return cli::usage;
            }
            if (!cli::isUsable(store))
                return cli::noConfiguration;
            if (!cli::hasDisplay())
                setenv("QT_QPA_PLATFORM", "offscreen", 0);
            return cli::windowLibrary().drawPictures(argc, argv, store, arguments.front());
        }
        if (command == "--help" || command == "-h" || command == "help") {
            std::cout << cli::helpText;
            return cli::done;
        }
        if (command == "--version") {
            std::cout << "imprinter " IMPRINTER_VERSION "\n";
            return cli::done;
        }
        std::cerr << "imprinter: unknown command \"" << command << "\"; `imprinter --help` shows what there is\n";
        return cli::usage;
    } catch (const std::exception& exception) {
        std::cerr << "imprinter: " << exception.what() << '\n';
        return cli::failed;
    }
}
