// SPDX-License-Identifier: MIT
#include "ScrollPeer.h"

#include <QGestureEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace platform::qt {

namespace {

constexpr double keyStep = 1.25;
constexpr double wheelStep = 1.25; // a notch

} // namespace

ScrollWidget::ScrollWidget(QWidget* parent) : QScrollArea(parent) {
    viewport()->grabGesture(Qt::PinchGesture);
}

bool ScrollWidget::allows() const {
    return tell(m_view, &NSScrollView::allowsMagnification);
}

void ScrollWidget::want(double factor, QPoint at) {
    m_pointer = at;
    enter([this, factor] { tell(m_view, &NSScrollView::userMagnifiesTo, m_magnification * factor); });
    m_pointer = {-1, -1};
}

void ScrollWidget::magnify(double magnification) {
    m_magnification = magnification;
    fitDocument();
}

void ScrollWidget::fitDocument() {
    auto* document = widget();
    if (!document)
        return;
    const auto at = viewport()->rect().contains(m_pointer) ? m_pointer : viewport()->rect().center();
    const QPointF before = document->mapFrom(viewport(), at);
    const QSizeF sizeBefore = document->size();
    document->resize((QSizeF(maximumViewportSize()) * m_magnification).toSize().expandedTo({1, 1}));
    if (sizeBefore.isEmpty())
        return;
    horizontalScrollBar()->setValue(qRound(before.x() * document->width() / sizeBefore.width()) - at.x());
    verticalScrollBar()->setValue(qRound(before.y() * document->height() / sizeBefore.height()) - at.y());
}

bool ScrollWidget::viewportEvent(QEvent* event) {
    if (!allows())
        return QScrollArea::viewportEvent(event);
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto& wheel = static_cast<QWheelEvent&>(*event);
        if (!(wheel.modifiers() & Qt::ControlModifier))
            break;
        want(std::pow(wheelStep, wheel.angleDelta().y() / 120.0), wheel.position().toPoint());
        event->accept();
        return true;
    }
    case QEvent::NativeGesture: {
        const auto& gesture = static_cast<QNativeGestureEvent&>(*event);
        if (gesture.gestureType() != Qt::ZoomNativeGesture)
            break;
        want(1 + gesture.value(), gesture.position().toPoint());
        return true;
    }
    case QEvent::Gesture:
        if (auto* pinch = static_cast<QPinchGesture*>(static_cast<QGestureEvent*>(event)->gesture(Qt::PinchGesture))) {
            want(pinch->scaleFactor(), viewport()->mapFromGlobal(pinch->centerPoint().toPoint()));
            return true;
        }
        break;
    default:
        break;
    }
    return QScrollArea::viewportEvent(event);
}

void ScrollWidget::keyPressEvent(QKeyEvent* event) {
    const QPoint middle = viewport()->rect().center();
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (!allows() || !control)
        QScrollArea::keyPressEvent(event);
    else if (event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal)
        want(keyStep, middle);
    else if (event->key() == Qt::Key_Minus)
        want(1 / keyStep, middle);
    else if (event->key() == Qt::Key_0)
        want(1 / m_magnification, middle);
    else
        QScrollArea::keyPressEvent(event);
}

void ScrollWidget::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitDocument();
}

void ScrollWidget::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    fitDocument();
}

namespace {

class MagnifyingPeer final : public WidgetPeer, public ScrollPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setMagnification(double magnification) override {
        if (auto* scroll = as<ScrollWidget>())
            scroll->magnify(magnification);
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeScrollPeer(const std::shared_ptr<NSScrollView>& view, ScrollWidget& widget) {
    widget.setView(view);
    return std::make_unique<MagnifyingPeer>(widget);
}

} // namespace platform::qt
