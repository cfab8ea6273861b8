// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace host {

/// How a stamp's border is drawn. Stored as the plain number, which is also the tag of the item in the style menu.
///
/// A number that is no style is drawn as `rectangle`.
enum class BorderStyle : platform::NSInteger {
    none = 0, ///< Neither border nor fill, whatever the flags say.
    rectangle = 1,
    roundedRectangle = 2,
    oval = 3,
    doubleLine = 4,
    dashed = 5,
    underline = 6, ///< One line along the bottom edge.
    cornerMarks = 7,
};

} // namespace host
