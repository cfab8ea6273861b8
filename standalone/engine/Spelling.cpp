// SPDX-License-Identifier: MIT
#include "Spelling.h"

#include <Foundation/NSString.h>

#include <fribidi.h>

#include <algorithm>

namespace engine {

namespace {

constexpr char32_t kLeftToRightMark = 0x202A;

std::u32string charactersOf(std::u16string_view text) {
    std::u32string characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] >= 0xD800 && text[i] < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                          text[i + 1] < 0xE000;
        characters += pair ? 0x10000 + ((char32_t(text[i]) - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00)
                           : char32_t(text[i]);
        i += pair ? 1 : 0;
    }
    return characters;
}

void append(std::u16string& text, char32_t character) {
    if (character < 0x10000) {
        text += static_cast<char16_t>(character);
        return;
    }
    text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

enum class Direction { none, left, right };

/// As extractors see it: numbers run as Latin letters do.
Direction directionOf(char32_t character) {
    const auto type = fribidi_get_bidi_type(character);
    if (FRIBIDI_IS_LETTER(type))
        return FRIBIDI_IS_RTL(type) ? Direction::right : Direction::left;
    return FRIBIDI_IS_NUMBER(type) ? Direction::left : Direction::none;
}

bool runsLeft(char32_t character) {
    return fribidi_get_bidi_type(character) == FRIBIDI_TYPE_LTR;
}

std::u16string turnedForExtractors(const std::u32string& text) {
    std::u32string result;
    std::ptrdiff_t surplus = 0; // of letters that run from right to left
    for (std::size_t i = 0; i < text.size();) {
        if (directionOf(text[i]) != Direction::right) {
            surplus -= runsLeft(text[i]) ? 1 : 0;
            result += text[i++];
            continue;
        }
        // To the last letter of this direction before one of the other.
        std::size_t end = i;
        for (std::size_t k = i; k < text.size() && directionOf(text[k]) != Direction::left; ++k)
            if (directionOf(text[k]) == Direction::right) {
                end = k + 1;
                ++surplus;
            }
        result.append(std::make_reverse_iterator(text.begin() + static_cast<std::ptrdiff_t>(end)),
                      std::make_reverse_iterator(text.begin() + static_cast<std::ptrdiff_t>(i)));
        result += kLeftToRightMark;
        i = end;
    }
    std::u16string units;
    for (; surplus > 0; --surplus)
        append(units, kLeftToRightMark);
    for (const char32_t character : result)
        append(units, character);
    return units;
}

/// Whether a line has several words and each is one character: extractors take the spaces between them for letter
/// spacing.
bool hasLineOfLetters(const std::u32string& characters) {
    std::size_t words = 0;
    bool longer = false;
    char32_t before = U' ';
    for (const char32_t character : characters + U'\n') {
        if (character == U'\n') {
            if (words > 1 && !longer)
                return true;
            words = 0;
            longer = false;
        } else if (character != U' ') {
            words += before == U' ' || before == U'\n' ? 1 : 0;
            longer = longer || (before != U' ' && before != U'\n');
        }
        before = character;
    }
    return false;
}

} // namespace

std::optional<std::u16string> spellingOf(const Stamp& stamp, bool askew) {
    const auto characters = charactersOf(stamp.text);
    bool needed = askew || hasLineOfLetters(characters);
    std::size_t right = 0;
    char32_t before = U' ';
    for (const char32_t character : characters) {
        right += directionOf(character) == Direction::right ? 1 : 0;
        // Spaces are found by their width, and count as one.
        const bool space = character < 0x10000 && platform::isWhitespaceOrNewline(static_cast<char16_t>(character));
        needed = needed || (space && (character != U' ' || before == U' '));
        before = space ? U' ' : character;
    }
    needed = needed || before == U' ';
    // Extractors go by the direction of most of the page's letters, so that only words of one direction are safe.
    const bool pure = std::all_of(characters.begin(), characters.end(), [](char32_t character) {
        return character == U' ' || directionOf(character) == Direction::right;
    });
    needed = needed || (right > 0 && !pure);
    for (const auto& shape : stamp.shapes)
        if (const auto* run = std::get_if<GlyphRun>(&shape)) {
            needed = needed || run->face->isPictorial();
            // Several characters of one glyph, several glyphs of one text, halves of a pair.
            for (const auto& glyph : run->glyphs)
                needed = needed || glyph.text.size() != 1;
        }
    if (!needed || stamp.text.empty())
        return std::nullopt;
    return right > 0 ? turnedForExtractors(characters) : stamp.text;
}

} // namespace engine
