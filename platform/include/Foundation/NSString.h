// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <optional>

namespace platform {

/// UTF-8 at the edges of the program. Ill-formed input becomes U+FFFD, a lone surrogate likewise.
std::u16string fromUtf8(std::string_view text);
std::string toUtf8(std::u16string_view text);

/// Whether `character` is white space or a line break: U+0009 to 000D, 0020, 0085, 00A0, 1680, 2000 to 200B, 2028,
/// 2029, 202F, 205F and 3000.
bool isWhitespaceOrNewline(char16_t character);

/// `text` without white space and line breaks at both ends.
std::u16string stringByTrimmingWhitespaceAndNewlines(std::u16string_view text);

/// Whether there is nothing in `text` but white space and line breaks.
bool isBlank(std::u16string_view text);

/// The pieces of `text` between separators; never empty: "" gives [""], "a,,b" gives ["a", "", "b"].
std::vector<std::u16string> componentsSeparatedByString(std::u16string_view text, std::u16string_view separator);

/// The decimal whole number at the start of `text`: white space, an optional sign, ASCII digits; 0 without a digit;
/// saturates at both ends of 64 bits.
NSInteger integerValue(std::u16string_view text);

/// The longest decimal number at the start of `text`, "." as separator whatever the locale; 0 without one. Infinity for
/// one that is too large, 0 for one that is too small.
double doubleValue(std::u16string_view text);

/// NO for an empty prefix or suffix.
bool hasPrefix(std::u16string_view text, std::u16string_view prefix);
bool hasSuffix(std::u16string_view text, std::u16string_view suffix);

/// -1, 0 or 1 after folding case by Unicode. A missing receiver answers 0 whatever it is compared with.
int caseInsensitiveCompare(std::optional<std::u16string_view> text, std::u16string_view other);

/// `format` with each "%@" replaced by the next of `arguments`, "%2$@" by the second of them, up to the ninth, and "%%"
/// by "%".
std::u16string stringWithFormat(std::u16string_view format, const std::vector<std::u16string>& arguments);

} // namespace platform
