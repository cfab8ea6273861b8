// SPDX-License-Identifier: MIT
// What each border style paints.
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;

namespace {

/// A stamp with a red border of 6 points alone, its title clear, in a picture of a pixel a point.
class Borders : public testing::Test {
protected:
    QImage stamped(int style) {
        const auto with = std::make_shared<support::PlainConfiguration>(
            std::vector<host::TitleToken>{support::fontRun(u"DejaVuSans", 40, host::NSColor::colorWithSRGB(1, 1, 1, 1)),
                                          std::u16string(u"WIDE TITLE")});
        with->anchor = 4;
        with->style = style;
        with->bordered = true;
        with->thickness = 6;
        with->lineColour = host::NSColor::colorWithSRGB(1, 0, 0, 1);
        white(500, 200).save((m_folder / "in.png").c_str(), "png");
        const auto outcome = engine::stampFile(job(m_folder / "in.png", m_folder / "out.png", {with}));
        EXPECT_TRUE(outcome) << outcome.sentence;
        QImage picture = QImage((m_folder / "out.png").c_str()).convertToFormat(QImage::Format_RGB32);
        const QRect ink = differingArea(picture, white(500, 200));
        return ink.isEmpty() ? QImage() : picture.copy(ink);
    }
    static bool isRed(const QImage& picture, double x, double y) {
        const QRgb pixel = picture.pixel(qBound(0, qRound(x * (picture.width() - 1)), picture.width() - 1),
                                         qBound(0, qRound(y * (picture.height() - 1)), picture.height() - 1));
        return qRed(pixel) > 200 && qGreen(pixel) < 100;
    }
    /// How many separate red stretches a straight line across the ink meets.
    static int stretches(const QImage& picture, bool across, double at) {
        int found = 0;
        bool before = false;
        const int length = across ? picture.width() : picture.height();
        for (int i = 0; i < length; ++i) {
            const double along = i / double(length - 1);
            const bool red = across ? isRed(picture, along, at) : isRed(picture, at, along);
            found += red && !before;
            before = red;
        }
        return found;
    }
    /// Two pixels from an edge of the ink.
    static double inside(double share, int length) { return share == 0 ? 2.0 / length : 1 - 2.0 / length; }
    static double edge(const QImage& picture) { return 3.0 / picture.height(); } // the middle of the line, as a share

    Folder m_folder;
};

} // namespace

TEST_F(Borders, NoStylePaintsNone) {
    EXPECT_TRUE(stamped(0).isNull());
}

TEST_F(Borders, ARectangleHasFourEdgesAndFourCorners) {
    const auto picture = stamped(1);
    EXPECT_EQ(stretches(picture, false, 0.5), 2);
    EXPECT_EQ(stretches(picture, true, 0.5), 2);
    for (const double x : {0.0, 1.0})
        for (const double y : {0.0, 1.0})
            EXPECT_TRUE(isRed(picture, inside(x, picture.width()), inside(y, picture.height()))) << x << y;
}

TEST_F(Borders, ARoundedRectangleHasEdgesAndNoCorners) {
    const auto picture = stamped(2);
    EXPECT_EQ(stretches(picture, false, 0.5), 2);
    EXPECT_TRUE(isRed(picture, 0.3, edge(picture)));
    for (const double x : {0.0, 1.0})
        for (const double y : {0.0, 1.0})
            EXPECT_FALSE(isRed(picture, inside(x, picture.width()), inside(y, picture.height()))) << x << y;
}

TEST_F(Borders, AnOvalTouchesTheMiddleOfEachEdgeOnly) {
    const auto picture = stamped(3);
    EXPECT_TRUE(isRed(picture, 0.5, edge(picture)));
    EXPECT_TRUE(isRed(picture, 3.0 / picture.width(), 0.5));
    EXPECT_FALSE(isRed(picture, 0.15, edge(picture)));
    EXPECT_FALSE(isRed(picture, 0.85, edge(picture)));
}

TEST_F(Borders, ADoubleLineIsMetTwiceOnEachSide) {
    const auto picture = stamped(4);
    EXPECT_EQ(stretches(picture, false, 0.5), 4);
    EXPECT_EQ(stretches(picture, true, 0.5), 4);
}

TEST_F(Borders, ADashedLineHasGaps) {
    const auto picture = stamped(5);
    EXPECT_GT(stretches(picture, true, edge(picture)), 5);
    EXPECT_GT(stretches(picture, true, 1 - edge(picture)), 5);
}

TEST_F(Borders, ALineBelowIsOneLine) {
    const auto picture = stamped(6);
    ASSERT_FALSE(picture.isNull());
    EXPECT_LE(picture.height(), 8) << "nothing but the line";
    EXPECT_EQ(stretches(picture, true, 0.5), 1);
    EXPECT_GT(picture.width(), 150);
}

TEST_F(Borders, CornerMarksLeaveTheMiddleOfEachEdgeFree) {
    const auto picture = stamped(7);
    EXPECT_EQ(stretches(picture, true, edge(picture)), 2);
    EXPECT_EQ(stretches(picture, true, 1 - edge(picture)), 2);
    EXPECT_EQ(stretches(picture, true, 0.5), 0);
    EXPECT_EQ(stretches(picture, false, 0.5), 0);
}
