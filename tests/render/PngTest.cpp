// SPDX-License-Identifier: MIT
#include "Render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include <zlib.h>

using namespace render;

namespace {

struct Stamped {
    engine::Outcome outcome;
    QImage before;
    QImage after;
};

std::string bigEndian(unsigned long value, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift & 0xFF);
    return text;
}

std::string chunk(const std::string& type, const std::string& data) {
    const auto whole = type + data;
    const auto sum = ::crc32(0, reinterpret_cast<const Bytef*>(whole.data()), static_cast<uInt>(whole.size()));
    return bigEndian(data.size(), 4) + whole + bigEndian(sum, 4);
}

std::string deflated(const std::string& plain) {
    auto size = ::compressBound(plain.size());
    std::string result(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
               plain.size());
    result.resize(size);
    return result;
}

constexpr int kWidth = 240;
constexpr int kHeight = 120;

/// A PNG file, sample by sample. `extra`: chunks between the header and the pixels.
std::string png(int bits, int colourType, const std::string& extra = {}) {
    const std::map<int, int> channels{{0, 1}, {2, 3}, {3, 1}, {4, 2}, {6, 4}};
    std::string rows;
    for (unsigned y = 0; y < kHeight; ++y) {
        rows += '\0';
        unsigned pending = 0;
        int filled = 0;
        for (unsigned x = 0; x < kWidth; ++x)
            for (int c = 0; c < channels.at(colourType); ++c) {
                // Wide samples differ in both of their bytes, so that no mixing up stays unseen.
                const unsigned wide = (x * 204 + y * 91 + static_cast<unsigned>(c) * 12345) & 0xFFFF;
                const unsigned sample = bits == 16 ? wide : (x / 7 + y / 5 + unsigned(c) * 3) & ((1U << bits) - 1);
                pending = pending << bits | sample;
                filled += bits;
                if (filled >= 8) {
                    rows += bigEndian(pending, filled / 8);
                    pending = 0;
                    filled = 0;
                }
            }
        if (filled > 0)
            rows += static_cast<char>(pending << (8 - filled));
    }
    const auto header = bigEndian(kWidth, 4) + bigEndian(kHeight, 4) + static_cast<char>(bits) +
                        static_cast<char>(colourType) + std::string(3, '\0');
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + extra + chunk("IDAT", deflated(rows)) + chunk("IEND", "");
}

std::string palette(int bits) {
    std::string colours;
    for (int i = 0; i < 1 << bits; ++i)
        colours += std::string{static_cast<char>(i * 255 / ((1 << bits) - 1)), '\x64', static_cast<char>(200 - i / 2)};
    return chunk("PLTE", colours);
}

/// The head of a profile of these colours, which is all that anybody here looks at.
std::string profile(const std::string& space) {
    return chunk("iCCP", std::string("some\0\0", 6) +
                             deflated(bigEndian(132, 4) + std::string(8, '\0') + "mntr" + space + "XYZ " +
                                      std::string(12, '\0') + "acsp" + std::string(92, '\0')));
}

/// Each pixel's four channels of 16 bits, as ImageMagick reads them.
std::string pixels(const std::filesystem::path& file) {
    Folder folder;
    const auto made = run("convert -quiet " + quoted(file) + " -depth 16 -endian MSB -define quantum:format=unsigned " +
                          quoted(std::filesystem::path("RGBA:" + (folder / "raw").string())));
    EXPECT_EQ(made.status, 0) << made.output;
    return readFile(folder / "raw");
}

/// Where pictures of the test's size differ.
QRect difference(const std::string& a, const std::string& b) {
    EXPECT_EQ(a.size(), std::size_t{kWidth} * kHeight * 8);
    EXPECT_EQ(a.size(), b.size());
    QRect area;
    for (std::size_t i = 0; i + 8 <= std::min(a.size(), b.size()); i += 8)
        if (a.compare(i, 8, b, i, 8) != 0)
            area |= QRect(static_cast<int>(i / 8) % kWidth, static_cast<int>(i / 8) / kWidth, 1, 1);
    return area;
}

bool hasChunk(const std::filesystem::path& file, const char* type) {
    return readFile(file).find(type) != std::string::npos;
}

std::shared_ptr<support::PlainConfiguration> red() {
    auto with = configuration(u"");
    with->setTitle(
        {support::fontRun(u"DejaVuSans-Bold", 20, host::NSColor::colorWithSRGB(1, 0, 0, 1)), std::u16string(u"III")});
    return with;
}

Stamped stamp(const QImage& picture, const std::shared_ptr<support::PlainConfiguration>& with) {
    Folder folder;
    picture.save((folder / "in.png").c_str());
    Stamped result;
    result.outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {with}));
    result.before = QImage((folder / "in.png").c_str());
    result.after = QImage((folder / "out.png").c_str());
    return result;
}

} // namespace

TEST(PngPictures, AStampChangesPixelsAtItsAnchorOnly) {
    const auto with = configuration(u"Received");
    with->anchor = 8;
    const auto result = stamp(white(400, 300), with);
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    const QRect area = differingArea(result.before, result.after);
    EXPECT_GT(area.width(), 45);
    EXPECT_NEAR(area.right(), 400 - 18, 3);
    EXPECT_LE(area.bottom(), 300 - 18);
    EXPECT_GE(area.bottom(), 300 - 18 - 6);
    EXPECT_TRUE(result.outcome.warnings.empty());
}

TEST(PngPictures, ResolutionScalesTheStamp) {
    const auto with = configuration(u"Received");
    const auto coarse = stamp(white(400, 300), with);
    const auto fine = stamp(white(1600, 1200, QImage::Format_RGB32, 288), with);
    const QRect small = differingArea(coarse.before, coarse.after);
    const QRect large = differingArea(fine.before, fine.after);
    EXPECT_NEAR(large.width(), 4 * small.width(), 8);
    EXPECT_NEAR(large.left(), 4 * small.left(), 6);
    EXPECT_EQ(fine.after.dotsPerMeterX(), fine.before.dotsPerMeterX());
}

TEST(PngPictures, SixteenBitsStaySixteenBits) {
    QImage picture = white(300, 100, QImage::Format_Grayscale16);
    reinterpret_cast<quint16*>(picture.scanLine(99))[299] = 12345;
    const auto result = stamp(picture, configuration(u"Deep"));
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    EXPECT_EQ(result.after.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(result.after.constScanLine(99))[299], 12345);
    EXPECT_FALSE(differingArea(result.before, result.after).isEmpty());
}

TEST(PngPictures, AColouredStampTurnsAGreyPictureIntoColour) {
    const auto with = configuration(u"");
    with->setTitle(
        {support::fontRun(u"DejaVuSans-Bold", 40, host::NSColor::colorWithSRGB(1, 0, 0, 1)), std::u16string(u"III")});
    const auto result = stamp(white(300, 100, QImage::Format_Grayscale8), with);
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    bool red = false;
    for (int x = 0; x < 300; ++x)
        red = red || result.after.pixel(x, 40) == qRgb(255, 0, 0);
    EXPECT_TRUE(red);
}

TEST(PngPictures, ABlackStampLeavesAPalettePictureWithAtMostABytePerPixel) {
    const auto result = stamp(white(300, 100, QImage::Format_Mono), configuration(u"One bit"));
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    EXPECT_LE(result.after.depth(), 8);
    EXPECT_FALSE(differingArea(result.before, result.after).isEmpty());
}

TEST(PngPictures, ClearPixelsKeepTheirHiddenColour) {
    QImage picture(300, 100, QImage::Format_ARGB32);
    picture.fill(qRgba(11, 22, 33, 1));
    const auto result = stamp(picture, configuration(u"Clear"));
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    EXPECT_EQ(result.after.pixel(299, 99), qRgba(11, 22, 33, 1));
}

TEST(PngPictures, TextsAndOtherChunksAreTakenOver) {
    QImage picture = white(300, 100);
    picture.setText("Comment", "kept as it is");
    const auto result = stamp(picture, configuration(u"Text"));
    ASSERT_TRUE(result.outcome) << result.outcome.sentence;
    EXPECT_EQ(result.after.text("Comment"), "kept as it is");
}

TEST(PngPictures, NoPixelOutsideTheStampChangesWhateverTheSamplesAre) {
    struct Row {
        std::string name;
        std::string bytes;
    };
    std::vector<Row> rows;
    const auto add = [&rows](int bits, int type, const std::string& name, const std::string& extra = {}) {
        rows.push_back({name + " of " + std::to_string(bits) + " bits", png(bits, type, extra)});
    };
    for (const int bits : {1, 2, 4, 8, 16}) {
        add(bits, 0, "grey");
        add(bits, 0, "grey with a clear tone", chunk("tRNS", bigEndian(bits == 16 ? 2040 : 1, 2)));
    }
    for (const int bits : {1, 2, 4, 8}) {
        add(bits, 3, "palette", palette(bits));
        add(bits, 3, "palette with clear colours", palette(bits) + chunk("tRNS", std::string("\0\x80", 2)));
    }
    for (const int bits : {8, 16}) {
        add(bits, 2, "colour");
        // That of the pixel at 1, 0.
        const auto clear = bits == 16 ? bigEndian(204, 2) + bigEndian(204 + 12345, 2) + bigEndian(204 + 24690, 2)
                                      : bigEndian(0, 2) + bigEndian(3, 2) + bigEndian(6, 2);
        add(bits, 2, "colour with a clear one", chunk("tRNS", clear));
        add(bits, 4, "grey with transparency");
        add(bits, 6, "colour with transparency");
    }
    add(8, 0, "grey with gamma", chunk("gAMA", bigEndian(100000, 4)));
    add(8, 2, "colour with gamma", chunk("gAMA", bigEndian(100000, 4)));
    add(8, 2, "colour with a profile", profile("RGB "));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Folder folder;
        writeFile(folder / "in.png", row.bytes);
        const auto before = pixels(folder / "in.png");
        // What is grey may stay grey or not.
        std::vector<std::shared_ptr<support::PlainConfiguration>> stamps{red()};
        if (row.name.starts_with("grey"))
            stamps.push_back(configuration(u"Sample"));
        for (const auto& with : stamps) {
            const auto outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {with}));
            ASSERT_TRUE(outcome) << outcome.sentence;
            const QRect area = difference(before, pixels(folder / "out.png"));
            EXPECT_FALSE(area.isEmpty());
            EXPECT_TRUE(QRect(16, 16, 60, 26).contains(area))
                << area.left() << ' ' << area.top() << ' ' << area.width() << ' ' << area.height();
        }
    }
}

TEST(PngPictures, InterlacedOnesAreStampedAsWell) {
    for (const char* kind : {"-depth 16", "-depth 8", "-colors 16 -type Palette", "-monochrome"}) {
        SCOPED_TRACE(kind);
        Folder folder;
        ASSERT_EQ(run("convert -size 240x120 -seed 7 plasma:red-blue -interlace PNG " + std::string(kind) + " " +
                      quoted(folder / "in.png"))
                      .status,
                  0);
        ASSERT_EQ(readFile(folder / "in.png")[28], 1) << "not interlaced";
        const auto outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {red()}));
        ASSERT_TRUE(outcome) << outcome.sentence;
        const QRect area = difference(pixels(folder / "in.png"), pixels(folder / "out.png"));
        EXPECT_FALSE(area.isEmpty());
        EXPECT_TRUE(QRect(16, 16, 60, 26).contains(area));
    }
}

TEST(PngPictures, AProfileOfGreysStaysOnlyWithGreys) {
    for (const int bits : {1, 4, 8, 16}) {
        SCOPED_TRACE(bits);
        Folder folder;
        writeFile(folder / "in.png", png(bits, 0, profile("GRAY")));
        testing::internal::CaptureStderr();
        const auto outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {red()}));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        ASSERT_TRUE(outcome) << outcome.sentence;
        ASSERT_EQ(outcome.warnings.size(), 1U);
        EXPECT_EQ(outcome.warnings.front().kind, engine::Warning::Kind::paintedInGreys);
        EXPECT_TRUE(hasChunk(folder / "out.png", "iCCP"));
        EXPECT_EQ(readFile(folder / "out.png")[25], 0) << "not grey";
        EXPECT_FALSE(difference(pixels(folder / "in.png"), pixels(folder / "out.png")).isEmpty());
    }
    // Grey with transparency cannot be kept so.
    Folder folder;
    writeFile(folder / "in.png", png(8, 4, profile("GRAY")));
    const auto outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {red()}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_EQ(outcome.warnings.size(), 1U);
    EXPECT_FALSE(hasChunk(folder / "out.png", "iCCP"));
}

TEST(PngPictures, AProfileOfColoursStaysOnlyWithColours) {
    Folder folder;
    const std::string greys("\0\0\0\xff\xff\xff", 6);
    writeFile(folder / "in.png", png(1, 3, profile("RGB ") + chunk("PLTE", greys)));
    const auto outcome = engine::stampFile(job(folder / "in.png", folder / "out.png", {configuration(u"Grey")}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_TRUE(hasChunk(folder / "out.png", "iCCP"));
    EXPECT_EQ(readFile(folder / "out.png")[25], 3) << "no palette";
}

TEST(PngPictures, AnAnimatedPictureIsRefused) {
    Folder folder;
    white(60, 40).save((folder / "a.png").c_str());
    auto bytes = readFile(folder / "a.png");
    // One frame, shown without end; with its check sum.
    bytes.insert(8 + 25, std::string("\0\0\0\x08"
                                     "acTL\0\0\0\x01\0\0\0\0\xb4\x2d\xe9\xa0",
                                     20));
    writeFile(folder / "a.png", bytes);
    const auto outcome = engine::stampFile(job(folder / "a.png", folder / "out.png", {configuration(u"x")}));
    EXPECT_EQ(outcome.code, engine::Code::unsupported);
    EXPECT_EQ(outcome.sentence, "An animated picture cannot be stamped.");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.png"));
}
