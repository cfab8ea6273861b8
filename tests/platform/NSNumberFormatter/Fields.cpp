// SPDX-License-Identifier: MIT
// Number formatters in fields, with keys and pixels.
#include "Interface.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QLocale>

using namespace platform;
using namespace testing_support;

namespace {

class NumberField : public InterfaceTest {
protected:
    void showField(const std::string& settings = property("formatter", "decimal")) {
        show({"field", "other"}, column({widget("QLineEdit", "field", property("action", "act:") + settings),
                                         widget("QLineEdit", "other")}));
        field = view<NSTextField>("field");
        edit = shown<QLineEdit>("field");
        ASSERT_TRUE(field && edit);
    }
    void type(const char* text) {
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, QString::fromUtf8(text));
    }
    /// Whether the frame of the colour of errors is drawn.
    bool isMarked() const {
        const auto pixel = QColor(edit->grab().toImage().pixel(1, edit->height() / 2));
        return pixel.red() > 150 && pixel.green() < 100 && pixel.blue() < 100;
    }
    std::string reason() const { return edit->accessibleDescription().toStdString(); }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    std::shared_ptr<NSTextField> field;
    QLineEdit* edit = nullptr;
};

class LongTexts : public NumberField {
protected:
    void SetUp() override { showField(setting("maxLength", "number", "10")); }
};

TEST_F(NumberField, ShowsANumberSetByProgramWithSevenDigits) {
    showField();
    field->setFloatValue(0.1F);
    EXPECT_EQ(edit->text(), "0.1");
    field->setDoubleValue(2.7000000476837158);
    EXPECT_EQ(edit->text(), "2.7");
    field->setIntegerValue(-12);
    EXPECT_EQ(edit->text(), "-12");
}

TEST_F(NumberField, ReadsANumberSetByProgramBackExactly) {
    showField();
    field->setDoubleValue(1.23456789012);
    EXPECT_EQ(edit->text(), "1.234568");
    EXPECT_EQ(field->doubleValue(), 1.23456789012);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Tab);
    EXPECT_EQ(field->doubleValue(), 1.23456789012) << "a visit of the field is no edit";
}

TEST_F(NumberField, TakesTheNumberOfTheTextAndKeepsTheTextAsTyped) {
    showField();
    type("12.70");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 12.7);
    EXPECT_EQ(field->integerValue(), 12);
    EXPECT_EQ(edit->text(), "12.70");
}

TEST_F(NumberField, CutsTowardNoughtForNegativeNumbersToo) {
    showField();
    type("-12.7");
    EXPECT_EQ(field->integerValue(), -12);
}

TEST_F(NumberField, WritesAndReadsTheDecimalsOfTheUsersLocale) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    showField();
    field->setDoubleValue(1234.5);
    EXPECT_EQ(edit->text(), "1234,5");
    type("12,25");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 12.25);
    type("12.25");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 12.25);
    EXPECT_TRUE(isMarked());
}

TEST_F(NumberField, ATextThatIsNoNumberIsMarkedAndKeepsTheFocusAndTheLastGoodValue) {
    showField();
    field->setDoubleValue(5);
    for (const auto key : {Qt::Key_Return, Qt::Key_Tab}) {
        type("abc");
        EXPECT_FALSE(isMarked()) << "not before the edit is to end";
        QTest::keyClick(edit, key);
        EXPECT_TRUE(isMarked());
        EXPECT_EQ(reason(), "Enter a number.");
        EXPECT_TRUE(edit->hasFocus());
        EXPECT_EQ(edit->text(), "abc");
        EXPECT_EQ(field->doubleValue(), 5);
        EXPECT_EQ(owner->taken(), Log());
    }
}

TEST_F(NumberField, AClickElsewhereComesBackToTheRefusedText) {
    showField();
    type("abc");
    QTest::mouseClick(shown("other"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return edit->hasFocus(); }));
    EXPECT_TRUE(isMarked());
}

TEST_F(NumberField, ANumberOutsideTheRangeIsRefusedWithTheRange) {
    showField(property("formatter", "decimal") + property("minValue", "1") + property("maxValue", "999"));
    type("0.5");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(reason(), "Enter a number from 1 to 999.");
}

TEST_F(NumberField, TheMarkGoesWithTheNextChange) {
    showField();
    type("1x");
    QTest::keyClick(edit, Qt::Key_Return);
    ASSERT_TRUE(isMarked());
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(reason(), "");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 1);
}

TEST_F(NumberField, EscapeBringsTheLastGoodValueBack) {
    showField();
    field->setDoubleValue(5);
    type("abc");
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(edit->text(), "5");
    EXPECT_FALSE(isMarked());
}

TEST_F(NumberField, AValueSetByProgramTakesTheMarkAway) {
    showField();
    type("abc");
    QTest::keyClick(edit, Qt::Key_Return);
    field->setDoubleValue(8);
    EXPECT_EQ(edit->text(), "8");
    EXPECT_FALSE(isMarked());
}

TEST_F(NumberField, AFieldTakenAwayAllTheSameShowsTheLastGoodValueAfterwards) {
    showField();
    field->setDoubleValue(5);
    type("abc");
    window->hide();
    EXPECT_EQ(field->doubleValue(), 5);
    window->show();
    EXPECT_EQ(edit->text(), "5");
    EXPECT_FALSE(field->isBeingEdited());
}

TEST_F(NumberField, ABlankTextIsNoRefusal) {
    showField();
    type("  ");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(NumberField, APercentageIsShownTimesAHundred) {
    showField(property("formatter", "percent"));
    field->setDoubleValue(0.4);
    EXPECT_EQ(edit->text(), "40%");
    type("55");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(field->doubleValue(), 0.55);
}

TEST_F(NumberField, AnUnknownFormatterIsReported) {
    loadFile({"field"}, column({widget("QLineEdit", "field", property("formatter", "roman"))}));
    EXPECT_TRUE(hasProblem("field: there is no formatter roman"));
}

TEST_F(LongTexts, AreTakenUpToTheLimit) {
    type("0123456789");
    EXPECT_EQ(field->stringValue(), u"0123456789");
    EXPECT_FALSE(isMarked());
}

TEST_F(LongTexts, OneCharacterTooManyIsRefusedVisibly) {
    type("0123456789");
    edit->setCursorPosition(3);
    QTest::keyClicks(edit, "x");
    EXPECT_EQ(edit->text(), "0123456789");
    EXPECT_EQ(edit->cursorPosition(), 3);
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(reason(), "No more than 10 characters fit in here.");
    EXPECT_EQ(field->stringValue(), u"0123456789");
}

TEST_F(LongTexts, APasteThatIsTooLongIsRefusedAsAWhole) {
    type("01234");
    QApplication::clipboard()->setText("abcdef");
    QTest::keySequence(edit, QKeySequence::Paste);
    EXPECT_EQ(edit->text(), "01234");
    EXPECT_TRUE(isMarked());
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(edit->text(), "0123");
    EXPECT_FALSE(isMarked());
}

TEST_F(LongTexts, SetByProgramAreShownWholeAndCanBeMadeShorter) {
    field->setStringValue(u"0123456789abcdef");
    EXPECT_EQ(edit->text(), "0123456789abcdef");
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_End);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(field->stringValue(), u"0123456789abcde");
    QTest::keyClicks(edit, "f");
    EXPECT_EQ(edit->text(), "0123456789abcde");
}

TEST_F(LongTexts, ATextBeyondTheToolkitsOwnLimitIsNotCut) {
    const std::u16string text(40000, u'7');
    field->setStringValue(text);
    EXPECT_EQ(edit->text().size(), 40000);
}

} // namespace
