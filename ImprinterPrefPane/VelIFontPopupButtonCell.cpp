// SPDX-License-Identifier: MIT
#include "VelIFontPopupButtonCell.h"

#include "VelIFontPopUpProtocol.h"

#include <AppKit/NSView.h>
#include <Foundation/NSClass.h>

namespace pane {

namespace {

using platform::ClassRegistration;
using platform::ClassTable;

const ClassRegistration registration{
    ClassTable<VelIFontPopupButtonCell>(u"VelIFontPopupButtonCell", u"NSPopUpButtonCell")};

} // namespace

std::u16string_view VelIFontPopupButtonCell::className() const {
    return u"VelIFontPopupButtonCell";
}

void VelIFontPopupButtonCell::dismissPopUp() {
    NSPopUpButtonCell::dismissPopUp();
    const auto view = controlView();
    if (const auto told = std::dynamic_pointer_cast<VelIFontPopUpProtocol>(view))
        told->dismissPopUp();
}

} // namespace pane
