// SPDX-License-Identifier: MIT
#include "VelIFontPopupButton.h"

#include "VelIFontAttributePopupButton.h"

namespace pane {

namespace {

const platform::ClassRegistration registration{VelIFontPopupButton::describeClass()};

} // namespace

std::u16string_view VelIFontPopupButton::className() const {
    return u"VelIFontPopupButton";
}

platform::NSClass VelIFontPopupButton::describeClass() {
    return platform::ClassTable<VelIFontPopupButton>(u"VelIFontPopupButton", u"NSPopUpButton")
        .outlet(u"fontAttributePopUpBtn", &VelIFontPopupButton::m_fontAttributePopUpBtn);
}

} // namespace pane
