// SPDX-License-Identifier: MIT
#pragma once

#include <engine/FaceLibrary.h>
#include <engine/Geometry.h>

#include <Foundation/NSGeometry.h>

#include <string>
#include <variant>
#include <vector>

namespace engine {

/// sRGB with alpha, each component from 0 to 1.
struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const Colour&) const = default;
};

/// A glyph and the origin it is drawn at, in the stamp's points.
struct PlacedGlyph {
    std::uint32_t glyph = 0;
    double x = 0;
    double y = 0;
    /// The text its cluster stands for, on the first glyph of the cluster; empty on the others.
    std::u16string text;
};

/// Glyphs of one face, size and colour, in the order they are seen from left to right.
struct GlyphRun {
    std::shared_ptr<const Face> face;
    double size = 12; ///< Points.
    Colour colour;
    bool outlined = false;  ///< Only the outlines are drawn, with a line of `strokeWidth` around them.
    double strokeWidth = 0; ///< Points.
    bool rightToLeft = false;
    std::vector<PlacedGlyph> glyphs;
};

/// A filled or stroked path: decoration lines, border and fill.
struct PathShape {
    Path path;
    Colour colour;
    bool stroked = false;
    double strokeWidth = 0;   ///< Points.
    std::vector<double> dash; ///< Lengths in points of dash and gap in turn; empty for a solid line.
};

using Shape = std::variant<GlyphRun, PathShape>;

/// A laid-out title: what every painter draws, in painting order.
struct Stamp {
    platform::NSSize size; ///< Of the box that is placed, its lower left corner at 0, 0.
    Box ink;               ///< Everything drawn lies within it.
    std::u16string text;   ///< In reading order, lines joined by U+000A.
    std::vector<Shape> shapes;
};

} // namespace engine
