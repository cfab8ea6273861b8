// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSStepper.h>

#include <QApplication>
#include <QSpinBox>
#include <QStyle>
#include <QTimer>
#include <QWheelEvent>

using namespace platform;
using namespace testing_support;

namespace {

class StepperTest : public InterfaceTest {
protected:
    void showStepper(const std::string& settings = {}) {
        show({"stepper"}, column({widget("NSStepper", "stepper", property("action", "act:") + settings)}),
             customClass("NSStepper", "QWidget"));
        stepper = view<NSStepper>("stepper");
        ASSERT_TRUE(stepper);
    }
    QPoint upper() const { return {shown("stepper")->width() / 2, 3}; }
    QPoint lower() const { return {shown("stepper")->width() / 2, shown("stepper")->height() - 3}; }

    std::shared_ptr<NSStepper> stepper;
};

TEST_F(StepperTest, IsAsHighAsASpinBoxAndNoWiderThanItsArrows) {
    showStepper();
    EXPECT_EQ(shown("stepper")->sizeHint().height(), QSpinBox().sizeHint().height());
    EXPECT_GE(shown("stepper")->sizeHint().width(), 10);
    EXPECT_LE(shown("stepper")->sizeHint().width(), 30);
}

TEST_F(StepperTest, CountsFromZeroTo59ByOneUnlessTheFileSaysOtherwise) {
    showStepper();
    EXPECT_EQ(stepper->minValue(), 0);
    EXPECT_EQ(stepper->maxValue(), 59);
    EXPECT_EQ(stepper->increment(), 1);
}

TEST_F(StepperTest, TakesRangeAndIncrementFromTheFile) {
    showStepper(property("minValue", "-360") + property("maxValue", "360") + property("increment", "0.5"));
    stepper->setDoubleValue(-12);
    QTest::mouseClick(shown("stepper"), Qt::LeftButton, {}, lower());
    EXPECT_EQ(stepper->doubleValue(), -12.5);
}

TEST_F(StepperTest, TheUpperArrowCountsUpAndTheLowerOneDown) {
    showStepper();
    QTest::mouseClick(shown("stepper"), Qt::LeftButton, {}, upper());
    QTest::mouseClick(shown("stepper"), Qt::LeftButton, {}, upper());
    QTest::mouseClick(shown("stepper"), Qt::LeftButton, {}, lower());
    EXPECT_EQ(stepper->integerValue(), 1);
    EXPECT_EQ(owner->taken(), (Log{"act", "act", "act"}));
}

TEST_F(StepperTest, StopsAtTheEndsOfItsRange) {
    showStepper();
    QTest::mouseClick(shown("stepper"), Qt::LeftButton, {}, lower());
    EXPECT_EQ(stepper->integerValue(), 0);
    stepper->setIntegerValue(100);
    EXPECT_EQ(stepper->integerValue(), 59);
}

TEST_F(StepperTest, TheArrowKeysCount) {
    showStepper();
    QTest::keyClick(shown("stepper"), Qt::Key_Up);
    QTest::keyClick(shown("stepper"), Qt::Key_Up);
    QTest::keyClick(shown("stepper"), Qt::Key_Down);
    EXPECT_EQ(stepper->integerValue(), 1);
}

TEST_F(StepperTest, TheWheelDoesNotCount) {
    showStepper();
    QWheelEvent wheel({5, 5}, shown("stepper")->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(shown("stepper"), &wheel);
    EXPECT_EQ(stepper->integerValue(), 0);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(StepperTest, AHeldArrowRepeatsUntilItIsReleased) {
    showStepper();
    QTest::mousePress(shown("stepper"), Qt::LeftButton, {}, upper());
    EXPECT_TRUE(QTest::qWaitFor([&] { return stepper->integerValue() >= 3; }));
    QTest::mouseRelease(shown("stepper"), Qt::LeftButton, {}, upper());
    const auto released = stepper->integerValue();
    const int rate = QApplication::style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatRate);
    bool waited = false;
    QTimer::singleShot(4 * rate, window.get(), [&] { waited = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return waited; }));
    EXPECT_EQ(stepper->integerValue(), released);
}

TEST_F(StepperTest, AHeldArrowStopsWhenTheStepperIsDisabled) {
    showStepper();
    owner->onAction = [&] { stepper->setEnabled(false); };
    QTest::mousePress(shown("stepper"), Qt::LeftButton, {}, upper());
    stepper->setEnabled(true);
    owner->taken();
    bool waited = false;
    QTimer::singleShot(2 * QApplication::style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatThreshold), window.get(),
                       [&] { waited = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return waited; }));
    EXPECT_EQ(owner->taken(), Log());
}

} // namespace
