// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSColorWell.h>

#include <QImage>

using namespace platform;
using namespace testing_support;

namespace {

class ColorWellTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"well"}, column({widget("NSColorWell", "well", property("action", "act:"))}),
             customClass("NSColorWell", "QPushButton"));
        well = view<NSColorWell>("well");
        ASSERT_TRUE(well);
    }
    /// The colours of the middle of the well, each once.
    std::set<QRgb> middle() const {
        const auto image = shown("well")->grab().toImage();
        std::set<QRgb> colours;
        for (int x = 8; x < image.width() - 8; ++x)
            for (int y = 8; y < image.height() - 8; ++y)
                colours.insert(image.pixel(x, y));
        return colours;
    }

    std::shared_ptr<NSColorWell> well;
};

TEST_F(ColorWellTest, IsBlackAtFirst) {
    EXPECT_EQ(*well->color(), *NSColor::blackColor());
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(0, 0, 0)});
}

TEST_F(ColorWellTest, ShowsTheColourItWasGivenAndSendsNothing) {
    well->setColor(NSColor::colorWithSRGB(1, 0.2, 0, 1));
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(255, 51, 0)});
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(ColorWellTest, ClampsComponentsOutsideTheRangeOnlyWhereTheyAreDrawn) {
    well->setColor(NSColor::colorWithSRGB(2, -1, 0, 1));
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(255, 0, 0)});
    EXPECT_EQ(well->color()->redComponent(), 2);
}

TEST_F(ColorWellTest, ACheckerboardShowsThroughATranslucentColour) {
    well->setColor(NSColor::colorWithSRGB(0, 0, 1, 0.5));
    EXPECT_EQ(middle().size(), 2U);
}

} // namespace
