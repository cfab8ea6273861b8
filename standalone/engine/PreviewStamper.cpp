// SPDX-License-Identifier: MIT
#include <engine/PreviewStamper.h>

#include "DecodedPicture.h"
#include "OutputFile.h"
#include "PictureFile.h"
#include "RasterPainter.h"
#include "StampPlan.h"

#include <Foundation/NSString.h>

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
    std::map<std::string, bool> usedSecondName;

    const DecodedPicture& decoded(const std::filesystem::path& path) {
        std::error_code error;
        SampleKey wanted{path, std::filesystem::last_write_time(path, error), 0};
        if (!error)
            wanted.size = std::filesystem::file_size(path, error);
        if (error)
            throw Failure(Code::unreadable, "The sample cannot be read.");
        if (key == wanted)
            return sample;
        key.reset();
        const auto bytes = readWhole(path);
        if (!isPng(bytes) && !isJpeg(bytes))
            throw Failure(Code::unsupported, "The sample is no picture that can be stamped.");
        sample = isPng(bytes) ? decodePng(bytes) : decodeJpeg(bytes);
        turnUpright(sample);
        key = wanted;
        return sample;
    }
};

PreviewStamper::PreviewStamper(std::filesystem::path folder, std::string defaultFont)
    : m_state(new State{std::move(folder), FaceLibrary(std::move(defaultFont)), std::nullopt, {}, {}}) {}

PreviewStamper::~PreviewStamper() = default;

Outcome PreviewStamper::stamp(const std::filesystem::path& sample,
                              const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                              std::chrono::system_clock::time_point now) {
    Outcome outcome;
    outcome.path = sample;
    Report report;
    try {
        if (!configuration)
            throw Failure(Code::nothingToStamp, "There is no configuration to stamp.");
        const auto& [image, geometry] = m_state->decoded(sample);
        const Facts facts{1, 1, 1, platform::fromUtf8(sample.stem().string()), accountName(), now};
        std::vector<Patch> patches;
        QRect touched;
        for (const auto& plan : planStamps({configuration}, {}, m_state->faces, report)) {
            const auto title = resolveTitle(plan.appearance, facts, report);
            const auto stamp = layOut(plan.appearance, title, m_state->faces, report);
            if (!stamp)
                continue;
            const auto place = placeStamp(stamp->size, shownSize(geometry), plan.anchor, plan.offset, plan.degrees);
            patches.push_back(paintStamp(*stamp, place.then(pixelsFromShown(geometry)), image.size(), false));
            touched |= patches.back().area;
        }
        // Only the rows that change are copied; the others are written from the decoded sample.
        QImage band = image.copy(0, touched.top(), image.width(), touched.height());
        for (auto& patch : patches) {
            patch.area.translate(0, -touched.top());
            blend(patch, band);
        }

        const auto identifier = platform::toUtf8(configuration->uniqueID());
        const bool second = m_state->usedSecondName[identifier] = !m_state->usedSecondName[identifier];
        const auto target = m_state->folder / (stemFor(identifier) + (second ? "-1.bmp" : "-0.bmp"));
        OutputFile output(target);
        output.write(bitmapHeader(geometry));
        const auto rows = [&](const QImage& from, int first, int count) {
            if (count > 0)
                output.write({reinterpret_cast<const char*>(from.constScanLine(first)),
                              static_cast<std::size_t>(from.bytesPerLine()) * static_cast<std::size_t>(count)});
        };
        if (touched.isEmpty()) {
            rows(image, 0, image.height());
        } else {
            rows(image, 0, touched.top());
            rows(band, 0, band.height());
            rows(image, touched.bottom() + 1, image.height() - touched.bottom() - 1);
        }
        output.commit(false);
        outcome.path = target;
        outcome.pagesStamped = patches.empty() ? 0 : 1;
    } catch (const Failure& failure) {
        outcome.code = failure.code();
        outcome.sentence = failure.what();
    } catch (const std::system_error& error) {
        outcome.code = Code::cannotWrite;
        outcome.sentence = "The preview cannot be written: " + error.code().message() + ".";
        outcome.path = m_state->folder;
    }
    outcome.warnings.assign(report.sentences.begin(), report.sentences.end());
    return outcome;
}

} // namespace engine
