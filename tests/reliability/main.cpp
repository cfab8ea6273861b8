// SPDX-License-Identifier: MIT
#include "Reliability.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc == 5 && std::string(argv[1]) == "--window") {
        const QApplication application(argc, argv);
        return reliability::runWindow(argv[2], argv[3], static_cast<unsigned>(std::strtoul(argv[4], nullptr, 10)));
    }
    ::testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
