// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Geometry.h>
#include <host/ImprinterConfiguration.h>

namespace engine {

/// How far inside the crop box a stamp without offset stands, in points.
inline constexpr double kPageMargin = 18;

/// A page's attributes as its file has them; boxes need not be sorted.
struct PageGeometry {
    Box mediaBox{0, 0, 612, 792};
    Box cropBox{0, 0, 612, 792};
    int rotate = 0;      ///< Degrees clockwise; what is no quarter turn counts as 0.
    double userUnit = 1; ///< Points a unit; what is not positive counts as 1.
};

/// A picture as its file has it.
struct PictureGeometry {
    int width = 0; ///< Stored pixels, before any turn.
    int height = 0;
    double horizontalResolution = 72; ///< Stored pixels an inch.
    double verticalResolution = 72;
    int orientation = 1; ///< The Exif tag, 1 to 8; anything else counts as 1.
};

/// What is seen of the page: crop box within media box, corners sorted, in user space. A crop box that misses the media
/// box leaves the media box.
Box visibleBox(const PageGeometry& page);

/// Width and height of the page as it is shown, in points.
platform::NSSize shownSize(const PageGeometry& page);
platform::NSSize shownSize(const PictureGeometry& picture);

/// From the page as shown (points from its lower left corner, y up) to its user space.
Matrix userSpaceFromShown(const PageGeometry& page);

/// From the picture as shown (points from its lower left corner, y up) to its stored pixels (from the upper left
/// corner of the first stored row, y down).
Matrix pixelsFromShown(const PictureGeometry& picture);

/// From a stamp's own space (0, 0 to its width and height, y up) to the page as shown.
///
/// Without offset the bounding box of the turned stamp stands `kPageMargin` inside the page at its anchor, or in the
/// middle. `anchor` is a number of `host::Anchor`; one that is none counts as the top left. `degrees` turn
/// counter-clockwise about the stamp's centre. An offset or angle that is not finite counts as 0.
Matrix placeStamp(platform::NSSize stamp, platform::NSSize page, host::NSInteger anchor, host::NSPoint offset,
                  double degrees);

/// How lines are aligned in a stamp with this anchor: 0 left, 0.5 centred, 1 right.
double lineAlignment(host::NSInteger anchor);

} // namespace engine
