// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace platform {

class NSMenu;

/// The part of a control that shows its value; in a matrix, one of the choices. A cell may outlive its control, and is
/// then shown nowhere.
class NSCell : public NSObject {
public:
    /// `changed` runs after each change, so that the control can show it.
    explicit NSCell(std::function<void()> changed = {}) : m_changed(std::move(changed)) {}

    const std::u16string& title() const { return m_title; }
    void setTitle(const std::u16string& title);
    NSInteger tag() const { return m_tag; }
    void setTag(NSInteger tag) { m_tag = tag; }
    /// Whether text grows onto further lines instead of scrolling.
    bool wraps() const { return m_wraps; }
    void setWraps(bool wraps);
    const std::shared_ptr<NSMenu>& menu() const { return m_menu; }
    void setMenu(const std::shared_ptr<NSMenu>& menu);

private:
    friend class NSControl;
    friend class NSMatrix;
    void changed() const;

    std::function<void()> m_changed;
    std::u16string m_title;
    std::shared_ptr<NSMenu> m_menu;
    NSInteger m_tag = 0;
    bool m_wraps = false;
};

} // namespace platform
