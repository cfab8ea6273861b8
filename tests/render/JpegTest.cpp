// SPDX-License-Identifier: MIT
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;

namespace {

/// A JPEG file made by ImageMagick from a colourful picture.
std::filesystem::path makeJpeg(const Folder& folder, const std::string& options, const std::string& size = "400x300") {
    const auto path = folder / "in.jpg";
    const auto made = run("convert -size " + size + " plasma:red-blue -seed 7 -density 72 -units PixelsPerInch " +
                          options + " " + quoted(path));
    EXPECT_EQ(made.status, 0) << made.output;
    return path;
}

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
    const auto with = configuration(u"Lossless");
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
