// SPDX-License-Identifier: MIT
#pragma once

namespace platform {

struct NSPoint {
    double x = 0;
    double y = 0;
    bool operator==(const NSPoint&) const = default;
};

struct NSSize {
    double width = 0;
    double height = 0;
    bool operator==(const NSSize&) const = default;
};

struct NSRect {
    NSPoint origin;
    NSSize size;
    bool operator==(const NSRect&) const = default;
};

/// A side of a rectangle whose vertical axis points up.
enum class NSRectEdge { minX = 0, minY = 1, maxX = 2, maxY = 3 };

} // namespace platform
