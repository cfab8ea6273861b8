// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <QStringView>

namespace platform {

int caseInsensitiveCompare(const std::optional<std::u16string>& text, std::u16string_view other) {
    if (!text)
        return 0;
    const auto view = [](std::u16string_view units) {
        return QStringView(units.data(), static_cast<qsizetype>(units.size()));
    };
    const int order = view(*text).compare(view(other), Qt::CaseInsensitive);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

} // namespace platform
