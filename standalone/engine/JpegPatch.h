// SPDX-License-Identifier: MIT
#pragma once

#include "RasterPainter.h"

#include <string>
#include <string_view>
#include <vector>

namespace engine {

/// What three channels of a JPEG stream are.
enum class JpegColours { asItSays, rgb, brightnessAndColour };

/// A whole JPEG stream of one picture, or of a part of one, with the patches painted in: only the coefficients of the
/// units that they touch are replaced. Patches reach no further than the picture. With `keepsCodes` the stream keeps
/// its codes, if they suffice for whatever it may hold; else it gets new ones, and `hasNewCodes` says so. Throws
/// `Failure`.
std::string patchJpeg(std::string_view stream, const std::vector<Patch>& patches, JpegColours colours, bool keepsCodes,
                      bool& hasNewCodes);

} // namespace engine
