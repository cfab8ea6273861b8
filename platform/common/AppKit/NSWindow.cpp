// SPDX-License-Identifier: MIT
#include <AppKit/NSWindow.h>

#include "Peers.h"

namespace platform {

NSWindow::NSWindow(std::shared_ptr<NSView> contentView) : m_contentView(std::move(contentView)) {}
NSWindow::~NSWindow() = default;

std::u16string_view NSWindow::className() const {
    return u"NSWindow";
}

namespace {

bool isSeen(const std::shared_ptr<NSView>& view) {
    for (auto outer = view; outer; outer = outer->superview())
        if (outer->isHidden())
            return false;
    return true;
}

} // namespace

bool NSWindow::makeFirstResponder(const std::shared_ptr<NSView>& view) {
    if (!m_peer)
        return false;
    if (!view)
        return m_peer->clearFocus();
    if (!view->acceptsFirstResponder() || !isSeen(view) || !view->peer() || !m_peer->contains(*view->peer()))
        return false;
    return view->peer()->focus();
}

void NSWindow::makeKeyAndOrderFront(const std::shared_ptr<NSObject>&) {
    if (m_peer)
        m_peer->orderFront();
}

void NSWindow::setPeer(std::unique_ptr<WindowPeer> peer) {
    m_peer = std::move(peer);
}

} // namespace platform
