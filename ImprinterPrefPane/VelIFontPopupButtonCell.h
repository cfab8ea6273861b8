// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPopUpButton.h>

namespace pane {

/// The cell of both font buttons.
class VelIFontPopupButtonCell final : public platform::NSPopUpButtonCell {
public:
    std::u16string_view className() const override;
};

} // namespace pane
