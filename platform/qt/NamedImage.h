// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>

namespace platform::qt {

/// The platform's image of that name, drawn in the colour of text; a null icon for a name it does not know.
QIcon namedImage(const std::u16string& name);

} // namespace platform::qt
