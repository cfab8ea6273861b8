// SPDX-License-Identifier: MIT
#pragma once

#include "InputFile.h"
#include "StampPlan.h"

#include <engine/Outcome.h>
#include <engine/Placement.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace engine {

/// What ends the work on a file: a code and a sentence for people.
class Failure : public std::runtime_error {
public:
    Failure(Code code, const std::string& sentence) : std::runtime_error(sentence), m_code(code) {}
    Code code() const { return m_code; }

private:
    Code m_code;
};

/// Why nothing is stamped. `chosen`: whether there is a page that was to be, so that the title is the reason, unless
/// `report` has one; `listed`: whether the run names its pages itself; `otherwise`: the sentence for all else.
Failure nothingToStamp(bool chosen, bool listed, const Report& report, const std::string& otherwise);

/// What a run stamps onto a picture, in order: each stamp with its way to the page as shown.
struct PicturePart {
    std::shared_ptr<const Stamp> stamp;
    Matrix shownFromStamp;
};
using PictureParts = std::vector<PicturePart>;

/// The parts for a picture of this geometry.
using PartsFor = std::function<PictureParts(const PictureGeometry&)>;

/// The parts for a page of this geometry of a file of several; none for a page that gets no stamp.
using PagePartsFor = std::function<PictureParts(const PictureGeometry&, std::size_t pageNumber, std::size_t pageCount)>;

/// The bytes of a file. Throws `Failure`.
std::string readWhole(const std::filesystem::path& path);
/// The same; `state` becomes that of the file when it was opened.
std::string readWhole(const std::filesystem::path& path, std::optional<InputState>& state);

bool isPng(std::string_view bytes);
bool isJpeg(std::string_view bytes);
bool isTiff(std::string_view bytes);

/// The orientation tag of a TIFF structure as Exif embeds it; 1 where it has none or is broken.
int exifOrientation(std::string_view tiff);
/// Its resolution in pixels an inch, horizontal and vertical; 0 where it has none.
std::pair<double, double> exifResolution(std::string_view tiff);

/// The file's bytes with the stamps painted in. A picture keeps its depth, resolution, profile, orientation and texts,
/// and its colour model where that can show the stamps' colours; `report` says where a profile stands in the way of
/// that. Throws `Failure`.
std::string stampPng(std::string_view file, const PartsFor& partsFor, Report& report);

/// The same for JPEG, without encoding anew what no stamp touches: only the coefficients of the touched units (8 by 8
/// pixels times the file's largest sampling factors) are replaced. With subsampled colour a pixel beside such a unit
/// may be decoded slightly differently, since decoders smooth across its edge.
/// A file that breaks off is stamped as far as it can be read, and `report` says so.
std::string stampJpeg(std::string_view file, const PartsFor& partsFor, Report& report);

/// The same for each page of a TIFF file. Pages, and strips or tiles of a page, that no stamp touches stay as they are,
/// and so does all that the file says about them; those it touches keep their compression and samples, of JPEG ones the
/// untouched units too. A page of two colours stays one.
std::string stampTiff(std::string_view file, const PagePartsFor& partsFor, std::size_t& stampedPages);
std::size_t countTiffPages(std::string_view file);

/// Throws `Failure` for a picture of more than `kLargestPicture` pixels or with an empty side.
void checkSize(long long width, long long height);

} // namespace engine
