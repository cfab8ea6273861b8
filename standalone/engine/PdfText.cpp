// SPDX-License-Identifier: MIT
#include "PdfText.h"

#include <charconv>
#include <cmath>

namespace engine {

void appendNumber(std::string& content, double value) {
    if (!std::isfinite(value))
        value = 0;
    char text[400];
    const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 5);
    std::string_view digits(text, static_cast<std::size_t>(result.ptr - text));
    digits = digits.substr(0, digits.find_last_not_of('0') + 1);
    if (digits.ends_with('.'))
        digits.remove_suffix(1);
    content += digits == "-0" ? "0" : digits;
}

void appendCodeHex(std::string& content, unsigned code) {
    static const char digits[] = "0123456789ABCDEF";
    for (const unsigned shift : {12U, 8U, 4U, 0U})
        content += digits[code >> shift & 0xF];
}

void appendName(std::string& content, std::string_view name) {
    static const char digits[] = "0123456789ABCDEF";
    content += '/';
    for (const char c : name.substr(1)) {
        const auto code = static_cast<unsigned char>(c);
        if (code > 0x20 && code < 0x7F && std::string_view("#()<>[]{}/%").find(c) == std::string_view::npos) {
            content += c;
        } else {
            content += '#';
            content += digits[code >> 4];
            content += digits[code & 0xF];
        }
    }
}

void appendUtf16Hex(std::string& content, std::u16string_view text) {
    for (const char16_t unit : text)
        appendCodeHex(content, unit);
}

} // namespace engine
