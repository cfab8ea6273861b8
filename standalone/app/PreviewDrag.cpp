// SPDX-License-Identifier: MIT
#include "PreviewDrag.h"

#include "Session.h"

#include <Foundation/NSException.h>

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QImage>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace app {

namespace {

/// The picture of a preview that is a window of its own.
QWidget* tornOffPicture(QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget && widget->objectName() == QLatin1String("imageView") && widget->window()->isWindow() &&
                   !(widget->window()->windowFlags() & Qt::FramelessWindowHint)
               ? widget
               : nullptr;
}

} // namespace

PreviewDrag::PreviewDrag(Session& session, QObject* parent) : QObject(parent), m_session(session) {
    qApp->installEventFilter(this);
}

bool PreviewDrag::eventFilter(QObject* object, QEvent* event) {
    const auto type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
        return false;
    auto* picture = tornOffPicture(object);
    if (!picture)
        return false;
    const auto& mouse = *static_cast<QMouseEvent*>(event);
    const auto place = mouse.globalPosition().toPoint();
    if (type == QEvent::MouseButtonPress) {
        m_pressed = mouse.button() == Qt::LeftButton;
        m_press = place;
    } else if (type == QEvent::MouseButtonRelease) {
        m_pressed = false;
    } else if (m_pressed && (mouse.buttons() & Qt::LeftButton) &&
               (place - m_press).manhattanLength() >= QApplication::startDragDistance()) {
        m_pressed = false;
        platform::runGuarded([&] { drag(*picture); });
        return true;
    }
    return false;
}

QMimeData* PreviewDrag::content() {
    const auto file = m_session.previewAsPng();
    if (!file)
        return nullptr;
    const auto path = QString::fromStdString(file->string());
    auto* mime = new QMimeData;
    mime->setUrls({QUrl::fromLocalFile(path)});
    mime->setImageData(QImage(path));
    return mime;
}

bool PreviewDrag::copy() {
    auto* mime = content();
    if (mime)
        QApplication::clipboard()->setMimeData(mime);
    return mime != nullptr;
}

void PreviewDrag::drag(QWidget& from) {
    auto* mime = content();
    if (!mime)
        return;
    constexpr int shownSize = 160;
    auto* drag = new QDrag(&from); // the toolkit deletes it
    drag->setPixmap(
        QPixmap::fromImage(qvariant_cast<QImage>(mime->imageData())
                               .scaled(shownSize, shownSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    drag->setMimeData(mime);
    drag->exec(Qt::CopyAction);
}

} // namespace app
