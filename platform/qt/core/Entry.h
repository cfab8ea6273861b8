// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace platform::qt {

/// Every handler of a toolkit event runs inside this: no exception gets out of it.
void enter(const std::function<void()>& handler);

/// Whether such a handler is running, so that the widget it belongs to must not be deleted at once.
bool insideEntry();

} // namespace platform::qt
