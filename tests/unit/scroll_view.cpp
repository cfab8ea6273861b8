// SPDX-License-Identifier: MIT
#include <AppKit/NSAppearance.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSScrollView.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using platform::NSScrollView;

TEST(Magnification, IsOneAtFirst) {
    EXPECT_EQ(NSScrollView().magnification(), 1.0);
}

TEST(Magnification, StaysBetweenAQuarterAndFour) {
    NSScrollView view;
    const struct {
        double wanted, kept;
    } rows[] = {{0.25, 0.25},
                {4.0, 4.0},
                {0.2, 0.25},
                {4.1, 4.0},
                {0, 0.25},
                {-3, 0.25},
                {std::numeric_limits<double>::infinity(), 4.0},
                {std::nan(""), 1.0}};
    for (const auto& row : rows) {
        view.setMagnification(2);
        view.setMagnification(row.wanted);
        EXPECT_EQ(view.magnification(), row.kept) << row.wanted;
    }
}

TEST(Magnification, IsTheUsersOnlyWhereAllowed) {
    NSScrollView view;
    EXPECT_FALSE(view.allowsMagnification());
    view.userMagnifiesTo(2);
    EXPECT_EQ(view.magnification(), 1.0);
    view.setAllowsMagnification(true);
    view.userMagnifiesTo(2);
    EXPECT_EQ(view.magnification(), 2.0);
    view.userMagnifiesTo(100);
    EXPECT_EQ(view.magnification(), 4.0);
}

TEST(Appearance, IsNilForANameThatIsNotKnown) {
    EXPECT_EQ(platform::NSAppearance::appearanceNamed(u"NSAppearanceNameMauve"), nullptr);
    const auto light = platform::NSAppearance::appearanceNamed(u"NSAppearanceNameVibrantLight");
    ASSERT_TRUE(light);
    EXPECT_EQ(light->name(), platform::NSAppearanceNameVibrantLight);
}
