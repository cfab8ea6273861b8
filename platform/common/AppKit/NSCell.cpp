// SPDX-License-Identifier: MIT
#include <AppKit/NSCell.h>

namespace platform {

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

void NSCell::changed() const {
    if (m_changed)
        m_changed();
}

} // namespace platform
