// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSCell.h>
#include <AppKit/NSControl.h>

namespace platform {

inline const std::u16string NSPopUpButtonWillPopUpNotification = u"NSPopUpButtonWillPopUpNotification";

/// The cell of a pop-up button.
class NSPopUpButtonCell : public NSCell {
public:
    using NSCell::NSCell;
    std::u16string_view className() const override;
};

/// A button that opens a menu.
class NSPopUpButton : public NSControl {
public:
    std::u16string_view className() const override;
};

} // namespace platform
