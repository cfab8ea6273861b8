// SPDX-License-Identifier: MIT
#include "ButtonGroupKeys.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace platform::qt {

ButtonGroupKeys::ButtonGroupKeys(QWidget& container, Arrows arrows) : QObject(&container), m_arrows(arrows) {
    for (auto* button : container.findChildren<QAbstractButton*>()) {
        if (!button->isCheckable())
            continue;
        m_buttons.emplace_back(button);
        button->installEventFilter(this);
        connect(button, &QAbstractButton::toggled, this, [this](bool on) {
            if (on)
                stopAtTheOneThatIsOn();
        });
    }
    if (!m_buttons.empty())
        stopAt(m_buttons.front());
    stopAtTheOneThatIsOn();
}

bool ButtonGroupKeys::eventFilter(QObject* watched, QEvent* event) {
    auto* button = qobject_cast<QAbstractButton*>(watched);
    if (!button)
        return false;
    if (event->type() == QEvent::FocusIn)
        stopAt(button);
    else if (event->type() == QEvent::FocusOut)
        stopAtTheOneThatIsOn();
    else if (event->type() == QEvent::KeyPress && m_arrows == Arrows::move)
        return move(*button, static_cast<QKeyEvent*>(event)->key());
    return false;
}

bool ButtonGroupKeys::move(const QAbstractButton& from, int key) {
    const QPoint step = key == Qt::Key_Left    ? QPoint(-1, 0)
                        : key == Qt::Key_Right ? QPoint(1, 0)
                        : key == Qt::Key_Up    ? QPoint(0, -1)
                        : key == Qt::Key_Down  ? QPoint(0, 1)
                                               : QPoint();
    if (step.isNull())
        return false;
    QAbstractButton* nearest = nullptr;
    int least = 0;
    for (const auto& button : m_buttons) {
        if (!button || button == &from || !button->isEnabled() || !button->isVisible())
            continue;
        const QRect there = button->geometry();
        const QRect here = from.geometry();
        const bool beside = step.x() != 0 ? there.top() <= here.bottom() && there.bottom() >= here.top()
                                          : there.left() <= here.right() && there.right() >= here.left();
        const int distance = QPoint::dotProduct(there.center() - here.center(), step);
        if (!beside || distance <= 0 || (nearest && distance >= least))
            continue;
        nearest = button;
        least = distance;
    }
    if (nearest)
        nearest->setFocus(Qt::OtherFocusReason);
    return true;
}

void ButtonGroupKeys::stopAt(const QAbstractButton* button) {
    for (const auto& each : m_buttons)
        if (each)
            each->setFocusPolicy(each == button ? Qt::StrongFocus : Qt::ClickFocus);
}

void ButtonGroupKeys::stopAtTheOneThatIsOn() {
    const QAbstractButton* on = nullptr;
    for (const auto& button : m_buttons) {
        if (button && button->hasFocus())
            return;
        if (button && button->isChecked())
            on = button;
    }
    if (on)
        stopAt(on);
}

} // namespace platform::qt
