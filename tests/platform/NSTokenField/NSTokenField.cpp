// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSCell.h>
#include <AppKit/NSTextView.h>
#include <AppKit/NSTokenField.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QTextEdit>

#include <algorithm>
#include <cmath>
#include <map>

using namespace platform;
using namespace testing_support;

namespace {

class TokenFieldTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"field"}, column({widget("NSTokenField", "field")}), customClass("NSTokenField", "QTextEdit"));
        field = view<NSTokenField>("field");
        text = shown<QTextEdit>("field");
        ASSERT_TRUE(field && text);
    }
    void setObjects(std::vector<RepresentedObject> objects) {
        field->setObjectValue(std::make_shared<const std::vector<RepresentedObject>>(std::move(objects)));
    }

    std::shared_ptr<NSTokenField> field;
    QTextEdit* text = nullptr;
};

TEST_F(TokenFieldTest, ShowsATokenAsOneCharacter) {
    setObjects({u"Received ", u"%pageNumber%"});
    EXPECT_EQ(text->toPlainText(), QString(2, QChar::ObjectReplacementCharacter));
}

TEST_F(TokenFieldTest, NilClearsWhatIsShown) {
    setObjects({u"Received"});
    field->setObjectValue(nullptr);
    EXPECT_EQ(text->toPlainText(), "");
}

TEST_F(TokenFieldTest, TypingPutsTextBesideTheTokens) {
    setObjects({u"Received"});
    QTest::keyClicks(text, "x");
    EXPECT_EQ(*field->objectValue(), (std::vector<RepresentedObject>{u"Received", u"x"}));
}

TEST_F(TokenFieldTest, TheCaretStandsInNoCharacter) {
    text->setFocus();
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral(u"e\u0301\U0001F600"));
    QApplication::sendEvent(text, &event);
    const auto editor = field->currentEditor();
    ASSERT_TRUE(editor);
    const auto selected = [&](NSUInteger location, NSUInteger length) {
        editor->setSelectedRange({location, length});
        return editor->selectedRange();
    };
    EXPECT_EQ(selected(1, 0), (NSRange{0, 0})) << "between a letter and its accent";
    EXPECT_EQ(selected(3, 0), (NSRange{2, 0})) << "in a surrogate pair";
    EXPECT_EQ(selected(3, 1), (NSRange{2, 2}));
    EXPECT_EQ(selected(0, 3), (NSRange{0, 4}));
    EXPECT_EQ(selected(0, 1), (NSRange{0, 2}));
    EXPECT_EQ(selected(2, 0), (NSRange{2, 0}));
    EXPECT_EQ(selected(4, 0), (NSRange{4, 0}));
}

struct PlainText final : NSObject, NSTokenFieldDelegate {
    NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                     const RepresentedObject&) override {
        return NSTokenStyle::none;
    }
};

TEST_F(TokenFieldTest, TheCaretOfAnotherTextStandsInNoCharacter) {
    text->setFocus();
    QTest::keyClicks(text, "ab");
    QTest::keyClick(text, Qt::Key_Left);
    const auto plain = std::make_shared<PlainText>();
    field->setDelegate(plain);
    setObjects({u"\U0001F600"});
    QTest::keyClicks(text, "x");
    EXPECT_EQ(*field->objectValue(), (std::vector<RepresentedObject>{u"x\U0001F600"}));
}

TEST_F(TokenFieldTest, BackspaceDeletesAPictureOfSeveralSignsAsOne) {
    const auto plain = std::make_shared<PlainText>();
    field->setDelegate(plain);
    const std::u16string flag = u"\U0001F1E9\U0001F1EA";
    const std::u16string family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467";
    for (const auto& [title, left] : std::vector<std::pair<std::u16string, std::u16string>>{
             {u"a" + flag, u"a"}, {u"a" + family, u"a"}, {u"ae\u0301", u"ae"}, {u"a\U0001F600", u"a"}}) {
        setObjects({title});
        text->setFocus();
        text->moveCursor(QTextCursor::End);
        QTest::keyClick(text, Qt::Key_Backspace);
        EXPECT_EQ(field->attributedStringValue().string(), left);
    }
}

TEST_F(TokenFieldTest, AnotherTitleHasItsCaretAtTheEnd) {
    setObjects({u"a", u"b", u"c"});
    text->setFocus();
    field->currentEditor()->setSelectedRange({1, 0});
    text->clearFocus();
    setObjects({u"d", u"e", u"f", u"g"});
    text->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(field->currentEditor()->selectedRange(), (NSRange{4, 0}));
}

TEST_F(TokenFieldTest, ARightClickSelectsTheTokenBelowIt) {
    setObjects({u"a", u"b"});
    QTextCursor second(text->document());
    second.setPosition(1);
    const auto at = text->cursorRect(second).center() + QPoint(6, 0);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, text->viewport()->mapToGlobal(at));
    QApplication::sendEvent(text->viewport(), &event);
    text->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(field->currentEditor()->selectedRange(), (NSRange{1, 1}));
}

TEST_F(TokenFieldTest, WrapsWhenItsCellIsToldTo) {
    field->cell()->setWraps(false);
    EXPECT_EQ(text->lineWrapMode(), QTextEdit::NoWrap);
    field->cell()->setWraps(true);
    EXPECT_EQ(text->lineWrapMode(), QTextEdit::WidgetWidth);
}

/// The relation of brightness between two colours, from 1 to 21, by the formula of the Web Content Accessibility
/// Guidelines 2.1.
double contrast(const QColor& one, const QColor& other) {
    const auto brightness = [](const QColor& colour) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const auto [darker, brighter] =
        std::pair(std::min(brightness(one), brightness(other)), std::max(brightness(one), brightness(other)));
    return (brighter + 0.05) / (darker + 0.05);
}

TEST_F(TokenFieldTest, TitlesOfTokensAreReadableOnLightAndOnDark) {
    setObjects({u"HHHHHHHH"});
    const QColor light(0xFF, 0xFF, 0xFF);
    const QColor dark(0x1E, 0x1E, 0x1E);
    for (const bool isDark : {false, true})
        for (const bool isSelected : {false, true}) {
            auto palette = text->palette();
            palette.setColor(QPalette::Base, isDark ? dark : light);
            palette.setColor(QPalette::Text, isDark ? light : Qt::black);
            text->setPalette(palette);
            auto cursor = text->textCursor();
            cursor.setPosition(0);
            cursor.setPosition(isSelected ? 1 : 0, QTextCursor::KeepAnchor);
            text->setTextCursor(cursor);
            QApplication::processEvents();
            const auto picture = text->viewport()->grab().toImage();
            const int top = text->cursorRect(cursor).top();
            // Along the middle of the title: the fill is the most frequent colour, the letters are the one furthest
            // away.
            std::map<QRgb, int> colours;
            for (int x = 20; x < 60; ++x)
                for (int y = top + 5; y < top + 14; ++y)
                    if (picture.rect().contains(x, y))
                        ++colours[picture.pixel(x, y)];
            const auto fill = std::max_element(colours.begin(), colours.end(), [](const auto& a, const auto& b) {
                                  return a.second < b.second;
                              })->first;
            double best = 1;
            for (const auto& [colour, count] : colours)
                best = std::max(best, contrast(QColor::fromRgb(colour), QColor::fromRgb(fill)));
            EXPECT_GE(best, 4.5) << (isDark ? "dark" : "light") << (isSelected ? ", selected" : "");
        }
}

} // namespace
