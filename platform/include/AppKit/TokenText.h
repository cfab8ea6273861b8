// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSRange.h>

#include <string>
#include <variant>
#include <vector>

namespace platform {

/// What a token field holds: text, or an object that stands for a token. Texts are compared by content, objects by
/// identity.
using RepresentedObject = std::variant<std::u16string, std::shared_ptr<NSObject>>;

/// The text of a token field: plain text, and tokens that take the place of one character each.
///
/// Neighbouring texts are one piece, and no piece is empty; a token may stand for a text. Positions and lengths count
/// UTF-16 units, a token as one; what lies beyond the end is cut off.
class TokenText {
public:
    struct Piece {
        RepresentedObject object;
        bool isToken = false;
        NSUInteger length() const { return isToken ? 1 : std::get<std::u16string>(object).size(); }
        bool operator==(const Piece&) const = default;
    };

    const std::vector<Piece>& pieces() const { return m_pieces; }
    NSUInteger length() const { return m_length; }
    /// The text with U+FFFC where a token stands.
    std::u16string string() const;

    void appendText(std::u16string_view text);
    void appendToken(RepresentedObject object);
    void append(const TokenText& other);

    TokenText substring(NSRange range) const;
    void replaceCharacters(NSRange range, const TokenText& replacement);

    /// Where `character` stands as text, at `from` or after it; NSNotFound where it does not. Tokens are passed over.
    NSUInteger indexOfCharacter(char16_t character, NSUInteger from) const;
    /// Takes out the texts' characters for which `unwanted` answers true; tokens stay. Answers whether there were any.
    template <class Unwanted>
    bool removeCharacters(Unwanted unwanted) {
        TokenText kept;
        for (const auto& piece : m_pieces) {
            if (piece.isToken) {
                kept.appendToken(piece.object);
                continue;
            }
            auto text = std::get<std::u16string>(piece.object);
            std::erase_if(text, unwanted);
            kept.appendText(text);
        }
        const bool removed = kept.m_length != m_length;
        *this = std::move(kept);
        return removed;
    }

    bool operator==(const TokenText&) const = default;

    /// A part of one text in whose place a part of another one stands.
    struct Change {
        NSRange range;         ///< in the former text
        NSUInteger length = 0; ///< of what stands there now
    };
    /// The smallest change that makes `after` out of `before`; it parts no surrogate pair.
    static Change change(const TokenText& before, const TokenText& after);

private:
    std::vector<Piece> m_pieces;
    NSUInteger m_length = 0;
};

} // namespace platform
