// SPDX-License-Identifier: MIT
#include <Foundation/NSLocale.h>

#include "Text.h"

#include <QLocale>

namespace platform {

NSLocale NSLocale::currentLocale() {
    const QLocale user;
    NSLocale locale;
    locale.localeIdentifier = qt::fromQt(user.name());
    locale.decimalSeparator = qt::fromQt(user.decimalPoint());
    locale.minusSign = qt::fromQt(user.negativeSign());
    locale.percentSign = qt::fromQt(user.percent());
    // Digits beyond the first plane are left to be written as everywhere.
    if (const auto zero = user.zeroDigit(); zero.size() == 1)
        locale.zeroDigit = zero.front().unicode();
    return locale;
}

} // namespace platform
