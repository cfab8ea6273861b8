// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace engine {

/// A number as content streams write it: up to five decimals, "." whatever the locale, no exponent.
void appendNumber(std::string& content, double value);

/// `text` as hexadecimal UTF-16BE digits.
void appendUtf16Hex(std::string& content, std::u16string_view text);

/// The two bytes of `code` as hexadecimal digits.
void appendCodeHex(std::string& content, unsigned code);

/// A name as files write it; `name` is decoded and begins with a slash.
void appendName(std::string& content, std::string_view name);

} // namespace engine
