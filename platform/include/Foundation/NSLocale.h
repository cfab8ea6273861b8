// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// The user's language, and how the user writes numbers.
struct NSLocale {
    /// Language and territory, such as "de_AT"; empty or "C" where none is set.
    std::u16string localeIdentifier;
    std::u16string decimalSeparator = u".";
    std::u16string minusSign = u"-";
    std::u16string percentSign = u"%";
    /// The digit nought; the other nine follow it.
    char16_t zeroDigit = u'0';

    static NSLocale currentLocale();
};

} // namespace platform
