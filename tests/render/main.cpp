// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cstdlib>

// The tests read pictures back through Qt's plug-ins, which an application object finds.
int main(int argc, char** argv) {
    // ImageMagick's threads only hinder each other on pictures this small.
    ::setenv("MAGICK_THREAD_LIMIT", "1", 1);
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
