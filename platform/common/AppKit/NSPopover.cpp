// SPDX-License-Identifier: MIT
#include <AppKit/NSPopover.h>

#include <AppKit/NSWindow.h>
#include <Foundation/NSException.h>

#include "Peers.h"

namespace platform {

namespace {

double& animationDuration() {
    static double seconds = 0.15;
    return seconds;
}

} // namespace

NSPopoverDelegate::~NSPopoverDelegate() = default;
void NSPopoverDelegate::popoverWillShow(const NSNotification&) {}
void NSPopoverDelegate::popoverDidShow(const NSNotification&) {}
bool NSPopoverDelegate::popoverShouldClose(const std::shared_ptr<NSPopover>&) {
    return true;
}
void NSPopoverDelegate::popoverWillClose(const NSNotification&) {}
void NSPopoverDelegate::popoverDidClose(const NSNotification&) {}
bool NSPopoverDelegate::popoverShouldDetach(const std::shared_ptr<NSPopover>&) {
    return false;
}

NSPopover::NSPopover() = default;
NSPopover::~NSPopover() = default;

std::u16string_view NSPopover::className() const {
    return u"NSPopover";
}

void NSPopover::setAnimationDuration(double seconds) {
    animationDuration() = seconds;
}

std::shared_ptr<NSPopover> NSPopover::self() {
    return std::static_pointer_cast<NSPopover>(shared_from_this());
}

double NSPopover::duration() const {
    return m_animates ? animationDuration() : 0;
}

void NSPopover::notify(const char16_t* name, void (NSPopoverDelegate::*message)(const NSNotification&)) {
    tell(m_delegate, message, NSNotification{name, shared_from_this()});
}

void NSPopover::setPeer(std::unique_ptr<PopoverPeer> peer) {
    m_peer = std::move(peer);
}

void NSPopover::showRelativeToRectOfViewPreferredEdge(NSRect rect, const std::shared_ptr<NSView>& view,
                                                      NSRectEdge edge) {
    if (!m_contentViewController || !m_contentViewController->view())
        throw NSException("NSInternalInconsistencyException", "a popover without content cannot be shown");
    if (!view || !view->window())
        throw NSInvalidArgumentException("a popover is shown beside a view that is in a window");
    if (!m_peer)
        m_peer = makePopoverPeer(self());
    if (m_detached || !m_peer->canShowBeside(*view))
        return;
    const auto alive = self(); // the delegate may let go of it
    const bool moves = m_state == State::opening || m_state == State::shown;
    if (!moves) {
        m_state = State::opening;
        notify(NSPopoverWillShowNotification, &NSPopoverDelegate::popoverWillShow);
        if (m_state != State::opening)
            return;
    }
    m_peer->show(rect, *view, edge, moves ? 0 : duration());
}

void NSPopover::hasAppeared() {
    if (m_state != State::opening)
        return;
    m_state = State::shown;
    const auto alive = self();
    notify(NSPopoverDidShowNotification, &NSPopoverDelegate::popoverDidShow);
}

void NSPopover::close() {
    // A window goes at once; only what points at something fades.
    close(m_detached ? 0 : duration());
}

void NSPopover::close(double seconds) {
    if (m_state == State::closed || m_state == State::closing)
        return;
    const auto alive = self();
    m_state = State::closing;
    notify(NSPopoverWillCloseNotification, &NSPopoverDelegate::popoverWillClose);
    if (m_state == State::closing)
        m_peer->hide(seconds);
}

void NSPopover::performClose() {
    const auto alive = self();
    const auto asked = m_delegate.lock();
    if (m_state != State::closed && m_state != State::closing && (!asked || asked->popoverShouldClose(alive)))
        close();
}

void NSPopover::hasDisappeared() {
    if (m_state != State::closing)
        return;
    m_state = State::closed;
    m_detached = false;
    const auto alive = self();
    notify(NSPopoverDidCloseNotification, &NSPopoverDelegate::popoverDidClose);
}

void NSPopover::userDismisses() {
    if (m_behavior == NSPopoverBehavior::transient && !m_detached)
        performClose();
}

bool NSPopover::userDrags() {
    const auto alive = self();
    hasAppeared(); // dragged while it was still appearing
    const auto asked = m_delegate.lock();
    if (m_state != State::shown || m_detached || !asked || !asked->popoverShouldDetach(alive))
        return false;
    m_detached = m_state == State::shown;
    return m_detached;
}

void NSPopover::anchorWindowHasClosed() {
    const auto alive = self();
    if (m_state == State::closing)
        m_peer->hide(0);
    else
        close(0);
}

} // namespace platform
