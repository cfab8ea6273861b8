// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace engine {

/// A rectangle by two opposite corners, in the order PDF boxes have them.
struct Box {
    double llx = 0;
    double lly = 0;
    double urx = 0;
    double ury = 0;

    double width() const { return urx - llx; }
    double height() const { return ury - lly; }
    bool operator==(const Box&) const = default;
};

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

/// An affine map as PDF writes it: x' = a x + c y + e, y' = b x + d y + f.
struct Matrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    Point map(Point point) const { return {a * point.x + c * point.y + e, b * point.x + d * point.y + f}; }
    /// The upright bounding box of the mapped rectangle, corners sorted.
    Box map(const Box& box) const;
    /// First this map, then `next`.
    Matrix then(const Matrix& next) const;
    bool operator==(const Matrix&) const = default;
};

/// An outline: what is filled by the non-zero winding rule or stroked.
struct Path {
    enum class Verb : unsigned char { move, line, cubic, close };
    struct Element {
        Verb verb;
        Point to{};
        Point control1{}; ///< Cubics only.
        Point control2{};
    };
    std::vector<Element> elements;

    void moveTo(Point to) { elements.push_back({Verb::move, to, {}, {}}); }
    void lineTo(Point to) { elements.push_back({Verb::line, to, {}, {}}); }
    void cubicTo(Point control1, Point control2, Point to) {
        elements.push_back({Verb::cubic, to, control1, control2});
    }
    void close() { elements.push_back({Verb::close, {}, {}, {}}); }

    void addRectangle(const Box& box);
    void addEllipse(const Box& box);
    /// `radius` is narrowed to half the shorter side.
    void addRoundedRectangle(const Box& box, double radius);
};

} // namespace engine
