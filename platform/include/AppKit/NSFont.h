// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/FontSource.h>
#include <AppKit/NSCell.h>
#include <Foundation/NSObject.h>

namespace platform {

/// One face at one size; immutable. It holds names only: whether its file can be drawn with is found out by whoever
/// draws.
class NSFont final : public NSObject {
public:
    /// The face with this PostScript name, as the font source has it; null if there is none. `size` is in points; 0 or
    /// less means 12.
    static std::shared_ptr<NSFont> fontWithNameSize(const std::u16string& name, double size);
    /// The toolkit's own font for menus and controls, which no PostScript name stands for. 0 or less means the size of
    /// a regular control.
    static std::shared_ptr<NSFont> menuFontOfSize(double size);
    /// The face for text without a font; null on a machine without fonts. 0 or less means 12.
    static std::shared_ptr<NSFont> userFontOfSize(double size);

    /// 13 points, in a small control 11, in a mini one 9.
    static double systemFontSizeForControlSize(NSControlSize size);

    NSFont(std::shared_ptr<const FontNames> names, double pointSize);

    /// The PostScript name.
    const std::u16string& fontName() const { return m_names->fontName; }
    /// Empty where the face has none.
    const std::u16string& familyName() const { return m_names->familyName; }
    /// Family and face as one text.
    const std::u16string& displayName() const { return m_names->displayName; }
    double pointSize() const { return m_pointSize; }
    bool isMenuFont() const;

    /// The same face at the same size.
    friend bool operator==(const NSFont& a, const NSFont& b) {
        return a.fontName() == b.fontName() && a.m_pointSize == b.m_pointSize;
    }

private:
    std::shared_ptr<const FontNames> m_names;
    double m_pointSize;
};

} // namespace platform
