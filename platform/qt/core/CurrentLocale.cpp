// SPDX-License-Identifier: MIT
#include <Foundation/NSLocale.h>

#include "Text.h"

#include <QLocale>

namespace platform {

namespace {

/// Some locales put marks of direction around their signs. They would turn a field around in which a number stands
/// alone, and few fonts have them.
std::u16string withoutMarks(QString sign) {
    return qt::fromQt(sign.remove(QChar(0x200E)).remove(QChar(0x200F)).remove(QChar(0x061C)));
}

} // namespace

NSLocale NSLocale::currentLocale() {
    const QLocale user;
    NSLocale locale;
    locale.localeIdentifier = qt::fromQt(user.name());
    locale.decimalSeparator = qt::fromQt(user.decimalPoint());
    locale.minusSign = withoutMarks(user.negativeSign());
    locale.percentSign = withoutMarks(user.percent());
    // Digits beyond the first plane are left to be written as everywhere.
    if (const auto zero = user.zeroDigit(); zero.size() == 1)
        locale.zeroDigit = zero.front().unicode();
    return locale;
}

} // namespace platform
