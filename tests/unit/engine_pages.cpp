// SPDX-License-Identifier: MIT
#include <engine/PageChoice.h>

#include <gtest/gtest.h>

using engine::choosePages;
using Pages = std::vector<std::size_t>;

TEST(PageChoice, EveryPageIsEveryPage) {
    EXPECT_EQ(choosePages(0, std::nullopt, 3), (Pages{1, 2, 3}));
}

TEST(PageChoice, FirstPageOnlyIsTheFirst) {
    EXPECT_EQ(choosePages(1, u"2", 3), Pages{1});
}

TEST(PageChoice, EvenPagesLeavesOddOnesAlone) {
    EXPECT_EQ(choosePages(2, std::nullopt, 5), (Pages{2, 4}));
    EXPECT_TRUE(choosePages(2, std::nullopt, 1).empty());
}

TEST(PageChoice, OddPagesLeavesEvenOnesAlone) {
    EXPECT_EQ(choosePages(3, std::nullopt, 5), (Pages{1, 3, 5}));
}

TEST(PageChoice, NoPagesGiveNoPages) {
    for (int code = 0; code < 5; ++code)
        EXPECT_TRUE(choosePages(code, u"1", 0).empty()) << code;
}

TEST(PageChoice, ACustomListIsSortedAndEachPageStandsOnce) {
    EXPECT_EQ(choosePages(4, u"4,1,4,2", 5), (Pages{1, 2, 4}));
}

TEST(PageChoice, EntriesThatAreNoPageAreIgnored) {
    EXPECT_EQ(choosePages(4, u"0,6,-2,+3,two,2x,x2,,1.5,3-4, 2 ,", 5), Pages{2});
    EXPECT_EQ(choosePages(4, u"18446744073709551617,99999999999999999999999999,1", 5), Pages{1});
    EXPECT_EQ(choosePages(4, u"\u0663,003", 5), Pages{3});
}

TEST(PageChoice, NoListAndABlankListSelectNothing) {
    EXPECT_TRUE(choosePages(4, std::nullopt, 5).empty());
    EXPECT_TRUE(choosePages(4, u"", 5).empty());
    EXPECT_TRUE(choosePages(4, u" \n", 5).empty());
}

TEST(PageChoice, AnUnknownCodeSelectsNothing) {
    EXPECT_TRUE(choosePages(5, u"1", 5).empty());
    EXPECT_TRUE(choosePages(-1, u"1", 5).empty());
}

TEST(PageRanges, ListsOfNumbersAndRunsAreRead) {
    const auto chosen = [](std::string_view text, std::size_t count) {
        const auto ranges = engine::readPageRanges(text);
        return ranges ? engine::choosePages(*ranges, count) : std::vector<std::size_t>{999};
    };
    EXPECT_EQ(chosen("1-3,7,10-", 12), (Pages{1, 2, 3, 7, 10, 11, 12}));
    EXPECT_EQ(chosen("-2", 5), (Pages{1, 2}));
    EXPECT_EQ(chosen("4, 2 ,2-3", 5), (Pages{2, 3, 4}));
    EXPECT_EQ(chosen("3-18446744073709551615", 4), (Pages{3, 4}));
    EXPECT_EQ(chosen("9", 5), Pages{});
    EXPECT_EQ(chosen("1-", 0), Pages{});
}

TEST(PageRanges, WhatIsNoListIsRefused) {
    for (const char* text :
         {"", "-", ",", "1,", "0", "3-2", "a", "1-b", "1--2", "1 2", "99999999999999999999", "+1", "1;2"})
        EXPECT_FALSE(engine::readPageRanges(text)) << text;
}
