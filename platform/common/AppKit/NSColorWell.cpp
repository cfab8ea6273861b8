// SPDX-License-Identifier: MIT
#include <AppKit/NSColorWell.h>

#include <Foundation/NSException.h>

#include "Peers.h"

namespace platform {

NSColorWell::NSColorWell() : m_color(NSColor::blackColor()) {}

std::u16string_view NSColorWell::className() const {
    return u"NSColorWell";
}

void NSColorWell::setColor(const std::shared_ptr<const NSColor>& color) {
    if (!color)
        throw NSInvalidArgumentException("a colour well needs a colour");
    m_color = color;
    if (auto* shown = dynamic_cast<ColorWellPeer*>(peer()))
        shown->setColor(*color);
}

void NSColorWell::userPicks(const std::shared_ptr<const NSColor>& color) {
    if (!isEnabled())
        return;
    setColor(color);
    sendAction();
}

void NSColorWell::showAll() {
    NSControl::showAll();
    setColor(m_color);
}

} // namespace platform
