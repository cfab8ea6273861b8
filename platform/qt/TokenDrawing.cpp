// SPDX-License-Identifier: MIT
#include "TokenDrawing.h"

#include "Peers.h"
#include "Picture.h"
#include "QtToolkit.h"
#include "Text.h"

#include <QApplication>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace platform::qt {

namespace {

constexpr double beside = 1;    // between the outline and what stands next to the token
constexpr double longest = 320; // a longer title is shortened in its middle

double padding(const QFontMetricsF& metrics) {
    return std::ceil(metrics.height() * 0.45);
}

QColor blend(const QColor& under, const QColor& over, double share) {
    const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue())};
}

} // namespace

QSizeF tokenSize(const QString& title, const QFont& font) {
    const QFontMetricsF metrics(font);
    const auto width = std::min(metrics.horizontalAdvance(title), longest);
    return {std::ceil(width + 2 * (padding(metrics) + beside)), std::ceil(metrics.ascent()) + 1 + belowBaseline(font)};
}

double belowBaseline(const QFont& font) {
    return std::ceil(QFontMetricsF(font).descent()) + 1;
}

void drawToken(QPainter& painter, const QRectF& place, const QString& title, const QFont& font, const QPalette& palette,
               NSTokenStyle style, bool selected) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    const auto base = palette.color(QPalette::Base);
    const auto accent = palette.color(QPalette::Highlight);
    const auto outline = place.adjusted(beside + 0.5, 0.5, -beside - 0.5, -0.5);
    if (style != NSTokenStyle::plainSquared || selected) {
        const double radius =
            style == NSTokenStyle::squared || style == NSTokenStyle::plainSquared ? 2 : outline.height() / 2;
        // The title of a selected token stands out from its fill as well in every palette.
        const auto letters = palette.color(QPalette::HighlightedText);
        const QColor away = letters.lightness() > 127 ? Qt::black : Qt::white;
        painter.setBrush(selected ? blend(accent, away, 0.2) : blend(base, accent, 0.18));
        painter.setPen(selected ? blend(accent, letters, 0.5) : blend(base, accent, 0.6));
        painter.drawRoundedRect(outline, radius, radius);
    }
    const QFontMetricsF metrics(font);
    painter.setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    const auto room = outline.width() - 2 * padding(metrics) + 2;
    const auto shown = metrics.elidedText(title, Qt::ElideMiddle, room);
    const QPointF start(outline.center().x() - metrics.horizontalAdvance(shown) / 2,
                        place.bottom() - belowBaseline(font));
    painter.drawText(start, shown);
    painter.restore();
}

namespace {

QFont fontOfSize(NSControlSize size) {
    auto font = QApplication::font();
    const double share = size == NSControlSize::regular ? 1 : size == NSControlSize::small ? 0.92 : 0.8;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * share);
    return font;
}

bool hasScreen() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

class ImageCanvas final : public Canvas {
public:
    explicit ImageCanvas(NSSize size) {
        const double scale = hasScreen() ? qApp->devicePixelRatio() : 1;
        m_image = QImage(static_cast<int>(std::ceil(std::max(size.width, 1.0) * scale)),
                         static_cast<int>(std::ceil(std::max(size.height, 1.0) * scale)),
                         QImage::Format_ARGB32_Premultiplied);
        m_image.setDevicePixelRatio(scale);
        m_image.fill(Qt::transparent);
    }

    void drawToken(const std::u16string& title, NSControlSize size, NSRect frame) override {
        m_said += (m_said.isEmpty() ? QString() : QStringLiteral(" ")) + toQt(title);
        if (!hasScreen())
            return;
        QPainter painter(&m_image);
        qt::drawToken(painter, {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height}, toQt(title),
                      fontOfSize(size), QApplication::palette(), NSTokenStyle::rounded, false);
    }
    std::shared_ptr<const Picture> picture() const override { return std::make_shared<QtPicture>(m_image, m_said); }

private:
    QImage m_image;
    QString m_said;
};

} // namespace

std::shared_ptr<Canvas> makeCanvas(NSSize size) {
    return std::make_shared<ImageCanvas>(size);
}

NSSize sizeOfToken(const std::u16string& title, NSControlSize size) {
    if (!hasScreen())
        return {1, 1};
    const auto taken = tokenSize(toQt(title), fontOfSize(size));
    return {taken.width(), taken.height()};
}

} // namespace platform::qt
