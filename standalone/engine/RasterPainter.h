// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Stamp.h>

#include <QImage>

namespace engine {

/// A painted stamp, clear where it has no ink.
struct Patch {
    QRect area;    ///< Pixels of the picture; empty when the stamp lies off it.
    QImage pixels; ///< Premultiplied: ARGB32, or RGBA64 for deep pictures.
};

/// Paints `stamp` for a picture of `picture` pixels. `pixelsFromStamp` leads from the stamp's points to pixels, y down.
Patch paintStamp(const Stamp& stamp, const Matrix& pixelsFromStamp, QSize picture, bool deep);

/// Paints the patch over `target`: RGB32, ARGB32, RGBX64, RGBA64, Grayscale8 or Grayscale16. Pixels where the patch is
/// clear keep their exact value.
void blend(const Patch& patch, QImage& target);

/// Throws std::bad_alloc for a picture that has no pixels because there was no memory for them.
void requireMemory(const QImage& image);

} // namespace engine
