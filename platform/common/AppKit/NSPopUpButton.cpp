// SPDX-License-Identifier: MIT
#include <AppKit/NSPopUpButton.h>

namespace platform {

std::u16string_view NSPopUpButtonCell::className() const {
    return u"NSPopUpButtonCell";
}

std::u16string_view NSPopUpButton::className() const {
    return u"NSPopUpButton";
}

} // namespace platform
