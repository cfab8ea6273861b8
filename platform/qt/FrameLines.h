// SPDX-License-Identifier: MIT
#pragma once

class QFrame;

namespace platform::qt {

/// Where a point is one and a half pixels, the toolkit's own style draws the lines of a frame half a pixel outside of a
/// widget that begins between pixels, where they are cut off. Fills them once more; to be called when `frame` has been
/// painted.
void mendFrameLines(QFrame& frame);

} // namespace platform::qt
