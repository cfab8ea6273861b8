// SPDX-License-Identifier: MIT
// What a program without windows may do with the layer: no application object of the toolkit exists here.

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSNib.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/dispatch.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(WithoutAnApplication, BlocksWaitForALoopThatNeverComes) {
    bool ran = false;
    dispatchAsync([&] { ran = true; });
    dispatchAfter(0.01, [&] { ran = true; });
    EXPECT_FALSE(ran);
}

TEST(WithoutAnApplication, SettingsAreRead) {
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey(u"Absent"), std::nullopt);
}

TEST(WithoutAnApplication, AnAlertIsLoggedAndAnsweredWithItsHarmlessButton) {
    auto alert = std::make_shared<NSAlert>();
    alert->setMessageText(u"Delete Stamp?");
    alert->addButtonWithTitle(u"Delete");
    alert->addButtonWithTitle(u"Cancel");
    EXPECT_EQ(alert->runModal(), 1001);
}

TEST(WithoutAnApplication, ViewsHoldTheirValues) {
    const auto button = std::make_shared<NSButton>();
    button->setTitle(u"Save");
    button->setToggles(true);
    button->performClick();
    EXPECT_EQ(button->state(), NSControlStateValueOn);
    EXPECT_EQ(button->window(), nullptr);
}

TEST(WithoutAnApplication, AnInterfaceFileIsReportedAndNotLoaded) {
    const auto contents = loadNibNamedOwner(NSBundle(), u"Main", std::make_shared<NSObject>());
    EXPECT_FALSE(contents.window);
    EXPECT_EQ(contents.problems.size(), 1U);
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
