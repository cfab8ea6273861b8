// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>

namespace platform {

/// A row of small buttons of which any can be on.
class NSSegmentedControl final : public NSControl {
public:
    std::u16string_view className() const override;

    NSInteger segmentCount() const { return static_cast<NSInteger>(m_selected.size()); }
    void setSegmentCount(NSInteger count);

    /// Raises NSRangeException for a segment that is not there.
    bool isSelectedForSegment(NSInteger segment) const;
    void setSelectedForSegment(bool selected, NSInteger segment);

    /// The user clicked a segment: turns it over, then sends the action.
    void userTogglesSegment(NSInteger segment);

protected:
    void showAll() override;

private:
    std::vector<bool> m_selected;
};

} // namespace platform
