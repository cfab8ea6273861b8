// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>

namespace platform {

/// States of a button.
inline constexpr NSInteger NSControlStateValueOff = 0;
inline constexpr NSInteger NSControlStateValueOn = 1;

/// A push button, a check box, or a button that stays in.
class NSButton final : public NSControl {
public:
    std::u16string_view className() const override;

    const std::u16string& title() const { return m_title; }
    void setTitle(const std::u16string& title);

    /// 0 off, 1 on.
    NSInteger state() const { return m_state; }
    void setState(NSInteger state);

    /// Whether a click turns the state over before the action is sent.
    bool toggles() const { return m_toggles; }
    void setToggles(bool toggles) { m_toggles = toggles; }

    /// The user pressed it: turns the state over where the button toggles, then sends the action. Disabled: nothing.
    void performClick();

protected:
    void showAll() override;

private:
    std::u16string m_title;
    NSInteger m_state = NSControlStateValueOff;
    bool m_toggles = false;
};

} // namespace platform
