// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSClass.h>

namespace pane {

class VelIFontPopupButton;

/// The list of the faces of the family chosen in its partner.
class VelIFontAttributePopupButton final : public platform::NSPopUpButton {
public:
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

private:
    std::weak_ptr<VelIFontPopupButton> m_fontPopUpBtn;
};

} // namespace pane
