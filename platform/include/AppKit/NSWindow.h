// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

namespace platform {

class WindowPeer; // one per toolkit

/// A window, or the frame in which an interface file keeps its content until a host takes it over.
class NSWindow final : public NSObject {
public:
    explicit NSWindow(std::shared_ptr<NSView> contentView = nullptr);
    ~NSWindow() override;
    std::u16string_view className() const override;

    const std::shared_ptr<NSView>& contentView() const { return m_contentView; }

    /// Gives `view` the focus and selects all of a text field's text; begins no editing. Null takes the focus from
    /// whatever has it. A view that is hidden, in a hidden one, on a page not shown, disabled or in another window is
    /// left alone. Answers NO where the focus stayed, also because the field that has it refused to end its editing.
    bool makeFirstResponder(const std::shared_ptr<NSView>& view);

    /// Shows the window in front of the program's others and gives it the keyboard.
    void makeKeyAndOrderFront(const std::shared_ptr<NSObject>& sender);

    void setPeer(std::unique_ptr<WindowPeer> peer);

private:
    std::shared_ptr<NSView> m_contentView;
    std::unique_ptr<WindowPeer> m_peer;
};

} // namespace platform
