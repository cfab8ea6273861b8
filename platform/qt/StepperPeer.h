// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSStepper.h>

#include <QBasicTimer>

class QStyleOptionSpinBox;

namespace platform::qt {

/// The two arrows of a spin box without its text. A held arrow repeats; the up and down keys step too, the wheel does
/// not.
class StepperWidget final : public QWidget {
public:
    explicit StepperWidget(QWidget* parent);

    /// Told +1 or -1.
    void setStepped(std::function<void(int)> stepped) { m_stepped = std::move(stepped); }
    /// The stepper that is shown, for whoever asks about its value.
    void setView(const std::shared_ptr<NSStepper>& view) { m_view = view; }
    std::shared_ptr<NSStepper> view() const { return m_view.lock(); }
    /// As pressing the upper arrow does (1), or the lower one (-1).
    void step(int direction);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QStyleOptionSpinBox option() const;
    void release();

    std::weak_ptr<NSStepper> m_view;
    std::function<void(int)> m_stepped;
    QBasicTimer m_repeat;
    int m_held = 0;
};

std::unique_ptr<ViewPeer> makeStepperPeer(const std::shared_ptr<NSStepper>& view, StepperWidget& widget);

} // namespace platform::qt
