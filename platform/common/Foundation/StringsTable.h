// SPDX-License-Identifier: MIT
#pragma once

#include "InformationList.h"

namespace platform {

/// Reads a table of `"key" = "value";` entries.
///
/// Text may be quoted by " or ' and span lines, or be an unquoted word of letters, digits and _ $ / : . -; `"key";`
/// alone means that the value is the key. Comments are those of C. Escapes: \n \r \t \a \b \f \v, \ and up to three
/// octal digits, \U and up to four hexadecimal digits; any other character stands for itself. The last of equal keys
/// wins. None, with the line in `problem`, for a table with a fault: it is then taken as empty as a whole.
std::optional<TextMap> readStringsTable(const std::u16string& text, std::string& problem);

/// The text of a file in UTF-8, or in UTF-16 with a byte order mark.
std::u16string textOfFile(const std::string& bytes);

} // namespace platform
