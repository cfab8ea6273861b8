// SPDX-License-Identifier: MIT
#include <AppKit/NSButton.h>

#include "Peers.h"

namespace platform {

std::u16string_view NSButton::className() const {
    return u"NSButton";
}

void NSButton::setTitle(const std::u16string& title) {
    m_title = title;
    if (auto* shown = dynamic_cast<ButtonPeer*>(peer()))
        shown->setTitle(title);
}

void NSButton::setState(NSInteger state) {
    m_state = state;
    if (auto* shown = dynamic_cast<ButtonPeer*>(peer()))
        shown->setOn(state == NSControlStateValueOn);
}

void NSButton::performClick() {
    if (!isEnabled())
        return;
    if (m_toggles)
        setState(m_state == NSControlStateValueOn ? NSControlStateValueOff : NSControlStateValueOn);
    sendAction();
}

void NSButton::showAll() {
    NSControl::showAll();
    setTitle(m_title);
    setState(m_state);
}

} // namespace platform
