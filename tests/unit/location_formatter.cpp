// SPDX-License-Identifier: MIT
#include <Foundation/NSNumberFormatter.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace platform;

namespace {

NSLocale german() {
    NSLocale locale;
    locale.decimalSeparator = u",";
    return locale;
}

NSLocale arabic() {
    NSLocale locale;
    locale.decimalSeparator = u"\u066B";
    locale.minusSign = u"\u061C-";
    locale.percentSign = u"\u066A\u061C";
    locale.zeroDigit = u'\u0660';
    return locale;
}

const NSNumberFormatter decimal(NSNumberFormatterStyle::decimal, NSLocale());
const NSNumberFormatter germanDecimal(NSNumberFormatterStyle::decimal, german());
const NSNumberFormatter percent(NSNumberFormatterStyle::percent, NSLocale());

std::string shown(double number) {
    return toUtf8(decimal.stringFromNumber(number));
}

TEST(NumberFormatter, WritesAtMostSevenSignificantDigits) {
    EXPECT_EQ(shown(2.7000000476837158), "2.7");
    EXPECT_EQ(shown(0.1), "0.1");
    EXPECT_EQ(shown(1234567), "1234567");
    EXPECT_EQ(shown(12345678), "12345680");
    EXPECT_EQ(shown(-1.23456789), "-1.234568");
    EXPECT_EQ(shown(9999999.6), "10000000");
    EXPECT_EQ(shown(0.000012345678), "0.00001234568");
}

TEST(NumberFormatter, WritesWholeNumbersWithoutSeparator) {
    EXPECT_EQ(shown(12), "12");
    EXPECT_EQ(shown(0), "0");
    EXPECT_EQ(shown(-0.0), "0");
    EXPECT_EQ(shown(100), "100");
    EXPECT_EQ(shown(-360), "-360");
}

TEST(NumberFormatter, GroupsNothing) {
    EXPECT_EQ(shown(1234567), "1234567");
    EXPECT_EQ(toUtf8(germanDecimal.stringFromNumber(1234567)), "1234567");
}

TEST(NumberFormatter, WritesNumbersOfUnusualSizeWithAnExponent) {
    EXPECT_EQ(shown(1.5e300), "1.5E300");
    EXPECT_EQ(shown(-2e-9), "-2E-9");
    EXPECT_EQ(shown(1e14), "100000000000000");
    EXPECT_EQ(shown(1e15), "1E15");
}

TEST(NumberFormatter, WritesAndReadsTheDecimalsOfTheLocale) {
    EXPECT_EQ(germanDecimal.stringFromNumber(12.5), u"12,5");
    EXPECT_EQ(germanDecimal.numberFromString(u"12,5"), 12.5);
    EXPECT_EQ(germanDecimal.numberFromString(u"12.5"), std::nullopt) << "a point could group thousands";
    EXPECT_EQ(decimal.numberFromString(u"12,5"), std::nullopt);
    EXPECT_EQ(decimal.numberFromString(u"1,000"), std::nullopt);
}

TEST(NumberFormatter, WritesTheDigitsAndSignsOfTheLocaleAndReadsTheCommonOnesToo) {
    const NSNumberFormatter formatter(NSNumberFormatterStyle::decimal, arabic());
    EXPECT_EQ(formatter.stringFromNumber(-12.5), u"\u061C-\u0661\u0662\u066B\u0665");
    EXPECT_EQ(formatter.numberFromString(u"\u061C-\u0661\u0662\u066B\u0665"), -12.5);
    EXPECT_EQ(formatter.numberFromString(u"-12"), -12);
    EXPECT_EQ(decimal.numberFromString(u"\u22123"), -3);
}

TEST(NumberFormatter, ReadsSignsBlanksAndExponents) {
    EXPECT_EQ(decimal.numberFromString(u" 12.7 "), 12.7);
    EXPECT_EQ(decimal.numberFromString(u"+4"), 4);
    EXPECT_EQ(decimal.numberFromString(u"-0.5"), -0.5);
    EXPECT_EQ(decimal.numberFromString(u".5"), 0.5);
    EXPECT_EQ(decimal.numberFromString(u"12."), 12);
    EXPECT_EQ(decimal.numberFromString(u"1e3"), 1000);
    EXPECT_EQ(decimal.numberFromString(u"2E-1"), 0.2);
    EXPECT_EQ(decimal.numberFromString(u"007"), 7);
    EXPECT_EQ(decimal.numberFromString(u"1e-999"), 0);
}

TEST(NumberFormatter, RefusesWhatIsNoNumberAsAWhole) {
    for (const auto* text : {u"", u" ", u"abc", u"12a", u"1 2", u"1.2.3", u"--1", u"-", u".", u"1e", u"e5", u"0x10",
                             u"inf", u"nan", u"\u221E", u"12%", u"1e999", u"1-2"})
        EXPECT_EQ(decimal.numberFromString(text), std::nullopt) << toUtf8(text);
}

TEST(NumberFormatter, RefusesWhatLiesOutsideTheRange) {
    NSNumberFormatter sizes(NSNumberFormatterStyle::decimal, NSLocale());
    sizes.setRange(1, 999);
    EXPECT_EQ(sizes.numberFromString(u"0.5"), std::nullopt);
    EXPECT_EQ(sizes.numberFromString(u"1"), 1);
    EXPECT_EQ(sizes.numberFromString(u"999"), 999);
    EXPECT_EQ(sizes.numberFromString(u"1000"), std::nullopt);
}

TEST(NumberFormatter, APercentageIsAHundredTimesTheNumber) {
    EXPECT_EQ(percent.stringFromNumber(0.07), u"7%");
    EXPECT_EQ(percent.stringFromNumber(1), u"100%");
    EXPECT_EQ(percent.numberFromString(u"85%"), 0.85);
    EXPECT_EQ(percent.numberFromString(u"85 %"), 0.85);
    EXPECT_EQ(percent.numberFromString(u"85"), 0.85);
    const NSNumberFormatter formatter(NSNumberFormatterStyle::percent, arabic());
    EXPECT_EQ(formatter.numberFromString(formatter.stringFromNumber(0.5)), 0.5);
}

TEST(NumberFormatter, ReadsWhatItWroteToSevenDigits) {
    std::mt19937_64 bits(11);
    for (int i = 0; i < 20000; ++i) {
        const double number =
            std::ldexp(static_cast<double>(static_cast<std::int64_t>(bits())), static_cast<int>(bits() % 400) - 260);
        for (const auto* formatter : {&decimal, &germanDecimal}) {
            const auto read = formatter->numberFromString(formatter->stringFromNumber(number));
            ASSERT_TRUE(read) << number;
            ASSERT_NEAR(*read / number, 1, 1e-6) << number;
        }
    }
}

} // namespace
