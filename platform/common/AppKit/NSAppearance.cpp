// SPDX-License-Identifier: MIT
#include <AppKit/NSAppearance.h>

namespace platform {

std::shared_ptr<NSAppearance> NSAppearance::appearanceNamed(const std::u16string& name) {
    if (name != NSAppearanceNameVibrantLight)
        return nullptr;
    auto appearance = std::make_shared<NSAppearance>();
    appearance->m_name = name;
    return appearance;
}

} // namespace platform
