// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>

// The tests read pictures back through Qt's plug-ins, which an application object finds.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
