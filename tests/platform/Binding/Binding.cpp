// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSStepper.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <QLineEdit>

using namespace platform;
using namespace testing_support;

namespace {

std::string plain(double number) {
    return toUtf8(textOfValue(number));
}

/// An owner with a number under the key "width", and one under "ratio" that can only be shown and that changes with it.
class BoundOwner final : public Owner {
public:
    static NSClass describe() {
        return ClassTable<BoundOwner>(u"BoundOwner", u"Owner")
            .key(u"width", &BoundOwner::width, &BoundOwner::setWidth)
            .key(u"ratio", &BoundOwner::ratio)
            .keyPathsForValuesAffecting(u"ratio", {u"width"})
            .action(u"setRatioOf:", &BoundOwner::setRatioOf);
    }
    std::u16string_view className() const override { return u"BoundOwner"; }

    double width() const {
        if (getterRaises)
            throw NSException("GetterException", "no width");
        return value;
    }
    void setWidth(double number) {
        log.push_back("width " + plain(number));
        if (setterRaises)
            throw NSException("SetterException", "no such width");
        value = halves ? number / 2 : number;
        didChangeValueForKey(u"width");
    }
    double ratio() const { return share; }
    void setRatioOf(double number) {
        log.push_back("ratio " + plain(number));
        share = number;
        didChangeValueForKey(u"ratio");
    }
    void setNilValueForKey(const std::u16string& key) override {
        log.push_back("nil " + toUtf8(key));
        if (key == u"ratio" || setterRaises)
            Owner::setNilValueForKey(key);
        value = 12;
    }

    double value = 3;
    double share = 0.25;
    bool halves = false;
    bool setterRaises = false;
    bool getterRaises = false;
};

class Binding : public InterfaceTest {
protected:
    void SetUp() override {
        bound = std::make_shared<BoundOwner>();
        owner = bound;
        bound->getterRaises = getterRaisesAtFirst;
        const auto act = property("action", "act:");
        const auto number = [](const std::string& key) {
            return property("value", key) + property("formatter", "decimal");
        };
        const auto wide = property("minValue", "-1e308") + property("maxValue", "1e308");
        show({"field", "twin", "stepper", "share", "other"},
             column({widget("QLineEdit", "field", number("width") + act + property("sendsActionOnEndEditing", "true")),
                     widget("QLineEdit", "twin", number("width")),
                     widget("NSStepper", "stepper", property("value", "width") + act + wide),
                     widget("QLineEdit", "share",
                            number("ratio") + property("action", "setRatioOf:") +
                                property("sendsActionOnEndEditing", "true")),
                     widget("QLineEdit", "other")}),
             customClass("NSStepper", "QWidget"));
        field = view<NSTextField>("field");
        stepper = view<NSStepper>("stepper");
        edit = shown<QLineEdit>("field");
        ASSERT_TRUE(field && stepper && edit);
    }
    void type(const std::string& text, const std::string& into = "field") {
        ASSERT_TRUE(contents.window->makeFirstResponder(view<NSTextField>(into)) ||
                    window->focusWidget() == shown(into));
        shown<QLineEdit>(into)->selectAll();
        if (text.empty())
            QTest::keyClick(shown(into), Qt::Key_Delete);
        else
            QTest::keyClicks(shown(into), QString::fromStdString(text));
    }
    void press(Qt::Key key, const std::string& in = "field") { QTest::keyClick(shown(in), key); }
    void step(bool up) {
        auto* arrows = shown("stepper");
        QTest::mouseClick(arrows, Qt::LeftButton, {}, {arrows->width() / 2, up ? 3 : arrows->height() - 3});
    }
    QString text(const std::string& name) const { return shown<QLineEdit>(name)->text(); }

    bool getterRaisesAtFirst = false;
    ClassRegistration boundClass{BoundOwner::describe()};
    std::shared_ptr<BoundOwner> bound;
    std::shared_ptr<NSTextField> field;
    std::shared_ptr<NSStepper> stepper;
    QLineEdit* edit = nullptr;
};

class BindingToARaisingGetter : public Binding {
protected:
    BindingToARaisingGetter() { getterRaisesAtFirst = true; }
};

TEST_F(Binding, ShowsTheGetterOnceAtTheConnection) {
    EXPECT_EQ(text("field"), "3");
    EXPECT_EQ(stepper->doubleValue(), 3);
    EXPECT_EQ(text("share"), "0.25");
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(Binding, ReturnWritesTheNumberAndThenSendsTheAction) {
    double seen = 0;
    owner->onAction = [&] { seen = bound->value; };
    type("12.7");
    press(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), (Log{"width 12.7", "act"}));
    EXPECT_EQ(seen, 12.7);
}

TEST_F(Binding, TabAndALostFocusWriteToo) {
    type("5");
    press(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), (Log{"width 5", "act"}));
    type("6");
    shown("other")->setFocus();
    EXPECT_EQ(owner->taken(), (Log{"width 6", "act"}));
}

TEST_F(Binding, TypingAloneWritesNothing) {
    type("12");
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(stepper->doubleValue(), 3);
}

TEST_F(Binding, AnEditTakenBackWithEscapeWritesNothing) {
    type("12");
    press(Qt::Key_Escape);
    press(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(text("field"), "3");
}

TEST_F(Binding, ReturnWithoutAChangeSendsTheActionAndWritesNothing) {
    ASSERT_TRUE(contents.window->makeFirstResponder(field));
    press(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(Binding, EveryOtherControlOfTheKeyShowsWhatWasWritten) {
    type("7");
    press(Qt::Key_Return);
    EXPECT_EQ(text("twin"), "7");
    EXPECT_EQ(stepper->doubleValue(), 7);
}

TEST_F(Binding, TheControlThatWritesIsNotSetAgain) {
    bound->halves = true;
    type("12.70");
    press(Qt::Key_Return);
    EXPECT_EQ(text("field"), "12.70");
    EXPECT_EQ(text("twin"), "6.35");
}

TEST_F(Binding, ASetterCalledByAnybodyIsShownByEveryControlOfTheKey) {
    bound->setWidth(41.5);
    EXPECT_EQ(text("field"), "41.5");
    EXPECT_EQ(text("twin"), "41.5");
    EXPECT_EQ(stepper->doubleValue(), 41.5);
    setValueForKey(*bound, 8.0, u"width");
    EXPECT_EQ(text("field"), "8");
    EXPECT_EQ(owner->taken(), (Log{"width 41.5", "width 8"}));
}

TEST_F(Binding, AModelChangedWithoutTheSetterIsNotShown) {
    bound->value = 99;
    EXPECT_EQ(text("field"), "3");
}

TEST_F(Binding, AnEmptiedFieldIsNilAndShowsTheDefaultBeforeTheActionIsSent) {
    for (const auto* blank : {"", "  "}) {
        QString seen;
        owner->onAction = [&] { seen = text("field"); };
        bound->setWidth(3);
        type(blank);
        owner->taken();
        press(Qt::Key_Return);
        EXPECT_EQ(owner->taken(), (Log{"nil width", "act"})) << "nothing is written again";
        EXPECT_EQ(seen, "12");
        EXPECT_EQ(text("twin"), "12");
        EXPECT_EQ(stepper->doubleValue(), 12);
    }
}

TEST_F(Binding, ASetterThatRaisesGivesTheGettersValueBackToTheField) {
    bound->setterRaises = true;
    type("7");
    press(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), (Log{"width 7", "act"}));
    EXPECT_EQ(text("field"), "3");
    bound->setterRaises = false;
    type("7");
    press(Qt::Key_Return);
    EXPECT_EQ(bound->value, 7) << "the next edit is written as if nothing had been";
}

TEST_F(Binding, ANilHandlerThatRaisesGivesTheGettersValueBackToTheField) {
    bound->setterRaises = true;
    type("");
    press(Qt::Key_Return);
    EXPECT_EQ(text("field"), "3");
    EXPECT_EQ(owner->taken(), (Log{"nil width", "act"}));
}

TEST_F(BindingToARaisingGetter, LeavesTheControlAsItWas) {
    EXPECT_EQ(text("field"), "");
    bound->getterRaises = false;
    bound->setWidth(4);
    EXPECT_EQ(text("field"), "4");
}

TEST_F(Binding, AValueSetByProgramIsNotWritten) {
    field->setFloatValue(2.7F);
    stepper->setFloatValue(2.7F);
    EXPECT_EQ(text("field"), "2.7");
    EXPECT_EQ(field->floatValue(), 2.7F);
    ASSERT_TRUE(contents.window->makeFirstResponder(field));
    press(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(bound->value, 3);
}

TEST_F(Binding, AValueSetByProgramWhileTheFieldIsEditedEndsWhatWasToBeWritten) {
    type("55");
    field->setFloatValue(4);
    press(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), Log{"act"});
    EXPECT_EQ(text("field"), "4");
}

TEST_F(Binding, AStepIsWrittenAndThenSent) {
    step(true);
    EXPECT_EQ(owner->taken(), (Log{"width 4", "act"}));
    EXPECT_EQ(text("field"), "4");
    step(false);
    step(false);
    EXPECT_EQ(bound->value, 2);
    EXPECT_EQ(text("twin"), "2");
}

TEST_F(Binding, AStepCountsFromWhatIsBeingTyped) {
    type("20");
    step(true);
    EXPECT_EQ(owner->taken(), (Log{"width 20", "act", "width 21", "act"}));
    EXPECT_EQ(text("field"), "21");
}

TEST_F(Binding, ATextThatIsNoNumberStopsTheStepper) {
    type("twenty");
    step(true);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(text("field"), "twenty");
    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(Binding, AWideStepperClampsNoStoredValue) {
    for (const double stored : {-123456.5, 5e12, -1e300, 1e-300}) {
        bound->setWidth(stored);
        EXPECT_EQ(stepper->doubleValue(), stored);
    }
}

TEST_F(Binding, AKeyWithoutSetterShowsItsGetterAgainWhenAKeyItDependsOnWasSet) {
    bound->share = 0.5;
    EXPECT_EQ(text("share"), "0.25");
    bound->setWidth(9);
    EXPECT_EQ(text("share"), "0.5");
}

TEST_F(Binding, AKeyWithoutSetterLeavesTheChangeToTheAction) {
    type("0.75", "share");
    press(Qt::Key_Return, "share");
    EXPECT_EQ(owner->taken(), Log{"ratio 0.75"});
    EXPECT_EQ(text("share"), "0.75");
}

TEST_F(Binding, AnEmptiedFieldOfAKeyWithoutSetterShowsItsGetterAgainAndSendsNothing) {
    type("", "share");
    press(Qt::Key_Return, "share");
    EXPECT_EQ(owner->taken(), Log{"nil ratio"});
    EXPECT_EQ(text("share"), "0.25");
}

TEST_F(Binding, AControlOutlivesWhatItWasBoundTo) {
    type("5");
    std::weak_ptr<BoundOwner> watched = bound;
    owner = std::make_shared<Owner>();
    bound.reset();
    ASSERT_TRUE(watched.expired());
    press(Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 5);
}

TEST_F(Binding, AnObserverThatIsGoneIsNotTold) {
    field.reset();
    stepper.reset();
    window.reset();
    contents = {};
    bound->setWidth(4);
    EXPECT_EQ(bound->value, 4);
}

} // namespace
