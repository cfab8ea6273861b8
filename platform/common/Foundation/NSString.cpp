// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <limits>

namespace platform {

namespace {

constexpr char16_t replacement = 0xFFFD;

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}
bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

std::size_t skipWhitespace(std::u16string_view text) {
    std::size_t at = 0;
    while (at < text.size() && isWhitespaceOrNewline(text[at]))
        ++at;
    return at;
}

void appendUtf8(std::string& out, char32_t character) {
    const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
    if (character < 0x80) {
        byte(character);
    } else if (character < 0x800) {
        byte(0xC0 | (character >> 6));
        byte(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        byte(0xE0 | (character >> 12));
        byte(0x80 | ((character >> 6) & 0x3F));
        byte(0x80 | (character & 0x3F));
    } else {
        byte(0xF0 | (character >> 18));
        byte(0x80 | ((character >> 12) & 0x3F));
        byte(0x80 | ((character >> 6) & 0x3F));
        byte(0x80 | (character & 0x3F));
    }
}

} // namespace

std::u16string fromUtf8(std::string_view text) {
    // Most names and keys are in ASCII.
    if (std::all_of(text.begin(), text.end(), [](char unit) { return static_cast<unsigned char>(unit) < 0x80; }))
        return {text.begin(), text.end()};
    std::u16string out;
    out.reserve(text.size());
    std::size_t at = 0;
    const auto continuation = [&](std::size_t index) {
        return index < text.size() && (static_cast<unsigned char>(text[index]) & 0xC0) == 0x80;
    };
    while (at < text.size()) {
        const auto first = static_cast<unsigned char>(text[at]);
        const std::size_t length = first < 0x80                    ? 1
                                   : first >= 0xF0 && first < 0xF5 ? 4
                                   : first >= 0xE0 && first < 0xF0 ? 3
                                   : first >= 0xC2 && first < 0xE0 ? 2
                                                                   : 0;
        char32_t character = length == 1 ? first : length ? first & (0x7F >> length) : 0;
        std::size_t read = 1;
        while (length && read < length && continuation(at + read))
            character = (character << 6) | (static_cast<unsigned char>(text[at + read++]) & 0x3F);
        constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        const bool good = length && read == length && character >= smallest[length] && character <= 0x10FFFF &&
                          (character < 0xD800 || character > 0xDFFF);
        if (!good) {
            out.push_back(replacement);
        } else if (character < 0x10000) {
            out.push_back(static_cast<char16_t>(character));
        } else {
            out.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
        at += read;
    }
    return out;
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    if (std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; })) {
        out.resize(text.size());
        std::transform(text.begin(), text.end(), out.begin(), [](char16_t unit) { return static_cast<char>(unit); });
        return out;
    }
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t character = text[at];
        if (isHighSurrogate(text[at]) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (text[at + 1] - 0xDC00U);
            ++at;
        } else if (isHighSurrogate(text[at]) || isLowSurrogate(text[at])) {
            character = replacement;
        }
        appendUtf8(out, character);
    }
    return out;
}

bool isWhitespaceOrNewline(char16_t character) {
    return (character >= 0x09 && character <= 0x0D) || character == 0x20 || character == 0x85 || character == 0xA0 ||
           character == 0x1680 || (character >= 0x2000 && character <= 0x200B) || character == 0x2028 ||
           character == 0x2029 || character == 0x202F || character == 0x205F || character == 0x3000;
}

std::u16string stringByTrimmingWhitespaceAndNewlines(std::u16string_view text) {
    text.remove_prefix(skipWhitespace(text));
    while (!text.empty() && isWhitespaceOrNewline(text.back()))
        text.remove_suffix(1);
    return std::u16string(text);
}

bool isBlank(std::u16string_view text) {
    return skipWhitespace(text) == text.size();
}

std::vector<std::u16string> componentsSeparatedByString(std::u16string_view text, std::u16string_view separator) {
    std::vector<std::u16string> pieces;
    std::size_t at = 0;
    while (!separator.empty()) {
        const auto next = text.find(separator, at);
        if (next == std::u16string_view::npos)
            break;
        pieces.emplace_back(text.substr(at, next - at));
        at = next + separator.size();
    }
    pieces.emplace_back(text.substr(at));
    return pieces;
}

NSInteger integerValue(std::u16string_view text) {
    std::size_t at = skipWhitespace(text);
    bool negative = false;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-'))
        negative = text[at++] == u'-';
    constexpr auto largest = static_cast<NSUInteger>(std::numeric_limits<NSInteger>::max());
    const NSUInteger limit = negative ? largest + 1 : largest;
    NSUInteger value = 0;
    for (; at < text.size() && isDigit(text[at]); ++at) {
        const NSUInteger digit = text[at] - u'0';
        if (value > (limit - digit) / 10) {
            value = limit;
            break;
        }
        value = value * 10 + digit;
    }
    return negative ? static_cast<NSInteger>(0 - value) : static_cast<NSInteger>(value);
}

double doubleValue(std::u16string_view text) {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    // Only what a decimal number is made of, so that "inf", "nan" and hexadecimal forms read as 0.
    std::string number;
    const auto rest = text.substr(skipWhitespace(text));
    for (const char16_t unit : rest.substr(0, rest.find_first_not_of(u"0123456789+-.eE")))
        number.push_back(static_cast<char>(unit));
    return strtod_l(number.c_str(), nullptr, classic);
}

bool hasPrefix(std::u16string_view text, std::u16string_view prefix) {
    return !prefix.empty() && text.starts_with(prefix);
}

bool hasSuffix(std::u16string_view text, std::u16string_view suffix) {
    return !suffix.empty() && text.ends_with(suffix);
}

std::u16string stringWithFormat(std::u16string_view format, const std::vector<std::u16string>& arguments) {
    std::u16string out;
    std::size_t next = 0;
    const auto unit = [&](std::size_t at) { return at < format.size() ? format[at] : u'\0'; };
    for (std::size_t at = 0; at < format.size(); ++at) {
        const char16_t following = unit(at + 1);
        const bool numbered = following >= u'1' && following <= u'9' && unit(at + 2) == u'$' && unit(at + 3) == u'@';
        if (format[at] != u'%' || (following != u'@' && following != u'%' && !numbered)) {
            out.push_back(format[at]);
            continue;
        }
        const std::size_t index = numbered ? static_cast<std::size_t>(following - u'1') : next;
        at += numbered ? 3 : 1;
        if (following == u'%')
            out.push_back(u'%');
        else if (index < arguments.size())
            out += arguments[index];
        if (following == u'@')
            ++next;
    }
    return out;
}

} // namespace platform
