// SPDX-License-Identifier: MIT
#include "title_support.h"

#include <gtest/gtest.h>

#include <random>

using namespace pane;
using namespace title_test;

namespace {

/// One character of a title written out flat: a unit of a text, or a whole token.
struct Character {
    std::size_t element;
    bool isText;
    std::u16string unit; // empty for the one character of an empty text
    platform::RepresentedObject whole;
};

std::vector<Character> flat(const Title& title) {
    std::vector<Character> characters;
    for (std::size_t i = 0; i < title.size(); ++i) {
        const auto* held = std::get_if<std::u16string>(&title[i]);
        const bool plain = held && !(held->starts_with(u"%") && held->ends_with(u"%"));
        if (!plain || held->empty()) {
            characters.push_back({i, plain, u"", title[i]});
            continue;
        }
        for (const auto unit : *held)
            characters.push_back({i, true, std::u16string(1, unit), {}});
    }
    return characters;
}

/// Characters of one text that still stand side by side are one text again.
Title joined(const std::vector<Character>& characters) {
    Title title;
    const Character* before = nullptr;
    for (const auto& character : characters) {
        if (!character.isText)
            title.push_back(character.whole);
        else if (before && before->isText && before->element == character.element)
            std::get<std::u16string>(title.back()) += character.unit;
        else
            title.emplace_back(character.unit);
        before = &character;
    }
    return title;
}

/// The title as characters, those in the range struck out, the token in their place.
Title splicedFlat(const Title& title, const platform::RepresentedObject& token, NSRange range) {
    const auto characters = flat(title);
    std::vector<Character> result;
    const auto at = std::min<std::size_t>(range.location, characters.size());
    auto end = std::min<std::size_t>(at + range.length, characters.size());
    if (at < characters.size() && !characters[at].isText)
        end = at; // in front of a token nothing is replaced
    result.insert(result.end(), characters.begin(), characters.begin() + static_cast<std::ptrdiff_t>(at));
    result.push_back({title.size(), false, u"", token});
    result.insert(result.end(), characters.begin() + static_cast<std::ptrdiff_t>(end), characters.end());
    return joined(result);
}

TEST(TitleInsertion, AgreesWithATitleWrittenOutCharacterByCharacter) {
    std::mt19937 random(20261121);
    const auto below = [&](unsigned limit) { return random() % limit; };
    const std::vector<std::shared_ptr<platform::NSObject>> objects{
        std::make_shared<PlainRun>(), std::make_shared<PlainRun>(), std::make_shared<Foreign>()};
    const std::u16string alphabet = u"ab%\U0001F600\u05D0\n";
    const auto token = object(std::make_shared<PlainRun>());
    const auto randomElement = [&]() -> platform::RepresentedObject {
        switch (below(5)) {
        case 0:
            return objects[below(3)];
        case 1:
            return u"%pageNumber%";
        default:
            std::u16string text;
            for (auto units = below(7); units > 0; --units)
                text += alphabet[below(static_cast<unsigned>(alphabet.size()))];
            return text;
        }
    };
    for (int round = 0; round < 100'000; ++round) {
        Title title;
        for (auto elements = below(7); elements > 0; --elements)
            title.push_back(randomElement());
        const NSRange range{below(20), below(4) == 0 ? 0 : below(16)};
        const auto spliced = titleByInsertingTokenInRange(listOf(title), token, range);
        ASSERT_EQ(spliced, splicedFlat(title, token, range))
            << "round " << round << ", range " << range.location << ", " << range.length;
    }
}

} // namespace
