// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSPopUpButton.h>

#include <QApplication>
#include <QComboBox>
#include <QWheelEvent>

using namespace platform;
using namespace testing_support;

namespace {

class PopUpTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"popUp"}, column({widget("QComboBox", "popUp",
                                       "<item><property name='text'><string>One</string></property></item>"
                                       "<item><property name='text'><string>Two</string></property></item>")}));
        face = shown<QComboBox>("popUp");
        ASSERT_TRUE(face);
    }
    QComboBox* face = nullptr;
};

TEST_F(PopUpTest, ArrowKeysChangeNothingSilently) {
    QTest::keyClick(face, Qt::Key_Down);
    QTest::keyClick(face, Qt::Key_End);
    QTest::keyClicks(face, "T");
    EXPECT_EQ(face->currentIndex(), 0);
}

TEST_F(PopUpTest, TheWheelChangesNothingSilently) {
    QWheelEvent wheel({5, 5}, face->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(face, &wheel);
    EXPECT_EQ(face->currentIndex(), 0);
}

} // namespace
