// SPDX-License-Identifier: MIT
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;

namespace {

struct Stamped {
    engine::Outcome outcome;
    QImage before;
    QImage after;
};

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
