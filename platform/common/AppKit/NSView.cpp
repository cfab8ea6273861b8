// SPDX-License-Identifier: MIT
#include <AppKit/NSView.h>

#include "Peers.h"

namespace platform {

NSView::NSView() = default;
NSView::~NSView() = default;

std::u16string_view NSView::className() const {
    return u"NSView";
}

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
    view->m_superview = std::static_pointer_cast<NSView>(shared_from_this());
    m_subviews.push_back(view);
}

void NSView::setHidden(bool hidden) {
    m_hidden = hidden;
    if (m_peer)
        m_peer->setHidden(hidden);
}

std::shared_ptr<NSWindow> NSView::window() const {
    return m_peer ? m_peer->window() : nullptr;
}

NSRect NSView::bounds() const {
    return {{}, m_peer ? m_peer->size() : NSSize()};
}

void NSView::setMenu(const std::shared_ptr<NSMenu>& menu) {
    m_menu = menu;
    if (m_peer)
        m_peer->setMenu(menu);
}

void NSView::setToolTip(const std::u16string& text) {
    m_toolTip = text;
    if (m_peer)
        m_peer->setToolTip(text);
}

void NSView::setAccessibilityLabel(const std::u16string& text) {
    m_accessibilityLabel = text;
    if (m_peer)
        m_peer->setAccessibilityLabel(text);
}

void NSView::registerForDraggedTypes(std::vector<std::u16string> types) {
    m_draggedTypes = std::move(types);
    if (m_peer)
        m_peer->setDraggedTypes(m_draggedTypes);
}

void NSView::setPeer(std::unique_ptr<ViewPeer> peer) {
    m_peer = std::move(peer);
    if (m_peer)
        showAll();
}

void NSView::showAll() {
    m_peer->setHidden(m_hidden);
    m_peer->setMenu(m_menu);
    m_peer->setToolTip(m_toolTip);
    m_peer->setAccessibilityLabel(m_accessibilityLabel);
    m_peer->setDraggedTypes(m_draggedTypes);
}

} // namespace platform
