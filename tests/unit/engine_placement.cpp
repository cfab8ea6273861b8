// SPDX-License-Identifier: MIT
#include <engine/Placement.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace engine;
using platform::NSSize;

namespace {

void expectNear(const Box& box, const Box& expected) {
    EXPECT_NEAR(box.llx, expected.llx, 1e-9);
    EXPECT_NEAR(box.lly, expected.lly, 1e-9);
    EXPECT_NEAR(box.urx, expected.urx, 1e-9);
    EXPECT_NEAR(box.ury, expected.ury, 1e-9);
}

Box placed(NSSize stamp, NSSize page, int anchor, host::NSPoint offset, double degrees) {
    return placeStamp(stamp, page, anchor, offset, degrees).map(Box{0, 0, stamp.width, stamp.height});
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(Placement, TheNineAnchorsRunInReadingOrderEighteenPointsInside) {
    const Box expected[] = {{18, 762, 58, 782}, {280, 762, 320, 782}, {542, 762, 582, 782},
                            {18, 390, 58, 410}, {280, 390, 320, 410}, {542, 390, 582, 410},
                            {18, 18, 58, 38},   {280, 18, 320, 38},   {542, 18, 582, 38}};
    for (int anchor = 0; anchor < 9; ++anchor) {
        SCOPED_TRACE(anchor);
        expectNear(placed({40, 20}, {600, 800}, anchor, {}, 0), expected[anchor]);
    }
}

TEST(Placement, OffsetsRunRightAndUpWhateverTheAnchor) {
    for (int anchor = 0; anchor < 9; ++anchor) {
        const Box without = placed({40, 20}, {600, 800}, anchor, {}, 30);
        const Box with = placed({40, 20}, {600, 800}, anchor, {7.5, -3.25}, 30);
        EXPECT_NEAR(with.llx - without.llx, 7.5, 1e-9);
        EXPECT_NEAR(with.ury - without.ury, -3.25, 1e-9);
    }
}

TEST(Placement, TheBoundingBoxOfATurnedStampStandsAtTheAnchor) {
    for (const double degrees : {-720.0, -33.0, 0.5, 45.0, 90.0, 123.0, 270.0, 1000.0}) {
        SCOPED_TRACE(degrees);
        const Box top = placed({100, 20}, {600, 800}, 0, {}, degrees);
        EXPECT_NEAR(top.llx, 18, 1e-9);
        EXPECT_NEAR(top.ury, 782, 1e-9);
        const Box bottom = placed({100, 20}, {600, 800}, 8, {}, degrees);
        EXPECT_NEAR(bottom.urx, 582, 1e-9);
        EXPECT_NEAR(bottom.lly, 18, 1e-9);
    }
}

TEST(Placement, PositiveDegreesTurnCounterClockwiseAboutTheCentre) {
    const Matrix m = placeStamp({40, 20}, {600, 800}, 4, {}, 90);
    const Point centre = m.map(Point{20, 10});
    EXPECT_NEAR(centre.x, 300, 1e-9);
    EXPECT_NEAR(centre.y, 400, 1e-9);
    const Point end = m.map(Point{40, 10});
    EXPECT_NEAR(end.x, 300, 1e-9);
    EXPECT_NEAR(end.y, 420, 1e-9);
}

TEST(Placement, QuarterTurnsAreExact) {
    const Matrix m = placeStamp({40, 20}, {600, 800}, 4, {}, -450);
    EXPECT_EQ(m.a, 0);
    EXPECT_EQ(m.b, -1);
}

TEST(Placement, AnUnknownAnchorIsTheTopLeft) {
    for (const host::NSInteger anchor :
         {host::NSInteger(-1), host::NSInteger(9), std::numeric_limits<host::NSInteger>::max()})
        EXPECT_EQ(placeStamp({40, 20}, {600, 800}, anchor, {}, 0), placeStamp({40, 20}, {600, 800}, 0, {}, 0));
}

TEST(Placement, NumbersThatAreNotFiniteCountAsZero) {
    EXPECT_EQ(placeStamp({40, 20}, {600, 800}, 4, {kNaN, kInfinity}, kNaN), placeStamp({40, 20}, {600, 800}, 4, {}, 0));
}

TEST(Placement, LinesAreAlignedAsTheAnchorStands) {
    EXPECT_EQ(lineAlignment(3), 0);
    EXPECT_EQ(lineAlignment(7), 0.5);
    EXPECT_EQ(lineAlignment(2), 1);
}

TEST(PageGeometry, TheVisibleBoxIsTheCropBoxWithinTheMediaBox) {
    EXPECT_EQ(visibleBox({{0, 0, 600, 800}, {-10, 50, 500, 900}, 0, 1}), (Box{0, 50, 500, 800}));
    EXPECT_EQ(visibleBox({{600, 800, 0, 0}, {500, 700, 100, 100}, 0, 1}), (Box{100, 100, 500, 700}));
    EXPECT_EQ(visibleBox({{0, 0, 600, 800}, {700, 0, 900, 800}, 0, 1}), (Box{0, 0, 600, 800}));
    EXPECT_EQ(visibleBox({{-300, -400, 300, 400}, {-300, -400, 300, 400}, 0, 1}), (Box{-300, -400, 300, 400}));
}

TEST(PageGeometry, CornersOfTheShownPageAreCornersOfTheVisibleBox) {
    struct Case {
        int rotate;
        Point lowerLeft; // of the page as shown, in user space
        Point upperRight;
    };
    const Case cases[] = {{0, {10, 20}, {210, 320}},   {90, {210, 20}, {10, 320}},  {180, {210, 320}, {10, 20}},
                          {270, {10, 320}, {210, 20}}, {-90, {10, 320}, {210, 20}}, {450, {210, 20}, {10, 320}},
                          {45, {10, 20}, {210, 320}}};
    for (const auto& row : cases)
        for (const double unit : {1.0, 2.0, 0.5}) {
            SCOPED_TRACE(row.rotate);
            const engine::PageGeometry page{{10, 20, 210, 320}, {10, 20, 210, 320}, row.rotate, unit};
            const auto size = shownSize(page);
            const Matrix m = userSpaceFromShown(page);
            const Point lowerLeft = m.map(Point{0, 0});
            const Point upperRight = m.map(Point{size.width, size.height});
            EXPECT_NEAR(lowerLeft.x, row.lowerLeft.x, 1e-9);
            EXPECT_NEAR(lowerLeft.y, row.lowerLeft.y, 1e-9);
            EXPECT_NEAR(upperRight.x, row.upperRight.x, 1e-9);
            EXPECT_NEAR(upperRight.y, row.upperRight.y, 1e-9);
            EXPECT_GT(m.a * m.d - m.b * m.c, 0); // never mirrored
        }
}

TEST(PageGeometry, AUnitThatIsNotPositiveCountsAsOne) {
    for (const double unit : {0.0, -2.0, kNaN, kInfinity})
        EXPECT_EQ(shownSize(engine::PageGeometry{{0, 0, 60, 80}, {0, 0, 60, 80}, 0, unit}), (NSSize{60, 80}));
}

TEST(PictureGeometry, TheShownUpperLeftCornerIsWhereTheTagSays) {
    struct Case {
        int orientation;
        Point upperLeft; // stored pixels
        Point upperRight;
    };
    const Case cases[] = {{1, {0, 0}, {400, 0}},     {2, {400, 0}, {0, 0}},     {3, {400, 300}, {0, 300}},
                          {4, {0, 300}, {400, 300}}, {5, {0, 0}, {0, 300}},     {6, {0, 300}, {0, 0}},
                          {7, {400, 300}, {400, 0}}, {8, {400, 0}, {400, 300}}, {99, {0, 0}, {400, 0}}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.orientation);
        const engine::PictureGeometry picture{400, 300, 150, 75, row.orientation};
        const auto size = shownSize(picture);
        const Matrix m = pixelsFromShown(picture);
        const Point left = m.map(Point{0, size.height});
        const Point right = m.map(Point{size.width, size.height});
        EXPECT_NEAR(left.x, row.upperLeft.x, 1e-9);
        EXPECT_NEAR(left.y, row.upperLeft.y, 1e-9);
        EXPECT_NEAR(right.x, row.upperRight.x, 1e-9);
        EXPECT_NEAR(right.y, row.upperRight.y, 1e-9);
    }
}

TEST(PictureGeometry, ResolutionsGiveTheSizeInPoints) {
    EXPECT_EQ(shownSize(engine::PictureGeometry{1500, 300, 150, 75, 1}), (NSSize{720, 288}));
    EXPECT_EQ(shownSize(engine::PictureGeometry{1500, 300, 150, 75, 6}), (NSSize{288, 720}));
    EXPECT_EQ(shownSize(engine::PictureGeometry{100, 50, 0, kNaN, 1}), (NSSize{100, 50}));
}
