// SPDX-License-Identifier: MIT
#include "PaneArea.h"

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace app {

PaneArea::PaneArea(QWidget* contents) {
    setObjectName(QStringLiteral("paneArea"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(contents);
}

void PaneArea::setRoom(QSize room) {
    m_room = room;
    updateGeometry();
}

QSize PaneArea::sizeHint() const {
    return widget()->sizeHint().expandedTo(minimumSizeHint());
}

QSize PaneArea::minimumSizeHint() const {
    const auto whole = widget()->minimumSizeHint();
    auto size = whole;
    // What has to be scrolled one way needs the bar for it the other way.
    if (whole.height() > m_room.height())
        size.rwidth() += verticalScrollBar()->sizeHint().width();
    if (size.width() > m_room.width())
        size.rheight() += horizontalScrollBar()->sizeHint().height();
    return size.boundedTo(m_room);
}

bool PaneArea::eventFilter(QObject* object, QEvent* event) {
    if (object == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(object, event);
}

bool PaneArea::focusNextPrevChild(bool next) {
    if (!QScrollArea::focusNextPrevChild(next))
        return false;
    const auto* focus = focusWidget();
    if (!focus)
        return true;
    // The toolkit shows the caret alone, and scrolls the wrong way where lines run to the left.
    const QRect place(focus->mapTo(widget(), QPoint(0, 0)), focus->size());
    const QRect seen(-widget()->pos(), viewport()->size());
    const auto missing = [](int first, int last, int from, int to) {
        return first < from ? first - from : std::clamp(last - to, 0, first - from);
    };
    const int right = missing(place.left(), place.right(), seen.left(), seen.right());
    const int down = missing(place.top(), place.bottom(), seen.top(), seen.bottom());
    auto* across = horizontalScrollBar();
    across->setValue(across->value() + (isRightToLeft() ? -right : right));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + down);
    return true;
}

} // namespace app
