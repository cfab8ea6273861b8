// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <Foundation/NSBundle.h>

using namespace platform;
using namespace testing_support;

namespace {

class ViewControllers : public InterfaceTest {
protected:
    ViewControllers() {
        write("Content.ui",
              "<?xml version='1.0' encoding='UTF-8'?><ui version='4.0'><class>view</class>" +
                  widget("QWidget", "view", column({widget("QPushButton", "button", property("action", "act:"))})) +
                  "</ui>");
        bundle = NSBundle::bundleWithPath(folder.path().toStdString());
        controller->initWithNibNameBundle(u"Content", bundle);
    }

    ClassRegistration registration{Controller::describe()};
    std::shared_ptr<NSBundle> bundle;
    std::shared_ptr<Controller> controller = std::make_shared<Controller>();
};

TEST_F(ViewControllers, ALoadedFileConnectsTheViewAndTheOutletsBeforeItReturns) {
    EXPECT_FALSE(controller->isViewLoaded());
    controller->loadView();
    EXPECT_TRUE(controller->isViewLoaded());
    ASSERT_TRUE(controller->button.lock());
    EXPECT_EQ(controller->button.lock()->superview(), controller->view());
    EXPECT_EQ(controller->log, Log{"awake"});
}

TEST_F(ViewControllers, AskedForItsViewLoadsItOnceAndSaysSo) {
    const auto view = controller->view();
    ASSERT_TRUE(view);
    EXPECT_EQ(controller->view(), view);
    EXPECT_EQ(controller->log, (Log{"awake", "viewDidLoad"}));
}

TEST_F(ViewControllers, AViewLoadedDirectlySaysNothingWhenAskedFor) {
    controller->loadView();
    controller->view();
    EXPECT_EQ(controller->log, Log{"awake"});
}

TEST_F(ViewControllers, AFileThatIsNotThereLeavesTheViewNil) {
    controller->initWithNibNameBundle(u"Missing", bundle);
    EXPECT_EQ(controller->view(), nullptr);
    EXPECT_EQ(controller->log, Log());
    controller->initWithNibNameBundle(u"Content", nullptr);
    EXPECT_EQ(controller->view(), nullptr);
}

TEST_F(ViewControllers, TheViewIsInNoWindowUntilSomethingShowsIt) {
    controller->loadView();
    EXPECT_EQ(controller->view()->window(), nullptr);
}

} // namespace
