// SPDX-License-Identifier: MIT
#include <engine/Placement.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace engine {

namespace {

Box sorted(const Box& box) {
    return {std::min(box.llx, box.urx), std::min(box.lly, box.ury), std::max(box.llx, box.urx),
            std::max(box.lly, box.ury)};
}

double pointsPerUnit(const PageGeometry& page) {
    return std::isfinite(page.userUnit) && page.userUnit > 0 ? page.userUnit : 1;
}

int quarterTurn(const PageGeometry& page) {
    const int turn = ((page.rotate % 360) + 360) % 360;
    return turn % 90 == 0 ? turn : 0;
}

double finiteOrZero(double value) {
    return std::isfinite(value) ? value : 0;
}

bool swapsSides(const PictureGeometry& picture) {
    return picture.orientation >= 5 && picture.orientation <= 8;
}

double resolution(double perInch) {
    return std::isfinite(perInch) && perInch > 0 ? perInch : 72;
}

/// The column of an anchor, 0 left to 2 right, and its row, 0 top to 2 bottom.
struct Cell {
    int column;
    int row;
};
Cell cellOf(host::NSInteger anchor) {
    if (anchor < 0 || anchor > 8)
        return {0, 0};
    return {static_cast<int>(anchor % 3), static_cast<int>(anchor / 3)};
}

} // namespace

Box visibleBox(const PageGeometry& page) {
    const Box media = sorted(page.mediaBox);
    const Box crop = sorted(page.cropBox);
    const Box both{std::max(media.llx, crop.llx), std::max(media.lly, crop.lly), std::min(media.urx, crop.urx),
                   std::min(media.ury, crop.ury)};
    return both.width() > 0 && both.height() > 0 ? both : media;
}

platform::NSSize shownSize(const PageGeometry& page) {
    const Box box = visibleBox(page);
    const double unit = pointsPerUnit(page);
    const platform::NSSize upright{box.width() * unit, box.height() * unit};
    return quarterTurn(page) % 180 == 0 ? upright : platform::NSSize{upright.height, upright.width};
}

platform::NSSize shownSize(const PictureGeometry& picture) {
    const double width = picture.width * 72 / resolution(picture.horizontalResolution);
    const double height = picture.height * 72 / resolution(picture.verticalResolution);
    return swapsSides(picture) ? platform::NSSize{height, width} : platform::NSSize{width, height};
}

Matrix userSpaceFromShown(const PageGeometry& page) {
    const Box box = visibleBox(page);
    const double s = 1 / pointsPerUnit(page);
    switch (quarterTurn(page)) {
    case 90:
        return {0, s, -s, 0, box.urx, box.lly};
    case 180:
        return {-s, 0, 0, -s, box.urx, box.ury};
    case 270:
        return {0, -s, s, 0, box.llx, box.ury};
    default:
        return {s, 0, 0, s, box.llx, box.lly};
    }
}

Matrix pixelsFromShown(const PictureGeometry& picture) {
    const double w = picture.width;
    const double h = picture.height;
    const double x = resolution(picture.horizontalResolution) / 72;
    const double y = resolution(picture.verticalResolution) / 72;
    // Each line is the Exif tag read backwards: where the shown picture's right and up run among the stored pixels.
    switch (picture.orientation) {
    case 2:
        return {-x, 0, 0, -y, w, h};
    case 3:
        return {-x, 0, 0, y, w, 0};
    case 4:
        return {x, 0, 0, y, 0, 0};
    case 5:
        return {0, y, -x, 0, w, 0};
    case 6:
        return {0, -y, -x, 0, w, h};
    case 7:
        return {0, -y, x, 0, 0, h};
    case 8:
        return {0, y, x, 0, 0, 0};
    default:
        return {x, 0, 0, -y, 0, h};
    }
}

Matrix placeStamp(platform::NSSize stamp, platform::NSSize page, host::NSInteger anchor, host::NSPoint offset,
                  double degrees) {
    const double turn = std::fmod(finiteOrZero(degrees), 360);
    double sine = std::sin(turn * std::numbers::pi / 180);
    double cosine = std::cos(turn * std::numbers::pi / 180);
    // Quarter turns are exact, so that upright edges stay upright.
    if (std::fmod(turn, 90) == 0) {
        sine = std::round(sine);
        cosine = std::round(cosine);
    }
    const double halfWidth = (std::abs(stamp.width * cosine) + std::abs(stamp.height * sine)) / 2;
    const double halfHeight = (std::abs(stamp.width * sine) + std::abs(stamp.height * cosine)) / 2;
    const auto [column, row] = cellOf(anchor);
    const double xs[] = {kPageMargin + halfWidth, page.width / 2, page.width - kPageMargin - halfWidth};
    const double ys[] = {page.height - kPageMargin - halfHeight, page.height / 2, kPageMargin + halfHeight};
    const Matrix centred{1, 0, 0, 1, -stamp.width / 2, -stamp.height / 2};
    return centred.then(
        {cosine, sine, -sine, cosine, xs[column] + finiteOrZero(offset.x), ys[row] + finiteOrZero(offset.y)});
}

double lineAlignment(host::NSInteger anchor) {
    return cellOf(anchor).column / 2.0;
}

} // namespace engine
