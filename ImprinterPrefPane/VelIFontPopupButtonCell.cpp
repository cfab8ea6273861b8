// SPDX-License-Identifier: MIT
#include "VelIFontPopupButtonCell.h"

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

} // namespace pane
