// SPDX-License-Identifier: MIT
#include <engine/Geometry.h>

#include <algorithm>

namespace engine {

namespace {

// The length of a cubic's handle that draws a quarter of the unit circle best.
constexpr double kQuarterCircle = 0.5522847498;

} // namespace

Box Matrix::map(const Box& box) const {
    const Point corners[] = {map(Point{box.llx, box.lly}), map(Point{box.urx, box.lly}), map(Point{box.urx, box.ury}),
                             map(Point{box.llx, box.ury})};
    Box result{corners[0].x, corners[0].y, corners[0].x, corners[0].y};
    for (const auto& corner : corners) {
        result.llx = std::min(result.llx, corner.x);
        result.lly = std::min(result.lly, corner.y);
        result.urx = std::max(result.urx, corner.x);
        result.ury = std::max(result.ury, corner.y);
    }
    return result;
}

Matrix Matrix::then(const Matrix& next) const {
    return {a * next.a + b * next.c, a * next.b + b * next.d,          c * next.a + d * next.c,
            c * next.b + d * next.d, e * next.a + f * next.c + next.e, e * next.b + f * next.d + next.f};
}

void Path::addRectangle(const Box& box) {
    moveTo({box.llx, box.lly});
    lineTo({box.urx, box.lly});
    lineTo({box.urx, box.ury});
    lineTo({box.llx, box.ury});
    close();
}

void Path::addEllipse(const Box& box) {
    const double cx = (box.llx + box.urx) / 2;
    const double cy = (box.lly + box.ury) / 2;
    const double hx = box.width() / 2 * kQuarterCircle;
    const double hy = box.height() / 2 * kQuarterCircle;
    moveTo({box.urx, cy});
    cubicTo({box.urx, cy + hy}, {cx + hx, box.ury}, {cx, box.ury});
    cubicTo({cx - hx, box.ury}, {box.llx, cy + hy}, {box.llx, cy});
    cubicTo({box.llx, cy - hy}, {cx - hx, box.lly}, {cx, box.lly});
    cubicTo({cx + hx, box.lly}, {box.urx, cy - hy}, {box.urx, cy});
    close();
}

void Path::addRoundedRectangle(const Box& box, double radius) {
    const double r = std::min(radius, std::min(box.width(), box.height()) / 2);
    const double h = r * (1 - kQuarterCircle);
    moveTo({box.llx + r, box.lly});
    lineTo({box.urx - r, box.lly});
    cubicTo({box.urx - h, box.lly}, {box.urx, box.lly + h}, {box.urx, box.lly + r});
    lineTo({box.urx, box.ury - r});
    cubicTo({box.urx, box.ury - h}, {box.urx - h, box.ury}, {box.urx - r, box.ury});
    lineTo({box.llx + r, box.ury});
    cubicTo({box.llx + h, box.ury}, {box.llx, box.ury - h}, {box.llx, box.ury - r});
    lineTo({box.llx, box.lly + r});
    cubicTo({box.llx, box.lly + h}, {box.llx + h, box.lly}, {box.llx + r, box.lly});
    close();
}

} // namespace engine
