// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>

namespace platform::qt {

/// The platform's image of that name, or the picture in the file of that absolute path: what is opaque in it is drawn
/// in the colour of text. A null icon for a name it does not know and a file that is no picture.
QIcon namedImage(const std::u16string& name);

} // namespace platform::qt
