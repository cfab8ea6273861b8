// SPDX-License-Identifier: MIT
#include <AppKit/TokenText.h>

#include <algorithm>

namespace platform {

namespace {

constexpr char16_t tokenCharacter = u'\uFFFC';

bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Counts from one end how far two texts are the same.
class Common {
public:
    Common(const TokenText& one, const TokenText& other, bool fromTheEnd)
        : m_one(one.pieces()), m_other(other.pieces()), m_fromTheEnd(fromTheEnd) {}

    NSUInteger length() const {
        NSUInteger same = 0;
        std::size_t i = 0;
        std::size_t j = 0;
        NSUInteger doneOfOne = 0; // of the pieces at i and j
        NSUInteger doneOfOther = 0;
        while (i < m_one.size() && j < m_other.size()) {
            const auto& one = at(m_one, i);
            const auto& other = at(m_other, j);
            NSUInteger count = 1;
            if (one.isToken || other.isToken) {
                if (one != other)
                    break;
            } else {
                const auto room = std::min(one.length() - doneOfOne, other.length() - doneOfOther);
                count = sameUnits(one, doneOfOne, other, doneOfOther, room);
                same += count;
                if (count < room)
                    return same;
                same -= count;
            }
            same += count;
            step(i, doneOfOne, one, count);
            step(j, doneOfOther, other, count);
        }
        return same;
    }

private:
    using Piece = TokenText::Piece;

    const Piece& at(const std::vector<Piece>& pieces, std::size_t index) const {
        return pieces[m_fromTheEnd ? pieces.size() - 1 - index : index];
    }
    static void step(std::size_t& index, NSUInteger& done, const Piece& piece, NSUInteger count) {
        done += count;
        if (done == piece.length()) {
            ++index;
            done = 0;
        }
    }
    NSUInteger sameUnits(const Piece& one, NSUInteger doneOfOne, const Piece& other, NSUInteger doneOfOther,
                         NSUInteger room) const {
        const auto& left = std::get<std::u16string>(one.object);
        const auto& right = std::get<std::u16string>(other.object);
        NSUInteger count = 0;
        if (m_fromTheEnd)
            while (count < room &&
                   left[left.size() - 1 - doneOfOne - count] == right[right.size() - 1 - doneOfOther - count])
                ++count;
        else
            while (count < room && left[doneOfOne + count] == right[doneOfOther + count])
                ++count;
        return count;
    }

    const std::vector<Piece>& m_one;
    const std::vector<Piece>& m_other;
    bool m_fromTheEnd;
};

} // namespace

std::u16string TokenText::string() const {
    std::u16string text;
    text.reserve(m_length);
    for (const auto& piece : m_pieces)
        if (piece.isToken)
            text += tokenCharacter;
        else
            text += std::get<std::u16string>(piece.object);
    return text;
}

void TokenText::appendText(std::u16string_view text) {
    if (text.empty())
        return;
    if (m_pieces.empty() || m_pieces.back().isToken)
        m_pieces.push_back({std::u16string(text), false});
    else
        std::get<std::u16string>(m_pieces.back().object) += text;
    m_length += text.size();
}

void TokenText::appendToken(RepresentedObject object) {
    m_pieces.push_back({std::move(object), true});
    ++m_length;
}

void TokenText::append(const TokenText& other) {
    for (const auto& piece : other.m_pieces)
        if (piece.isToken)
            appendToken(piece.object);
        else
            appendText(std::get<std::u16string>(piece.object));
}

TokenText TokenText::substring(NSRange range) const {
    TokenText part;
    const auto first = std::min(range.location, m_length);
    const auto last = first + std::min(range.length, m_length - first);
    NSUInteger start = 0;
    for (const auto& piece : m_pieces) {
        const auto end = start + piece.length();
        const auto from = std::max(first, start);
        const auto to = std::min(last, end);
        if (from < to) {
            if (piece.isToken)
                part.appendToken(piece.object);
            else
                part.appendText(
                    std::u16string_view(std::get<std::u16string>(piece.object)).substr(from - start, to - from));
        }
        start = end;
    }
    return part;
}

void TokenText::replaceCharacters(NSRange range, const TokenText& replacement) {
    const auto first = std::min(range.location, m_length);
    const auto last = first + std::min(range.length, m_length - first);
    auto replaced = substring({0, first});
    replaced.append(replacement);
    replaced.append(substring({last, m_length - last}));
    *this = std::move(replaced);
}

NSUInteger TokenText::indexOfCharacter(char16_t character, NSUInteger from) const {
    NSUInteger start = 0;
    for (const auto& piece : m_pieces) {
        if (!piece.isToken && start + piece.length() > from) {
            const auto& text = std::get<std::u16string>(piece.object);
            const auto found = text.find(character, from > start ? from - start : 0);
            if (found != std::u16string::npos)
                return start + found;
        }
        start += piece.length();
    }
    return NSNotFound;
}

TokenText::Change TokenText::change(const TokenText& before, const TokenText& after) {
    const auto shorter = std::min(before.length(), after.length());
    auto front = Common(before, after, false).length();
    auto back = std::min(Common(before, after, true).length(), shorter - front);
    const auto unitAt = [](const TokenText& text, NSUInteger position) {
        const auto unit = text.substring({position, 1});
        return unit.pieces().empty() || unit.pieces().front().isToken
                   ? u'\0'
                   : std::get<std::u16string>(unit.pieces().front().object).front();
    };
    if (front > 0 && (isLowSurrogate(unitAt(before, front)) || isLowSurrogate(unitAt(after, front))))
        --front;
    if (back > 0 && isLowSurrogate(unitAt(before, before.length() - back)))
        --back;
    return {{front, before.length() - front - back}, after.length() - front - back};
}

} // namespace platform
