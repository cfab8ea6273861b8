// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSControl.h>

namespace platform {

/// Shows a colour and lets the user choose another.
class NSColorWell final : public NSControl {
public:
    NSColorWell();
    std::u16string_view className() const override;

    const std::shared_ptr<const NSColor>& color() const { return m_color; }
    /// Raises NSInvalidArgumentException for null.
    void setColor(const std::shared_ptr<const NSColor>& color);

    /// The user picked a colour in the panel, or dropped one: takes it, then sends the action. Nothing while disabled.
    void userPicks(const std::shared_ptr<const NSColor>& color);

protected:
    void showAll() override;

private:
    std::shared_ptr<const NSColor> m_color;
};

} // namespace platform
