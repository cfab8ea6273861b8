// SPDX-License-Identifier: MIT
#include "title_support.h"

#include <gtest/gtest.h>

using namespace pane;
using namespace title_test;

namespace {

const auto T = object(std::make_shared<Foreign>()); // what is inserted
const auto F1 = std::make_shared<PlainRun>();
const auto F2 = std::make_shared<PlainRun>();

Title inserted(Title title, NSRange range) {
    return titleByInsertingTokenInRange(listOf(std::move(title)), T, range);
}

TEST(TitleTokens, APlaceholderBeginsAndEndsWithAPercentSign) {
    EXPECT_TRUE(isTokenString(u"%"));
    EXPECT_FALSE(isTokenString(u"%a"));
    EXPECT_FALSE(isTokenString(u"a%"));
    EXPECT_TRUE(isTokenString(u"%pageNumber%"));
    EXPECT_TRUE(isTokenString(u"%%"));
    EXPECT_FALSE(isTokenString(u""));
}

TEST(TitleTokens, NormalisingTakesOnePercentSignOffTheStartOfText) {
    EXPECT_EQ(normalizedTitleTokenString(u"%abc"), u"abc");
    EXPECT_EQ(normalizedTitleTokenString(u"%%abc"), u"%abc");
    EXPECT_EQ(normalizedTitleTokenString(u"%abc%"), u"%abc%");
    EXPECT_EQ(normalizedTitleTokenString(u""), u"");
    EXPECT_EQ(normalizedTitleTokenString(u"%"), u"%");
    EXPECT_EQ(normalizedTitleTokenString(u"a%b"), u"a%b");
}

TEST(TitleTokens, NormalisingATitleKeepsOrderAndObjects) {
    const Title title{u"%a", object(F1), u"%pageNumber%", T, u""};
    EXPECT_EQ(normalizedTitleTokens(listOf(title)), (Title{u"a", object(F1), u"%pageNumber%", T, u""}));
    EXPECT_EQ(normalizedTitleTokens(nullptr), Title());
}

TEST(TitleTokens, EverythingButPlainTextCountsOneCharacter) {
    EXPECT_EQ(lengthOfToken(u""), 1U);
    EXPECT_EQ(lengthOfToken(u"%x%"), 1U);
    EXPECT_EQ(lengthOfToken(object(F1)), 1U);
    EXPECT_EQ(lengthOfToken(T), 1U);
    EXPECT_EQ(lengthOfToken(u"abc"), 3U);
    EXPECT_EQ(lengthOfToken(u"\U0001F600"), 2U);
    EXPECT_EQ(lengthOfToken(u"%ab"), 3U);
    EXPECT_EQ(lengthOfToken(u"%"), 1U);
}

struct Splice {
    const char* name;
    Title title;
    NSRange range;
    Title result;
};

const Splice splices[] = {
    {"into an empty title", {}, {0, 0}, {T}},
    {"at the front of text", {u"abc"}, {0, 0}, {T, u"abc"}},
    {"inside text", {u"abc"}, {1, 0}, {u"a", T, u"bc"}},
    {"over a character", {u"abc"}, {1, 1}, {u"a", T, u"c"}},
    {"over text and a run up to the next text", {u"abc", object(F1), u"xyz"}, {1, 3}, {u"a", T, u"xyz"}},
    {"over text, a run and a part of text", {u"abc", object(F1), u"xyz"}, {1, 5}, {u"a", T, u"z"}},
    {"at the end", {u"abc"}, {3, 0}, {u"abc", T}},
    {"beyond the end", {u"abc"}, {7, 0}, {u"abc", T}},
    {"beyond the end over something", {u"abc", object(F1)}, {9, 4}, {u"abc", object(F1), T}},
    {"over all of the text", {u"abc"}, {0, 3}, {T}},
    {"over all and more", {u"abc", object(F1)}, {0, 99}, {T}},
    {"at the start of a placeholder over everything", {u"%pageNumber%", u"abc"}, {0, 4}, {T, u"%pageNumber%", u"abc"}},
    {"at the start of a run over everything", {u"a", object(F1), u"abc"}, {1, 4}, {u"a", T, object(F1), u"abc"}},
    {"at the start of a foreign object over everything", {T, u"abc"}, {0, 3}, {T, T, u"abc"}},
    {"at an empty text", {u"", u"abc"}, {0, 0}, {T, u"", u"abc"}},
    {"over an empty text", {u"", u"abc"}, {0, 1}, {T, u"abc"}},
    {"over a placeholder behind text", {u"abc", u"%pageNumber%", u"x"}, {2, 2}, {u"ab", T, u"x"}},
    {"between two runs", {object(F1), object(F2)}, {1, 0}, {object(F1), T, object(F2)}},
};

TEST(TitleInsertion, PutsTheTokenInThePlaceOfTheRange) {
    for (const auto& splice : splices)
        EXPECT_EQ(inserted(splice.title, splice.range), splice.result) << splice.name;
}

TEST(TitleInsertion, AtTheStartOfAPlaceholderOrARunReplacesNothingHoweverLongTheRangeIs) {
    for (NSUInteger length = 0; length < 9; ++length) {
        EXPECT_EQ(inserted({u"%recordPageCount%", u"abc", object(F1)}, {0, length}),
                  (Title{T, u"%recordPageCount%", u"abc", object(F1)}));
        EXPECT_EQ(inserted({u"ab", object(F2), u"abc", object(F1)}, {2, length}),
                  (Title{u"ab", T, object(F2), u"abc", object(F1)}));
    }
}

TEST(TitleInsertion, IntoATitleThatIsNilMakesOne) {
    EXPECT_EQ(titleByInsertingTokenInRange(nullptr, T, {3, 2}), Title{T});
}

TEST(TitleFontRuns, AreTheTitlesRunsInOrder) {
    EXPECT_EQ(fontRunsOf(listOf({u"a", object(F2), T, object(F1)})), (FontRuns{F2, F1}));
    EXPECT_EQ(fontRunsOf(nullptr), FontRuns());
}

TEST(TitleFontRuns, InARangeAreThoseWhosePositionLiesInIt) {
    const auto title = listOf({u"a", object(F1), u"%pageNumber%", object(F2)});
    EXPECT_EQ(fontRunsInRange(title, {1, 1}), FontRuns{F1});
    EXPECT_EQ(fontRunsInRange(title, {0, 4}), (FontRuns{F1, F2}));
    EXPECT_EQ(fontRunsInRange(title, {2, 1}), FontRuns());
    EXPECT_EQ(fontRunsInRange(title, {1, 0}), FontRuns());
}

TEST(TitleFontRuns, InARangeAreMeasuredInAWayOfTheirOwn) {
    const auto at = [](const platform::RepresentedObject& before) {
        NSUInteger position = 0;
        while (position < 9 && fontRunsInRange(listOf({before, object(F1)}), {position, 1}).empty())
            ++position;
        return position;
    };
    EXPECT_EQ(at(u"%ab"), 1U); // no placeholder, yet one character
    EXPECT_EQ(at(u"%%"), 2U);  // a placeholder, yet two
    EXPECT_EQ(at(u""), 0U);
    EXPECT_EQ(at(T), 0U);
    EXPECT_EQ(at(u"abc"), 3U);
    EXPECT_EQ(at(u"%"), 1U);
}

TEST(TitleReorder, TakesOutTheFirstOccurrenceOfEachDraggedObject) {
    const auto dragged = listOf({object(F1)});
    EXPECT_EQ(titleWithoutFirstOccurrences(listOf({object(F1), u"abc", object(F1)}), dragged),
              (Title{u"abc", object(F1)}));
    EXPECT_EQ(titleWithoutFirstOccurrences(listOf({object(F1), u"abc"}), dragged), Title{u"abc"});
    EXPECT_EQ(
        titleWithoutFirstOccurrences(listOf({object(F1), object(F1), object(F1)}), listOf({object(F1), object(F1)})),
        Title{object(F1)});
    EXPECT_EQ(titleWithoutFirstOccurrences(listOf({u"a"}), nullptr), Title{u"a"});
}

TEST(TitleReorder, NeverTakesTextsOut) {
    EXPECT_EQ(titleWithoutFirstOccurrences(listOf({u"a", u"%pageNumber%", u"a"}), listOf({u"a", u"%pageNumber%"})),
              (Title{u"a", u"%pageNumber%", u"a"}));
}

TEST(TitleReorder, OfARunDroppedToTheRightMovesItThere) {
    EXPECT_EQ(
        titleWithoutFirstOccurrences(listOf({object(F1), u"a", object(F2), object(F1), u"b"}), listOf({object(F1)})),
        (Title{u"a", object(F2), object(F1), u"b"}));
}

TEST(TitleReorder, OfARunDroppedToTheLeftLeavesItWhereItWas) {
    EXPECT_EQ(
        titleWithoutFirstOccurrences(listOf({object(F1), u"a", object(F2), object(F1), u"b"}), listOf({object(F1)})),
        (Title{u"a", object(F2), object(F1), u"b"}));
    EXPECT_EQ(
        titleWithoutFirstOccurrences(listOf({u"a", object(F2), u"b", object(F1), object(F2)}), listOf({object(F2)})),
        (Title{u"a", u"b", object(F1), object(F2)}));
}

TEST(TitleOfTheModel, ComesBackFromTheFieldAsItWas) {
    const auto foreign = std::make_shared<Foreign>();
    const std::vector<host::TitleToken> tokens{u"a", std::shared_ptr<host::ImprinterFont>(F1),
                                               std::shared_ptr<platform::NSObject>(foreign), u"%pageNumber%"};
    const auto model = std::make_shared<const std::vector<host::TitleToken>>(tokens);
    EXPECT_EQ(*modelTitle(fieldTitle(model)), tokens);
    EXPECT_EQ(modelTitle(nullptr), nullptr);
    EXPECT_EQ(fieldTitle(nullptr), nullptr);
}

} // namespace
