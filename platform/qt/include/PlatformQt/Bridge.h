// SPDX-License-Identifier: MIT
#pragma once

// For hosts written in Qt: from the platform's views and windows to widgets, and back.

#include <AppKit/NSWindow.h>

class QWidget;

namespace platform {

/// The widget that shows `view`; null where it has none, or the widget is gone. It stays the view's: a host puts the
/// widget of a root view into its window, and a root without parent is deleted with its view.
QWidget* widgetOf(const NSView& view);

/// The window `widget` stands in: one object per top-level widget as long as that lives. What the views in it answer as
/// their window is this object.
std::shared_ptr<NSWindow> windowOf(QWidget& widget);

} // namespace platform
