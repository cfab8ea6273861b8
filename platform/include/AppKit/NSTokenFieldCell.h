// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSCell.h>
#include <Foundation/NSGeometry.h>

namespace platform {

/// A token as a picture: its title in a rounded outline.
class NSTokenFieldCell final : public NSCell {
public:
    /// `initTextCell:`
    explicit NSTokenFieldCell(const std::u16string& title) { setTitle(title); }
    ~NSTokenFieldCell() override;

    NSControlSize controlSize() const { return m_controlSize; }
    void setControlSize(NSControlSize size) { m_controlSize = size; }
    /// The characters that part the title into tokens; where it has none of them it is one token. "," at first.
    const std::u16string& tokenizingCharacterSet() const { return m_tokenizingCharacterSet; }
    void setTokenizingCharacterSet(const std::u16string& characters) { m_tokenizingCharacterSet = characters; }

    /// The size it takes within `bounds`, in points.
    NSSize cellSizeForBounds(NSRect bounds) const;
    /// Draws into the picture that has the focus; `view` is for cells that have one, and null draws there.
    void drawWithFrameInView(NSRect frame, const std::shared_ptr<NSView>& view) const;

private:
    std::vector<std::u16string> tokens() const;

    std::u16string m_tokenizingCharacterSet = u",";
    NSControlSize m_controlSize = NSControlSize::regular;
};

/// The line breaks, as characters of a set.
inline const std::u16string newlineCharacterSet = u"\n\v\f\r\u0085\u2028\u2029";

} // namespace platform
