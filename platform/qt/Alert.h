// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform::qt {

/// A bundle's word for "Cancel": a button of that title answers Escape.
void noteCancelTitle(const std::u16string& title);

} // namespace platform::qt
