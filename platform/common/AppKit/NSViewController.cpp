// SPDX-License-Identifier: MIT
#include <AppKit/NSViewController.h>

namespace platform {

std::u16string_view NSViewController::className() const {
    return u"NSViewController";
}

void NSViewController::viewDidLoad() {}

} // namespace platform
