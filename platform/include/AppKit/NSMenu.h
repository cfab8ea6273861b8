// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

namespace platform {

/// A menu, which a table shows by a right click and a pop-up button by a click.
class NSMenu final : public NSObject {};

} // namespace platform
