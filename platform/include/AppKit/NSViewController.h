// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>
#include <Foundation/NSClass.h>

namespace platform {

class NSBundle;

/// Owns a view and what behaves in it. Its view stands in a page of another interface file or in a file of its own.
class NSViewController : public NSObject {
public:
    std::u16string_view className() const override;
    static NSClass describeClass();

    /// Names the interface file whose root becomes the view, and the bundle it is in. Null finds no file.
    void initWithNibNameBundle(const std::u16string& name, const std::shared_ptr<NSBundle>& bundle);

    /// Loads the interface file with this controller as its owner; its outlets are connected when this returns. What is
    /// wrong with the file is logged; the view stays null where it cannot be read.
    virtual void loadView();
    bool isViewLoaded() const { return m_view != nullptr; }
    /// The view; one not there yet is loaded, and `viewDidLoad` sent.
    const std::shared_ptr<NSView>& view();
    void setView(const std::shared_ptr<NSView>& view) { m_view = view; }
    /// Sent once, when the view stands; a direct `loadView` does not send it.
    virtual void viewDidLoad();

private:
    std::u16string m_nibName;
    std::shared_ptr<NSBundle> m_nibBundle;
    std::shared_ptr<NSView> m_view;
};

} // namespace platform
