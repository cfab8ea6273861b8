// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSColorWell.h>

#include <QAbstractButton>

namespace platform::qt {

/// A framed colour; a checkerboard shows through a translucent one.
class ColorWellWidget final : public QAbstractButton {
public:
    explicit ColorWellWidget(QWidget* parent);

    void setColor(const QColor& color);
    const QColor& color() const { return m_color; }
    QSize sizeHint() const override { return {44, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};

std::unique_ptr<ViewPeer> makeColorWellPeer(ColorWellWidget& widget);

} // namespace platform::qt
