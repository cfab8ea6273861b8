// SPDX-License-Identifier: MIT
#include <PasteboardItems.h>

#include <AppKit/TokenText.h>

#include <gtest/gtest.h>

#include <random>

using namespace platform;

namespace {

class Stone final : public NSObject {};
const RepresentedObject stone = std::shared_ptr<NSObject>(std::make_shared<Stone>());
const RepresentedObject pebble = std::shared_ptr<NSObject>(std::make_shared<Stone>());

TokenText textOf(const std::vector<RepresentedObject>& pieces) {
    TokenText text;
    for (const auto& piece : pieces)
        if (const auto* plain = std::get_if<std::u16string>(&piece); plain && !plain->starts_with(u"#"))
            text.appendText(*plain);
        else
            text.appendToken(piece);
    return text;
}

TEST(TokenText, JoinsNeighbouringTextsAndHasNoEmptyPiece) {
    const auto text = textOf({u"a", u"", u"b", stone, u"#t", u"c"});
    ASSERT_EQ(text.pieces().size(), 4U);
    EXPECT_EQ(text.length(), 5U);
    EXPECT_EQ(text.string(), u"ab\uFFFC\uFFFCc");
}

TEST(TokenText, GivesAnyPartAndCutsOffWhatLiesBeyond) {
    const auto text = textOf({u"ab", stone, u"cd"});
    EXPECT_EQ(text.substring({1, 3}), textOf({u"b", stone, u"c"}));
    EXPECT_EQ(text.substring({4, 99}), textOf({u"d"}));
    EXPECT_EQ(text.substring({99, 1}), TokenText());
    EXPECT_EQ(text.substring({0, ~NSUInteger(0)}), text);
    EXPECT_EQ(text.substring({2, 0}), TokenText());
}

TEST(TokenText, HasPartsReplaced) {
    auto text = textOf({u"ab", stone, u"cd"});
    text.replaceCharacters({1, 3}, textOf({u"#t"}));
    EXPECT_EQ(text, textOf({u"a", u"#t", u"d"}));
    text.replaceCharacters({99, 9}, textOf({u"e"}));
    EXPECT_EQ(text, textOf({u"a", u"#t", u"de"}));
}

TEST(TokenText, FindsCharactersOfTextsAlone) {
    const auto text = textOf({u"a%", u"#%", u"b%"});
    EXPECT_EQ(text.indexOfCharacter(u'%', 0), 1U);
    EXPECT_EQ(text.indexOfCharacter(u'%', 2), 4U);
    EXPECT_EQ(text.indexOfCharacter(u'%', 5), NSNotFound);
}

TEST(TokenText, ChangePartsNoSurrogatePair) {
    const auto change = TokenText::change(textOf({u"a\U0001F600b"}), textOf({u"a\U0001F601b"}));
    EXPECT_EQ(change.range, (NSRange{1, 2}));
    EXPECT_EQ(change.length, 2U);
}

TEST(TokenText, ChangeOfAnyTwoTextsMakesOneOutOfTheOther) {
    std::mt19937 random(7);
    const RepresentedObject parts[] = {u"a", u"ab", u"\U0001F600", u"\U0001F601", stone, pebble, u"#t", u"\n"};
    const auto any = [&] {
        std::vector<RepresentedObject> pieces;
        for (auto count = random() % 6; count > 0; --count)
            pieces.push_back(parts[random() % 8]);
        return textOf(pieces);
    };
    for (int round = 0; round < 20'000; ++round) {
        const auto before = any();
        const auto after = any();
        const auto change = TokenText::change(before, after);
        auto made = before;
        made.replaceCharacters(change.range, after.substring({change.range.location, change.length}));
        ASSERT_EQ(made, after);
        if (before == after) {
            ASSERT_EQ(change.range.length + change.length, 0U);
        }
    }
}

TEST(PasteboardItems, ComeBackAsTheyWere) {
    const std::vector<std::u16string> texts{u"", u"a", u"\xD800", std::u16string(1000, u'x')};
    EXPECT_EQ(decodedItems(encodedItems(texts)), texts);
    EXPECT_EQ(decodedItems(encodedItems({})), std::vector<std::u16string>());
}

TEST(PasteboardItems, OfAnotherProgramOrCutOffAreNone) {
    EXPECT_EQ(decodedItems({}), std::nullopt);
    const auto whole = encodedItems({u"abc"});
    for (std::size_t length = 0; length < whole.size(); ++length)
        if (length != encodedItems({}).size()) {
            EXPECT_EQ(decodedItems({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}), std::nullopt);
        }
    auto other = whole;
    other[5] ^= 1;
    EXPECT_EQ(decodedItems(other), std::nullopt);
}

} // namespace
