// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace platform {

class NSMenu;
class NSView;

enum class NSControlSize { regular = 0, small = 1, mini = 2 };

/// The part of a control that shows its value; in a matrix, one of the choices. A cell may outlive its control, and is
/// then shown nowhere.
class NSCell : public NSObject {
public:
    /// `changed` runs after each change, so that the control can show it.
    explicit NSCell(std::function<void()> changed = {}) : m_changed(std::move(changed)) {}
    ~NSCell() override;

    const std::u16string& title() const { return m_title; }
    void setTitle(const std::u16string& title);
    NSInteger tag() const { return m_tag; }
    void setTag(NSInteger tag) { m_tag = tag; }
    /// Whether text grows onto further lines instead of scrolling.
    bool wraps() const { return m_wraps; }
    void setWraps(bool wraps);
    const std::shared_ptr<NSMenu>& menu() const { return m_menu; }
    virtual void setMenu(const std::shared_ptr<NSMenu>& menu);

    /// The control that shows the cell; null before it has one and after that has gone.
    std::shared_ptr<NSView> controlView() const;
    /// For that control alone: who it is, and what is to run after each change. Null parts them.
    void setControlView(NSView* control, std::function<void()> changed);

protected:
    void changed() const;

private:
    NSView* m_control = nullptr; // which takes itself out when it goes
    std::function<void()> m_changed;
    std::u16string m_title;
    std::shared_ptr<NSMenu> m_menu;
    NSInteger m_tag = 0;
    bool m_wraps = false;
};

} // namespace platform
