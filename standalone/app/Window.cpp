// SPDX-License-Identifier: MIT
#include <app/Window.h>

#include "HostBundle.h"
#include "MainWindow.h"
#include "Pictures.h"

#include <Foundation/NSException.h>

#include <QApplication>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QTranslator>

#include <iostream>

namespace app {

namespace {

std::unique_ptr<MainWindow> openWindow(Session& session) {
    std::string error;
    auto pane = PaneHost::load(bundleFolder() / "ImprinterPrefPane.prefPane", error);
    if (!pane) {
        std::cerr << "imprinter: " << error << '\n';
        return nullptr;
    }
    return std::make_unique<MainWindow>(session, std::move(pane));
}

void prepare(QApplication& application) {
    QApplication::setApplicationName(QStringLiteral("imprinter"));
    QApplication::setApplicationDisplayName(QStringLiteral("Imprinter"));
    QGuiApplication::setDesktopFileName(QStringLiteral("imprinter"));
    auto* translator = new QTranslator(&application);
    if (translator->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

} // namespace

int runWindow(int& argc, char** argv, const std::filesystem::path& store) {
    QApplication application(argc, argv);
    prepare(application);
    Session session(store);
    const auto window = openWindow(session);
    if (!window)
        return 1;
    window->show();
    for (const auto& message : session.messages())
        QMessageBox::warning(window.get(), window->windowTitle(), toQt(message.sentence));
    return QApplication::exec();
}

int drawPictures(int& argc, char** argv, const std::filesystem::path& store, const std::filesystem::path& folder) {
    QApplication application(argc, argv);
    prepare(application);
    Session session(store);
    const auto window = openWindow(session);
    return window && leavePictures(*window, session, folder) ? 0 : 1;
}

} // namespace app
