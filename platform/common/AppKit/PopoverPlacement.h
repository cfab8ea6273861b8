// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSGeometry.h>

namespace platform {

/// How far the arrow stands out, and how wide it is at its foot, in points.
inline constexpr double popoverArrowLength = 10;
inline constexpr double popoverArrowWidth = 22;
/// The radius of the body's corners, in points.
inline constexpr double popoverCornerRadius = 8;

/// Where a popover stands, in the coordinates of a screen whose vertical axis points down.
struct PopoverPlacement {
    /// Without the arrow.
    NSRect body;
    /// The edge of the anchor at which it stands; the arrow is at the opposite side of the body.
    NSRectEdge edge = NSRectEdge::maxY;
    /// Where the arrow's tip points: on the anchor's edge.
    NSPoint tip;
    bool operator==(const PopoverPlacement&) const = default;
};

/// Finds the place for a body of `size` beside `anchor` on `screen`.
///
/// The first edge with room for it is taken: the preferred one, the opposite one, then the roomier of the other two.
/// Where no edge has room, the roomiest is taken and the body cut to what is there, though not below a size at which
/// something can still be seen. The body is centred on the anchor as far as the screen allows.
PopoverPlacement placePopover(NSRect anchor, NSSize size, NSRect screen, NSRectEdge preferred);

} // namespace platform
