// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPopUpButton.h>

namespace pane {

/// The cell of both font buttons: tells its button that the menu has closed.
class VelIFontPopupButtonCell : public platform::NSPopUpButtonCell {
public:
    std::u16string_view className() const override;
    void dismissPopUp() override;
};

} // namespace pane
