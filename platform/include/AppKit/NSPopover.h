// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSAppearance.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSNotification.h>

namespace platform {

class NSPopover;
class PopoverPeer; // one per toolkit

inline constexpr char16_t NSPopoverWillShowNotification[] = u"NSPopoverWillShowNotification";
inline constexpr char16_t NSPopoverDidShowNotification[] = u"NSPopoverDidShowNotification";
inline constexpr char16_t NSPopoverWillCloseNotification[] = u"NSPopoverWillCloseNotification";
inline constexpr char16_t NSPopoverDidCloseNotification[] = u"NSPopoverDidCloseNotification";

enum class NSPopoverBehavior {
    applicationDefined = 0, ///< Closed by the program alone.
    transient = 1,          ///< Closed by a click outside and by Escape.
};

/// Told by a popover, in this order: will show, did show; should close (for what the user does), will close, did close.
class NSPopoverDelegate {
public:
    virtual ~NSPopoverDelegate();
    virtual void popoverWillShow(const NSNotification& notification);
    virtual void popoverDidShow(const NSNotification& notification);
    virtual bool popoverShouldClose(const std::shared_ptr<NSPopover>& popover);
    virtual void popoverWillClose(const NSNotification& notification);
    virtual void popoverDidClose(const NSNotification& notification);
    /// Asked when the user begins to drag the popover; the inherited answer is NO.
    virtual bool popoverShouldDetach(const std::shared_ptr<NSPopover>& popover);
};

/// Shows a controller's view beside another view, with an arrow that points at it.
///
/// The user may tear it off: it is then a window of its own with the same content, is no longer transient, and sends no
/// message until that window closes. Closing the window of the view it was shown beside closes it in either state. One
/// that is let go while it is shown disappears without a message.
class NSPopover final : public NSObject {
public:
    NSPopover();
    ~NSPopover() override;
    std::u16string_view className() const override;

    const std::shared_ptr<NSViewController>& contentViewController() const { return m_contentViewController; }
    void setContentViewController(const std::shared_ptr<NSViewController>& controller) {
        m_contentViewController = controller;
    }
    /// Null, at first, follows the desktop.
    const std::shared_ptr<NSAppearance>& appearance() const { return m_appearance; }
    void setAppearance(const std::shared_ptr<NSAppearance>& appearance) { m_appearance = appearance; }
    bool animates() const { return m_animates; }
    void setAnimates(bool animates) { m_animates = animates; }
    NSPopoverBehavior behavior() const { return m_behavior; }
    void setBehavior(NSPopoverBehavior behavior) { m_behavior = behavior; }
    std::shared_ptr<NSPopoverDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::shared_ptr<NSPopoverDelegate>& delegate) { m_delegate = delegate; }

    /// Shows the popover beside `rect`, in coordinates of `view`. Where there is no room at the wished edge, the
    /// opposite one is tried next, then the others.
    ///
    /// An attached popover that is shown moves to the new place, without a message; a detached one stays. One that is
    /// still closing is shown again, and is not told that it closed. A view that is not on screen shows nothing. Raises
    /// NSInternalInconsistencyException without content, NSInvalidArgumentException for a view in no window.
    void showRelativeToRectOfViewPreferredEdge(NSRect rect, const std::shared_ptr<NSView>& view, NSRectEdge edge);

    /// YES from the message that shows it until it has left the screen.
    bool isShown() const { return m_state != State::closed; }
    /// YES from the drag that tears it off until it has left the screen.
    bool isDetached() const { return m_detached; }

    /// Closes without asking.
    void close();
    /// Asks the delegate, then closes.
    void performClose();

    // What the user does

    /// Clicked outside, or pressed Escape: closes an attached transient popover.
    void userDismisses();
    /// Began to drag it. YES where it is torn off from now on.
    bool userDrags();

    // What the toolkit's side tells

    /// It stands, after any animation.
    void hasAppeared();
    /// It is off screen, after any animation.
    void hasDisappeared();
    /// The window of the view it was shown beside has closed.
    void anchorWindowHasClosed();

    void setPeer(std::unique_ptr<PopoverPeer> peer);

    /// How long a popover takes to appear and to disappear, in seconds. For tests: 0, or a time that does not end.
    static void setAnimationDuration(double seconds);

private:
    enum class State { closed, opening, shown, closing };

    std::shared_ptr<NSPopover> self();
    double duration() const;
    void close(double seconds);
    void notify(const char16_t* name, void (NSPopoverDelegate::*message)(const NSNotification&));

    std::shared_ptr<NSViewController> m_contentViewController;
    std::shared_ptr<NSAppearance> m_appearance;
    std::weak_ptr<NSPopoverDelegate> m_delegate;
    std::unique_ptr<PopoverPeer> m_peer;
    NSPopoverBehavior m_behavior = NSPopoverBehavior::applicationDefined;
    State m_state = State::closed;
    bool m_animates = true;
    bool m_detached = false;
};

} // namespace platform
