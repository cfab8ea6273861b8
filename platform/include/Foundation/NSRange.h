// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace platform {

/// Some neighbouring places: of characters in UTF-16 units, of elements one each.
struct NSRange {
    NSUInteger location = 0;
    NSUInteger length = 0;
    bool operator==(const NSRange&) const = default;
};

} // namespace platform
