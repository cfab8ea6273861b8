// SPDX-License-Identifier: MIT
#pragma once

#include <QAction>

namespace platform {
class NSImage;
}

namespace platform::qt {

/// Has the line of a menu show the picture in the place of its title, as large as it is. What the picture says is what
/// assistive technology reads.
void showPicture(QAction& line, const NSImage& image);

} // namespace platform::qt
