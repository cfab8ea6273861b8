// SPDX-License-Identifier: MIT
#include "NamedImage.h"

#include "Text.h"

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

/// Draws a shape at any size and in the palette of the moment.
class TemplateEngine : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) final {
        const double side = std::min(rect.width(), rect.height());
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        fill(*painter, side, QApplication::palette().color(group, role));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
    }

protected:
    /// Draws into the square from the origin to (side, side).
    virtual void fill(QPainter& painter, double side, const QColor& color) = 0;
};

class GearEngine final : public TemplateEngine {
public:
    QIconEngine* clone() const override { return new GearEngine; }

protected:
    void fill(QPainter& painter, double side, const QColor& color) override {
        painter.scale(side, side);
        painter.fillPath(gear(), color);
    }
};

class FileEngine final : public TemplateEngine {
public:
    explicit FileEngine(QImage shape) : m_shape(std::move(shape)) {}
    QIconEngine* clone() const override { return new FileEngine(m_shape); }

protected:
    void fill(QPainter& painter, double side, const QColor& color) override {
        auto tinted = m_shape;
        QPainter tint(&tinted);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(tinted.rect(), color);
        tint.end();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(0, 0, side, side), tinted);
    }

private:
    QImage m_shape;
};

} // namespace

QIcon namedImage(const std::u16string& name) {
    if (name == u"NSActionTemplate")
        return QIcon(new GearEngine);
    const auto path = toQt(name);
    if (!path.startsWith(QLatin1Char('/')))
        return {};
    QImage shape(path);
    return shape.isNull() ? QIcon() : QIcon(new FileEngine(shape.convertToFormat(QImage::Format_ARGB32_Premultiplied)));
}

} // namespace platform::qt
