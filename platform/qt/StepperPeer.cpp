// SPDX-License-Identifier: MIT
#include "StepperPeer.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QStyleOptionSpinBox>
#include <QStylePainter>
#include <QTimerEvent>

namespace platform::qt {

namespace {

/// How much of the spin box lies hidden beside the widget, where the text would be.
constexpr int hiddenText = 60;

} // namespace

StepperWidget::StepperWidget(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QStyleOptionSpinBox StepperWidget::option() const {
    QStyleOptionSpinBox option;
    option.initFrom(this);
    option.rect = isLeftToRight() ? rect().adjusted(-hiddenText, 0, 0, 0) : rect().adjusted(0, 0, hiddenText, 0);
    option.frame = true;
    option.subControls = QStyle::SC_All;
    option.stepEnabled = QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled;
    if (m_held) {
        option.activeSubControls = m_held > 0 ? QStyle::SC_SpinBoxUp : QStyle::SC_SpinBoxDown;
        option.state |= QStyle::State_Sunken;
    }
    return option;
}

QSize StepperWidget::sizeHint() const {
    // As high as a spin box of one line, and as wide as its arrows.
    auto box = option();
    const QSize text(hiddenText,
                     QLineEdit().sizeHint().height() - 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth));
    const int height = style()->sizeFromContents(QStyle::CT_SpinBox, &box, text, this).height();
    box.rect = QRect(0, 0, 2 * hiddenText, height);
    box.direction = Qt::LeftToRight;
    const auto up = style()->subControlRect(QStyle::CC_SpinBox, &box, QStyle::SC_SpinBoxUp, this);
    return {box.rect.right() - up.left() + 1, height};
}

void StepperWidget::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_SpinBox, option());
}

void StepperWidget::step(int direction) {
    enter([this, direction] {
        // What is being typed counts first; a text that is refused stops the counting.
        if (!endEditingInWindow(*this))
            release();
        else if (m_stepped)
            m_stepped(direction);
    });
}

void StepperWidget::release() {
    m_repeat.stop();
    m_held = 0;
    update();
}

void StepperWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_held = event->position().y() < height() / 2.0 ? 1 : -1;
    update();
    m_repeat.start(style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatThreshold, nullptr, this), this);
    step(m_held);
}

void StepperWidget::mouseReleaseEvent(QMouseEvent*) {
    release();
}

void StepperWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_repeat.timerId())
        return;
    m_repeat.start(style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatRate, nullptr, this), this);
    step(m_held);
}

void StepperWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Up)
        step(1);
    else if (event->key() == Qt::Key_Down)
        step(-1);
    else
        event->ignore();
}

void StepperWidget::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void StepperWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        release();
}

void StepperWidget::hideEvent(QHideEvent*) {
    release();
}

std::unique_ptr<ViewPeer> makeStepperPeer(const std::shared_ptr<NSStepper>& view, StepperWidget& widget) {
    widget.setView(view);
    widget.setStepped(
        [weak = std::weak_ptr<NSStepper>(view)](int direction) { tell(weak, &NSStepper::userSteps, direction); });
    return std::make_unique<WidgetPeer>(widget);
}

} // namespace platform::qt
