// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSColorWell.h>

#include <QAbstractButton>

namespace platform::qt {

/// A framed colour; a checkerboard shows through a translucent one. A click opens the panel of colours; a colour can be
/// dragged out and dropped in.
class ColorWellWidget final : public QAbstractButton {
public:
    explicit ColorWellWidget(QWidget* parent);

    void setWell(const std::shared_ptr<NSColorWell>& well) { m_well = well; }
    void setColor(const QColor& color);
    const QColor& color() const { return m_color; }
    QSize sizeHint() const override { return {44, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void pick(const QColor& color);
    void openPanel();
    void dragOut();

    std::weak_ptr<NSColorWell> m_well;
    QColor m_color;
    QPoint m_pressed;
};

std::unique_ptr<ViewPeer> makeColorWellPeer(const std::shared_ptr<NSColorWell>& view, ColorWellWidget& widget);

} // namespace platform::qt
