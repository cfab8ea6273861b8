// SPDX-License-Identifier: MIT
#include "RasterPainter.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <new>

namespace engine {

namespace {

void add(const Path& path, double scale, Point origin, QPainterPath& result) {
    const auto place = [&](Point point) { return QPointF(origin.x + point.x * scale, origin.y + point.y * scale); };
    for (const auto& element : path.elements)
        switch (element.verb) {
        case Path::Verb::move:
            result.moveTo(place(element.to));
            break;
        case Path::Verb::line:
            result.lineTo(place(element.to));
            break;
        case Path::Verb::cubic:
            result.cubicTo(place(element.control1), place(element.control2), place(element.to));
            break;
        case Path::Verb::close:
            result.closeSubpath();
            break;
        }
}

QColor colour(const Colour& value) {
    return QColor::fromRgbF(static_cast<float>(value.red), static_cast<float>(value.green),
                            static_cast<float>(value.blue), static_cast<float>(value.alpha));
}

void paintPictures(QPainter& painter, const GlyphRun& run) {
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(run.colour.alpha);
    for (const auto& glyph : run.glyphs) {
        const auto file = run.face->picture(glyph.glyph);
        const auto picture =
            QImage::fromData(reinterpret_cast<const uchar*>(file.data()), static_cast<int>(file.size()), "png");
        const Box box = run.face->extents(glyph.glyph, run.size, {glyph.x, glyph.y});
        if (picture.isNull() || box.width() <= 0)
            continue;
        // Pictures have their first row on top, the stamp's y runs up.
        painter.drawImage(QRectF(box.llx, box.lly, box.width(), box.height()), picture.mirrored());
    }
    painter.restore();
}

void paint(QPainter& painter, const GlyphRun& run) {
    if (run.face->isPictorial()) {
        paintPictures(painter, run);
        return;
    }
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const double scale = run.size / run.face->unitsPerEm();
    for (const auto& glyph : run.glyphs)
        add(run.face->outline(glyph.glyph), scale, {glyph.x, glyph.y}, path);
    if (run.outlined)
        painter.strokePath(
            path, QPen(QBrush(colour(run.colour)), run.strokeWidth, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    else
        painter.fillPath(path, colour(run.colour));
}

void paint(QPainter& painter, const PathShape& shape) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    add(shape.path, 1, {}, path);
    if (!shape.stroked) {
        painter.fillPath(path, colour(shape.colour));
        return;
    }
    QPen pen(QBrush(colour(shape.colour)), shape.strokeWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    if (!shape.dash.empty()) {
        QList<qreal> pattern; // in line widths
        for (const double length : shape.dash)
            pattern << length / shape.strokeWidth;
        pen.setDashPattern(pattern);
    }
    painter.strokePath(path, pen);
}

/// One channel over another: `below` * (1 - alpha) + premultiplied `above`, with rounding.
template <class Wide>
Wide over(Wide above, Wide below, Wide alpha, Wide full) {
    return std::min<Wide>(full, above + (below * (full - alpha) + full / 2) / full);
}

QRgb overOpaque(QRgb above, QRgb below) {
    const auto alpha = static_cast<unsigned>(qAlpha(above));
    const auto channel = [&](int a, int b) {
        return static_cast<int>(over<unsigned>(static_cast<unsigned>(a), static_cast<unsigned>(b), alpha, 255));
    };
    return qRgb(channel(qRed(above), qRed(below)), channel(qGreen(above), qGreen(below)),
                channel(qBlue(above), qBlue(below)));
}

QRgb overClear(QRgb above, QRgb below) {
    if (qAlpha(below) == 255)
        return overOpaque(above, below);
    const double a = qAlpha(above) / 255.0;
    const double b = qAlpha(below) / 255.0 * (1 - a);
    const auto channel = [&](int premultiplied, int straight) {
        return std::clamp(static_cast<int>(std::lround((premultiplied + straight * b) / (a + b))), 0, 255);
    };
    return qRgba(channel(qRed(above), qRed(below)), channel(qGreen(above), qGreen(below)),
                 channel(qBlue(above), qBlue(below)), static_cast<int>(std::lround((a + b) * 255)));
}

QRgba64 overDeep(QRgba64 above, QRgba64 below) {
    const double a = above.alpha() / 65535.0;
    const double b = below.alpha() / 65535.0 * (1 - a);
    const auto channel = [&](quint16 premultiplied, quint16 straight) {
        const double value = (premultiplied + straight * b) / (a + b);
        return static_cast<quint16>(std::clamp(std::lround(value), 0L, 65535L));
    };
    return qRgba64(channel(above.red(), below.red()), channel(above.green(), below.green()),
                   channel(above.blue(), below.blue()), static_cast<quint16>(std::lround((a + b) * 65535)));
}

// Rec. 709 luma: what a grey picture shows of a colour.
template <class T>
double luma(T red, T green, T blue) {
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

} // namespace

void requireMemory(const QImage& image) {
    if (image.isNull())
        throw std::bad_alloc();
}

Patch paintStamp(const Stamp& stamp, const Matrix& pixelsFromStamp, QSize picture, bool deep) {
    const Box bounds = pixelsFromStamp.map(stamp.ink);
    // One pixel of antialiasing on each side, and no number that does not fit an int.
    const auto edge = [](double value, int limit) {
        return static_cast<int>(std::clamp(value, -1.0, static_cast<double>(limit) + 1));
    };
    const QRect area =
        QRect(QPoint(edge(std::floor(bounds.llx) - 1, picture.width()),
                     edge(std::floor(bounds.lly) - 1, picture.height())),
              QPoint(edge(std::ceil(bounds.urx), picture.width()), edge(std::ceil(bounds.ury), picture.height())))
            .intersected(QRect(QPoint(0, 0), picture));
    if (area.isEmpty())
        return {};
    Patch patch{area,
                QImage(area.size(), deep ? QImage::Format_RGBA64_Premultiplied : QImage::Format_ARGB32_Premultiplied)};
    requireMemory(patch.pixels);
    patch.pixels.fill(Qt::transparent);
    QPainter painter(&patch.pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    const Matrix& m = pixelsFromStamp;
    painter.setTransform(QTransform(m.a, m.b, m.c, m.d, m.e - area.left(), m.f - area.top()));
    for (const auto& shape : stamp.shapes)
        std::visit([&](const auto& part) { paint(painter, part); }, shape);
    return patch;
}

void blend(const Patch& patch, QImage& target) {
    for (int row = 0; row < patch.area.height(); ++row) {
        const int y = patch.area.top() + row;
        const int left = patch.area.left();
        const int width = patch.area.width();
        if (patch.pixels.format() == QImage::Format_RGBA64_Premultiplied) {
            const auto* above = reinterpret_cast<const QRgba64*>(patch.pixels.constScanLine(row));
            if (target.format() == QImage::Format_Grayscale16) {
                auto* below = reinterpret_cast<quint16*>(target.scanLine(y)) + left;
                for (int i = 0; i < width; ++i)
                    if (above[i].alpha()) {
                        const double kept = below[i] * (1 - above[i].alpha() / 65535.0);
                        const double value = luma(above[i].red(), above[i].green(), above[i].blue()) + kept;
                        below[i] = static_cast<quint16>(std::min(std::lround(value), 65535L));
                    }
            } else {
                auto* below = reinterpret_cast<QRgba64*>(target.scanLine(y)) + left;
                for (int i = 0; i < width; ++i)
                    if (above[i].alpha())
                        below[i] = overDeep(above[i], below[i]);
            }
            continue;
        }
        const auto* above = reinterpret_cast<const QRgb*>(patch.pixels.constScanLine(row));
        if (target.format() == QImage::Format_Grayscale8) {
            auto* below = target.scanLine(y) + left;
            for (int i = 0; i < width; ++i)
                if (qAlpha(above[i])) {
                    const double kept = below[i] * (255 - qAlpha(above[i])) / 255.0;
                    const double value = luma(qRed(above[i]), qGreen(above[i]), qBlue(above[i])) + kept;
                    below[i] = static_cast<uchar>(std::min(std::lround(value), 255L));
                }
        } else {
            auto* below = reinterpret_cast<QRgb*>(target.scanLine(y)) + left;
            const bool opaque = target.format() == QImage::Format_RGB32;
            for (int i = 0; i < width; ++i)
                if (qAlpha(above[i]))
                    below[i] = opaque ? overOpaque(above[i], below[i]) : overClear(above[i], below[i]);
        }
    }
}

} // namespace engine
