// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>

namespace platform {

inline const std::u16string NSPopUpButtonWillPopUpNotification = u"NSPopUpButtonWillPopUpNotification";

/// A button that opens a menu.
class NSPopUpButton : public NSControl {
public:
    std::u16string_view className() const override;
};

} // namespace platform
