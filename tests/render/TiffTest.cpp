// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;
using engine::Code;

namespace {

/// A file that ImageMagick makes; read back with it too, so that nobody of ours is asked.
struct Scan {
    Folder folder;
    engine::Outcome outcome;

    Scan(const std::string& make, std::vector<std::shared_ptr<support::PlainConfiguration>> with) {
        const auto made =
            run("cd " + quoted(folder.path()) + " && convert " + make + (make.ends_with(".tif") ? "" : " in.tif"));
        EXPECT_EQ(made.status, 0) << made.output;
        outcome = engine::stampFile(job(folder / "in.tif", folder / "out.tif", std::move(with)));
        EXPECT_TRUE(outcome) << outcome.sentence;
    }
    /// Of both files: what ImageMagick says about their pages.
    std::pair<std::string, std::string> described(const std::string& format) const {
        const auto of = [&](const char* name) {
            return run("identify -quiet -format '" + format + "\n' " + quoted(folder / name)).output;
        };
        return {of("in.tif"), of("out.tif")};
    }
    QImage page(const char* name, int number) const {
        const auto picture = folder / (std::string(name) + std::to_string(number) + ".png");
        const auto made = run("convert -quiet " + quoted(folder / name).substr(0, quoted(folder / name).size() - 1) +
                              "[" + std::to_string(number) + "]' -orient TopLeft -depth 8 PNG32:" + quoted(picture));
        EXPECT_EQ(made.status, 0) << made.output;
        return QImage(picture.c_str()).convertToFormat(QImage::Format_RGB32);
    }
    QRect changed(int number = 0) const { return differingArea(page("in.tif", number), page("out.tif", number)); }
};

std::shared_ptr<support::PlainConfiguration> corner(const std::u16string& text = u"Stamped") {
    auto with = configuration(text);
    with->anchor = 8;
    return with;
}

} // namespace

TEST(TiffPictures, EveryKindOfPageKeepsItsKindAndChangesOnlyWhereTheStampIs) {
    const char* const kinds[] = {
        "-size 300x200 gradient: -monochrome -compress Group4",
        "-size 300x200 gradient: -monochrome -compress Fax",
        "-size 300x200 gradient:black-gray90 -depth 16 -compress None -define quantum:polarity=min-is-white",
        "-size 300x200 gradient: -monochrome -compress LZW -endian MSB",
        "-size 300x200 gradient: -colorspace Gray -depth 8 -compress Zip",
        "-size 300x200 gradient: -colorspace Gray -depth 16 -compress LZW",
        "-size 300x200 gradient: -colorspace Gray -depth 16 -compress None -endian MSB",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 8 -compress LZW",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 16 -compress Zip -endian MSB",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 8 -compress RLE -define tiff:rows-per-strip=7",
        "-size 300x200 gradient:red-blue -type TrueColor -compress Zip -define tiff:tile-geometry=64x64",
        "-size 300x200 gradient:red-blue -type TrueColorAlpha -depth 8 -compress Zip",
        "-size 300x200 gradient:red-blue -colors 30 -type Palette -compress LZW",
        "-size 300x200 gradient:red-blue -colorspace CMYK -compress Zip",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 8 -compress LZW a.tif && tiffcp -p separate a.tif "
        "in.tif",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 16 -compress Zip -interlace Plane -endian MSB",
        "-size 300x200 gradient:red-blue -type TrueColor -depth 8 a.tif && tiffcp -p separate -c lzw:2 -t -w 64 -l 48 "
        "a.tif in.tif",
        "-size 300x200 gradient:red-blue -colorspace CMYK -depth 8 -compress None a.tif && tiffcp -p separate a.tif "
        "in.tif",
        "-size 300x200 gradient:red-blue -type TrueColorAlpha -depth 8 -compress Zip a.tif && tiffcp -p separate "
        "-c packbits a.tif in.tif",
        "-size 300x200 gradient:red-blue -type TrueColor -compress JPEG -define tiff:rows-per-strip=16",
        "-size 300x200 gradient:red-blue -type TrueColor -compress JPEG -define tiff:tile-geometry=64x64",
        "-size 300x200 gradient: -type Grayscale -compress JPEG",
        "-size 300x200 gradient:red-blue -depth 8 a.tif && tiffcp -c jpeg:r:90 -r 40 a.tif in.tif",
        "-size 300x200 gradient:red-blue -depth 8 a.tif && tiffcp -c jpeg:70 -r 48 a.tif in.tif",
    };
    for (const std::string kind : kinds) {
        SCOPED_TRACE(kind);
        const Scan scan(kind, {corner()});
        const auto [before, after] = scan.described(
            "%w %h %z %C %[type] %[colorspace] %[tiff:photometric] %[tiff:rows-per-strip] %[tiff:endian] %x %y");
        // The type as found among the pixels may widen with the stamp's own colours.
        EXPECT_EQ(before.substr(0, before.find(' ', 12)), after.substr(0, before.find(' ', 12)));
        EXPECT_EQ(run("tiffinfo " + quoted(scan.folder / "out.tif")).output.find("rror"), std::string::npos);
        const QRect area = scan.changed();
        EXPECT_GT(area.width(), 30);
        // Units of 16 pixels of a strip, and what decoders smooth beside them.
        const int around = scan.described("%C").first.starts_with("JPEG") ? 17 : 0;
        EXPECT_LT(area.width(), 70 + 2 * around);
        EXPECT_GE(area.left(), 300 - 18 - 70 - around);
        EXPECT_LE(area.right(), 300 - 18 + around);
        EXPECT_GE(area.top(), 160 - around);
        EXPECT_LE(area.bottom(), 200);
    }
}

TEST(TiffPictures, ChannelsThatAreApartStayApartAndLookAsThoseTogether) {
    const struct {
        const char* apart;
        const char* together;
    } ways[] = {
        {"-depth 8 a.tif && tiffcp -c none -p separate a.tif in.tif", "-depth 8 -compress None"},
        {"-depth 8 a.tif && tiffcp -c lzw:2 -r 17 -p separate a.tif in.tif", "-depth 8 -compress LZW"},
        {"-depth 8 a.tif && tiffcp -c zip -t -w 32 -l 48 -p separate a.tif in.tif", "-depth 8 -compress Zip"},
        {"-depth 16 -compress Zip -interlace Plane in.tif", "-depth 16 -compress Zip"},
    };
    for (const auto& way : ways) {
        SCOPED_TRACE(way.apart);
        const std::string make = "-size 300x200 -seed 3 plasma:red-blue -type TrueColor ";
        const Scan apart(make + way.apart, {corner()});
        const Scan together(make + way.together, {corner()});
        for (const char* name : {"in.tif", "out.tif"}) {
            EXPECT_NE(run("tiffinfo " + quoted(apart.folder / name)).output.find("separate image planes"),
                      std::string::npos);
            EXPECT_TRUE(differingArea(apart.page(name, 0), together.page(name, 0)).isEmpty());
        }
        EXPECT_FALSE(apart.changed().isEmpty());
    }
}

TEST(TiffPictures, APageWhoseChannelsAreJpegStreamsApartIsRefused) {
    Folder folder;
    ASSERT_EQ(run("convert -size 64x48 gradient:red-blue -type TrueColor -compress JPEG -interlace Plane " +
                  quoted(folder / "in.tif"))
                  .status,
              0);
    EXPECT_EQ(engine::stampFile(job(folder / "in.tif", folder / "out.tif", {corner()})).code, Code::unsupported);
}

TEST(TiffPictures, EachPageIsAPageWithItsOwnNumberSizeAndResolution) {
    const auto with = configuration(u"");
    with->setTitle({std::u16string(u"Page "), std::u16string(u"%pageNumber%"), std::u16string(u" of "),
                    std::u16string(u"%recordPageCount%")});
    with->pages = 4;
    with->customPages = u"2,3";
    const Scan scan(
        "-units PixelsPerInch -size 300x200 xc:white -density 72 -monochrome -compress Group4 a.tif && convert "
        "-units PixelsPerInch -size 600x400 xc:white -density 144 -compress Zip b.tif && convert -units "
        "PixelsPerInch -size 300x200 xc:white -density 72 -colorspace Gray -compress LZW c.tif && tiffcp a.tif "
        "b.tif c.tif in.tif",
        {with});
    EXPECT_EQ(scan.outcome.pagesStamped, 2U);
    EXPECT_EQ(run("identify " + quoted(scan.folder / "out.tif") + " | wc -l").output, "3\n");
    EXPECT_TRUE(scan.changed(0).isEmpty());
    const QRect second = scan.changed(1);
    const QRect third = scan.changed(2);
    EXPECT_NEAR(second.left(), 2 * third.left(), 3);
    EXPECT_NEAR(second.width(), 2 * third.width(), 6);
    EXPECT_NEAR(third.left(), 18, 3);
}

TEST(TiffPictures, WhatTheFileSaysAboutItselfIsKept) {
    const Scan scan(
        "-size 300x200 xc:white -density 300 -units PixelsPerInch -set comment 'a remark' -orient LeftBottom "
        "-compress Zip",
        {corner()});
    const auto [before, after] = scan.described("%x %y %[tiff:comment] %c %[orientation]");
    EXPECT_EQ(before, after);
    EXPECT_NE(after.find("300"), std::string::npos);
    // Turned a quarter: the stamp is taller than wide in what is stored, and at 300 per inch large.
    const QRect area = scan.changed();
    EXPECT_GT(area.height(), area.width());
    // All that is old is where it was, but for the directory's two lists of strips.
    const auto was = readFile(scan.folder / "in.tif");
    const auto is = readFile(scan.folder / "out.tif");
    std::size_t different = 0;
    for (std::size_t i = 0; i < was.size(); ++i)
        different += was[i] != is[i];
    EXPECT_LE(different, 24U);
}

TEST(TiffPictures, ATwoColouredPageStaysTwoColoured) {
    const auto with = corner();
    with->style = 1;
    with->filled = true;
    with->areaColour = host::NSColor::colorWithSRGB(0.1, 0.1, 0.4, 1);
    const Scan scan("-size 300x200 xc:white -monochrome -compress Group4", {with});
    const auto [before, after] = scan.described("%z %C %[type]");
    EXPECT_EQ(after, "1 Group4 Bilevel\n");
    const QImage page = scan.page("out.tif", 0);
    int black = 0;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x) {
            EXPECT_TRUE(page.pixel(x, y) == qRgb(0, 0, 0) || page.pixel(x, y) == qRgb(255, 255, 255));
            black += qGray(page.pixel(x, y)) == 0;
        }
    EXPECT_GT(black, 500); // the fill is dark
}

TEST(TiffPictures, DamagedAndStrangeOnesAreRefused) {
    Folder folder;
    ASSERT_EQ(run("cd " + quoted(folder.path()) + " && convert -size 300x200 gradient: -compress LZW a.tif").status, 0);
    const auto whole = readFile(folder / "a.tif");
    for (std::size_t length = 4; length < whole.size(); length += 1 + whole.size() / 50) {
        writeFile(folder / "cut.tif", whole.substr(0, length));
        std::filesystem::remove(folder / "out.tif");
        const auto outcome = engine::stampFile(job(folder / "cut.tif", folder / "out.tif", {corner()}));
        EXPECT_EQ(std::filesystem::exists(folder / "out.tif"), bool(outcome)) << length;
    }
    // 100,000 pixels wide and high.
    std::string large("II*\0\x08\0\0\0\x05\0", 10);
    for (const char* entry : {"\x00\x01\x04\0\x01\0\0\0\xa0\x86\x01\0", "\x01\x01\x04\0\x01\0\0\0\xa0\x86\x01\0",
                              "\x06\x01\x03\0\x01\0\0\0\0\0\0\0", "\x11\x01\x04\0\x01\0\0\0\x08\0\0\0",
                              "\x17\x01\x04\0\x01\0\0\0\x08\0\0\0"})
        large.append(entry, 12);
    large.append(4, '\0');
    writeFile(folder / "large.tif", large);
    const auto outcome = engine::stampFile(job(folder / "large.tif", folder / "large-out.tif", {corner()}));
    EXPECT_EQ(outcome.code, Code::tooLarge) << outcome.sentence;
    EXPECT_FALSE(std::filesystem::exists(folder / "large-out.tif"));
}

TEST(TiffPictures, StripsThatShareTablesKeepThemOrGetThemAsTheirOwn) {
    // Two equal strips whose tables have codes for nothing but what is in them.
    Folder folder;
    ASSERT_EQ(run("convert -size 300x96 gradient:red-blue -sampling-factor 1x1 -quality 80 -interlace none -define "
                  "jpeg:optimize-coding=true " +
                  quoted(folder / "strip.jpg"))
                  .status,
              0);
    const auto jpeg = readFile(folder / "strip.jpg");
    const auto byte = [&jpeg](std::size_t at) { return static_cast<unsigned char>(jpeg[at]); };
    std::string tables = jpeg.substr(0, 2);
    std::string strip = jpeg.substr(0, 2);
    std::size_t at = 2;
    for (; byte(at + 1) != 0xDA; at += 2 + (byte(at + 2) << 8U | byte(at + 3))) {
        const auto segment = jpeg.substr(at, 2 + (byte(at + 2) << 8U | byte(at + 3)));
        const bool isTable = byte(at + 1) == 0xDB || byte(at + 1) == 0xC4;
        if (isTable)
            tables += segment;
        else if (byte(at + 1) == 0xC0)
            strip += segment;
    }
    tables += "\xff\xd9";
    strip += jpeg.substr(at);

    const auto number = [](std::size_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> 8 * i & 0xFF);
        return text;
    };
    const std::size_t data = 8 + 2 + 12 * 12 + 4; // behind the header and the directory
    const std::string depths = number(8, 2) + number(8, 2) + number(8, 2);
    const auto tablesAt = data + depths.size() + 16;
    const auto first = tablesAt + tables.size();
    const auto second = first + strip.size();
    std::string file = std::string("II*\0", 4) + number(8, 4) + number(12, 2);
    const auto entry = [&](unsigned tag, unsigned type, std::size_t count, std::size_t value) {
        file += number(tag, 2) + number(type, 2) + number(count, 4) + number(value, 4);
    };
    entry(256, 4, 1, 300);
    entry(257, 4, 1, 192);
    entry(258, 3, 3, data);
    entry(259, 3, 1, 7); // JPEG
    entry(262, 3, 1, 6); // brightness and colour
    entry(273, 4, 2, data + depths.size());
    entry(277, 3, 1, 3);
    entry(278, 4, 1, 96);
    entry(279, 4, 2, data + depths.size() + 8);
    entry(284, 3, 1, 1);
    entry(347, 7, tables.size(), tablesAt);
    entry(530, 3, 2, 1U << 16U | 1U);
    file += number(0, 4) + depths + number(first, 4) + number(second, 4) + number(strip.size(), 4) +
            number(strip.size(), 4) + tables + strip + strip;
    writeFile(folder / "in.tif", file);

    const auto with = configuration(u"Stamped");
    with->anchor = 2;
    const auto outcome = engine::stampFile(job(folder / "in.tif", folder / "out.tif", {with}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    for (const char* name : {"in", "out"}) {
        const auto made = run("convert " + quoted(folder / (std::string(name) + ".tif")) + " -depth 8 " +
                              quoted(folder / (std::string(name) + ".png")));
        EXPECT_EQ(made.status, 0) << made.output;
        EXPECT_EQ(made.output, "");
    }
    const QRect area = differingArea(QImage((folder / "in.png").c_str()), QImage((folder / "out.png").c_str()));
    EXPECT_GT(area.width(), 30);
    EXPECT_TRUE(QRect(208, 8, 84, 32).contains(area))
        << area.left() << ' ' << area.top() << ' ' << area.width() << ' ' << area.height();
}

TEST(TiffPictures, ThePixelsOfAWebpStripThatNoInkTouchesStayAsTheyAre) {
    Folder folder;
    ASSERT_EQ(run("convert -size 300x200 plasma:red-blue -seed 3 -type TrueColor -depth 8 -quality 60 -compress WebP " +
                  quoted(folder / "in.tif"))
                  .status,
              0);
    const auto outcome = engine::stampFile(job(folder / "in.tif", folder / "out.tif", {configuration(u"x")}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    for (const char* name : {"in", "out"})
        ASSERT_EQ(run("convert " + quoted(folder / (std::string(name) + ".tif")) + " " +
                      quoted(folder / (std::string(name) + ".png")))
                      .status,
                  0);
    const auto area = differingArea(QImage((folder / "in.png").c_str()), QImage((folder / "out.png").c_str()));
    EXPECT_FALSE(area.isEmpty());
    EXPECT_LT(area.width(), 40);
    EXPECT_LT(area.height(), 40);
}
