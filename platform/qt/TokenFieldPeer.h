// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <QTextEdit>

namespace platform::qt {

/// Shows a token field's value as text.
std::unique_ptr<ViewPeer> makeTokenFieldPeer(QTextEdit& widget);

} // namespace platform::qt
