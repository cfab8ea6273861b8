// SPDX-License-Identifier: MIT
#include "NamedImage.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <cmath>
#include <numbers>

namespace platform::qt {

namespace {

/// A wheel with eight teeth, in a square of side 1.
QPainterPath gear() {
    constexpr int teeth = 8;
    constexpr double inner = 0.34;
    constexpr double outer = 0.48;
    QPolygonF edge;
    for (int i = 0; i < teeth * 4; ++i) {
        const double angle = (i - 0.5) * 2 * std::numbers::pi / (teeth * 4);
        const double radius = i % 4 < 2 ? outer : inner;
        edge << QPointF(0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle));
    }
    QPainterPath path;
    path.addPolygon(edge);
    path.closeSubpath();
    path.addEllipse(QPointF(0.5, 0.5), 0.15, 0.15);
    path.setFillRule(Qt::OddEvenFill);
    return path;
}

/// Draws the gear at any size and in the palette of the moment.
class GearEngine final : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const double side = std::min(rect.width(), rect.height());
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        painter->scale(side, side);
        painter->fillPath(gear(), QApplication::palette().color(group, QPalette::ButtonText));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
    }
    QIconEngine* clone() const override { return new GearEngine; }
};

} // namespace

QIcon namedImage(const std::u16string& name) {
    return name == u"NSActionTemplate" ? QIcon(new GearEngine) : QIcon();
}

} // namespace platform::qt
