// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace platform {

/// Dark text on a light ground, whatever the colours of the desktop.
inline constexpr char16_t NSAppearanceNameVibrantLight[] = u"NSAppearanceNameVibrantLight";

/// A set of colours with a name.
class NSAppearance final : public NSObject {
public:
    /// Null for a name that is not known.
    static std::shared_ptr<NSAppearance> appearanceNamed(const std::u16string& name);

    const std::u16string& name() const { return m_name; }

private:
    std::u16string m_name;
};

} // namespace platform
