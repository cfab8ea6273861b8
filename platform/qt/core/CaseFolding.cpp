// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <QStringView>

namespace platform {

namespace {

/// Of a character of ASCII; 0 for any other.
constexpr char16_t folded(char16_t unit) {
    return unit >= 0x80 ? u'\0' : unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

} // namespace

int caseInsensitiveCompare(std::optional<std::u16string_view> text, std::u16string_view other) {
    if (!text)
        return 0;
    // Long lists of names are sorted by this: what both begin with in ASCII needs no table.
    std::size_t same = 0;
    while (same < text->size() && same < other.size() && folded((*text)[same]) != 0 &&
           folded((*text)[same]) == folded(other[same]))
        ++same;
    const auto rest = [same](std::u16string_view units) {
        return QStringView(units.data() + same, static_cast<qsizetype>(units.size() - same));
    };
    const int order = rest(*text).compare(rest(other), Qt::CaseInsensitive);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

} // namespace platform
