// SPDX-License-Identifier: MIT
#include "PopoverPlacement.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr double smallestSide = 120;

/// What an edge means on the screen: the axis along which the popover is moved away from the anchor, and whether
/// towards larger coordinates. By code of the edge. The greatest y is the upper edge, and up is less on the screen.
struct Direction {
    bool vertical;
    bool towardsMore;
    NSRectEdge opposite;
};
constexpr std::array<Direction, 4> directions{{
    {false, false, NSRectEdge::maxX}, // minX: to the left
    {true, true, NSRectEdge::maxY},   // minY: below
    {false, true, NSRectEdge::minX},  // maxX: to the right
    {true, false, NSRectEdge::minY},  // maxY: above
}};

constexpr const Direction& directionOf(NSRectEdge edge) {
    return directions[static_cast<std::size_t>(edge)];
}

/// A rectangle's extent on one axis.
struct Span {
    double low;
    double length;
    double high() const { return low + length; }
    double middle() const { return low + length / 2; }
};

Span spanOf(const NSRect& rect, bool vertical) {
    return vertical ? Span{rect.origin.y, rect.size.height} : Span{rect.origin.x, rect.size.width};
}

/// From the anchor's edge to the screen's, less the arrow.
double roomAt(NSRectEdge edge, const NSRect& anchor, const NSRect& screen) {
    const auto& direction = directionOf(edge);
    const auto from = spanOf(anchor, direction.vertical);
    const auto limits = spanOf(screen, direction.vertical);
    return (direction.towardsMore ? limits.high() - from.high() : from.low - limits.low) - popoverArrowLength;
}

/// `span` moved into `limits`; one that is longer begins where they begin.
Span movedInto(Span span, Span limits) {
    return {std::max(limits.low, std::min(span.low, limits.high() - span.length)), span.length};
}

} // namespace

PopoverPlacement placePopover(NSRect anchor, NSSize size, NSRect screen, NSRectEdge preferred) {
    const auto room = [&](NSRectEdge edge) { return roomAt(edge, anchor, screen); };
    const auto roomier = [&](NSRectEdge a, NSRectEdge b) { return room(b) > room(a) ? b : a; };
    const auto opposite = directionOf(preferred).opposite;
    const auto aside = directionOf(preferred).vertical ? roomier(NSRectEdge::maxX, NSRectEdge::minX)
                                                       : roomier(NSRectEdge::maxY, NSRectEdge::minY);
    auto edge = roomier(roomier(preferred, opposite), aside);
    for (const auto candidate : {preferred, opposite, aside})
        if (spanOf({{}, size}, directionOf(candidate).vertical).length <= room(candidate)) {
            edge = candidate;
            break;
        }

    // Along the way from the anchor, and across it.
    const auto& [vertical, towardsMore, unused] = directionOf(edge);
    const auto anchorAlong = spanOf(anchor, vertical);
    const double wantedAlong = vertical ? size.height : size.width;
    const double wantedAcross = vertical ? size.width : size.height;
    const double lengthAlong = std::min(wantedAlong, std::max(room(edge), smallestSide));
    Span along{towardsMore ? anchorAlong.high() + popoverArrowLength
                           : anchorAlong.low - popoverArrowLength - lengthAlong,
               lengthAlong};
    along = movedInto(along, spanOf(screen, vertical));
    const auto limitsAcross = spanOf(screen, !vertical);
    const double lengthAcross = std::min(wantedAcross, std::max(limitsAcross.length, smallestSide));
    const double middle = spanOf(anchor, !vertical).middle();
    const auto across = movedInto({middle - lengthAcross / 2, lengthAcross}, limitsAcross);

    // The arrow keeps clear of the round corners.
    const double clear = std::min(popoverCornerRadius + popoverArrowWidth / 2, across.length / 2);
    const double tipAcross = std::clamp(middle, across.low + clear, across.high() - clear);
    const double tipAlong = towardsMore ? along.low - popoverArrowLength : along.high() + popoverArrowLength;

    PopoverPlacement placement;
    placement.edge = edge;
    if (vertical) {
        placement.body = {{across.low, along.low}, {across.length, along.length}};
        placement.tip = {tipAcross, tipAlong};
    } else {
        placement.body = {{along.low, across.low}, {along.length, across.length}};
        placement.tip = {tipAlong, tipAcross};
    }
    return placement;
}

} // namespace platform
