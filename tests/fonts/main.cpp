// SPDX-License-Identifier: MIT
#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
#ifdef MADE_FONTS
    qputenv("FONTCONFIG_FILE", MADE_FONTS "/fonts.conf"); // no other fonts
#endif
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
