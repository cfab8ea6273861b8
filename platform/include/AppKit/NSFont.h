// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <memory>
#include <string>

namespace platform {

/// One face at one size; immutable.
class NSFont final : public NSObject {
public:
    /// The face with this PostScript name, as fontconfig lists it; null if the machine has none. `size` is in points; 0
    /// or less means 12.
    static std::shared_ptr<NSFont> fontWithNameSize(const std::u16string& name, double size);

    NSFont(std::u16string fontName, std::u16string familyName, std::u16string displayName, double pointSize);

    /// The PostScript name.
    const std::u16string& fontName() const { return m_fontName; }
    const std::u16string& familyName() const { return m_familyName; }
    /// Family and face as one text.
    const std::u16string& displayName() const { return m_displayName; }
    double pointSize() const { return m_pointSize; }

private:
    std::u16string m_fontName;
    std::u16string m_familyName;
    std::u16string m_displayName;
    double m_pointSize;
};

} // namespace platform
