// SPDX-License-Identifier: MIT
#include "PopUpPeer.h"

#include <QKeyEvent>

namespace platform::qt {

void PopUpWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
        showPopup();
        break;
    default:
        event->ignore();
    }
}

void PopUpWidget::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

std::unique_ptr<ViewPeer> makePopUpPeer(PopUpWidget& widget) {
    return std::make_unique<WidgetPeer>(widget);
}

} // namespace platform::qt
