// SPDX-License-Identifier: MIT
#pragma once

namespace platform::qt {

/// Whether windows may be translucent: on an X server only while a compositing manager runs.
bool windowsBlend();

} // namespace platform::qt
