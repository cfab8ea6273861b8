// SPDX-License-Identifier: MIT
#include "DecodedPicture.h"
#include "Flate.h"
#include "PictureFile.h"
#include "RasterPainter.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
#include <new>
#include <optional>
#include <unordered_map>

namespace engine {

namespace {

struct Chunk {
    std::string_view type;
    std::string_view data;

    int byte(std::size_t index) const { return static_cast<unsigned char>(data[index]); }
    std::string_view whole; ///< With length and check sum.
};

std::uint32_t bigEndian(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

/// The chunks of a PNG file, up to where it ends or breaks off.
std::vector<Chunk> chunksOf(std::string_view file) {
    std::vector<Chunk> chunks;
    std::size_t at = 8;
    while (file.size() - at >= 12) {
        const std::size_t length = bigEndian(file, at);
        if (length > file.size() - at - 12)
            break;
        chunks.push_back({file.substr(at + 4, 4), file.substr(at + 8, length), file.substr(at, length + 12)});
        at += length + 12;
        if (chunks.back().type == "IEND")
            break;
    }
    return chunks;
}

PictureGeometry geometryOf(const std::vector<Chunk>& chunks) {
    if (chunks.empty() || chunks.front().type != "IHDR" || chunks.front().data.size() != 13)
        throw Failure(Code::damaged, "The picture is damaged.");
    PictureGeometry geometry;
    const auto width = bigEndian(chunks.front().data, 0);
    const auto height = bigEndian(chunks.front().data, 4);
    checkSize(width, height);
    geometry.width = static_cast<int>(width);
    geometry.height = static_cast<int>(height);
    for (const auto& chunk : chunks) {
        if (chunk.type == "pHYs" && chunk.data.size() == 9 && chunk.data[8] == 1) {
            geometry.horizontalResolution = bigEndian(chunk.data, 0) * 0.0254;
            geometry.verticalResolution = bigEndian(chunk.data, 4) * 0.0254;
        } else if (chunk.type == "eXIf") {
            geometry.orientation = exifOrientation(chunk.data);
        }
    }
    return geometry;
}

bool isGrey(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (qRed(line[x]) != qGreen(line[x]) || qGreen(line[x]) != qBlue(line[x]))
                return false;
    }
    return true;
}

bool isGrey(const Stamp& stamp) {
    return std::all_of(stamp.shapes.begin(), stamp.shapes.end(), [](const Shape& shape) {
        const auto* run = std::get_if<GlyphRun>(&shape);
        if (run && run->face->isPictorial())
            return false;
        const auto& colour = std::visit([](const auto& part) -> const Colour& { return part.colour; }, shape);
        return colour.red == colour.green && colour.green == colour.blue;
    });
}

/// `image` with a palette of its own colours; a null image if it has more than 256.
QImage withPalette(const QImage& image) {
    QImage result(image.size(), QImage::Format_Indexed8);
    requireMemory(result);
    QList<QRgb> colours;
    std::unordered_map<QRgb, uchar> indices;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        auto* to = result.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const auto [place, isNew] = indices.try_emplace(line[x], static_cast<uchar>(colours.size()));
            if (isNew) {
                if (colours.size() == 256)
                    return {};
                colours << line[x];
            }
            to[x] = place->second;
        }
    }
    result.setColorTable(colours);
    return result;
}

constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";

/// The one tone or colour that is clear wherever it occurs, in 16 bits a channel; none where there is no such.
std::optional<QRgba64> clearColour(const std::vector<Chunk>& chunks) {
    const int bits = chunks.front().byte(8);
    const int colourType = chunks.front().byte(9);
    const bool isGrey = colourType == 0;
    if ((!isGrey && colourType != 2) || bits < 1 || bits > 16)
        return std::nullopt;
    for (const auto& chunk : chunks)
        if (chunk.type == "tRNS" && chunk.data.size() == (isGrey ? 2 : 6)) {
            const auto channel = [&](std::size_t i) {
                const auto value = bigEndian(std::string(2, '\0').append(chunk.data.substr(isGrey ? 0 : 2 * i, 2)), 0);
                return static_cast<quint16>(value * 65535 / ((1U << bits) - 1));
            };
            return qRgba64(channel(0), channel(1), channel(2), 65535);
        }
    return std::nullopt;
}

QImage decode(const std::vector<Chunk>& chunks) {
    // 1. Nothing but pixels is left to the reader: it would speak up about profiles, and where one colour is clear it
    //    mixes up channels of 16 bits and blackens tones.
    const auto clear = clearColour(chunks);
    QByteArray bytes(kSignature.data(), static_cast<qsizetype>(kSignature.size()));
    for (const auto& chunk : chunks)
        if (chunk.type == "IHDR" || chunk.type == "PLTE" || chunk.type == "IDAT" || chunk.type == "IEND" ||
            (chunk.type == "tRNS" && !clear)) {
            // About a wrong sum the reader would speak up as well.
            if (checkSum(chunk.whole.substr(4, 4 + chunk.data.size())) != bigEndian(chunk.whole, 8 + chunk.data.size()))
                throw Failure(Code::damaged, "The picture is damaged.");
            bytes.append(chunk.whole.data(), static_cast<qsizetype>(chunk.whole.size()));
        }
    // The limit of our own is the one that counts; the reader's would refuse pictures well below it.
    QImageReader::setAllocationLimit(1024);
    QBuffer source(&bytes);
    source.open(QIODevice::ReadOnly);
    QImageReader reader(&source, "png");
    QImage image = reader.read();
    if (image.isNull()) {
        // The reader does not say why. One that does not even know the size has nothing to lack memory for.
        if (reader.size().isValid() && reader.imageFormat() != QImage::Format_Invalid)
            requireMemory(QImage(reader.size(), reader.imageFormat()));
        throw Failure(Code::damaged, "The picture is damaged.");
    }
    if (!clear)
        return image;

    // 2. What is clear keeps its colour.
    const bool deep = image.format() == QImage::Format_Grayscale16 || image.depth() == 64;
    image.convertTo(deep ? QImage::Format_RGBA64 : QImage::Format_ARGB32);
    requireMemory(image);
    const QRgb shallow = clear->toArgb32();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (deep) {
                auto& pixel = reinterpret_cast<QRgba64*>(image.scanLine(y))[x];
                if (pixel == *clear)
                    pixel.setAlpha(0);
            } else {
                auto& pixel = reinterpret_cast<QRgb*>(image.scanLine(y))[x];
                if (pixel == shallow)
                    pixel &= 0xFFFFFF;
            }
    return image;
}

/// What a profile says its colours are made of: "GRAY", "RGB " and the like; empty where there is none that can be
/// read.
std::string profileSpace(const std::vector<Chunk>& chunks) {
    for (const auto& chunk : chunks) {
        const auto name = chunk.type == "iCCP" ? chunk.data.find('\0') : std::string_view::npos;
        if (name == std::string_view::npos || chunk.data.size() < name + 2)
            continue;
        std::string profile;
        if (Flate().inflate(chunk.data.substr(name + 2), profile) && profile.size() >= 20)
            return profile.substr(16, 4);
    }
    return {};
}

/// What may be copied although pixels and colour type changed.
bool staysTrue(std::string_view type, bool sameColourType) {
    static const std::string_view pixels[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND", "hIST"};
    static const std::string_view ofColourType[] = {"bKGD", "sBIT"};
    if (std::find(std::begin(pixels), std::end(pixels), type) != std::end(pixels))
        return false;
    return sameColourType ||
           std::find(std::begin(ofColourType), std::end(ofColourType), type) == std::end(ofColourType);
}

} // namespace

DecodedPicture decodePng(std::string_view file) {
    const auto chunks = chunksOf(file);
    const auto geometry = geometryOf(chunks);
    const QImage decoded = decode(chunks);
    QImage image(decoded.size(), QImage::Format_RGB32);
    requireMemory(image);
    image.fill(Qt::white);
    QPainter(&image).drawImage(0, 0, decoded);
    return {image, geometry};
}

std::string stampPng(std::string_view file, const PartsFor& partsFor, Report& report) {
    const auto chunks = chunksOf(file);
    const auto geometry = geometryOf(chunks);
    if (chunks.back().type != "IEND")
        throw Failure(Code::damaged, "The picture breaks off before its end.");
    if (std::any_of(chunks.begin(), chunks.end(), [](const Chunk& chunk) { return chunk.type == "acTL"; }))
        throw Failure(Code::unsupported, "An animated picture cannot be stamped.");
    QImage image = decode(chunks);

    const auto parts = partsFor(geometry);
    const int colourType = chunks.front().byte(9);
    const bool paletted = colourType == 3 || (colourType == 0 && (chunks.front().byte(8) < 8 || (image.depth() == 32)));
    const bool grey = std::all_of(parts.begin(), parts.end(), [](const auto& part) { return isGrey(*part.stamp); });
    const bool deep = image.format() == QImage::Format_Grayscale16 || image.depth() == 64;
    // A profile of greys means nothing to colours. So the picture stays grey, and its other pixels look as before.
    const auto profile = profileSpace(chunks);
    const bool staysGrey = profile == "GRAY" && !image.hasAlphaChannel();
    if (staysGrey) {
        if (!grey)
            report.warn(Warning::Kind::paintedInGreys);
        if (!deep)
            image.convertTo(QImage::Format_Grayscale8);
    } else if (deep) {
        if (image.format() != QImage::Format_Grayscale16 || !grey)
            image.convertTo(image.hasAlphaChannel() ? QImage::Format_RGBA64 : QImage::Format_RGBX64);
    } else if (image.format() != QImage::Format_Grayscale8 || !grey) {
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }

    requireMemory(image);
    const Matrix pixels = pixelsFromShown(geometry);
    for (const auto& part : parts)
        blend(paintStamp(*part.stamp, part.shownFromStamp.then(pixels), image.size(), deep), image);

    if (paletted && !staysGrey) {
        if (profile.empty() && !image.hasAlphaChannel() && isGrey(image))
            image.convertTo(QImage::Format_Grayscale8), requireMemory(image);
        else if (const auto smaller = withPalette(image); !smaller.isNull())
            image = smaller;
    }
    QByteArray encoded;
    QBuffer target(&encoded);
    target.open(QIODevice::WriteOnly);
    QImageWriter writer(&target, "png");
    if (!writer.write(image)) // into memory, which is all that it can lack
        throw std::bad_alloc();

    // Everything about the picture but its pixels is taken over as it stands.
    const std::string_view fresh(encoded.constData(), static_cast<std::size_t>(encoded.size()));
    const auto freshChunks = chunksOf(fresh);
    const bool losesProfile = profile == "GRAY" && !staysGrey;
    if (losesProfile)
        report.warn(Warning::Kind::profileLeftOut);
    const bool sameColourType = freshChunks.front().data.substr(8, 2) == chunks.front().data.substr(8, 2);
    std::string result(kSignature);
    const auto addFresh = [&](std::string_view type) {
        for (const auto& chunk : freshChunks)
            if (chunk.type == type)
                result += chunk.whole;
    };
    addFresh("IHDR");
    bool palettePlaced = false;
    bool pixelsPlaced = false;
    const auto placePalette = [&] {
        if (!palettePlaced)
            addFresh("PLTE"), addFresh("tRNS");
        palettePlaced = true;
    };
    for (const auto& chunk : chunks) {
        // The colour space comes before the palette, the background after it.
        if (chunk.type == "PLTE" || chunk.type == "bKGD" || chunk.type == "IDAT")
            placePalette();
        if (chunk.type == "IDAT" && !pixelsPlaced) {
            addFresh("IDAT");
            pixelsPlaced = true;
        } else if (staysTrue(chunk.type, sameColourType) && !(losesProfile && chunk.type == "iCCP")) {
            result += chunk.whole;
        }
    }
    addFresh("IEND");
    return result;
}

} // namespace engine
