// SPDX-License-Identifier: MIT
#pragma once

// For hosts written in Qt: from the platform's views and windows to widgets, and back.

#include <AppKit/NSDragging.h>
#include <AppKit/NSWindow.h>

class QMimeData;
class QPixmap;
class QWidget;

namespace platform {

/// The widget that shows `view`; null where it has none, or the widget is gone. It stays the view's: a host puts the
/// widget of a root view into its window, and a root without parent is deleted with its view.
QWidget* widgetOf(const NSView& view);

/// The window `widget` stands in: one object per top-level widget as long as that lives. What the views in it answer as
/// their window is this object.
std::shared_ptr<NSWindow> windowOf(QWidget& widget);

/// Says that a drag runs which began in this program. As long as it lives, what is dragged over the layer's views comes
/// from `source` and carries `pasteboard`; without one, a drag from another widget of the program has an unnamed
/// source, and one from elsewhere has none.
class RunningDrag {
public:
    RunningDrag(std::shared_ptr<NSObject> source, std::shared_ptr<NSPasteboard> pasteboard);
    ~RunningDrag();
    RunningDrag(const RunningDrag&) = delete;
    RunningDrag& operator=(const RunningDrag&) = delete;

private:
    std::shared_ptr<NSDraggingInfo> m_former;
};

/// The data of the pasteboard, the names of the types as format names.
std::unique_ptr<QMimeData> mimeDataOf(const NSPasteboard& pasteboard);

/// Runs a drag that moves, from `widget`, with a picture under the pointer, until it is dropped or given up. Answers
/// what was done.
NSDragOperation runDrag(QWidget& widget, const std::shared_ptr<NSObject>& source,
                        const std::shared_ptr<NSPasteboard>& pasteboard, const QPixmap& picture);

} // namespace platform
