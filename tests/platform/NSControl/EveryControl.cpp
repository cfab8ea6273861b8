// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSColorWell.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>

#include <QAbstractButton>
#include <QLineEdit>

using namespace platform;
using namespace testing_support;

namespace {

const std::string action = property("action", "act:");

/// What the contract's cases need to know of one kind of control.
struct Kind {
    std::string name;
    std::string interface;               // with the object name "control"
    std::function<void(NSControl&)> set; // changes the value by program
    std::function<std::string(NSControl&)> value;
    std::function<void(QWidget&)> userInput; // one act that sends the action
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

void click(QWidget& widget) {
    QTest::mouseClick(&widget, Qt::LeftButton);
}

std::string state(NSControl& control) {
    return std::to_string(dynamic_cast<NSButton&>(control).state());
}

std::string radios() {
    return column({widget("QRadioButton", "first", property("tag", "7")), widget("QRadioButton", "second")});
}

const Kind kinds[] = {
    {"PushButton", widget("QPushButton", "control", action),
     [](NSControl& c) { dynamic_cast<NSButton&>(c).setState(1); }, state, click},
    {"CheckBox", widget("QCheckBox", "control", action), [](NSControl& c) { dynamic_cast<NSButton&>(c).setState(1); },
     state, [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Space); }},
    {"StayInButton",
     widget("QToolButton", "control", action + "<property name='checkable'><bool>true</bool></property>"),
     [](NSControl& c) { dynamic_cast<NSButton&>(c).setState(1); }, state, click},
    {"Stepper", widget("NSStepper", "control", action), [](NSControl& c) { c.setIntegerValue(5); },
     [](NSControl& c) { return std::to_string(c.integerValue()); }, click},
    {"Matrix", widget("NSMatrix", "control", action + radios()),
     [](NSControl& c) { dynamic_cast<NSMatrix&>(c).selectCellWithTag(7); },
     [](NSControl& c) {
         const auto cell = dynamic_cast<NSMatrix&>(c).selectedCell();
         return cell ? std::to_string(cell->tag()) : "none";
     },
     [](QWidget& matrix) {
         QTest::mouseClick(matrix.findChild<QWidget*>("second"), Qt::LeftButton, {}, {5, 10});
     }},
    {"SegmentedControl", widget("NSSegmentedControl", "control", action + column({widget("QToolButton", "segment")})),
     [](NSControl& c) { dynamic_cast<NSSegmentedControl&>(c).setSelectedForSegment(true, 0); },
     [](NSControl& c) { return std::to_string(dynamic_cast<NSSegmentedControl&>(c).isSelectedForSegment(0)); },
     [](QWidget& row) { click(*row.findChild<QWidget*>("segment")); }},
    {"TextField", widget("QLineEdit", "control", action), [](NSControl& c) { c.setStringValue(u"set"); },
     [](NSControl& c) { return std::string(c.stringValue() == u"set" ? "set" : "other"); },
     [](QWidget& field) {
         QTest::keyClicks(&field, "x");
         QTest::keyClick(&field, Qt::Key_Return);
     }},
};

class EveryControl : public InterfaceTest, public ::testing::WithParamInterface<Kind> {
protected:
    void showControl() {
        show({"control"}, column({GetParam().interface}),
             customClass("NSStepper", "QWidget") + customClass("NSMatrix", "QWidget") +
                 customClass("NSSegmentedControl", "QWidget"));
        control = view<NSControl>("control");
        ASSERT_TRUE(control);
    }

    std::shared_ptr<NSControl> control;
};

TEST_P(EveryControl, IsEnabledVisibleAndHasTagZeroAtFirst) {
    showControl();
    EXPECT_TRUE(control->isEnabled());
    EXPECT_FALSE(control->isHidden());
    EXPECT_EQ(control->tag(), 0);
    EXPECT_TRUE(shown("control")->isVisible());
}

TEST_P(EveryControl, AnswersWhatItWasSetTo) {
    showControl();
    const auto before = GetParam().value(*control);
    GetParam().set(*control);
    const auto after = GetParam().value(*control);
    EXPECT_NE(after, before);
    GetParam().set(*control);
    EXPECT_EQ(GetParam().value(*control), after);
}

TEST_P(EveryControl, SendsNothingWhenItIsSet) {
    showControl();
    GetParam().set(*control);
    control->setEnabled(false);
    control->setEnabled(true);
    control->setHidden(true);
    control->setHidden(false);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_P(EveryControl, SendsItsActionOnceForOneActOfTheUser) {
    showControl();
    GetParam().userInput(*shown("control"));
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_P(EveryControl, SendsNothingWhileItIsDisabled) {
    showControl();
    control->setEnabled(false);
    EXPECT_FALSE(shown("control")->isEnabled());
    GetParam().userInput(*shown("control"));
    EXPECT_EQ(owner->taken(), Log());
}

TEST_P(EveryControl, IsHiddenAndShownWithoutLosingItsValue) {
    showControl();
    GetParam().set(*control);
    const auto value = GetParam().value(*control);
    control->setHidden(true);
    EXPECT_FALSE(shown("control")->isVisible());
    EXPECT_EQ(GetParam().value(*control), value);
    control->setHidden(false);
    EXPECT_TRUE(shown("control")->isVisible());
}

TEST_P(EveryControl, SurvivesItsWidget) {
    showControl();
    delete shown("control");
    GetParam().set(*control);
    const auto value = GetParam().value(*control);
    control->setEnabled(false);
    control->setHidden(true);
    EXPECT_EQ(GetParam().value(*control), value);
    EXPECT_EQ(control->window(), nullptr);
}

TEST_P(EveryControl, LeavesAWidgetThatDoesNothingMore) {
    showControl();
    auto* left = shown("control");
    control.reset();
    contents = {};
    ASSERT_EQ(view<NSControl>("control"), nullptr);
    GetParam().userInput(*left);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_P(EveryControl, LivesOnAfterAnActionThatRaises) {
    showControl();
    owner->onAction = [] { throw std::runtime_error("raised by the test"); };
    GetParam().userInput(*shown("control"));
    owner->onAction = {};
    GetParam().userInput(*shown("control"));
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
}

TEST_P(EveryControl, MayTakeItsWholeInterfaceDownInItsAction) {
    showControl();
    owner->onAction = [this] {
        window->takeCentralWidget()->setParent(nullptr);
        control.reset();
        contents = {};
    };
    GetParam().userInput(*shown("control"));
    EXPECT_EQ(owner->taken(), Log{"act"});
    EXPECT_EQ(view<NSControl>("control"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryControl, ::testing::ValuesIn(kinds),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
