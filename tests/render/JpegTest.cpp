// SPDX-License-Identifier: MIT
#include "Render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio> // libjpeg's header needs it first

#include <jpeglib.h>

using namespace render;

namespace {

/// A JPEG file made by ImageMagick from a colourful picture.
std::filesystem::path makeJpeg(const Folder& folder, const std::string& options, const std::string& size = "400x300") {
    auto path = folder / "in.jpg";
    const auto made = run("convert -size " + size + " plasma:red-blue -seed 7 -density 72 -units PixelsPerInch " +
                          options + " " + quoted(path));
    EXPECT_EQ(made.status, 0) << made.output;
    return path;
}

/// A file's coefficients as they are, undecoded, and where they belong.
struct Coefficients {
    struct Component {
        int across = 1; ///< Blocks in a unit.
        int down = 1;
        unsigned columns = 0;
        std::vector<std::array<JCOEF, DCTSIZE2>> blocks;
    };
    QSize unit; ///< In pixels.
    std::vector<Component> components;

    explicit Coefficients(const std::filesystem::path& path) {
        const auto bytes = readFile(path);
        jpeg_decompress_struct info{};
        jpeg_error_mgr errors{};
        info.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&info);
        jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        jpeg_read_header(&info, TRUE);
        jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&info);
        unit = {8 * info.max_h_samp_factor, 8 * info.max_v_samp_factor};
        for (int i = 0; i < info.num_components; ++i) {
            const auto& shape = info.comp_info[i];
            Component component{shape.h_samp_factor, shape.v_samp_factor, shape.width_in_blocks, {}};
            for (JDIMENSION row = 0; row < shape.height_in_blocks; ++row) {
                const JBLOCKROW line =
                    info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), arrays[i], row, 1, FALSE)[0];
                for (JDIMENSION column = 0; column < shape.width_in_blocks; ++column) {
                    auto& block = component.blocks.emplace_back();
                    std::copy(std::begin(line[column]), std::end(line[column]), block.begin());
                }
            }
            components.push_back(std::move(component));
        }
        jpeg_finish_decompress(&info);
        jpeg_destroy_decompress(&info);
    }
};

struct Stamped {
    Folder folder;
    engine::Outcome outcome;
    QImage before;
    QImage after;

    Stamped(const std::string& options, const std::shared_ptr<support::PlainConfiguration>& with,
            const std::string& size = "400x300") {
        const auto in = makeJpeg(folder, options, size);
        outcome = engine::stampFile(job(in, folder / "out.jpg", {with}));
        EXPECT_TRUE(outcome) << outcome.sentence;
        before = QImage(in.c_str());
        after = QImage((folder / "out.jpg").c_str());
    }
};

std::shared_ptr<support::PlainConfiguration> boxed() {
    auto with = configuration(u"Lossless");
    with->style = 1;
    with->bordered = with->filled = true;
    return with;
}

} // namespace

TEST(JpegPictures, NoPixelOutsideTheTouchedUnitsChanges) {
    for (const char* options : {"-quality 90 -sampling-factor 1x1", "-quality 60 -sampling-factor 1x1 -interlace JPEG",
                                "-quality 85 -colorspace Gray"}) {
        SCOPED_TRACE(options);
        for (const int anchor : {0, 4, 8}) {
            const auto with = boxed();
            with->anchor = anchor;
            with->shift = {3, -2};
            const Stamped result(options, with, "403x299");
            const QRect area = differingArea(result.before, result.after);
            ASSERT_FALSE(area.isEmpty());
            EXPECT_LT(area.width(), 110);
            EXPECT_LT(area.height(), 48);
            EXPECT_EQ(area.left() % 8, 0);
            EXPECT_EQ(area.top() % 8, 0);
        }
    }
}

TEST(JpegPictures, SubsampledColourIsPatchedToo) {
    for (const char* sampling : {"2x2", "2x1", "1x2", "4x1"}) {
        SCOPED_TRACE(sampling);
        const Stamped result(std::string("-quality 92 -sampling-factor ") + sampling, boxed());
        const QRect area = differingArea(result.before, result.after);
        EXPECT_LT(area.width(), 140);
        EXPECT_LT(area.height(), 60);
        // The fill is white inside the border.
        EXPECT_GT(qGray(result.after.pixel(21, 21)), 235);
    }
}

TEST(JpegPictures, MetadataAndSizeStay) {
    const Folder folder;
    writeFile(folder / "note.txt", "A remark that stays");
    const Stamped result("-quality 90 -set comment 'A remark that stays' -density 150 -units PixelsPerInch", boxed());
    const auto described =
        run("identify -format '%c|%x|%y|%Q|%[jpeg:sampling-factor]' " + quoted(result.folder / "out.jpg")).output;
    EXPECT_EQ(described,
              run("identify -format '%c|%x|%y|%Q|%[jpeg:sampling-factor]' " + quoted(result.folder / "in.jpg")).output);
    EXPECT_NE(described.find("A remark that stays"), std::string::npos);
    EXPECT_NE(described.find("150"), std::string::npos);
    const auto before = std::filesystem::file_size(result.folder / "in.jpg");
    const auto after = std::filesystem::file_size(result.folder / "out.jpg");
    EXPECT_LT(after, before + 4096);
}

TEST(JpegPictures, ProgressiveFilesStayProgressive) {
    const Stamped result("-quality 90 -interlace JPEG", boxed());
    EXPECT_EQ(run("identify -format '%[interlace]' " + quoted(result.folder / "out.jpg")).output, "JPEG");
}

TEST(JpegPictures, FourInksStayFourInks) {
    const Stamped result("-quality 90 -colorspace CMYK", boxed());
    EXPECT_EQ(run("identify -format '%[colorspace]' " + quoted(result.folder / "out.jpg")).output, "CMYK");
    EXPECT_GT(qGray(result.after.pixel(21, 21)), 225);
    EXPECT_FALSE(differingArea(result.before, result.after).isEmpty());
}

TEST(JpegPictures, ATurnedPictureIsStampedAsItIsShownAndKeepsItsTag) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        Folder folder;
        const auto plain = folder / "plain.jpg";
        ASSERT_EQ(
            run("convert -size 400x300 xc:white -density 72 -units PixelsPerInch -quality 95 " + quoted(plain)).status,
            0);
        // An Exif segment whose only entry is the orientation.
        const std::string exif = std::string("\xff\xe1\x00\x22", 4) +
                                 std::string("Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 25) +
                                 static_cast<char>(orientation) + std::string(6, '\0');
        auto bytes = readFile(plain);
        bytes.insert(20, exif); // behind the JFIF header
        writeFile(folder / "in.jpg", bytes);

        const auto with = boxed();
        with->anchor = 2;
        const auto outcome = engine::stampFile(job(folder / "in.jpg", folder / "out.jpg", {with}));
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_NE(readFile(folder / "out.jpg").find(exif), std::string::npos);
        ASSERT_EQ(run("convert " + quoted(folder / "out.jpg") + " -auto-orient " + quoted(folder / "shown.png")).status,
                  0);
        const QImage shown((folder / "shown.png").c_str());
        EXPECT_EQ(shown.width(), orientation >= 5 ? 300 : 400);
        QRect dark;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                if (qGray(shown.pixel(x, y)) < 100)
                    dark |= QRect(x, y, 1, 1);
        EXPECT_NEAR(dark.right() + 1, shown.width() - 18, 1);
        EXPECT_NEAR(dark.top(), 18, 1);
        EXPECT_GT(dark.width(), 2 * dark.height());
    }
}

TEST(JpegPictures, NoCoefficientOutsideTheTouchedUnitsChanges) {
    // Where the stamp's ink is, on a picture of another kind.
    const auto with = boxed();
    with->shift = {3, -2};
    Folder folder;
    white(403, 299).save((folder / "in.png").c_str());
    ASSERT_TRUE(engine::stampFile(job(folder / "in.png", folder / "out.png", {with})));
    const QRect ink = differingArea(QImage((folder / "in.png").c_str()), QImage((folder / "out.png").c_str()));
    for (const char* options :
         {"-sampling-factor 2x2", "-sampling-factor 2x1", "-sampling-factor 1x2", "-sampling-factor 4x1",
          "-sampling-factor 2x2 -interlace JPEG", "-colorspace Gray", "-colorspace Gray -sampling-factor 2x2"}) {
        SCOPED_TRACE(options);
        const Stamped result(std::string("-quality 88 ") + options, with, "403x299");
        const Coefficients before(result.folder / "in.jpg");
        const Coefficients after(result.folder / "out.jpg");
        ASSERT_EQ(before.components.size(), after.components.size());
        EXPECT_EQ(before.unit, after.unit);
        const int width = before.unit.width();
        const int height = before.unit.height();
        const QRect touched(QPoint(ink.left() / width, ink.top() / height),
                            QPoint(ink.right() / width, ink.bottom() / height));
        std::size_t changed = 0;
        for (std::size_t c = 0; c < before.components.size(); ++c) {
            const auto& one = before.components[c];
            const auto& other = after.components[c];
            ASSERT_EQ(one.blocks.size(), other.blocks.size());
            for (std::size_t i = 0; i < one.blocks.size(); ++i) {
                if (one.blocks[i] == other.blocks[i])
                    continue;
                ++changed;
                const QPoint place(static_cast<int>(i % one.columns) / one.across,
                                   static_cast<int>(i / one.columns) / one.down);
                EXPECT_TRUE(touched.contains(place)) << c << ": " << place.x() << ' ' << place.y();
            }
        }
        EXPECT_GT(changed, 10U);
    }
}

TEST(JpegPictures, WhatFollowsTheEndOfTheFileStays) {
    Folder folder;
    const auto path = makeJpeg(folder, "-quality 90");
    writeFile(path, readFile(path) + "Something of its own");
    const auto outcome = engine::stampFile(job(path, folder / "out.jpg", {boxed()}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_TRUE(outcome.warnings.empty());
    EXPECT_TRUE(readFile(folder / "out.jpg").ends_with("Something of its own"));
}

namespace {

/// A JPEG file of three pictures, the second of which keeps a distance to the first.
struct SeveralPictures {
    Folder folder;
    bool bigEndian;
    std::string first;
    std::string second;
    std::string third;
    static constexpr std::size_t indexAt = 20 + 8; ///< Behind the JFIF header, a marker and a name.
    static constexpr std::size_t listAt = 8 + 2 + 3 * 12 + 4;
    static constexpr std::size_t distance = 100;

    explicit SeveralPictures(bool isBigEndian) : bigEndian(isBigEndian) {
        second = readFile(makeJpeg(folder, "-quality 80", "64x48"));
        third = readFile(makeJpeg(folder, "-quality 70", "32x24"));
        first = readFile(makeJpeg(folder, "-quality 90"));
        const auto indexSize = listAt + 3 * 16;
        const auto length = first.size() + 8 + indexSize;
        std::string list;
        const auto add = [&](std::size_t size, std::size_t offset) {
            list +=
                number(list.empty() ? 0x20030000 : 0x00020002, 4) + number(size, 4) + number(offset, 4) + number(0, 4);
        };
        add(length, 0);
        add(second.size(), length + distance - indexAt);
        add(third.size(), length + distance + second.size() - indexAt);
        const auto index = (bigEndian ? std::string("MM") : std::string("II")) + number(42, 2) + number(8, 4) +
                           number(3, 2) + number(0xB000, 2) + number(7, 2) + number(4, 4) + "0100" + number(0xB001, 2) +
                           number(4, 2) + number(1, 4) + number(3, 4) + number(0xB002, 2) + number(7, 2) +
                           number(list.size(), 4) + number(listAt, 4) + number(0, 4) + list;
        const auto segment =
            std::string("\xFF\xE2\0", 3) + static_cast<char>(6 + index.size()) + std::string("MPF\0", 4) + index;
        first.insert(20, segment);
    }

    std::string bytes() const { return first + std::string(distance, '\0') + second + third; }

    std::string number(std::size_t value, unsigned size) const {
        std::string text;
        for (unsigned i = 0; i < size; ++i)
            text += static_cast<char>(value >> 8 * (bigEndian ? size - 1 - i : i) & 0xFF);
        return text;
    }
    std::size_t numberAt(const std::string& file, std::size_t at) const {
        std::size_t value = 0;
        for (unsigned i = 0; i < 4; ++i)
            value |= std::size_t{static_cast<unsigned char>(file[at + i])} << 8 * (bigEndian ? 3 - i : i);
        return value;
    }
};

} // namespace

TEST(JpegPictures, PicturesBehindTheFirstOneAreStillFoundByTheFilesIndex) {
    for (const bool bigEndian : {false, true}) {
        SCOPED_TRACE(bigEndian);
        const SeveralPictures file(bigEndian);
        const auto in = file.folder / "several.jpg";
        const auto out = file.folder / "out.jpg";
        writeFile(in, file.bytes());
        const auto outcome = engine::stampFile(job(in, out, {boxed()}));
        ASSERT_TRUE(outcome) << outcome.sentence;
        const auto result = readFile(out);
        const auto rest = std::string(SeveralPictures::distance, '\0') + file.second + file.third;
        ASSERT_TRUE(result.ends_with(rest));
        const auto length = result.size() - rest.size();
        ASSERT_NE(length, file.first.size());
        const auto list = SeveralPictures::indexAt + SeveralPictures::listAt;
        EXPECT_EQ(file.numberAt(result, list + 4), length);
        EXPECT_EQ(file.numberAt(result, list + 8), 0U);
        const auto found = [&](std::size_t entry) {
            return result.substr(SeveralPictures::indexAt + file.numberAt(result, entry + 8),
                                 file.numberAt(result, entry + 4));
        };
        EXPECT_EQ(found(list + 16), file.second);
        EXPECT_EQ(found(list + 32), file.third);
        EXPECT_FALSE(differingArea(QImage(in.c_str()), QImage(out.c_str())).isEmpty());
    }
}

TEST(JpegPictures, ABrokenIndexOfPicturesStaysAsItIs) {
    const SeveralPictures file(false);
    const auto list = SeveralPictures::indexAt + SeveralPictures::listAt;
    const struct {
        const char* what;
        std::size_t at;
        std::size_t value;
    } wrongs[] = {
        {"the first picture lies elsewhere", list + 8, 4},
        {"a picture within the first one", list + 16 + 8, 50},
        {"a picture behind the end", list + 32 + 8, 0x7FFFFFFF},
        {"a list that is longer than its segment", SeveralPictures::indexAt + 10 + 24 + 4, 1600},
        {"a list that ends within an entry", SeveralPictures::indexAt + 10 + 24 + 4, 40},
        {"a list behind its segment", SeveralPictures::indexAt + 10 + 24 + 8, 0xFFFFFFF0},
        {"a directory behind its segment", SeveralPictures::indexAt + 4, 0xFFFFFFF0},
    };
    for (const auto& wrong : wrongs) {
        SCOPED_TRACE(wrong.what);
        auto bytes = file.bytes();
        bytes.replace(wrong.at, 4, file.number(wrong.value, 4));
        writeFile(file.folder / "several.jpg", bytes);
        const auto outcome = engine::stampFile(job(file.folder / "several.jpg", file.folder / "out.jpg", {boxed()}));
        ASSERT_TRUE(outcome) << outcome.sentence;
        const auto result = readFile(file.folder / "out.jpg");
        const auto index = bytes.substr(20, 8 + SeveralPictures::listAt + 3 * 16);
        EXPECT_EQ(result.substr(20, index.size()), index);
    }
}

TEST(JpegPictures, KindsThatCannotBeStampedAreNotCalledDamaged) {
    Folder folder;
    const auto path = makeJpeg(folder, "-quality 90");
    auto deep = readFile(path);
    const auto frame = deep.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    auto lossless = deep;
    deep[frame + 1] = '\xc1';
    deep[frame + 4] = 12; // bits
    lossless[frame + 1] = '\xc3';
    for (const auto& bytes : {deep, lossless}) {
        writeFile(folder / "odd.jpg", bytes);
        const auto outcome = engine::stampFile(job(folder / "odd.jpg", folder / "out.jpg", {boxed()}));
        EXPECT_EQ(outcome.code, engine::Code::unsupported) << outcome.sentence;
    }
}

TEST(JpegPictures, AQuantizationTableWithAZeroIsDamage) {
    for (const std::string name : {"in.jpg", "in.tif"}) {
        SCOPED_TRACE(name);
        Folder folder;
        const auto in = folder / name;
        ASSERT_EQ(run("convert -size 120x80 plasma:red-blue -compress jpeg " + quoted(in)).status, 0);
        auto bytes = readFile(in);
        const auto table = bytes.find("\xFF\xDB");
        ASSERT_NE(table, std::string::npos);
        bytes[table + 8] = '\0';
        writeFile(in, bytes);
        const auto outcome = engine::stampFile(job(in, folder / "out", {boxed()}));
        EXPECT_EQ(outcome.code, engine::Code::damaged);
        EXPECT_EQ(outcome.sentence, "The picture is damaged.");
        EXPECT_FALSE(std::filesystem::exists(folder / "out"));
    }
}

TEST(JpegPictures, AQuantizationTableOfLargeNumbersIsNoObstacle) {
    Folder folder;
    const auto in = makeJpeg(folder, "-colorspace gray -quality 75", "120x80");
    auto bytes = readFile(in);
    const auto at = bytes.find(std::string("\xFF\xDB\0\x43\0", 5));
    ASSERT_NE(at, std::string::npos);
    std::string table("\xFF\xDB\0\x83\x10", 5); // the same table in 16 bits a number, its last one 2 to the power of 13
    for (std::size_t i = 0; i < 64; ++i)
        table += i == 63 ? std::string("\x20\0", 2) : std::string(1, '\0') + bytes[at + 5 + i];
    writeFile(in, bytes.replace(at, 5 + 64, table));
    const auto outcome = engine::stampFile(job(in, folder / "out.jpg", {boxed()}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_FALSE(differingArea(QImage(in.c_str()), QImage((folder / "out.jpg").c_str())).isEmpty());
}
