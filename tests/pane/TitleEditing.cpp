// SPDX-License-Identifier: MIT
#include "TitleTest.h"

#include "../support/DragUser.h"
#include "../support/MenuUser.h"

#include <QInputMethodEvent>
#include <QToolButton>

#include <chrono>

using namespace platform;
using namespace testing_support;

namespace {

class TitleTyping : public TitleTest {
protected:
    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(editor, code, modifiers);
    }
    void type(const char* text) { QTest::keyClicks(editor, QString::fromUtf8(text)); }
    void commit(const QString& text) {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(editor, &event);
    }
    void undo() { key(Qt::Key_Z, Qt::ControlModifier); }
    void redo() { key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }
    void select(int position, int length) { focusAt(position, length); }
    void copy() { key(Qt::Key_C, Qt::ControlModifier); }
    void cut() { key(Qt::Key_X, Qt::ControlModifier); }
    void paste() { key(Qt::Key_V, Qt::ControlModifier); }
    void pasteForeign(const QString& text) {
        QApplication::clipboard()->setText(text);
        paste();
    }
    void followUp() { queue->advance(0.02); }
    /// Drags the characters from `position` on to before the one at `place`.
    bool drag(int position, int length, NSUInteger place) {
        select(position, length);
        std::u16string plain;
        const auto carried = field->userDrags(plain);
        const bool taken = field->userDrops(carried, place);
        field->userEndedDrag();
        return taken;
    }
    int caret() const { return editor->textCursor().position(); }
    int selectionLength() const { return editor->textCursor().selectionEnd() - editor->textCursor().selectionStart(); }
};

class TitleTokensByKey : public TitleTyping {};
class TitleTokensByPointer : public TitleTyping {
protected:
    QPoint middleOf(int position) const {
        QTextCursor edge(editor->document());
        edge.setPosition(position);
        const auto before = editor->cursorRect(edge);
        edge.setPosition(position + 1);
        return (before.center() + editor->cursorRect(edge).center()) / 2;
    }
};
class TitlePasting : public TitleTyping {};
class TitleDragging : public TitleTyping {};
class TitleUndo : public TitleTyping {};
class TitleEnding : public TitleTyping {};

// Typing

TEST_F(TitleTyping, IsStoredWithEveryKey) {
    startWith({u"ab", page, u"cd"});
    focusAt(1);
    type("x");
    EXPECT_EQ(titleNow(), (Title{u"axb", page, u"cd"}));
    focusAt(4);
    type("yz");
    EXPECT_EQ(titleNow(), (Title{u"axb", page, u"yzcd"}));
}

TEST_F(TitleTyping, NextToATokenIsText) {
    startWith({page});
    focusAt(1);
    type("a");
    focusAt(0);
    type("b");
    EXPECT_EQ(titleNow(), (Title{u"b", page, u"a"}));
}

TEST_F(TitleTyping, APercentSignNeverStays) {
    startWith({u"ab"});
    focusAt(1);
    type("%");
    EXPECT_EQ(titleNow(), (Title{u"ab"}));
    EXPECT_EQ(caret(), 1);
    type("x%%y");
    EXPECT_EQ(titleNow(), (Title{u"axyb"}));
    EXPECT_EQ(caret(), 3);
}

TEST_F(TitleTyping, OverASelectionReplacesIt) {
    startWith({u"abcd"});
    select(1, 2);
    type("x");
    EXPECT_EQ(titleNow(), Title{u"axd"});
}

TEST_F(TitleTyping, WithAnInputMethodStaysAsComposed) {
    startWith({page});
    focusAt(1);
    commit(QStringLiteral("\u00E9\u0301"));
    commit(QStringLiteral("日本語"));
    commit(QString::fromUcs4(U"\U0001F468\u200D\U0001F469"));
    commit(QStringLiteral("שלום"));
    EXPECT_EQ(titleNow(), (Title{page, u"\u00E9\u0301日本語\U0001F468\u200D\U0001F469שלום"}));
}

TEST_F(TitleTyping, AnUnfinishedCompositionIsNotPartOfTheTitle) {
    startWith({u"a"});
    focusAt(1);
    QInputMethodEvent composing(QStringLiteral("にほ"), {});
    QApplication::sendEvent(editor, &composing);
    EXPECT_EQ(titleNow(), Title{u"a"});
    EXPECT_EQ(taken(), MessageLog());
    commit(QStringLiteral("日本"));
    EXPECT_EQ(titleNow(), Title{u"a日本"});
}

TEST_F(TitleTyping, ACommittedPercentSignIsTakenOut) {
    startWith({u"a"});
    focusAt(1);
    commit(QStringLiteral("b%c％d"));
    EXPECT_EQ(titleNow(), Title{u"abc％d"});
}

TEST_F(TitleTyping, TellsAndRefreshesOnceForEachKey) {
    startWith({u"abc"});
    focusAt(3);
    type("d");
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"}));
}

TEST_F(TitleTyping, CtrlReturnStartsANewLine) {
    startWith({u"ab", page});
    focusAt(1);
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(titleNow(), (Title{u"a\nb", page}));
    type("x");
    EXPECT_EQ(titleNow(), (Title{u"a\nxb", page}));
}

TEST_F(TitleTyping, IntoADisabledFieldChangesNothing) {
    startWith({u"ab"});
    field->setEnabled(false);
    QTest::keyClicks(editor, "x");
    EXPECT_EQ(shown(), Title{u"ab"});
    field->setEnabled(true);
}

// Tokens

TEST_F(TitleTokensByKey, BackspaceSelectsATokenAndThenDeletesIt) {
    startWith({u"a", page, u"b"});
    focusAt(2);
    key(Qt::Key_Backspace);
    EXPECT_EQ(titleNow(), (Title{u"a", page, u"b"}));
    EXPECT_EQ(selectionLength(), 1);
    key(Qt::Key_Backspace);
    EXPECT_EQ(titleNow(), Title{u"ab"});
    EXPECT_EQ(caret(), 1);
}

TEST_F(TitleTokensByKey, DeleteSelectsTheTokenBehindTheCaretFirst) {
    startWith({u"a", page, u"b"});
    focusAt(1);
    key(Qt::Key_Delete);
    EXPECT_EQ(selectionLength(), 1);
    key(Qt::Key_Delete);
    EXPECT_EQ(titleNow(), Title{u"ab"});
    key(Qt::Key_Delete);
    EXPECT_EQ(titleNow(), Title{u"a"});
}

TEST_F(TitleTokensByKey, TheCaretPassesATokenAsOneCharacter) {
    startWith({u"a", page, F1});
    focusAt(0);
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    EXPECT_EQ(caret(), 2);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(selectionLength(), 1);
    EXPECT_EQ(field->currentEditor()->selectedRange(), (NSRange{2, 1}));
}

/// What is left of two runs when the first one has gone.
#define EXPECT_REPAIRED()                                                                                              \
    EXPECT_EQ(f2->fontNumber(), 0U);                                                                                   \
    EXPECT_EQ(fontTitles(), std::vector<std::u16string>{u"Font 1"});                                                   \
    EXPECT_EQ(pane->currentFont(), f2)

TEST_F(TitleTokensByKey, InRightToLeftTextTheArrowsFollowTheTextAndATokenIsOneCharacter) {
    startWith({u"\u05D0\u05D1", page, u"\u05D2\u05D3"});
    focusAt(0);
    for (const int position : {1, 2, 3, 4}) {
        key(Qt::Key_Left);
        EXPECT_EQ(caret(), position);
    }
    key(Qt::Key_Right);
    EXPECT_EQ(caret(), 3);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(editor->textCursor().selectionStart(), 2);
    EXPECT_EQ(selectionLength(), 1) << "the token";
    focusAt(3);
    commit(QStringLiteral("\u05D4"));
    EXPECT_EQ(titleNow(), (Title{u"\u05D0\u05D1", page, u"\u05D4\u05D2\u05D3"}));
    focusAt(3);
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    EXPECT_EQ(titleNow(), Title{u"\u05D0\u05D1\u05D4\u05D2\u05D3"});
}

TEST_F(TitleTokensByKey, ARunDeletedByBackspaceIsRepaired) {
    startWith({F1, u"a", F2});
    f2->setFontNumber(1);
    pane->setCurrentFont(f1);
    focusAt(1);
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    EXPECT_EQ(titleNow(), (Title{u"a", F2}));
    EXPECT_REPAIRED();
}

TEST_F(TitleTokensByKey, ARunThatIsCutIsRepaired) {
    startWith({F1, u"a", F2});
    f2->setFontNumber(1);
    pane->setCurrentFont(f1);
    select(0, 2);
    cut();
    EXPECT_EQ(titleNow(), Title{F2});
    EXPECT_REPAIRED();
}

TEST_F(TitleTokensByKey, ARunThatIsOvertypedIsRepaired) {
    startWith({F1, u"a", F2});
    f2->setFontNumber(1);
    pane->setCurrentFont(f1);
    select(0, 2);
    type("x");
    EXPECT_EQ(titleNow(), (Title{u"x", F2}));
    EXPECT_REPAIRED();
}

TEST_F(TitleTokensByKey, ARunOvertypedWithAPercentSignIsRepaired) {
    startWith({F1, u"a", F2});
    f2->setFontNumber(1);
    pane->setCurrentFont(f1);
    select(0, 2);
    type("%");
    EXPECT_EQ(titleNow(), Title{F2});
    EXPECT_REPAIRED();
}

TEST_F(TitleTokensByKey, ARunReplacedByAPasteIsRepaired) {
    startWith({F1, u"a", F2});
    f2->setFontNumber(1);
    pane->setCurrentFont(f1);
    select(0, 1);
    pasteForeign(QStringLiteral("new"));
    EXPECT_EQ(titleNow(), (Title{u"newa", F2}));
    EXPECT_REPAIRED();
}

TEST_F(TitleTokensByKey, OfTheMenuOfRunsFollowTheFieldOnlyThroughTheModel) {
    startWith({F1});
    type("x");
    EXPECT_EQ(fontTitles(), std::vector<std::u16string>()) << "only a deletion or an opening makes the menu anew";
}

// Pasting

TEST_F(TitlePasting, ForeignTextKeepsNoPercentSignInFieldOrModel) {
    startWith({u"ab", page});
    focusAt(1);
    pasteForeign(QStringLiteral("5% of 100%"));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"a5 of 100b", page}));
    EXPECT_EQ(caret(), 9);
    key(Qt::Key_Tab);
    EXPECT_EQ(titleNow(), (Title{u"a5 of 100b", page}));
}

TEST_F(TitlePasting, ThePreviewAfterAForeignPasteIsOfTheTitleWithoutPercentSign) {
    startWith({u"ab"});
    focusAt(1);
    pasteForeign(QStringLiteral("5%"));
    taken();
    followUp();
    const auto messages = taken();
    const auto stored = std::find(messages.rbegin(), messages.rend(), "a setTitleTokens");
    const auto stamped = std::find_if(messages.rbegin(), messages.rend(), [](const std::string& message) {
        return message.find("imprintFile") != std::string::npos;
    });
    ASSERT_NE(stored, messages.rend());
    EXPECT_LT(stamped, stored) << "the last stamping comes after the last storing";
    EXPECT_EQ(titleNow(), Title{u"a5b"});
}

TEST_F(TitlePasting, AKeyBeforeTheCleanUpIsToldOfLeavesNothingMoreToTell) {
    startWith({u"ab"});
    focusAt(1);
    pasteForeign(QStringLiteral("5%"));
    followUp();
    taken();
    type("x");
    EXPECT_EQ(titleNow(), Title{u"a5xb"});
    taken();
    followUp();
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(TitlePasting, ForeignTextBeginningWithAPercentSignLosesIt) {
    startWith({});
    focusAt(0);
    pasteForeign(QStringLiteral("%%done"));
    followUp();
    key(Qt::Key_Tab);
    EXPECT_EQ(titleNow(), Title{u"done"});
}

TEST_F(TitlePasting, AfterAForeignPasteAndTabBothTitlesAreWithoutPercentSign) {
    startWith({});
    focusAt(0);
    pasteForeign(QStringLiteral("a%b"));
    key(Qt::Key_Tab);
    followUp();
    EXPECT_EQ(titleNow(), Title{u"ab"});
}

TEST_F(TitlePasting, APlaceholderFromElsewhereIsAToken) {
    startWith({u"a"});
    focusAt(1);
    pasteForeign(QStringLiteral("%pageNumber%"));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"a", page}));
}

TEST_F(TitlePasting, TextAndPlaceholdersCopiedHereArePastedAsTheyWere) {
    startWith({u"ab", page, u"c"});
    select(1, 2);
    copy();
    focusAt(4);
    paste();
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"ab", page, u"cb", page}));
}

TEST_F(TitlePasting, ACopiedRunComesBackAsTheVeryObject) {
    startWith({F1, u"ab"});
    select(0, 1);
    copy();
    focusAt(2);
    paste();
    EXPECT_EQ(titleNow(), (Title{F1, u"a", F1, u"b"}));
}

TEST_F(TitlePasting, ACopiedRunPastedBehindItselfMovesThere) {
    startWith({F1, u"ab", F2});
    select(0, 1);
    copy();
    focusAt(2);
    paste();
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"a", F1, u"b", F2}));
    EXPECT_EQ(f1->fontNumber(), 0U);
    EXPECT_EQ(f2->fontNumber(), 1U);
}

TEST_F(TitlePasting, ACopiedRunPastedBeforeItselfVanishesAgain) {
    startWith({u"ab", F1});
    select(2, 1);
    copy();
    focusAt(1);
    paste();
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"a", u"b", F1}));
}

TEST_F(TitlePasting, ARunThatWasCutIsRemovedAgainByTheReorderAndUndoBringsItBack) {
    startWith({F1, u"ab"});
    select(0, 1);
    cut();
    focusAt(1);
    paste();
    EXPECT_EQ(titleNow(), (Title{u"a", F1, u"b"}));
    followUp();
    EXPECT_EQ(pane->getFontTokenArray(), std::vector<std::shared_ptr<host::ImprinterFont>>());
    undo();
    EXPECT_EQ(titleNow(), (Title{F1, u"ab"}));
}

TEST_F(TitlePasting, ARunThatWasCopiedIsRemovedWhenForeignTextIsPastedNext) {
    startWith({F1, u"ab"});
    select(0, 1);
    copy();
    focusAt(3);
    pasteForeign(QStringLiteral("x"));
    followUp();
    EXPECT_EQ(titleNow(), Title{u"abx"});
    EXPECT_FALSE(pane->isDraggingFromSelf());
}

TEST_F(TitlePasting, ACopyAloneSetsTheDragStateAndChangesNothing) {
    startWith({F1, u"ab"});
    select(0, 2);
    copy();
    EXPECT_TRUE(pane->isDraggingFromSelf());
    EXPECT_EQ(*pane->draggedTokenObjects(), (Title{F1, u"a"}));
    followUp();
    EXPECT_TRUE(pane->isDraggingFromSelf());
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(TitlePasting, OtherProgramsGetTheTextWithoutKeys) {
    startWith({u"a", F1, page, u"b"});
    select(0, 4);
    copy();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("a%pageNumber%b"));
}

TEST_F(TitlePasting, ALineBreakStartsANewLine) {
    startWith({});
    focusAt(0);
    pasteForeign(QStringLiteral("a\r\nb\rc\nd\u2029e"));
    followUp();
    EXPECT_EQ(titleNow(), Title{u"a\nb\nc\nd\ne"});
    EXPECT_EQ(editor->document()->blockCount(), 5);
}

TEST_F(TitlePasting, TellsOfOneChange) {
    startWith({u"a"});
    focusAt(1);
    taken();
    pasteForeign(QStringLiteral("bcd"));
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", "a setTitleTokens",
                                   "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"}));
}

TEST_F(TitlePasting, RichTextFromElsewhereComesInAsPlainText) {
    startWith({});
    focusAt(0);
    auto rich = std::make_unique<QMimeData>();
    rich->setHtml(QStringLiteral("<b>bold</b> &amp; <i>italic</i>"));
    QApplication::clipboard()->setMimeData(rich.release());
    paste();
    EXPECT_EQ(titleNow(), Title{u"bold & italic"});
}

TEST_F(TitlePasting, AMillionCharactersAreRefusedAtOnceAndTheTitleStays) {
    startWith({u"ab", F1});
    focusAt(1);
    const QString huge(1'000'000, QLatin1Char('x'));
    const auto start = std::chrono::steady_clock::now();
    pasteForeign(huge);
    followUp();
    QApplication::processEvents();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(titleNow(), (Title{u"ab", F1}));
    EXPECT_NE(editor->accessibleDescription(), QString());
    type("c");
    EXPECT_EQ(titleNow(), (Title{u"acb", F1}));
    EXPECT_EQ(editor->accessibleDescription(), QString());
}

// Dragging

TEST_F(TitleDragging, ARunToTheRightMovesIt) {
    startWith({F1, u"ab", F2, u"c"});
    f2->setFontNumber(1);
    EXPECT_TRUE(drag(0, 1, 4));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"ab", F2, F1, u"c"}));
    EXPECT_EQ(f2->fontNumber(), 0U);
    EXPECT_EQ(f1->fontNumber(), 1U);
}

TEST_F(TitleDragging, ARunToTheLeftLeavesItWhereItWas) {
    startWith({u"ab", F2, u"c", F1});
    EXPECT_TRUE(drag(4, 1, 0));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"ab", F2, u"c", F1}));
}

TEST_F(TitleDragging, TextAndPlaceholdersLeaveTheirOldPlace) {
    startWith({u"abc", page, u"d"});
    EXPECT_TRUE(drag(1, 3, 5));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"adbc", page}));
    EXPECT_EQ(caret(), 5);
    EXPECT_TRUE(drag(4, 1, 0));
    followUp();
    EXPECT_EQ(titleNow(), (Title{page, u"adbc"}));
}

TEST_F(TitleDragging, MixedToTheRightMovesEverything) {
    startWith({u"ab", F1, u"cd"});
    EXPECT_TRUE(drag(1, 3, 5));
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"a", u"db", F1, u"c"}));
}

TEST_F(TitleDragging, OntoItselfChangesNothing) {
    startWith({u"ab", F1, u"cd"});
    for (const NSUInteger place : {1, 2, 3, 4})
        EXPECT_FALSE(drag(1, 3, place));
    EXPECT_EQ(titleNow(), (Title{u"ab", F1, u"cd"}));
    EXPECT_EQ(queue->waiting(), 0U);
}

TEST_F(TitleDragging, TextFromElsewhereGoesInWhereItIsDropped) {
    startWith({u"ab", page});
    NSPasteboard carried;
    const std::string text = "x%y";
    carried.setDataForType(std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end()), u"text/plain");
    QTextCursor place(editor->document());
    place.setPosition(1);
    DragUser user(*editor->viewport(), carried);
    EXPECT_TRUE(user.dropsAt(editor->cursorRect(place).center()));
    followUp();
    EXPECT_EQ(shown(), (Title{u"axyb", page}));
    EXPECT_TRUE(editor->hasFocus());
    key(Qt::Key_Tab);
    EXPECT_EQ(titleNow(), (Title{u"axyb", page}));
}

TEST_F(TitleDragging, AFileIsLeftToTheWindowThoughItBringsItsAddressAsText) {
    startWith({u"ab"});
    const auto taken = [&](const std::string& address) {
        NSPasteboard carried;
        const auto data = [](const std::string& text) {
            return std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end());
        };
        carried.setDataForType(data(address), u"text/plain");
        carried.setDataForType(data(address + "\r\n"), u"text/uri-list");
        DragUser user(*editor->viewport(), carried);
        return user.enters(QPoint(5, 5));
    };
    EXPECT_FALSE(taken("file:///tmp/bundle.pdf"));
    EXPECT_TRUE(taken("https://example.org/"));
}

TEST_F(TitleDragging, WhatIsNoTextIsNotTaken) {
    startWith({u"ab"});
    NSPasteboard carried;
    carried.setDataForType(std::make_shared<const std::vector<std::uint8_t>>(3), u"application/x-other");
    DragUser user(*editor->viewport(), carried);
    EXPECT_FALSE(user.enters(QPoint(5, 5)));
}

// Pointer

TEST_F(TitleTokensByPointer, AClickSelectsATokenAndAClickOnTextPutsTheCaretThere) {
    startWith({F1, u"ab", page, u"cd"});
    focusAt(5);
    for (const int position : {0, 3}) {
        QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, middleOf(position));
        EXPECT_EQ(field->currentEditor()->selectedRange(), (NSRange{static_cast<NSUInteger>(position), 1}));
    }
    QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, middleOf(1));
    EXPECT_EQ(selectionLength(), 0);
}

TEST_F(TitleTokensByPointer, TheContextMenuKeepsASelectionOnlyWhereItIsOpenedOnIt) {
    startWith({u"abcd", page, u"ef"});
    const auto opensAt = [this](int position) {
        withMenu(
            [&] {
                QContextMenuEvent event(QContextMenuEvent::Mouse, middleOf(position),
                                        editor->viewport()->mapToGlobal(middleOf(position)));
                QApplication::sendEvent(editor->viewport(), &event);
            },
            [](QMenu& menu) { menu.close(); });
    };
    select(1, 2);
    opensAt(1);
    EXPECT_EQ(selectionLength(), 2);
    opensAt(5);
    EXPECT_EQ(selectionLength(), 0);
    EXPECT_GE(caret(), 5);
}

TEST_F(TitleTokensByPointer, InRightToLeftTextAClickSelectsTheTokenUnderIt) {
    startWith({u"\u05D0\u05D1", page, u"\u05D2\u05D3", F1});
    focusAt(0);
    for (const int position : {2, 5}) {
        QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, middleOf(position));
        EXPECT_EQ(editor->textCursor().selectionStart(), position);
        EXPECT_EQ(selectionLength(), 1);
    }
}

TEST_F(TitleTokensByPointer, AClickInASelectionEndsIt) {
    startWith({u"abcd"});
    select(0, 4);
    QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, middleOf(1));
    EXPECT_EQ(selectionLength(), 0);
}

TEST_F(TitleTokensByPointer, WithShiftTheSelectionGrowsOverTokens) {
    startWith({u"ab", page, u"cd"});
    focusAt(1);
    QTest::mouseClick(editor->viewport(), Qt::LeftButton, Qt::ShiftModifier, middleOf(2) + QPoint(8, 0));
    EXPECT_EQ(field->currentEditor()->selectedRange(), (NSRange{1, 2}));
}

// Undo

TEST_F(TitleUndo, OfAMenuInsertionIsOneStep) {
    startWith({u"ab"});
    focusAt(1);
    type("x");
    const auto menu = field->insertMenu();
    menu->update();
    field->userChoosesMenuItem(menu->itemAtIndex(0));
    EXPECT_EQ(titleNow(), (Title{u"ax", object(made), u"b"}));
    undo();
    EXPECT_EQ(titleNow(), Title{u"axb"});
    redo();
    EXPECT_EQ(titleNow(), (Title{u"ax", object(made), u"b"}));
    undo();
    undo();
    EXPECT_EQ(titleNow(), Title{u"ab"});
}

TEST_F(TitleUndo, LeavesTheCaretWhereTheTextChanged) {
    startWith({u"one two"});
    focusAt(3);
    const auto menu = field->insertMenu();
    menu->update();
    field->userChoosesMenuItem(menu->itemAtIndex(0));
    undo();
    EXPECT_EQ(editor->textCursor().position(), 3);
    redo();
    EXPECT_EQ(editor->textCursor().position(), 4);
    undo();
    pasteForeign(QStringLiteral("x%y"));
    followUp();
    undo();
    EXPECT_EQ(editor->textCursor().position(), 3);
    redo();
    EXPECT_EQ(editor->textCursor().position(), 5);
    undo();
    select(1, 2);
    key(Qt::Key_Delete);
    undo();
    type("x");
    EXPECT_EQ(titleNow(), Title{u"onex two"});
}

TEST_F(TitleUndo, OfADropWithItsReorderIsOneStep) {
    startWith({F1, u"ab", F2});
    drag(0, 1, 4);
    followUp();
    EXPECT_EQ(titleNow(), (Title{u"ab", F2, F1}));
    undo();
    EXPECT_EQ(titleNow(), (Title{F1, u"ab", F2}));
    redo();
    EXPECT_EQ(titleNow(), (Title{u"ab", F2, F1}));
}

TEST_F(TitleUndo, OfAForeignPasteWithItsCleanUpIsOneStep) {
    startWith({u"ab"});
    focusAt(1);
    pasteForeign(QStringLiteral("x%y"));
    followUp();
    undo();
    EXPECT_EQ(titleNow(), Title{u"ab"});
    redo();
    EXPECT_EQ(titleNow(), Title{u"axyb"});
}

TEST_F(TitleUndo, BringsADeletedRunBackAsTheVeryObject) {
    startWith({u"a", F1, u"b"});
    select(1, 1);
    key(Qt::Key_Delete);
    EXPECT_EQ(titleNow(), Title{u"ab"});
    undo();
    EXPECT_EQ(titleNow(), (Title{u"a", F1, u"b"}));
}

TEST_F(TitleUndo, OfTypingWithAPercentSignHasNoStepWithoutEffect) {
    startWith({u"ab"});
    focusAt(2);
    type("%");
    undo();
    EXPECT_EQ(titleNow(), Title{u"ab"});
    type("c%");
    undo();
    EXPECT_EQ(titleNow(), Title{u"ab"});
}

TEST_F(TitleUndo, EndsWhenAnotherTitleIsShown) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    setTitle({u"other"});
    undo();
    EXPECT_EQ(titleNow(), Title{u"other"});
}

TEST_F(TitleUndo, EndsEvenWhenAnotherTitleReadsTheSame) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    setTitle({u"abc"});
    undo();
    EXPECT_EQ(titleNow(), Title{u"abc"});
}

TEST_F(TitleUndo, OutlivesTheEndOfAnEdit) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    key(Qt::Key_Return);
    undo();
    EXPECT_EQ(titleNow(), Title{u"ab"});
}

// The end of an edit

TEST_F(TitleEnding, ShowsTheStoredTitleAndLosesNothing) {
    startWith({u"ab", page});
    focusAt(3);
    type("typed");
    commit(QStringLiteral("é"));
    key(Qt::Key_Return);
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(titleNow(), (Title{u"ab", page, u"typedé"}));
    EXPECT_TRUE(editor->hasFocus());
    type("x");
    EXPECT_EQ(titleNow(), (Title{u"ab", page, u"typedéx"}));
}

TEST_F(TitleEnding, ByAClickElsewhereKeepsTheTitle) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    outlet<NSTableView>(u"tableView");
    window->findChild<QWidget*>(QStringLiteral("tableView"))->setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(titleNow(), Title{u"abc"});
}

TEST_F(TitleEnding, ByEscapeKeepsTheTitleToo) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    key(Qt::Key_Escape);
    EXPECT_EQ(titleNow(), Title{u"abc"});
}

TEST_F(TitleEnding, KeepsWhatACompositionCommitted) {
    startWith({u"ab"});
    focusAt(2);
    QInputMethodEvent composing(QStringLiteral("に"), {});
    QApplication::sendEvent(editor, &composing);
    commit(QStringLiteral("に"));
    key(Qt::Key_Tab);
    EXPECT_EQ(titleNow(), Title{u"abに"});
}

TEST_F(TitleEnding, OfThePaneStoresTheTitle) {
    startWith({u"ab"});
    focusAt(2);
    type("c");
    editor->hide();
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(titleNow(), Title{u"abc"});
}

// The button

TEST_F(TitleEnding, TheButtonOpensAMenuMadeAfreshAndItsChoiceGoesWhereTheCaretIs) {
    startWith({u"ab"});
    focusAt(1);
    auto* button = editor->findChild<QToolButton*>();
    ASSERT_TRUE(button);
    for (int round = 0; round < 2; ++round) {
        QStringList lines;
        EXPECT_TRUE(withMenu([&] { QTest::mousePress(button, Qt::LeftButton); },
                             [&](QMenu& menu) {
                                 lines = linesOf(menu);
                                 click(menu, QStringLiteral("Page Number"));
                             }));
        EXPECT_EQ(lines, (QStringList{"Font", "-", "Page Number", "Count"}));
        QTest::mouseRelease(button, Qt::LeftButton);
    }
    EXPECT_EQ(titleNow(), (Title{u"a", page, page, u"b"}));
    EXPECT_EQ(window->focusWidget(), editor);
}

} // namespace
