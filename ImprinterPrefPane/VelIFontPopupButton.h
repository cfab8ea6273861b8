// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSClass.h>

namespace pane {

class VelIFontAttributePopupButton;

/// The list of font families; with its partner, the list of the chosen family's faces, it names one font.
class VelIFontPopupButton final : public platform::NSPopUpButton {
public:
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

private:
    std::weak_ptr<VelIFontAttributePopupButton> m_fontAttributePopUpBtn;
};

} // namespace pane
