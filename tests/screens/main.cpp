// SPDX-License-Identifier: MIT
#include "Language.h"

#include <QApplication>

#include <iostream>

#include <gtest/gtest.h>

namespace {

/// What the toolkit says about running without a display concerns nobody.
void dropOffscreenNoise(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && !message.startsWith(QLatin1String("This plugin does not support")) &&
        !message.startsWith(QLatin1String("QStandardPaths:")))
        std::cerr << message.toStdString() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(dropOffscreenNoise);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    app::followLanguage(application);
    return RUN_ALL_TESTS();
}
