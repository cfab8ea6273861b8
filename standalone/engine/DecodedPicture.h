// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Placement.h>

#include <QImage>

#include <cstddef>
#include <string_view>

namespace engine {

/// A picture's pixels as its file stores them, without any turn.
struct DecodedPicture {
    QImage image; ///< RGB32
    PictureGeometry geometry;
};

/// The picture of a PNG or JPEG file, clear parts shown on white. Throws `Failure`.
DecodedPicture decodePng(std::string_view file);
DecodedPicture decodeJpeg(std::string_view file);
/// The same for a page of a TIFF file, from 1.
DecodedPicture decodeTiff(std::string_view file, std::size_t page);

} // namespace engine
