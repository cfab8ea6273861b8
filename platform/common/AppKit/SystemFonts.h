// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/FontSource.h>

namespace platform {

/// The faces fontconfig lists. Follows its configuration when that is read anew.
std::shared_ptr<FontSource> makeSystemFonts();

} // namespace platform
