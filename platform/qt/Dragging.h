// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSDragging.h>

#include <QDropEvent>

namespace platform::qt {

/// The drag an event speaks of.
std::shared_ptr<NSDraggingInfo> draggingInfoOf(const QDropEvent& event);

/// The toolkit's word for an operation, of those it can do.
Qt::DropAction dropActionOf(NSDragOperation operation);

} // namespace platform::qt
