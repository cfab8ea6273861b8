// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

namespace platform {

/// Owns a view and what behaves in it.
class NSViewController : public NSObject {
public:
    std::u16string_view className() const override;
    const std::shared_ptr<NSView>& view() const { return m_view; }
    /// Sent once, when the view stands.
    virtual void viewDidLoad();
    void setView(const std::shared_ptr<NSView>& view) { m_view = view; }

private:
    std::shared_ptr<NSView> m_view;
};

} // namespace platform
