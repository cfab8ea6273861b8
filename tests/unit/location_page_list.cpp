// SPDX-License-Identifier: MIT
#include <PageList.h>

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <random>

using namespace platform;
using pane::normalizedPageList;

namespace {

struct Row {
    const char* name;
    const char16_t* typed;
    const char16_t* list;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

class PageListTable : public ::testing::TestWithParam<Row> {};

TEST_P(PageListTable, BecomesTheList) {
    EXPECT_EQ(toUtf8(normalizedPageList(GetParam().typed)), toUtf8(GetParam().list));
}

constexpr Row rows[] = {
    {"BlanksAroundNumbersGo", u"1, 2 ,4", u"1,2,4"},
    {"LeadingCommasGo", u",,3", u"3"},
    {"ABlankPieceInFrontGoes", u" ,3", u"3"},
    {"ANoughtInFrontGoes", u"0,3", u"3"},
    {"ALaterNoughtLeavesItsComma", u"3,0", u"3,"},
    {"ALaterWordLeavesItsComma", u"1,a", u"1,"},
    {"WhatFollowsANumberGoes", u"1,2a", u"1,2"},
    {"ASecondNumberInAPieceGoes", u"1 2", u"1"},
    {"OrderAndDuplicatesStay", u"3,1,3", u"3,1,3"},
    {"BlanksAloneAreNothing", u" \t\n\u00A0\u200B ", u""},
    {"NothingIsNothing", u"", u""},
    {"ACommaJustTypedStays", u"1,", u"1,"},
    {"AnEmptyPieceInTheMiddleStays", u"1,,5", u"1,,5"},
    {"ALetterAfterANumberGoes", u"2a", u"2"},
    {"ARangeIsItsBeginning", u"1-5", u"1"},
    {"LeadingNoughtsGo", u"007", u"7"},
    {"APlusGoes", u"+4", u"4"},
    {"ANegativeNumberStays", u"1,-2", u"1,-2"},
    {"ANegativeNumberInFrontStays", u"-2", u"-2"},
    {"ALoneMinusIsRemoved", u"-", u""},
    {"ALoneMinusAsALaterPieceIsRemoved", u"1,-", u"1,"},
    {"AMinusApartFromItsNumberIsNone", u"1,- 2", u"1,"},
    {"ANegativeNoughtIsNought", u"1,-0", u"1,"},
    {"CommasAloneAreNothing", u",,,", u""},
    {"NoughtsAndWordsInFrontAllGo", u"0,a, ,00,5", u"5"},
    {"WordsBetweenNumbersLeaveTheirCommas", u"5,a,0,6", u"5,,,6"},
    {"LineBreaksAreBlanks", u"1,\n2\r\n,3", u"1,2,3"},
    {"BlanksInFrontHideNoComma", u"  ,,4", u"4"},
    {"CommasInFrontHideNoBlank", u", ,4", u"4"},
    {"DigitsOfOtherScriptsAreWords", u"1,\u0662", u"1,"},
    {"TooLargeANumberIsTheLargest", u"99999999999999999999", u"9223372036854775807"},
    {"TooSmallANumberIsTheSmallest", u"-99999999999999999999", u"-9223372036854775808"},
};

INSTANTIATE_TEST_SUITE_P(Rows, PageListTable, ::testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

/// Texts made of what matters to lists, from a fixed seed.
class RandomTexts {
public:
    std::u16string next() {
        static constexpr std::u16string_view characters = u"0123456789,,,,,-+ \t\u00A0ax.";
        std::u16string text(std::uniform_int_distribution<std::size_t>(0, 24)(m_numbers), u' ');
        for (auto& character : text)
            character = characters[std::uniform_int_distribution<std::size_t>(0, characters.size() - 1)(m_numbers)];
        return text;
    }

private:
    std::mt19937 m_numbers{20260728};
};

constexpr int manyTexts = 20000;

TEST(PageList, ANormalisedListStaysAsItIs) {
    RandomTexts texts;
    for (int i = 0; i < manyTexts; ++i) {
        const auto text = texts.next();
        const auto list = normalizedPageList(text);
        ASSERT_EQ(normalizedPageList(list), list) << toUtf8(text);
    }
}

TEST(PageList, HoldsDigitsSignsAndCommasOnly) {
    RandomTexts texts;
    for (int i = 0; i < manyTexts; ++i) {
        const auto text = texts.next();
        ASSERT_EQ(normalizedPageList(text).find_first_not_of(u"0123456789-,"), std::u16string::npos) << toUtf8(text);
    }
}

TEST(PageList, BeginsWithANumberAndHoldsNoNought) {
    RandomTexts texts;
    int numbers = 0;
    for (int i = 0; i < manyTexts; ++i) {
        const auto text = texts.next();
        const auto entries = componentsSeparatedByString(normalizedPageList(text), u",");
        ASSERT_TRUE(entries.size() == 1 || !entries.front().empty()) << toUtf8(text);
        for (const auto& entry : entries) {
            ASSERT_NE(entry, u"0") << toUtf8(text);
            if (!entry.empty()) {
                ++numbers;
                ASSERT_EQ(fromUtf8(std::to_string(integerValue(entry))), entry) << toUtf8(text);
            }
        }
    }
    EXPECT_GT(numbers, manyTexts) << "the texts held too few numbers to show anything";
}

TEST(PageList, ACommaTypedAtTheEndSurvives) {
    RandomTexts texts;
    for (int i = 0; i < manyTexts; ++i) {
        const auto list = normalizedPageList(texts.next());
        if (!list.empty()) {
            ASSERT_EQ(normalizedPageList(list + u','), list + u',');
        }
    }
}

TEST(PageList, KeepsAllNumbersOfAListThatHasNothingElse) {
    std::mt19937 numbers(7);
    for (int i = 0; i < 200; ++i) {
        std::u16string list;
        for (int entry = 0; entry < 40; ++entry)
            list += (entry ? u"," : u"") + fromUtf8(std::to_string(1 + numbers() % 100000));
        ASSERT_EQ(normalizedPageList(list), list);
    }
}

} // namespace
