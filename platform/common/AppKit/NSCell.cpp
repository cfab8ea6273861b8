// SPDX-License-Identifier: MIT
#include <AppKit/NSCell.h>

#include <AppKit/NSView.h>

namespace platform {

NSCell::~NSCell() = default;

void NSCell::setTitle(const std::u16string& title) {
    m_title = title;
    changed();
}

void NSCell::setWraps(bool wraps) {
    m_wraps = wraps;
    changed();
}

void NSCell::setMenu(const std::shared_ptr<NSMenu>& menu) {
    m_menu = menu;
    changed();
}

std::shared_ptr<NSView> NSCell::controlView() const {
    // Empty while the control is being made or goes.
    return m_control ? std::static_pointer_cast<NSView>(m_control->weak_from_this().lock()) : nullptr;
}

void NSCell::setControlView(NSView* control, std::function<void()> changed) {
    m_control = control;
    m_changed = std::move(changed);
}

void NSCell::changed() const {
    if (m_changed)
        m_changed();
}

} // namespace platform
