// SPDX-License-Identifier: MIT
#pragma once

#include "Peers.h"

#include <QWidget>

namespace platform::qt {

/// The window in which the widget stands: null while its outermost widget is the root of an interface file that is not
/// shown on its own.
std::shared_ptr<NSWindow> windowShowing(const QWidget& widget);

/// Makes `frame` the window of the root of an interface file, wherever that root stands.
void frameRoot(QWidget& root, const std::shared_ptr<NSWindow>& frame);

} // namespace platform::qt
