// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSTextField.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>

using namespace platform;
using namespace testing_support;

namespace {

class TextFieldTest : public InterfaceTest {
protected:
    void showField(const std::string& settings = {}) {
        show({"field", "other"}, column({widget("QLineEdit", "field",
                                                property("action", "act:") + property("delegate", "owner") + settings),
                                         widget("QLineEdit", "other")}));
        field = view<NSTextField>("field");
        edit = shown<QLineEdit>("field");
        ASSERT_TRUE(field && edit);
    }
    void focus() {
        ASSERT_TRUE(field->window()->makeFirstResponder(field));
        ASSERT_TRUE(edit->hasFocus());
    }
    void key(Qt::Key pressed) { QTest::keyClick(edit, pressed); }

    std::shared_ptr<NSTextField> field;
    QLineEdit* edit = nullptr;
};

TEST_F(TextFieldTest, FocusSelectsAllAndBeginsNoEditing) {
    showField();
    field->setStringValue(u"1,2,4");
    focus();
    EXPECT_EQ(edit->selectedText(), "1,2,4");
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TextFieldTest, EditingIsAskedForOnceAndToldAtEveryChange) {
    showField();
    focus();
    QTest::keyClicks(edit, "ab");
    key(Qt::Key_Backspace);
    EXPECT_EQ(owner->taken(), (Log{"shouldBegin", "change a", "change ab", "change a"}));
}

TEST_F(TextFieldTest, ARefusedBeginningLeavesTheTextAsItWas) {
    showField();
    field->setStringValue(u"kept");
    owner->refusesBegin = true;
    focus();
    QTest::keyClicks(edit, "x");
    EXPECT_EQ(edit->text(), "kept");
    EXPECT_EQ(field->stringValue(), u"kept");
    EXPECT_EQ(owner->taken(), Log{"shouldBegin"});
}

TEST_F(TextFieldTest, PastingSeveralCharactersIsOneChange) {
    showField();
    focus();
    QApplication::clipboard()->setText("1,2,4");
    QTest::keySequence(edit, QKeySequence::Paste);
    EXPECT_EQ(owner->taken(), (Log{"shouldBegin", "change 1,2,4"}));
}

TEST_F(TextFieldTest, UndoIsAChange) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    QTest::keySequence(edit, QKeySequence::Undo);
    EXPECT_EQ(owner->taken(), Log{"change "});
}

TEST_F(TextFieldTest, ReturnEndsTheEditAndThenSendsTheAction) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    key(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), (Log{"shouldEnd", "act"}));
    EXPECT_EQ(field->stringValue(), u"a");
    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(TextFieldTest, ReturnSendsTheActionAlsoWhereNothingWasTyped) {
    showField();
    focus();
    key(Qt::Key_Return);
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(TextFieldTest, ARefusedEndKeepsTheFocusAndSendsNothing) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->refusesEnd = true;
    owner->taken();
    key(Qt::Key_Return);
    key(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), (Log{"shouldEnd", "shouldEnd"}));
    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(TextFieldTest, AFieldThatRefusedTakesTheFocusBackFromAnother) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->refusesEnd = true;
    shown("other")->setFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return edit->hasFocus(); }));
    EXPECT_TRUE(field->isBeingEdited());
}

TEST_F(TextFieldTest, AFieldThatShowsAnotherValueByThenLeavesTheFocusWhereItWent) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->refusesEnd = true;
    shown("other")->setFocus();
    field->setStringValue(u"another");
    QApplication::processEvents();
    EXPECT_TRUE(shown("other")->hasFocus());
}

TEST_F(TextFieldTest, TabEndsTheEditWithoutTheActionUnlessTheFieldIsToldTo) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    key(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), Log{"shouldEnd"});
    EXPECT_TRUE(shown("other")->hasFocus());
    EXPECT_EQ(field->stringValue(), u"a");
}

TEST_F(TextFieldTest, AFieldThatIsToldToSendsItsActionOnceWhenTheFocusLeaves) {
    showField(setting("sendsActionOnEndEditing", "bool", "true"));
    ASSERT_TRUE(field->sendsActionOnEndEditing());
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    key(Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), (Log{"shouldEnd", "act"}));
    focus();
    shown("other")->setFocus();
    EXPECT_EQ(owner->taken(), Log()); // nothing was typed
}

TEST_F(TextFieldTest, AClickInAnotherFieldEndsTheEdit) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    QTest::mouseClick(shown("other"), Qt::LeftButton);
    EXPECT_EQ(owner->taken(), Log{"shouldEnd"});
    EXPECT_FALSE(field->isBeingEdited());
}

TEST_F(TextFieldTest, EscapeBringsTheOldTextBackAndSendsNothing) {
    showField(setting("text", "string", "old"));
    owner->onTextChange = {};
    view<NSTextField>("field")->setDelegate(nullptr); // which would read the text and so take it over
    focus();
    QTest::keyClicks(edit, "new");
    key(Qt::Key_Escape);
    EXPECT_EQ(edit->text(), "old");
    EXPECT_EQ(field->stringValue(), u"old");
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(TextFieldTest, TheFieldIsReadWhileItIsEdited) {
    showField();
    focus();
    QTest::keyClicks(edit, "12.5x");
    EXPECT_EQ(field->stringValue(), u"12.5x");
    EXPECT_EQ(field->doubleValue(), 12.5);
    EXPECT_TRUE(field->isBeingEdited());
}

TEST_F(TextFieldTest, AValueSetWhileEditingKeepsTheFocusAndTheCaretsDistanceFromTheEnd) {
    showField();
    field->setStringValue(u"1,2,4");
    focus();
    edit->setCursorPosition(3);
    field->setStringValue(u"1,2,33,4");
    EXPECT_TRUE(edit->hasFocus());
    EXPECT_EQ(edit->cursorPosition(), 6);
    QTest::keyClicks(edit, "5");
    EXPECT_EQ(edit->text(), "1,2,335,4");
}

TEST_F(TextFieldTest, SettingTheTextAlreadyShownLeavesTheSelectionAlone) {
    showField();
    field->setStringValue(u"1,2,4");
    focus();
    field->setStringValue(u"1,2,4");
    EXPECT_EQ(edit->selectedText(), "1,2,4");
}

TEST_F(TextFieldTest, AHandlerMayWriteTheTextAnewAtEveryChange) {
    showField();
    owner->onTextChange = [this] {
        auto text = field->stringValue();
        std::erase(text, u'x');
        field->setStringValue(text);
    };
    focus();
    QTest::keyClicks(edit, "1x,x2");
    EXPECT_EQ(edit->text(), "1,2");
    EXPECT_EQ(edit->cursorPosition(), 3);
}

TEST_F(TextFieldTest, AnotherWindowInFrontDoesNotEndTheEdit) {
    showField();
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    QWidget front;
    front.show();
    front.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_TRUE(field->isBeingEdited());
}

TEST_F(TextFieldTest, HidingAFieldMovesTheFocusAwayFromIt) {
    showField();
    focus();
    field->setHidden(true);
    EXPECT_EQ(window->focusWidget(), nullptr);
}

TEST_F(TextFieldTest, DisablingAFieldEndsItsEditWithoutTheAction) {
    showField(setting("sendsActionOnEndEditing", "bool", "true"));
    focus();
    QTest::keyClicks(edit, "a");
    owner->taken();
    field->setEnabled(false);
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_NE(window->focusWidget(), edit);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TextFieldTest, AReadOnlyFieldCannotTakeTheFocus) {
    showField(setting("readOnly", "bool", "true"));
    EXPECT_FALSE(field->isEditable());
    EXPECT_FALSE(field->window()->makeFirstResponder(field));
}

TEST_F(TextFieldTest, ALabelShowsPlainTextAndCannotBeEdited) {
    show({"label"}, column({widget("QLabel", "label", setting("text", "string", "Offset:"))}));
    const auto label = view<NSTextField>("label");
    EXPECT_EQ(label->stringValue(), u"Offset:");
    EXPECT_FALSE(label->isEditable());
    label->setStringValue(u"<b>Versatz</b>:");
    EXPECT_EQ(shown<QLabel>("label")->text(), "<b>Versatz</b>:");
    EXPECT_EQ(shown<QLabel>("label")->textFormat(), Qt::PlainText);
}

} // namespace
