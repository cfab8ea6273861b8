// SPDX-License-Identifier: MIT
#pragma once

#include <app/Window.h>

namespace cli {

/// The library of the window, which is opened when it is first asked for. Throws `std::runtime_error` where it is
/// missing.
const app::WindowLibrary& windowLibrary();

} // namespace cli
