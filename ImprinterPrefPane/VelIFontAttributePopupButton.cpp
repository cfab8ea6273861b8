// SPDX-License-Identifier: MIT
#include "VelIFontAttributePopupButton.h"

#include "VelIFontPopupButton.h"

namespace pane {

namespace {

const platform::ClassRegistration registration{VelIFontAttributePopupButton::describeClass()};

} // namespace

std::u16string_view VelIFontAttributePopupButton::className() const {
    return u"VelIFontAttributePopupButton";
}

platform::NSClass VelIFontAttributePopupButton::describeClass() {
    return platform::ClassTable<VelIFontAttributePopupButton>(u"VelIFontAttributePopupButton", u"NSPopUpButton")
        .outlet(u"fontPopUpBtn", &VelIFontAttributePopupButton::m_fontPopUpBtn);
}

} // namespace pane
