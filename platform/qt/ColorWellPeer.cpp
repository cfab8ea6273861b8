// SPDX-License-Identifier: MIT
#include "ColorWellPeer.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace platform::qt {

namespace {

constexpr int square = 5; // of the checkerboard, in pixels

void paintCheckerboard(QPainter& painter, const QRect& area) {
    painter.fillRect(area, Qt::white);
    for (int y = 0; y * square < area.height(); ++y)
        for (int x = y % 2; x * square < area.width(); x += 2)
            painter.fillRect(QRect(area.left() + x * square, area.top() + y * square, square, square) & area,
                             Qt::lightGray);
}

QColor toQColor(const NSColor& color) {
    const auto channel = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    return QColor::fromRgbF(channel(color.redComponent()), channel(color.greenComponent()),
                            channel(color.blueComponent()), channel(color.alphaComponent()));
}

class WellPeer final : public WidgetPeer, public ColorWellPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setColor(const NSColor& color) override {
        if (auto* well = as<ColorWellWidget>())
            well->setColor(toQColor(color));
    }
};

} // namespace

ColorWellWidget::ColorWellWidget(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorWellWidget::setColor(const QColor& color) {
    m_color = color;
    update();
}

void ColorWellWidget::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton frame;
    frame.initFrom(this);
    frame.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
    painter.drawControl(QStyle::CE_PushButtonBevel, frame);

    const auto area = rect().adjusted(5, 5, -5, -5);
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    if (m_color.alpha() < 255)
        paintCheckerboard(painter, area);
    painter.fillRect(area, m_color);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area.adjusted(0, 0, -1, -1));
}

std::unique_ptr<ViewPeer> makeColorWellPeer(ColorWellWidget& widget) {
    return std::make_unique<WellPeer>(widget);
}

} // namespace platform::qt
