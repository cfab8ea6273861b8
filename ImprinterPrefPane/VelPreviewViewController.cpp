// SPDX-License-Identifier: MIT
#include "VelPreviewViewController.h"

#include <Foundation/NSClass.h>

namespace pane {

namespace {

using platform::ClassRegistration;
using platform::ClassTable;

const ClassRegistration registration{
    ClassTable<VelPreviewViewController>(u"VelPreviewViewController", u"NSViewController")};

} // namespace

std::u16string_view VelPreviewViewController::className() const {
    return u"VelPreviewViewController";
}

} // namespace pane
