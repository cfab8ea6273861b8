// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace platform::qt {

inline QString toQt(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::u16string fromQt(const QString& text) {
    return text.toStdU16String();
}

/// `text` where the toolkit takes "&" for the mark of a shortcut.
inline QString withoutShortcut(const std::u16string& text) {
    return toQt(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace platform::qt
