// SPDX-License-Identifier: MIT
#include <AppKit/NSFont.h>

#include <Foundation/NSException.h>

namespace platform {

namespace {

constexpr double usualSize = 12;

/// A name that begins with a dot is no font's.
const std::shared_ptr<const FontNames>& menuFontNames() {
    static const auto names = std::make_shared<const FontNames>(FontNames{u".MenuFont", u".MenuFont", u".MenuFont"});
    return names;
}

} // namespace

NSFont::NSFont(std::shared_ptr<const FontNames> names, double pointSize)
    : m_names(std::move(names)), m_pointSize(pointSize) {
    if (!m_names)
        throw NSInvalidArgumentException("the font has no names");
}

std::shared_ptr<NSFont> NSFont::fontWithNameSize(const std::u16string& name, double size) {
    auto names = FontSource::current()->namesOf(name);
    return names ? std::make_shared<NSFont>(std::move(names), size > 0 ? size : usualSize) : nullptr;
}

std::shared_ptr<NSFont> NSFont::menuFontOfSize(double size) {
    return std::make_shared<NSFont>(menuFontNames(),
                                    size > 0 ? size : systemFontSizeForControlSize(NSControlSize::regular));
}

std::shared_ptr<NSFont> NSFont::userFontOfSize(double size) {
    return fontWithNameSize(FontSource::current()->defaultName(), size);
}

double NSFont::systemFontSizeForControlSize(NSControlSize size) {
    switch (size) {
    case NSControlSize::small:
        return 11;
    case NSControlSize::mini:
        return 9;
    case NSControlSize::regular:
        break;
    }
    return 13;
}

bool NSFont::isMenuFont() const {
    return m_names == menuFontNames();
}

} // namespace platform
