// SPDX-License-Identifier: MIT
#include "FontSample.h"

#include "FontFace.h"
#include "Text.h"

#include <QFontInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace platform::qt {

namespace {

/// `font` at that size, where 13 points are what the widget's own font has.
QFont sized(QFont font, double points, const QFont& control) {
    const double regular = NSFont::systemFontSizeForControlSize(NSControlSize::regular);
    if (control.pixelSize() > 0)
        font.setPixelSize(qMax(1, qRound(control.pixelSize() * points / regular)));
    else
        font.setPointSizeF(control.pointSizeF() * points / regular);
    return font;
}

} // namespace

FontSample::FontSample(const NSMenuItem& item, const QFont& control)
    : m_text(toQt(item.title())), m_control(control), m_font(control) {
    const auto font = tell(item.attributedTitle(), &NSAttributedString::font);
    if (!font)
        return;
    if (font->isMenuFont()) {
        m_font = m_control = sized(control, font->pointSize(), control);
        return;
    }
    const auto face = FontFace::named(font->fontName());
    if (!face)
        return;
    if (!face->covers(m_text)) {
        // A face of signs alone shows some of them beside its name.
        m_symbolic = face->isSymbolic();
        if (m_symbolic) {
            m_outlines =
                face->outlines(face->firstSigns(4), QFontInfo(sized(control, font->pointSize(), control)).pixelSize());
            m_means = m_outlines.isEmpty() ? m_means : Means::outlines;
            m_symbolic = !m_outlines.isEmpty();
        }
        return;
    }
    const auto drawn = sized(face->toolkitFont(), font->pointSize(), control);
    auto path = face->outlines(m_text, QFontInfo(drawn).pixelSize());
    if (path.isEmpty())
        return;
    m_symbolic = face->isSymbolic();
    if (face->isWhatToolkitSets(m_text, drawn)) {
        m_means = Means::toolkit;
        m_font = drawn;
    } else {
        m_means = Means::outlines;
        m_outlines = std::move(path);
    }
}

void FontSample::drawText(QPainter& painter, const QRect& rect, const QFont& font) const {
    // All lines stand on the baseline of the widget's own font, however tall their own is.
    const QFontMetricsF own(m_control);
    const double baseline = rect.y() + (rect.height() + own.ascent() - own.descent()) / 2;
    const QFontMetricsF metrics(font);
    const auto shown = metrics.elidedText(m_text, Qt::ElideRight, rect.width());
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const double x = mirrored ? rect.x() + rect.width() - std::ceil(metrics.horizontalAdvance(shown)) : rect.x();
    painter.setFont(font);
    painter.drawText(QPointF(x, qRound(baseline)), shown);
}

void FontSample::draw(QPainter& painter, const QRect& rect) const {
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    auto place = rect;
    if (m_symbolic) {
        drawText(painter, rect, m_control);
        const int taken = qRound(QFontMetricsF(m_control).horizontalAdvance(m_text + QLatin1String("  ")));
        place.adjust(mirrored ? 0 : taken, 0, mirrored ? -taken : 0, 0);
    }
    if (m_means == Means::outlines) {
        const QFontMetricsF own(m_control);
        painter.setRenderHint(QPainter::Antialiasing);
        const double width = std::min<double>(std::ceil(m_outlines.boundingRect().right()), place.width());
        painter.translate(mirrored ? place.x() + place.width() - width : place.x(),
                          qRound(place.y() + (place.height() + own.ascent() - own.descent()) / 2));
        painter.fillPath(m_outlines, painter.pen().color());
    } else if (place.width() > 0) {
        drawText(painter, place, m_font);
    }
    painter.restore();
}

} // namespace platform::qt
