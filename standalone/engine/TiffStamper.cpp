// SPDX-License-Identifier: MIT
// A stamped TIFF file is the file itself, with the strips and tiles that a stamp touches encoded anew behind its end,
// and the directories' lists of them changed. (TIFF revision 6.0, sections 2, 7 and 15.)

#include "DecodedPicture.h"
#include "JpegPatch.h"
#include "PictureFile.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <optional>

#include <tiffio.h>

namespace engine {

namespace {

/// A file in memory as libtiff reads and writes it.
struct MemoryFile {
    std::string own;        ///< What is written.
    std::string_view bytes; ///< What is read.
    std::uint64_t at = 0;
    bool writes = false;

    std::string_view all() const { return writes ? std::string_view(own) : bytes; }
};

MemoryFile& fileOf(thandle_t handle) {
    return *static_cast<MemoryFile*>(handle);
}

tmsize_t readBytes(thandle_t handle, void* to, tmsize_t size) {
    auto& file = fileOf(handle);
    const auto all = file.all();
    if (file.at >= all.size() || size < 0)
        return 0;
    const auto count = std::min<std::uint64_t>(static_cast<std::uint64_t>(size), all.size() - file.at);
    std::memcpy(to, all.data() + file.at, count);
    file.at += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t writeBytes(thandle_t handle, void* from, tmsize_t size) {
    auto& file = fileOf(handle);
    const auto end = file.at + static_cast<std::uint64_t>(size);
    if (file.own.size() < end)
        file.own.resize(end);
    std::memcpy(file.own.data() + file.at, from, static_cast<std::size_t>(size));
    file.at = end;
    return size;
}

toff_t seekTo(thandle_t handle, toff_t offset, int whence) {
    auto& file = fileOf(handle);
    file.at = whence == SEEK_SET ? offset : whence == SEEK_CUR ? file.at + offset : file.all().size() + offset;
    return file.at;
}

int keepOpen(thandle_t) {
    return 0;
}

toff_t sizeOf(thandle_t handle) {
    return fileOf(handle).all().size();
}

int sayNothing(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

struct Close {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, Close>;

/// For reading: not mapped, and strips as the file has them, however large.
constexpr const char* kReading = "rmc";

Tiff openTiff(MemoryFile& file, const char* mode) {
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, sayNothing, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, sayNothing, nullptr);
    Tiff tiff(
        TIFFClientOpenExt("", mode, &file, readBytes, writeBytes, seekTo, keepOpen, sizeOf, nullptr, nullptr, options));
    TIFFOpenOptionsFree(options);
    if (!tiff)
        throw Failure(Code::damaged, "The picture is damaged.");
    return tiff;
}

[[noreturn]] void damaged() {
    throw Failure(Code::damaged, "The picture is damaged.");
}

template <class T>
T field(TIFF* tiff, std::uint32_t tag, T missing) {
    T value{};
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : missing;
}

/// How the samples of a page make colours.
enum class Model { indexed, grey, rgb, inks };

/// What is needed of a page to change its pixels.
struct Page {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    Model model = Model::grey;
    bool darkIsHigh = false; ///< Grey with 0 as white.
    bool hasAlpha = false;
    bool premultiplied = false;
    std::vector<QRgb> palette;
    bool tiled = false;
    std::uint32_t blockWidth = 0;
    std::uint32_t blockHeight = 0;
    bool isApart =
        false; ///< Each channel is stored as a picture of its own, in strips or tiles that follow those of the last.

    std::uint32_t blocksAcross() const { return (width + blockWidth - 1) / blockWidth; }
    std::uint32_t blocksOfChannel() const { return blocksAcross() * ((height + blockHeight - 1) / blockHeight); }
};

PictureGeometry geometryOf(TIFF* tiff, const Page& page) {
    PictureGeometry geometry;
    geometry.width = static_cast<int>(page.width);
    geometry.height = static_cast<int>(page.height);
    geometry.orientation = field<std::uint16_t>(tiff, TIFFTAG_ORIENTATION, 1);
    const auto unit = field<std::uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    const double perInch = unit == RESUNIT_CENTIMETER ? 2.54 : unit == RESUNIT_INCH ? 1 : 0;
    float horizontal = 0;
    float vertical = 0;
    if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &horizontal) && TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &vertical) &&
        horizontal > 0 && vertical > 0 && perInch > 0) {
        geometry.horizontalResolution = static_cast<double>(horizontal) * perInch;
        geometry.verticalResolution = static_cast<double>(vertical) * perInch;
    }
    return geometry;
}

void readPalette(TIFF* tiff, Page& page) {
    std::uint16_t* channels[3] = {};
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &channels[0], &channels[1], &channels[2]))
        damaged();
    const std::size_t count = std::size_t{1} << page.bits;
    for (std::size_t i = 0; i < count; ++i)
        page.palette.push_back(qRgb(channels[0][i] >> 8, channels[1][i] >> 8, channels[2][i] >> 8));
}

Page readPage(TIFF* tiff) {
    Page page;
    page.width = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    page.height = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    checkSize(page.width, page.height);
    page.bits = field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    page.samples = field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    page.compression = field<std::uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    page.photometric = field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    const auto unsupported = [] { throw Failure(Code::unsupported, "The picture's colour model cannot be stamped."); };
    const bool whole = page.bits == 1 || page.bits == 2 || page.bits == 4 || page.bits == 8 || page.bits == 16;
    page.isApart = page.samples > 1 &&
                   field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != PLANARCONFIG_CONTIG;
    if (!whole || page.compression == COMPRESSION_OJPEG || !TIFFIsCODECConfigured(page.compression) ||
        (page.isApart && (page.compression == COMPRESSION_JPEG || page.compression == COMPRESSION_WEBP)) ||
        field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT) != SAMPLEFORMAT_UINT)
        unsupported();
    const bool isJpeg = page.compression == COMPRESSION_JPEG;
    const bool isJpegColour = isJpeg && page.photometric == PHOTOMETRIC_YCBCR;
    const std::uint16_t colours = page.photometric == PHOTOMETRIC_RGB || isJpegColour ? 3
                                  : page.photometric == PHOTOMETRIC_SEPARATED         ? 4
                                                                                      : 1;
    if (page.samples < colours || page.samples > colours + 1 || (page.samples > 1 && page.bits < 8))
        unsupported();
    if (page.photometric == PHOTOMETRIC_MINISWHITE || page.photometric == PHOTOMETRIC_MINISBLACK) {
        page.darkIsHigh = page.photometric == PHOTOMETRIC_MINISWHITE;
    } else if (page.photometric == PHOTOMETRIC_PALETTE && page.bits <= 8) {
        page.model = Model::indexed;
        readPalette(tiff, page);
    } else if (colours == 3) {
        page.model = Model::rgb;
    } else if (page.photometric == PHOTOMETRIC_SEPARATED) {
        page.model = Model::inks;
    } else {
        unsupported();
    }
    // Of JPEG only what needs nothing but patches is known.
    if (isJpeg && (page.bits != 8 || page.samples != colours || page.model == Model::inks ||
                   page.model == Model::indexed || page.darkIsHigh))
        unsupported();
    std::uint16_t extraCount = 0;
    std::uint16_t* extras = nullptr;
    if (page.samples == colours + 1 && TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extras) &&
        extraCount == 1) {
        page.hasAlpha = extras[0] == EXTRASAMPLE_ASSOCALPHA || extras[0] == EXTRASAMPLE_UNASSALPHA;
        page.premultiplied = extras[0] == EXTRASAMPLE_ASSOCALPHA;
    }
    page.tiled = TIFFIsTiled(tiff) != 0;
    if (page.tiled) {
        page.blockWidth = field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
        page.blockHeight = field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
        checkSize(page.blockWidth, page.blockHeight);
    } else {
        page.blockWidth = page.width;
        page.blockHeight = std::min(page.height, field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, page.height));
        if (page.blockHeight == 0)
            damaged();
    }
    return page;
}

/// A strip or tile, decoded; its channels are together, wherever the file has them.
struct Block {
    std::uint32_t number = 0;
    std::uint32_t rows = 0;
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::string samples;
    std::size_t stride = 0;
};

std::string readSamples(TIFF* tiff, const Page& page, std::uint32_t number, std::size_t bytes) {
    std::string samples(bytes, '\0');
    const auto size = static_cast<tmsize_t>(bytes);
    const auto read = page.tiled ? TIFFReadEncodedTile(tiff, number, samples.data(), size)
                                 : TIFFReadEncodedStrip(tiff, number, samples.data(), size);
    if (read < 0)
        damaged();
    return samples;
}

/// Copies one channel between a block and a text that has nothing but it. Several channels have whole bytes.
template <class Copy>
void eachOfChannel(const Page& page, unsigned channel, std::size_t count, const Copy& copy) {
    const std::size_t width = page.bits / 8;
    for (std::size_t i = 0; i < count; ++i)
        copy((i * page.samples + channel) * width, i * width, width);
}

Block readBlock(TIFF* tiff, const Page& page, std::uint32_t number) {
    Block block;
    block.number = number;
    const auto across = page.blocksAcross();
    block.left = number % across * page.blockWidth;
    block.top = number / across * page.blockHeight;
    block.rows = page.tiled ? page.blockHeight : std::min(page.blockHeight, page.height - block.top);
    block.stride = (std::size_t{page.blockWidth} * page.samples * page.bits + 7) / 8;
    if (!page.isApart) {
        block.samples = readSamples(tiff, page, number, block.stride * block.rows);
        return block;
    }
    block.samples.resize(block.stride * block.rows);
    for (unsigned channel = 0; channel < page.samples; ++channel) {
        const auto own =
            readSamples(tiff, page, number + channel * page.blocksOfChannel(), block.samples.size() / page.samples);
        eachOfChannel(page, channel, std::size_t{page.blockWidth} * block.rows,
                      [&](std::size_t together, std::size_t apart, std::size_t width) {
                          std::memcpy(&block.samples[together], &own[apart], width);
                      });
    }
    return block;
}

/// A colour with its opacity, each from 0 to 1.
struct Tone {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

double luma(const Tone& tone) {
    return 0.2126 * tone.red + 0.7152 * tone.green + 0.0722 * tone.blue; // Rec. 709
}

/// Reads and writes samples of a block.
class Samples {
public:
    Samples(const Page& page, Block& block) : m_page(page), m_block(block), m_most((1U << page.bits) - 1) {}

    void paint(std::uint32_t x, std::uint32_t y, QRgb above) {
        const double alpha = qAlpha(above) / 255.0;
        const Tone ink{qRed(above) / 255.0, qGreen(above) / 255.0, qBlue(above) / 255.0, alpha}; // premultiplied
        switch (m_page.model) {
        case Model::indexed:
            paintIndexed(x, y, ink);
            break;
        case Model::grey:
            if (m_page.bits == 1) {
                const double below = value(x, y, 0);
                set(x, y, 0, (luma(ink) + light(below) * (1 - alpha) >= 0.5) != m_page.darkIsHigh ? 1 : 0);
            } else {
                const double mixed = luma(ink) + light(value(x, y, 0)) * (1 - alpha);
                set(x, y, 0, m_page.darkIsHigh ? 1 - mixed : mixed);
            }
            paintAlpha(x, y, 1, alpha);
            break;
        case Model::rgb:
            paintColours(x, y, ink);
            break;
        case Model::inks: {
            // Colours without black ink: light of each primary is the lack of its ink.
            const double lights[] = {ink.red, ink.green, ink.blue, alpha};
            for (unsigned i = 0; i < 4; ++i)
                set(x, y, i, 1 - (lights[i] + (1 - value(x, y, i)) * (1 - alpha)));
            paintAlpha(x, y, 4, alpha);
            break;
        }
        }
    }

private:
    double light(double value) const { return m_page.darkIsHigh ? 1 - value : value; }

    void paintAlpha(std::uint32_t x, std::uint32_t y, unsigned channel, double alpha) {
        if (m_page.hasAlpha)
            set(x, y, channel, alpha + value(x, y, channel) * (1 - alpha));
    }

    void paintColours(std::uint32_t x, std::uint32_t y, const Tone& ink) {
        const double below = m_page.hasAlpha ? value(x, y, 3) : 1;
        const double together = ink.alpha + below * (1 - ink.alpha);
        const double inks[] = {ink.red, ink.green, ink.blue};
        for (unsigned i = 0; i < 3; ++i) {
            const double old = m_page.premultiplied ? value(x, y, i) : value(x, y, i) * below;
            const double mixed = inks[i] + old * (1 - ink.alpha);
            set(x, y, i, m_page.premultiplied || together <= 0 ? mixed : mixed / together);
        }
        paintAlpha(x, y, 3, ink.alpha);
    }

    void paintIndexed(std::uint32_t x, std::uint32_t y, const Tone& ink) {
        const QRgb below = m_page.palette[number(x, y, 0)];
        const double kept = 1 - ink.alpha;
        const QRgb wanted = qRgb(static_cast<int>(std::lround((ink.red * 255 + qRed(below) * kept))),
                                 static_cast<int>(std::lround((ink.green * 255 + qGreen(below) * kept))),
                                 static_cast<int>(std::lround((ink.blue * 255 + qBlue(below) * kept))));
        const auto [place, isNew] = m_nearest.try_emplace(wanted);
        if (isNew) {
            long best = -1;
            for (std::size_t i = 0; i < m_page.palette.size(); ++i) {
                const QRgb colour = m_page.palette[i];
                const long red = qRed(colour) - qRed(wanted);
                const long green = qGreen(colour) - qGreen(wanted);
                const long blue = qBlue(colour) - qBlue(wanted);
                const long distance = red * red + green * green + blue * blue;
                if (best < 0 || distance < best) {
                    best = distance;
                    place->second = static_cast<unsigned>(i);
                }
            }
        }
        setNumber(x, y, 0, place->second);
    }

    double value(std::uint32_t x, std::uint32_t y, unsigned channel) const {
        return number(x, y, channel) / static_cast<double>(m_most);
    }
    void set(std::uint32_t x, std::uint32_t y, unsigned channel, double value) {
        setNumber(x, y, channel, static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 1.0) * m_most)));
    }

    unsigned number(std::uint32_t x, std::uint32_t y, unsigned channel) const {
        const std::size_t bit = (std::size_t{x} * m_page.samples + channel) * m_page.bits;
        const char* const at = m_block.samples.data() + y * m_block.stride + bit / 8;
        if (m_page.bits == 16) {
            std::uint16_t value = 0;
            std::memcpy(&value, at, 2);
            return value;
        }
        return static_cast<unsigned char>(*at) >> (8 - m_page.bits - bit % 8) & m_most;
    }
    void setNumber(std::uint32_t x, std::uint32_t y, unsigned channel, unsigned value) {
        const std::size_t bit = (std::size_t{x} * m_page.samples + channel) * m_page.bits;
        char* const at = m_block.samples.data() + y * m_block.stride + bit / 8;
        if (m_page.bits == 16) {
            const auto wide = static_cast<std::uint16_t>(value);
            std::memcpy(at, &wide, 2);
            return;
        }
        const auto shift = 8 - m_page.bits - bit % 8;
        const auto kept = static_cast<unsigned char>(*at) & ~(m_most << shift);
        *at = static_cast<char>(kept | value << shift);
    }

    const Page& m_page;
    Block& m_block;
    unsigned m_most;
    std::map<QRgb, unsigned> m_nearest;
};

/// The block as the page's own compression encodes it.
std::string encode(TIFF* source, const Page& page, const Block& block, bool bigEndian) {
    MemoryFile memory;
    memory.writes = true;
    {
        const auto tiff = openTiff(memory, bigEndian ? "wb" : "wl");
        TIFF* const out = tiff.get();
        TIFFSetField(out, TIFFTAG_IMAGEWIDTH, page.blockWidth);
        TIFFSetField(out, TIFFTAG_IMAGELENGTH, block.rows);
        TIFFSetField(out, TIFFTAG_BITSPERSAMPLE, page.bits);
        TIFFSetField(out, TIFFTAG_SAMPLESPERPIXEL, page.samples);
        // What indices stand for is said elsewhere.
        TIFFSetField(out, TIFFTAG_PHOTOMETRIC,
                     page.model == Model::indexed ? std::uint16_t{PHOTOMETRIC_MINISBLACK} : page.photometric);
        TIFFSetField(out, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(out, TIFFTAG_COMPRESSION, page.compression);
        TIFFSetField(out, TIFFTAG_FILLORDER, field<std::uint16_t>(source, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB));
        // Encoded anew with loss, all pixels of the block would change.
        if (page.compression == COMPRESSION_WEBP)
            TIFFSetField(out, TIFFTAG_WEBP_LOSSLESS, 1);
        std::uint16_t small = 0;
        std::uint32_t large = 0;
        if (TIFFGetField(source, TIFFTAG_PREDICTOR, &small))
            TIFFSetField(out, TIFFTAG_PREDICTOR, small);
        if (page.compression == COMPRESSION_CCITTFAX3 && TIFFGetField(source, TIFFTAG_GROUP3OPTIONS, &large))
            TIFFSetField(out, TIFFTAG_GROUP3OPTIONS, large);
        if (page.tiled) {
            TIFFSetField(out, TIFFTAG_TILEWIDTH, page.blockWidth);
            TIFFSetField(out, TIFFTAG_TILELENGTH, page.blockHeight);
        } else {
            TIFFSetField(out, TIFFTAG_ROWSPERSTRIP, block.rows);
        }
        std::string samples = block.samples; // the encoder may change them
        const auto size = static_cast<tmsize_t>(samples.size());
        const auto written = page.tiled ? TIFFWriteEncodedTile(out, 0, samples.data(), size)
                                        : TIFFWriteEncodedStrip(out, 0, samples.data(), size);
        if (written < 0 || !TIFFWriteDirectory(out))
            throw Failure(Code::cannotWrite, "The picture cannot be encoded.");
    }
    MemoryFile reading;
    reading.bytes = memory.own;
    const auto tiff = openTiff(reading, kReading);
    const auto offset = TIFFGetStrileOffset(tiff.get(), 0);
    const auto size = TIFFGetStrileByteCount(tiff.get(), 0);
    if (offset > memory.own.size() || size > memory.own.size() - offset)
        throw Failure(Code::cannotWrite, "The picture cannot be encoded.");
    return memory.own.substr(offset, size);
}

/// The same for each of its channels, as the page has them apart: by the numbers of their strips or tiles.
void encodeApart(TIFF* source, const Page& page, const Block& block, bool bigEndian,
                 std::map<std::uint32_t, std::string>& encoded) {
    Page alone = page;
    alone.samples = 1;
    alone.model = Model::grey;
    alone.photometric = PHOTOMETRIC_MINISBLACK;
    Block part = block;
    for (unsigned channel = 0; channel < page.samples; ++channel) {
        part.samples.resize(block.samples.size() / page.samples);
        eachOfChannel(page, channel, std::size_t{page.blockWidth} * block.rows,
                      [&](std::size_t together, std::size_t apart, std::size_t width) {
                          std::memcpy(&part.samples[apart], &block.samples[together], width);
                      });
        encoded[block.number + channel * page.blocksOfChannel()] = encode(source, alone, part, bigEndian);
    }
}

/// The numbers of a file's directories, as its byte order and size of offsets have them.
class Directory {
public:
    Directory(std::string& file, std::uint64_t offset, bool bigEndian, bool large)
        : m_file(file), m_bigEndian(bigEndian), m_large(large), m_entries(offset + (large ? 8 : 2)),
          m_count(number(offset, large ? 8 : 2)) {}

    /// Gives an entry a list of offsets or sizes, which is put behind the file's end.
    void setList(unsigned tag, const std::vector<std::uint64_t>& list) {
        const unsigned width = m_large ? 8 : 4;
        const auto entry = find(tag);
        std::string bytes;
        for (const auto value : list)
            bytes += encoded(value, width);
        replace(entry + 2, encoded(m_large ? TIFF_LONG8 : TIFF_LONG, 2));
        replace(entry + 4, encoded(list.size(), width));
        if (list.size() == 1) {
            replace(entry + 4 + width, bytes);
        } else {
            replace(entry + 4 + width, encoded(append(m_file, bytes, m_large), width));
        }
    }

    /// Adds bytes behind the file's end, where a number may stand, and answers where they are.
    static std::uint64_t append(std::string& file, std::string_view bytes, bool large) {
        file.resize((file.size() + 7) / 8 * 8);
        const std::uint64_t offset = file.size();
        if (!large && offset + bytes.size() > 0xFFFFFFFFU)
            throw Failure(Code::tooLarge, "The picture would become larger than its format allows.");
        file += bytes;
        return offset;
    }

private:
    std::uint64_t number(std::uint64_t at, unsigned size) const {
        if (at > m_file.size() || m_file.size() - at < size)
            damaged();
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(m_file[at + (m_bigEndian ? i : size - 1 - i)]);
        return value;
    }
    std::string encoded(std::uint64_t value, unsigned size) const {
        std::string bytes;
        for (unsigned i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * (m_bigEndian ? size - 1 - i : i) & 0xFF);
        return bytes;
    }
    void replace(std::uint64_t at, const std::string& bytes) { m_file.replace(at, bytes.size(), bytes); }

    std::uint64_t find(unsigned tag) const {
        for (std::uint64_t i = 0; i < m_count; ++i) {
            const auto at = m_entries + i * (m_large ? 20 : 12);
            if (number(at, 2) == tag && at + (m_large ? 20 : 12) <= m_file.size())
                return at;
        }
        damaged();
    }

    std::string& m_file;
    bool m_bigEndian;
    bool m_large;
    std::uint64_t m_entries;
    std::uint64_t m_count;
};

/// Paints the patches onto the page's blocks and answers those that changed, by number.
std::map<std::uint32_t, Block> paintBlocks(TIFF* tiff, const Page& page, const std::vector<Patch>& patches) {
    std::map<std::uint32_t, Block> blocks;
    const auto across = page.blocksAcross();
    for (const auto& patch : patches)
        for (int row = 0; row < patch.area.height(); ++row) {
            const auto* above = reinterpret_cast<const QRgb*>(patch.pixels.constScanLine(row));
            const auto y = static_cast<std::uint32_t>(patch.area.top() + row);
            for (int i = 0; i < patch.area.width(); ++i) {
                if (!qAlpha(above[i]))
                    continue;
                const auto x = static_cast<std::uint32_t>(patch.area.left() + i);
                const auto number = y / page.blockHeight * across + x / page.blockWidth;
                auto found = blocks.find(number);
                if (found == blocks.end())
                    found = blocks.emplace(number, readBlock(tiff, page, number)).first;
                auto& block = found->second;
                Samples(page, block).paint(x - block.left, y - block.top, above[i]);
            }
        }
    return blocks;
}

/// What of a block lies in the picture, in pixels of the page.
QRect areaOf(const Page& page, std::uint32_t number) {
    const auto across = page.blocksAcross();
    const QRect block(static_cast<int>(number % across * page.blockWidth),
                      static_cast<int>(number / across * page.blockHeight), static_cast<int>(page.blockWidth),
                      static_cast<int>(page.blockHeight));
    return block & QRect(0, 0, static_cast<int>(page.width), static_cast<int>(page.height));
}

/// The JPEG streams of the blocks that the patches touch, by number, with the patches painted in. Where a page keeps
/// the tables of all blocks and they do not suffice, the others are there too, each with the page's tables: readers go
/// on with the tables they met last.
std::map<std::uint32_t, std::string> patchStreams(TIFF* tiff, const Page& page, std::string_view file,
                                                  const std::vector<Patch>& patches) {
    std::uint32_t tablesSize = 0;
    const char* tables = nullptr;
    constexpr std::size_t marker = 2; // which begins a stream, and ends it
    const bool sharesTables = TIFFGetField(tiff, TIFFTAG_JPEGTABLES, &tablesSize, &tables) && tablesSize > 2 * marker;
    const auto streamOf = [&](std::uint32_t number) {
        const auto offset = TIFFGetStrileOffset(tiff, number);
        const auto size = TIFFGetStrileByteCount(tiff, number);
        if (offset > file.size() || size > file.size() - offset || size < 2 * marker)
            damaged();
        std::string stream(file.substr(offset, size));
        return sharesTables ? std::string(tables, tablesSize - marker) + stream.substr(marker) : stream;
    };
    const auto colours = page.model == Model::grey               ? JpegColours::asItSays
                         : page.photometric == PHOTOMETRIC_YCBCR ? JpegColours::brightnessAndColour
                                                                 : JpegColours::rgb;
    std::map<std::uint32_t, std::string> streams;
    bool hasNewTables = false;
    const auto count = page.tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    for (std::uint32_t number = 0; number < count; ++number) {
        const QRect area = areaOf(page, number);
        std::vector<Patch> parts;
        for (const auto& patch : patches)
            if (const QRect common = patch.area & area; !common.isEmpty())
                parts.push_back(
                    {common.translated(-area.topLeft()), patch.pixels.copy(common.translated(-patch.area.topLeft()))});
        if (parts.empty())
            continue;
        bool hasNewCodes = false;
        streams[number] = patchJpeg(streamOf(number), parts, colours, sharesTables, hasNewCodes);
        hasNewTables = hasNewTables || hasNewCodes;
    }
    if (sharesTables && hasNewTables)
        for (std::uint32_t number = 0; number < count; ++number)
            if (streams.count(number) == 0 && TIFFGetStrileByteCount(tiff, number) > 0)
                streams[number] = streamOf(number);
    return streams;
}

} // namespace

bool isTiff(std::string_view bytes) {
    for (const std::string_view head : {std::string_view("II*\0", 4), std::string_view("MM\0*", 4),
                                        std::string_view("II+\0", 4), std::string_view("MM\0+", 4)})
        if (bytes.starts_with(head))
            return true;
    return false;
}

std::size_t countTiffPages(std::string_view file) {
    MemoryFile memory;
    memory.bytes = file;
    const auto tiff = openTiff(memory, kReading);
    std::size_t pages = 1;
    while (TIFFReadDirectory(tiff.get()))
        ++pages;
    return pages;
}

DecodedPicture decodeTiff(std::string_view file, std::size_t page) {
    MemoryFile memory;
    memory.bytes = file;
    const auto tiff = openTiff(memory, kReading);
    for (std::size_t number = 1; number < page; ++number)
        if (!TIFFReadDirectory(tiff.get()))
            damaged();
    Page sizes;
    sizes.width = field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH, 0);
    sizes.height = field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH, 0);
    checkSize(sizes.width, sizes.height);
    DecodedPicture picture{{}, geometryOf(tiff.get(), sizes)};
    char why[1024];
    if (!TIFFRGBAImageOK(tiff.get(), why))
        throw Failure(Code::unsupported, "A picture of this form cannot be shown.");
    picture.image = QImage(picture.geometry.width, picture.geometry.height, QImage::Format_RGB32);
    if (picture.image.isNull())
        throw std::bad_alloc();
    // As it is stored: asked for its own orientation, the library turns nothing.
    const int orientation = picture.geometry.orientation;
    const bool known = orientation >= ORIENTATION_TOPLEFT && orientation <= ORIENTATION_LEFTBOT;
    auto* pixels = reinterpret_cast<std::uint32_t*>(picture.image.bits());
    if (!TIFFReadRGBAImageOriented(tiff.get(), sizes.width, sizes.height, pixels,
                                   known ? orientation : ORIENTATION_TOPLEFT, 0))
        damaged();
    // Colours come multiplied by what covers, and lie on white.
    const auto count = std::size_t{sizes.width} * sizes.height;
    for (std::size_t i = 0; i < count; ++i) {
        const auto pixel = pixels[i];
        const auto white = 255 - TIFFGetA(pixel);
        const auto on = [white](std::uint32_t part) { return static_cast<int>(std::min(255U, part + white)); };
        pixels[i] = qRgb(on(TIFFGetR(pixel)), on(TIFFGetG(pixel)), on(TIFFGetB(pixel)));
    }
    return picture;
}

std::string stampTiff(std::string_view file, const PagePartsFor& partsFor, std::size_t& stampedPages) {
    const auto pageCount = countTiffPages(file);
    MemoryFile memory;
    memory.bytes = file;
    const auto tiff = openTiff(memory, kReading);
    const bool bigEndian = TIFFIsBigEndian(tiff.get()) != 0;
    const bool large = TIFFIsBigTIFF(tiff.get()) != 0;
    std::string result(file);
    stampedPages = 0;
    for (std::size_t number = 1; number <= pageCount; ++number) {
        if (number > 1 && !TIFFReadDirectory(tiff.get()))
            damaged();
        const auto width = field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH, 0);
        const auto height = field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH, 0);
        checkSize(width, height);
        Page sizes;
        sizes.width = width;
        sizes.height = height;
        const auto geometry = geometryOf(tiff.get(), sizes);
        const auto parts = partsFor(geometry, number, pageCount);
        if (parts.empty())
            continue;
        const auto page = readPage(tiff.get());
        const Matrix pixels = pixelsFromShown(geometry);
        const QSize size(geometry.width, geometry.height);
        std::vector<Patch> patches;
        for (const auto& part : parts)
            patches.push_back(paintStamp(*part.stamp, part.shownFromStamp.then(pixels), size, false));
        std::map<std::uint32_t, std::string> fresh;
        if (page.compression == COMPRESSION_JPEG)
            fresh = patchStreams(tiff.get(), page, file, patches);
        else
            for (const auto& [place, block] : paintBlocks(tiff.get(), page, patches))
                if (page.isApart)
                    encodeApart(tiff.get(), page, block, bigEndian, fresh);
                else
                    fresh[place] = encode(tiff.get(), page, block, bigEndian);
        ++stampedPages;
        if (fresh.empty())
            continue;

        std::vector<std::uint64_t> offsets;
        std::vector<std::uint64_t> lengths;
        const auto count = page.tiled ? TIFFNumberOfTiles(tiff.get()) : TIFFNumberOfStrips(tiff.get());
        for (std::uint32_t i = 0; i < count; ++i) {
            offsets.push_back(TIFFGetStrileOffset(tiff.get(), i));
            lengths.push_back(TIFFGetStrileByteCount(tiff.get(), i));
        }
        for (const auto& [place, bytes] : fresh) {
            offsets.at(place) = Directory::append(result, bytes, large);
            lengths.at(place) = bytes.size();
        }
        Directory directory(result, TIFFCurrentDirOffset(tiff.get()), bigEndian, large);
        directory.setList(page.tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, offsets);
        directory.setList(page.tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, lengths);
    }
    return result;
}

} // namespace engine
