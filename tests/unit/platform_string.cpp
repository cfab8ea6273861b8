// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

namespace {

using namespace platform;

using Pieces = std::vector<std::u16string>;

TEST(WhiteSpace, IsThisSetAndNothingElse) {
    const std::set<char16_t> expected{0x0009, 0x000A, 0x000B, 0x000C, 0x000D, 0x0020, 0x0085, 0x00A0, 0x1680,
                                      0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008,
                                      0x2009, 0x200A, 0x200B, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
    std::set<char16_t> found;
    for (int unit = 0; unit <= 0xFFFF; ++unit)
        if (isWhitespaceOrNewline(static_cast<char16_t>(unit)))
            found.insert(static_cast<char16_t>(unit));
    EXPECT_EQ(found, expected);
}

TEST(Trimming, CutsEachCharacterOfTheSetAtBothEndsAndLeavesEveryOther) {
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        const std::u16string text{character, u'a', character, u'b', character};
        const auto expected = isWhitespaceOrNewline(character) ? std::u16string{u'a', character, u'b'} : text;
        ASSERT_EQ(stringByTrimmingWhitespaceAndNewlines(text), expected) << "U+" << std::hex << unit;
    }
}

TEST(Trimming, LeavesNothingOfATextOfWhiteSpace) {
    EXPECT_EQ(stringByTrimmingWhitespaceAndNewlines(u""), u"");
    EXPECT_EQ(stringByTrimmingWhitespaceAndNewlines(u" \t\n\u3000"), u"");
}

TEST(WholeNumberOfAText, IsReadFromItsStart) {
    constexpr auto largest = std::numeric_limits<NSInteger>::max();
    constexpr auto smallest = std::numeric_limits<NSInteger>::min();
    const struct {
        const char* row;
        std::u16string text;
        NSInteger expected;
    } table[] = {
        {"empty", u"", 0},
        {"no digit", u"abc", 0},
        {"plain", u"12", 12},
        {"leading zeros", u"007", 7},
        {"plus", u"+5", 5},
        {"minus", u"-2", -2},
        {"sign alone", u"-", 0},
        {"two signs", u"--2", 0},
        {"plus and minus", u"+-2", 0},
        {"white space after the sign", u"- 2", 0},
        {"white space before", u" \t\n\u00A0\u30003", 3},
        {"stops at a point", u"12.7", 12},
        {"stops at a letter", u"3rd", 3},
        {"stops at a comma", u"1,234", 1},
        {"range of pages", u"4-9", 4},
        {"hexadecimal is not read", u"0x10", 0},
        {"other digits are not read", u"\u0661\u0662", 0},
        {"full-width digits are not read", u"\uFF11", 0},
        {"largest", u"9223372036854775807", largest},
        {"a little less than the largest", u"9223372036854775800", largest - 7},
        {"a little more than the smallest", u"-9223372036854775801", smallest + 7},
        {"one more than the largest", u"9223372036854775808", largest},
        {"far more than the largest", u"99999999999999999999999", largest},
        {"smallest", u"-9223372036854775808", smallest},
        {"one less than the smallest", u"-9223372036854775809", smallest},
        {"far less than the smallest", u"-99999999999999999999999", smallest},
        {"minus zero", u"-0", 0},
    };
    for (const auto& row : table)
        EXPECT_EQ(integerValue(row.text), row.expected) << row.row;
}

TEST(RealNumberOfAText, IsTheLongestOneAtItsStart) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::u16string zeros(400, u'0');
    const std::u16string nines(400, u'9');
    const struct {
        const char* row;
        std::u16string text;
        double expected;
    } table[] = {
        {"empty", u"", 0},
        {"no digit", u"abc", 0},
        {"plain", u"2.7", 2.7},
        {"stops at a letter", u"2.7x", 2.7},
        {"stops at the second point", u"1.2.3", 1.2},
        {"comma is no separator", u"1,5", 1},
        {"no whole part", u".5", 0.5},
        {"no fraction", u"5.", 5},
        {"point alone", u".", 0},
        {"minus without whole part", u"-.5", -0.5},
        {"plus", u"+2.5", 2.5},
        {"minus", u"-2.5", -2.5},
        {"plus and minus", u"+-2", 0},
        {"two signs", u"--2", 0},
        {"sign alone", u"-", 0},
        {"white space after the sign", u"- 2", 0},
        {"white space before", u" \n\u00A02.5", 2.5},
        {"exponent", u"1e3", 1000},
        {"large E, sign", u"1E+3", 1000},
        {"negative exponent", u"25e-1", 2.5},
        {"exponent without digits", u"7e", 7},
        {"exponent with a sign alone", u"7e-", 7},
        {"hexadecimal is not read", u"0x10", 0},
        {"infinity is not read", u"inf", 0},
        {"not a number is not read", u"nan", 0},
        {"other digits are not read", u"\u0661", 0},
        {"too large", u"1e400", infinity},
        {"too large, negative", u"-1e400", -infinity},
        {"too large without exponent", nines, infinity},
        {"too large in spite of its exponent", nines + u"e-5", infinity},
        {"too small", u"1e-400", 0},
        {"too small without exponent", u"0." + zeros + u"1", 0},
        {"too small in spite of its exponent", u"0." + zeros + u"1e5", 0},
        {"too large before other text", u"1e400 e-1", infinity},
        {"smallest of all", u"5e-324", 5e-324},
    };
    for (const auto& row : table)
        EXPECT_EQ(doubleValue(row.text), row.expected) << row.row;
    EXPECT_TRUE(std::signbit(doubleValue(std::u16string_view(u"-0")))) << "minus zero keeps its sign";
}

TEST(Components, AreThePiecesBetweenSeparators) {
    const struct {
        std::u16string text;
        std::u16string separator;
        Pieces expected;
    } table[] = {
        {u"", u",", {u""}},
        {u",", u",", {u"", u""}},
        {u"a", u",", {u"a"}},
        {u"a,,b,", u",", {u"a", u"", u"b", u""}},
        {u"a, b", u", ", {u"a", u"b"}},
        {u",,,", u",,", {u"", u","}},
        {u"ab", u"", {u"ab"}},
        {u"1-2-", u"-", {u"1", u"2", u""}},
    };
    for (const auto& row : table)
        EXPECT_EQ(componentsSeparatedByString(row.text, row.separator), row.expected);
}

TEST(Affixes, AreExactAndNeverEmpty) {
    const struct {
        std::u16string text;
        std::u16string affix;
        bool prefix;
        bool suffix;
    } table[] = {
        {u"", u"", false, false},      {u"abc", u"", false, false},   {u"%", u"%", true, true},
        {u"%page%", u"%", true, true}, {u"abc", u"a", true, false},   {u"abc", u"c", false, true},
        {u"abc", u"abc", true, true},  {u"ab", u"abc", false, false}, {u"Abc", u"a", false, false},
        {u"", u"a", false, false},
    };
    for (const auto& row : table) {
        EXPECT_EQ(hasPrefix(row.text, row.affix), row.prefix);
        EXPECT_EQ(hasSuffix(row.text, row.affix), row.suffix);
    }
}

TEST(Utf8, CarriesEveryKindOfCharacterThereAndBack) {
    const struct {
        std::u16string text;
        std::string bytes;
    } table[] = {
        {u"", ""},
        {std::u16string(1, u'\0'), std::string(1, '\0')},
        {u"\u007F", "\x7F"},
        {u"\u0080", "\xC2\x80"},
        {u"\u07FF", "\xDF\xBF"},
        {u"\u0800", "\xE0\xA0\x80"},
        {u"\uD7FF", "\xED\x9F\xBF"},
        {u"\uE000", "\xEE\x80\x80"},
        {u"\uFEFF", "\xEF\xBB\xBF"},
        {u"\uFFFC", "\xEF\xBF\xBC"},
        {u"\uFFFF", "\xEF\xBF\xBF"},
        {u"\U00010000", "\xF0\x90\x80\x80"},
        {u"\U0001F5A8", "\xF0\x9F\x96\xA8"},
        {u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
        {u"a\u00E4\u3042\U0001F5A8z", "a\xC3\xA4\xE3\x81\x82\xF0\x9F\x96\xA8z"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(toUtf8(row.text), row.bytes);
        EXPECT_EQ(fromUtf8(row.bytes), row.text);
    }
}

TEST(Utf8, ReplacesWhatIsIllFormedAndKeepsWhatFollows) {
    const struct {
        const char* row;
        std::string bytes;
    } table[] = {
        {"continuation alone", "\x80"},
        {"cut after one byte", "\xC3"},
        {"cut after two bytes", "\xE3\x81"},
        {"cut after three bytes", "\xF0\x9F\x96"},
        {"overlong slash in two bytes", "\xC0\xAF"},
        {"overlong zero in two bytes", "\xC0\x80"},
        {"overlong in two bytes, last", "\xC1\xBF"},
        {"overlong in three bytes", "\xE0\x80\xAF"},
        {"overlong in three bytes, last", "\xE0\x9F\xBF"},
        {"overlong in four bytes", "\xF0\x80\x80\xAF"},
        {"overlong in four bytes, last", "\xF0\x8F\xBF\xBF"},
        {"high surrogate", "\xED\xA0\x80"},
        {"low surrogate", "\xED\xBF\xBF"},
        {"pair of surrogates", "\xED\xA0\xBD\xED\xB6\xA8"},
        {"beyond the last character", "\xF4\x90\x80\x80"},
        {"five bytes", "\xF8\x88\x80\x80\x80"},
        {"never a byte of it", "\xFE"},
        {"never a byte of it either", "\xFF"},
    };
    for (const auto& row : table) {
        const auto text = fromUtf8("a" + row.bytes + "b");
        ASSERT_GE(text.size(), 3u) << row.row;
        EXPECT_EQ(text, u"a" + std::u16string(text.size() - 2, u'\uFFFD') + u"b") << row.row;
        const auto atEnd = fromUtf8(row.bytes);
        EXPECT_EQ(atEnd, std::u16string(atEnd.size(), u'\uFFFD')) << row.row;
        EXPECT_FALSE(atEnd.empty()) << row.row;
    }
    EXPECT_EQ(fromUtf8("\xE3\x81\xC3\xA4"), u"\uFFFD\u00E4") << "a new character ends one that is cut short";
}

TEST(Utf8, ReplacesALoneSurrogateOnTheWayOut) {
    const struct {
        const char* row;
        std::u16string text;
        std::string bytes;
    } table[] = {
        {"high one at the end", {0xD83D}, "\xEF\xBF\xBD"},
        {"low one", {0xDDA8}, "\xEF\xBF\xBD"},
        {"high one before a letter",
         {0xD83D, u'a'},
         "\xEF\xBF\xBD"
         "a"},
        {"two high ones", {0xD83D, 0xD83D, 0xDDA8}, "\xEF\xBF\xBD\xF0\x9F\x96\xA8"},
        {"wrong way round", {0xDDA8, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& row : table)
        EXPECT_EQ(toUtf8(row.text), row.bytes) << row.row;
}

TEST(Format, ReplacesPlaceholdersInOrder) {
    const struct {
        const char* row;
        std::u16string format;
        Pieces arguments;
        std::u16string expected;
    } table[] = {
        {"none", u"plain", {}, u"plain"},
        {"one", u"Delete %@?", {u"A"}, u"Delete A?"},
        {"numbered", u"%2$@ before %1$@", {u"A", u"B"}, u"B before A"},
        {"numbered twice", u"%1$@ and %1$@", {u"A"}, u"A and A"},
        {"number of none", u"[%2$@]", {u"A"}, u"[]"},
        {"no number", u"%1$ %0$@", {u"A"}, u"%1$ %0$@"},
        {"two", u"%@%@", {u"A", u"B"}, u"AB"},
        {"percent sign", u"100 %% of %@", {u"A"}, u"100 % of A"},
        {"escaped placeholder", u"%%@", {u"A"}, u"%@"},
        {"what is put in is not read again", u"%@ %@", {u"%@", u"%%"}, u"%@ %%"},
        {"too few", u"%@-%@-", {u"A"}, u"A--"},
        {"too many", u"%@", {u"A", u"B"}, u"A"},
        {"other forms stay", u"%d %", {u"A"}, u"%d %"},
    };
    for (const auto& row : table)
        EXPECT_EQ(stringWithFormat(row.format, row.arguments), row.expected) << row.row;
}

} // namespace
