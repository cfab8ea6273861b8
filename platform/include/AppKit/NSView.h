// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSGeometry.h>
#include <Foundation/NSObject.h>

#include <memory>
#include <string>
#include <vector>

namespace platform {

class NSMenu;
class NSWindow;
class ViewPeer; // one per toolkit

/// Something in a window. A view holds its subviews; whoever holds the root holds the tree.
///
/// A view works without a peer, and after its peer has gone: it then holds its values and shows nothing.
class NSView : public NSObject {
public:
    NSView();
    ~NSView() override;
    std::u16string_view className() const override;

    const std::vector<std::shared_ptr<NSView>>& subviews() const { return m_subviews; }
    void addSubview(const std::shared_ptr<NSView>& view);
    std::shared_ptr<NSView> superview() const { return m_superview.lock(); }

    /// The view's own wish; a visible view in a hidden one is not seen. Hiding what has the focus moves the focus away.
    bool isHidden() const { return m_hidden; }
    void setHidden(bool hidden);

    /// The window the view is in, or null while it is in none.
    std::shared_ptr<NSWindow> window() const;

    /// The view's own rectangle, at the origin, in points; empty while nothing shows the view.
    NSRect bounds() const;

    /// -1 for what is no control.
    virtual NSInteger tag() const { return -1; }

    /// The menu shown by a right click, or null.
    virtual std::shared_ptr<NSMenu> menu() const { return m_menu; }
    virtual void setMenu(const std::shared_ptr<NSMenu>& menu);

    /// What is shown while the pointer rests on the view; empty shows nothing.
    const std::u16string& toolTip() const { return m_toolTip; }
    void setToolTip(const std::u16string& text);
    /// What assistive technology calls the view; empty leaves it to the view's title.
    const std::u16string& accessibilityLabel() const { return m_accessibilityLabel; }
    void setAccessibilityLabel(const std::u16string& text);

    /// Only drags that carry one of these types are asked about.
    void registerForDraggedTypes(std::vector<std::u16string> types);
    const std::vector<std::u16string>& registeredDraggedTypes() const { return m_draggedTypes; }

    /// What shows the view. Given once, by the toolkit's side; the view's values are then shown in it.
    void setPeer(std::unique_ptr<ViewPeer> peer);
    ViewPeer* peer() const { return m_peer.get(); }

    /// Whether it can take the focus now: a control that is enabled and not hidden.
    virtual bool acceptsFirstResponder() const { return false; }

protected:
    /// Shows every value in a peer just given.
    virtual void showAll();

private:
    std::vector<std::shared_ptr<NSView>> m_subviews;
    std::weak_ptr<NSView> m_superview;
    std::unique_ptr<ViewPeer> m_peer;
    std::shared_ptr<NSMenu> m_menu;
    std::vector<std::u16string> m_draggedTypes;
    std::u16string m_toolTip;
    std::u16string m_accessibilityLabel;
    bool m_hidden = false;
};

} // namespace platform
