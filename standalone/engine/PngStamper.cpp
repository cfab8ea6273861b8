// SPDX-License-Identifier: MIT
#include "DecodedPicture.h"
#include "PictureFile.h"
#include "RasterPainter.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
#include <unordered_map>

namespace engine {

namespace {

struct Chunk {
    std::string_view type;
    std::string_view data;
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

QImage decode(std::string_view file) {
    // The limit of our own is the one that counts; the reader's would refuse pictures well below it.
    QImageReader::setAllocationLimit(1024);
    QByteArray bytes = QByteArray::fromRawData(file.data(), static_cast<qsizetype>(file.size()));
    QBuffer source(&bytes);
    source.open(QIODevice::ReadOnly);
    QImage image = QImageReader(&source, "png").read();
    if (image.isNull())
        throw Failure(Code::damaged, "The picture is damaged.");
    return image;
}

/// What may be copied although pixels and colour type changed.
bool staysTrue(std::string_view type, bool sameColourType) {
    static const std::string_view pixels[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND", "hIST"};
    static const std::string_view ofColourType[] = {"bKGD", "sBIT", "acTL", "fcTL", "fdAT"};
    if (std::find(std::begin(pixels), std::end(pixels), type) != std::end(pixels))
        return false;
    return sameColourType ||
           std::find(std::begin(ofColourType), std::end(ofColourType), type) == std::end(ofColourType);
}

} // namespace

DecodedPicture decodePng(std::string_view file) {
    const auto chunks = chunksOf(file);
    const auto geometry = geometryOf(chunks);
    const QImage decoded = decode(file);
    QImage image(decoded.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).drawImage(0, 0, decoded);
    return {image, geometry};
}

std::string stampPng(std::string_view file, const PartsFor& partsFor) {
    const auto chunks = chunksOf(file);
    const auto geometry = geometryOf(chunks);
    if (chunks.back().type != "IEND")
        throw Failure(Code::damaged, "The picture breaks off before its end.");
    QImage image = decode(file);

    const auto parts = partsFor(geometry);
    const bool paletted = image.format() == QImage::Format_Mono || image.format() == QImage::Format_MonoLSB ||
                          image.format() == QImage::Format_Indexed8;
    const bool grey = std::all_of(parts.begin(), parts.end(), [](const auto& part) { return isGrey(*part.stamp); });
    const bool deep = image.format() == QImage::Format_Grayscale16 || image.depth() == 64;
    if (deep) {
        if (image.format() != QImage::Format_Grayscale16 || !grey)
            image.convertTo(image.hasAlphaChannel() ? QImage::Format_RGBA64 : QImage::Format_RGBX64);
    } else if (image.format() != QImage::Format_Grayscale8 || !grey) {
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }

    const Matrix pixels = pixelsFromShown(geometry);
    for (const auto& part : parts)
        blend(paintStamp(*part.stamp, part.shownFromStamp.then(pixels), image.size(), deep), image);

    if (paletted) {
        if (!image.hasAlphaChannel() && isGrey(image))
            image.convertTo(QImage::Format_Grayscale8);
        else if (const auto smaller = withPalette(image); !smaller.isNull())
            image = smaller;
    }
    QByteArray encoded;
    QBuffer target(&encoded);
    target.open(QIODevice::WriteOnly);
    QImageWriter writer(&target, "png");
    if (!writer.write(image))
        throw Failure(Code::cannotWrite, "The picture cannot be encoded.");

    // Everything about the picture but its pixels is taken over as it stands.
    const std::string_view fresh(encoded.constData(), static_cast<std::size_t>(encoded.size()));
    const auto freshChunks = chunksOf(fresh);
    const bool sameColourType = freshChunks.front().data.substr(8, 2) == chunks.front().data.substr(8, 2);
    std::string result(file.substr(0, 8));
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
        } else if (staysTrue(chunk.type, sameColourType)) {
            result += chunk.whole;
        }
    }
    addFresh("IEND");
    return result;
}

} // namespace engine
