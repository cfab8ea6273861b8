// SPDX-License-Identifier: MIT
#include <PopoverPlacement.h>

#include <gtest/gtest.h>

#include <ostream>

using namespace platform;

namespace platform {

void PrintTo(const NSRect& rect, std::ostream* out) {
    *out << rect.origin.x << "," << rect.origin.y << " " << rect.size.width << "x" << rect.size.height;
}

} // namespace platform

namespace {

constexpr NSRect screen{{0, 0}, {1000, 800}};
constexpr NSRect middle{{480, 390}, {40, 20}}; // of the screen
constexpr NSSize small{200, 100};

constexpr NSRectEdge edges[] = {NSRectEdge::minX, NSRectEdge::minY, NSRectEdge::maxX, NSRectEdge::maxY};

bool isInside(const NSRect& inner, const NSRect& outer) {
    return inner.origin.x >= outer.origin.x && inner.origin.y >= outer.origin.y &&
           inner.origin.x + inner.size.width <= outer.origin.x + outer.size.width &&
           inner.origin.y + inner.size.height <= outer.origin.y + outer.size.height;
}

} // namespace

TEST(PopoverPlacement, WithRoomEverywhereItStandsAtTheWishedEdgeCentredOnTheAnchor) {
    const struct {
        NSRectEdge edge;
        NSRect body;
        NSPoint tip;
    } rows[] = {
        {NSRectEdge::minX, {{270, 350}, {200, 100}}, {480, 400}}, // left of it
        {NSRectEdge::minY, {{400, 420}, {200, 100}}, {500, 410}}, // below it
        {NSRectEdge::maxX, {{530, 350}, {200, 100}}, {520, 400}}, // right of it
        {NSRectEdge::maxY, {{400, 280}, {200, 100}}, {500, 390}}, // above it
    };
    for (const auto& row : rows) {
        const auto place = placePopover(middle, small, screen, row.edge);
        EXPECT_EQ(place.edge, row.edge);
        EXPECT_EQ(place.body, row.body) << static_cast<int>(row.edge);
        EXPECT_EQ(place.tip, row.tip) << static_cast<int>(row.edge);
    }
}

TEST(PopoverPlacement, WithoutRoomAtTheWishedEdgeItStandsAtTheOppositeOne) {
    const struct {
        NSRectEdge wished, taken;
        NSRect anchor;
    } rows[] = {
        {NSRectEdge::minX, NSRectEdge::maxX, {{209, 390}, {40, 20}}},
        {NSRectEdge::maxX, NSRectEdge::minX, {{751, 390}, {40, 20}}},
        {NSRectEdge::maxY, NSRectEdge::minY, {{480, 109}, {40, 20}}},
        {NSRectEdge::minY, NSRectEdge::maxY, {{480, 671}, {40, 20}}},
    };
    for (const auto& row : rows) {
        const auto place = placePopover(row.anchor, small, screen, row.wished);
        EXPECT_EQ(place.edge, row.taken) << static_cast<int>(row.wished);
        EXPECT_TRUE(isInside(place.body, screen));
    }
}

TEST(PopoverPlacement, TheArrowCountsForTheRoomToThePoint) {
    EXPECT_EQ(placePopover({{480, 110}, {40, 20}}, small, screen, NSRectEdge::maxY).edge, NSRectEdge::maxY);
    EXPECT_EQ(placePopover({{480, 109.5}, {40, 20}}, small, screen, NSRectEdge::maxY).edge, NSRectEdge::minY);
}

TEST(PopoverPlacement, WithoutRoomAboveAndBelowItStandsAtTheRoomierSide) {
    const NSSize tall{200, 500};
    EXPECT_EQ(placePopover({{300, 390}, {40, 20}}, tall, screen, NSRectEdge::maxY).edge, NSRectEdge::maxX);
    EXPECT_EQ(placePopover({{700, 390}, {40, 20}}, tall, screen, NSRectEdge::maxY).edge, NSRectEdge::minX);
}

TEST(PopoverPlacement, WithoutRoomAtEitherSideItStandsAtTheRoomierOfAboveAndBelow) {
    const NSSize wide{600, 100};
    EXPECT_EQ(placePopover({{480, 500}, {40, 20}}, wide, screen, NSRectEdge::minX).edge, NSRectEdge::maxY);
    EXPECT_EQ(placePopover({{480, 200}, {40, 20}}, wide, screen, NSRectEdge::minX).edge, NSRectEdge::minY);
}

TEST(PopoverPlacement, NearTheBorderOfTheScreenTheBodyMovesInAndTheArrowStillPoints) {
    const auto left = placePopover({{0, 390}, {40, 20}}, small, screen, NSRectEdge::maxY);
    EXPECT_EQ(left.body.origin.x, 0);
    EXPECT_EQ(left.tip.x, 20);
    const auto right = placePopover({{960, 390}, {40, 20}}, small, screen, NSRectEdge::maxY);
    EXPECT_EQ(right.body.origin.x, 800);
    EXPECT_EQ(right.tip.x, 980);
}

TEST(PopoverPlacement, TheArrowKeepsClearOfTheCorners) {
    const auto place = placePopover({{0, 390}, {4, 20}}, small, screen, NSRectEdge::maxY);
    EXPECT_EQ(place.tip.x, popoverCornerRadius + popoverArrowWidth / 2);
}

TEST(PopoverPlacement, WithRoomNowhereItIsCutToTheRoomiestEdge) {
    const auto place = placePopover({{480, 500}, {40, 20}}, {990, 790}, screen, NSRectEdge::minY);
    EXPECT_EQ(place.edge, NSRectEdge::maxY);
    EXPECT_EQ(place.body, (NSRect{{5, 0}, {990, 490}}));
    EXPECT_EQ(place.tip, (NSPoint{500, 500}));
}

TEST(PopoverPlacement, OnAScreenThatIsFullOfTheAnchorItStaysInSightAndCanBeSeen) {
    const auto place = placePopover(screen, small, screen, NSRectEdge::maxY);
    EXPECT_TRUE(isInside(place.body, screen));
    EXPECT_GE(place.body.size.height, 100);
}

TEST(PopoverPlacement, AnAnchorPartlyOffTheScreenStillGivesAPlaceOnIt) {
    for (const auto edge : edges)
        for (const NSPoint corner : {NSPoint{-30, -10}, NSPoint{990, -10}, NSPoint{-30, 790}, NSPoint{990, 790}}) {
            const auto place = placePopover({corner, {40, 20}}, small, screen, edge);
            EXPECT_TRUE(isInside(place.body, screen)) << corner.x << "," << corner.y << " " << static_cast<int>(edge);
        }
}

TEST(PopoverPlacement, AScreenBesideTheFirstIsTakenAsItLies) {
    constexpr NSRect second{{1000, -300}, {1000, 800}};
    const auto place = placePopover({{1010, -100}, {40, 20}}, small, second, NSRectEdge::maxY);
    EXPECT_EQ(place.body, (NSRect{{1000, -210}, {200, 100}}));
}
