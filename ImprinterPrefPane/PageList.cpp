// SPDX-License-Identifier: MIT
#include "PageList.h"

#include <Foundation/NSString.h>
#include <host/Additions.h>

#include <array>
#include <charconv>

using namespace platform;

namespace pane {

namespace {

bool isBlank(char16_t character) {
    const bool printed = character > u' ' && character < 0x7F; // nearly all of a list
    return !printed && isWhitespaceOrNewline(character);
}

/// The part of `text` between the white space at both ends.
std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

void appendDecimal(std::u16string& out, NSInteger number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    for (const char* digit = digits.data(); digit != end; ++digit)
        out += static_cast<char16_t>(*digit);
}

} // namespace

std::u16string normalizedPageList(const std::u16string& text) {
    // A long list is not copied where nothing stands before its first number.
    std::u16string list;
    std::u16string_view rest = trimmed(text);
    if (!rest.empty() && rest.front() == u',')
        rest = list = host::stringByTrimmingPrefixCharacter(std::u16string(rest), u',');
    std::u16string result;
    result.reserve(rest.size());
    bool first = true;
    for (bool more = true; more;) {
        const auto comma = rest.find(u',');
        more = comma != std::u16string_view::npos;
        const auto page = integerValue(trimmed(rest.substr(0, comma))); // 0 also where the piece is empty
        if (page == 0) {
            if (!first)
                result += u',';
        } else {
            if (!first)
                result += u',';
            appendDecimal(result, page);
            first = false;
        }
        if (more)
            rest.remove_prefix(comma + 1);
    }
    return result;
}

} // namespace pane
