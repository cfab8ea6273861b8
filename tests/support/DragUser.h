// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSDragging.h>
#include <PlatformQt/Bridge.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QWidget>

namespace testing_support {

/// Drags a pasteboard over a widget: sends what the toolkit sends while a drag runs.
class DragUser {
public:
    DragUser(QWidget& over, const platform::NSPasteboard& pasteboard)
        : m_over(over), m_mime(platform::mimeDataOf(pasteboard)) {}

    /// Answers whether the widget wants to hear more.
    bool enters(const QPoint& at) {
        QDragEnterEvent event(at, Qt::MoveAction | Qt::CopyAction, m_mime.get(), Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(&m_over, &event);
        return m_inside = event.isAccepted();
    }
    /// Answers what a drop there would do.
    Qt::DropAction moves(const QPoint& at) {
        if (!m_inside && !enters(at))
            return Qt::IgnoreAction;
        QDragMoveEvent event(at, Qt::MoveAction | Qt::CopyAction, m_mime.get(), Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(&m_over, &event);
        m_at = at;
        return m_last = event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    }
    void leaves() {
        QDragLeaveEvent event;
        QApplication::sendEvent(&m_over, &event);
        m_inside = false;
    }
    /// Lets go where it is; over a place that refuses the toolkit sends a leave instead. Answers whether it was taken.
    bool drops() {
        if (m_last == Qt::IgnoreAction) {
            leaves();
            return false;
        }
        QDropEvent event(m_at, Qt::MoveAction | Qt::CopyAction, m_mime.get(), Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(&m_over, &event);
        m_inside = false;
        return event.isAccepted();
    }
    bool dropsAt(const QPoint& at) {
        moves(at);
        return drops();
    }

private:
    QWidget& m_over;
    std::unique_ptr<QMimeData> m_mime;
    QPoint m_at;
    Qt::DropAction m_last = Qt::IgnoreAction;
    bool m_inside = false;
};

} // namespace testing_support
