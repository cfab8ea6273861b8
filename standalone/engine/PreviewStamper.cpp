// SPDX-License-Identifier: MIT
#include <engine/PreviewStamper.h>

#include "DecodedPicture.h"
#include "PictureFile.h"
#include "PreviewFiles.h"
#include "RasterPainter.h"
#include "StampPlan.h"

#include <Foundation/NSString.h>
#include <engine/WrittenTime.h>

#include <QTransform>

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

/// What must be equal for the decoded sample to hold.
struct SampleKey {
    std::filesystem::path path;
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    std::size_t page = 1; // of a file of several
    bool operator==(const SampleKey&) const = default;
};

/// The picture as it is shown, for a format that knows no orientation.
void turnUpright(DecodedPicture& picture) {
    static const struct {
        bool mirrored;
        int degrees; ///< Clockwise, after mirroring left and right.
    } turns[] = {{false, 0},  {true, 0},   {false, 180}, {true, 180},
                 {true, 270}, {false, 90}, {true, 90},   {false, 270}}; // by Exif tag, from 1
    auto& geometry = picture.geometry;
    if (geometry.orientation <= 1 || geometry.orientation > 8)
        return;
    const auto& turn = turns[geometry.orientation - 1];
    if (turn.mirrored)
        picture.image = picture.image.mirrored(true, false);
    picture.image = picture.image.transformed(QTransform().rotate(turn.degrees)).convertToFormat(QImage::Format_RGB32);
    if (turn.degrees % 180 != 0)
        std::swap(geometry.horizontalResolution, geometry.verticalResolution);
    geometry.width = picture.image.width();
    geometry.height = picture.image.height();
    geometry.orientation = 1;
}

/// File and information header of a bitmap with rows from the top.
std::string bitmapHeader(const PictureGeometry& geometry) {
    std::string header = "BM";
    const auto number = [&](long long value, int size) {
        for (int i = 0; i < size; ++i)
            header += static_cast<char>(value >> (8 * i) & 0xFF);
    };
    const long long pixels = 4LL * geometry.width * geometry.height;
    number(54 + pixels, 4);
    number(0, 4);
    number(54, 4);
    number(40, 4);
    number(geometry.width, 4);
    number(-static_cast<long long>(geometry.height), 4);
    number(1, 2);
    number(32, 2);
    number(0, 4);
    number(pixels, 4);
    number(std::llround(geometry.horizontalResolution / 0.0254), 4);
    number(std::llround(geometry.verticalResolution / 0.0254), 4);
    number(0, 8);
    return header;
}

/// A file name's stem for a configuration.
std::string stemFor(const std::string& identifier) {
    const bool plain =
        !identifier.empty() && identifier.size() <= 64 && std::all_of(identifier.begin(), identifier.end(), [](char c) {
            return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
        });
    if (plain)
        return "preview-" + identifier;
    std::string stem = "preview_";
    for (const char c : identifier.substr(0, 100))
        for (const int shift : {4, 0})
            stem += "0123456789abcdef"[static_cast<unsigned char>(c) >> shift & 0xF];
    return stem;
}

} // namespace

struct PreviewStamper::State {
    std::filesystem::path folder;
    FaceLibrary faces;
    std::optional<SampleKey> key;
    DecodedPicture sample;
    PreviewFiles files;
    Page page;
    /// Each with whether its second name was used last; the latest at the end.
    std::vector<std::pair<std::string, bool>> recent;

    /// The file to write for a configuration. Results of all but the last few are given up: each takes as much room as
    /// the sample decoded.
    std::string nameFor(const std::string& identifier, bool sameName) {
        constexpr std::size_t kept = 3;
        const auto known =
            std::find_if(recent.begin(), recent.end(), [&](const auto& entry) { return entry.first == identifier; });
        bool second = known != recent.end() && known->second;
        if (known != recent.end())
            recent.erase(known);
        if (!sameName)
            second = !second;
        recent.emplace_back(identifier, second);
        if (recent.size() > kept) {
            files.remove(name(recent.front().first, false));
            files.remove(name(recent.front().first, true));
            recent.erase(recent.begin());
        }
        return name(identifier, second);
    }
    static std::string name(const std::string& identifier, bool second) {
        return stemFor(identifier) + (second ? "-1.bmp" : "-0.bmp");
    }

    const DecodedPicture& decoded(const std::filesystem::path& path) {
        std::error_code error;
        SampleKey wanted{path, std::filesystem::last_write_time(path, error), 0, page.number};
        if (!error)
            wanted.size = std::filesystem::file_size(path, error);
        if (error)
            throw Failure(Code::unreadable, "The sample cannot be read.");
        if (key == wanted)
            return sample;
        key.reset();
        const auto bytes = readWhole(path);
        if (!isPng(bytes) && !isJpeg(bytes) && !isTiff(bytes))
            throw Failure(Code::unsupported, "The sample is no picture that can be stamped.");
        sample = isPng(bytes) ? decodePng(bytes) : isJpeg(bytes) ? decodeJpeg(bytes) : decodeTiff(bytes, page.number);
        turnUpright(sample);
        files.setBase(bitmapHeader(sample.geometry), reinterpret_cast<const char*>(sample.image.constBits()),
                      sample.image.height(), static_cast<std::size_t>(sample.image.bytesPerLine()));
        key = wanted;
        return sample;
    }
};

PreviewStamper::PreviewStamper(const std::filesystem::path& folder, std::string defaultFont)
    : m_state(new State{folder, FaceLibrary(std::move(defaultFont)), std::nullopt, {}, PreviewFiles(folder), {}, {}}) {}

PreviewStamper::~PreviewStamper() = default;

void PreviewStamper::setPage(Page page) {
    m_state->page = std::move(page);
}

Outcome PreviewStamper::stamp(const std::filesystem::path& sample,
                              const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                              std::chrono::system_clock::time_point now) {
    return stampInto(false, sample, configuration, now);
}

Outcome PreviewStamper::stampAgain(const std::filesystem::path& sample,
                                   const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                                   std::chrono::system_clock::time_point now) {
    return stampInto(true, sample, configuration, now);
}

Outcome PreviewStamper::stampInto(bool sameName, const std::filesystem::path& sample,
                                  const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                                  std::chrono::system_clock::time_point now) {
    Outcome outcome;
    outcome.path = sample;
    Report report;
    try {
        if (!configuration)
            throw Failure(Code::nothingToStamp, "There is no configuration to stamp.");
        const auto& [image, geometry] = m_state->decoded(sample);
        const WrittenTime time(now);
        const auto& page = m_state->page;
        const Facts facts{
            page.number,   page.count,
            page.number,   page.recordName.empty() ? platform::fromUtf8(sample.stem().string()) : page.recordName,
            accountName(), time.day,
            time.time};
        std::vector<Patch> patches;
        QRect touched;
        for (const auto& plan : planStamps({configuration}, {}, m_state->faces, report)) {
            if (const auto pages = plan.pagesOf(page.count);
                page.choosesPages && !std::binary_search(pages.begin(), pages.end(), page.number))
                continue;
            const auto title = resolveTitle(plan.appearance, facts, report);
            const auto stamp = layOut(plan.appearance, title, m_state->faces, report);
            if (!stamp)
                continue;
            const auto place = placeStamp(stamp->size, shownSize(geometry), plan.anchor, plan.offset, plan.degrees);
            patches.push_back(paintStamp(*stamp, place.then(pixelsFromShown(geometry)), image.size(), false));
            touched |= patches.back().area;
        }
        // Only the rows that change are copied; the others are written from the decoded sample.
        QImage band = touched.isEmpty() ? QImage() : image.copy(0, touched.top(), image.width(), touched.height());
        for (auto& patch : patches) {
            patch.area.translate(0, -touched.top());
            blend(patch, band);
        }

        const auto identifier = platform::toUtf8(configuration->uniqueID());
        outcome.path =
            m_state->files.put(m_state->nameFor(identifier, sameName), reinterpret_cast<const char*>(band.constBits()),
                               {touched.top(), touched.isEmpty() ? 0 : touched.height()});
        outcome.pagesStamped = patches.empty() ? 0 : 1;
    } catch (const Failure& failure) {
        outcome.code = failure.code();
        outcome.sentence = failure.what();
    } catch (const std::system_error& error) {
        outcome.code = Code::cannotWrite;
        outcome.sentence = "The preview cannot be written: " + error.code().message() + ".";
        outcome.path = m_state->folder;
    }
    outcome.warnings.assign(report.warnings.begin(), report.warnings.end());
    return outcome;
}

} // namespace engine
