// SPDX-License-Identifier: MIT
#include <AppKit/NSSegmentedControl.h>

#include <Foundation/NSException.h>

#include "Peers.h"

namespace platform {

std::u16string_view NSSegmentedControl::className() const {
    return u"NSSegmentedControl";
}

void NSSegmentedControl::setSegmentCount(NSInteger count) {
    m_selected.resize(static_cast<std::size_t>(std::max<NSInteger>(count, 0)));
}

bool NSSegmentedControl::isSelectedForSegment(NSInteger segment) const {
    if (segment < 0 || segment >= segmentCount())
        throw NSRangeException("no segment " + std::to_string(segment));
    return m_selected[static_cast<std::size_t>(segment)];
}

void NSSegmentedControl::setSelectedForSegment(bool selected, NSInteger segment) {
    if (segment < 0 || segment >= segmentCount())
        throw NSRangeException("no segment " + std::to_string(segment));
    m_selected[static_cast<std::size_t>(segment)] = selected;
    if (auto* shown = dynamic_cast<SegmentedPeer*>(peer()))
        shown->setSelected(segment, selected);
}

void NSSegmentedControl::userTogglesSegment(NSInteger segment) {
    if (!isEnabled())
        return;
    setSelectedForSegment(!isSelectedForSegment(segment), segment);
    sendAction();
}

void NSSegmentedControl::showAll() {
    NSControl::showAll();
    for (NSInteger segment = 0; segment < segmentCount(); ++segment)
        setSelectedForSegment(isSelectedForSegment(segment), segment);
}

} // namespace platform
