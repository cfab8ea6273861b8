// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSPopUpButton.h>

#include <QDir>

using namespace platform;
using namespace testing_support;

namespace {

class NibConnections : public InterfaceTest {};

/// A pop-up button of which two know each other.
class LinkedPopUp final : public NSPopUpButton {
public:
    static NSClass describe() {
        return ClassTable<LinkedPopUp>(u"LinkedPopUp", u"NSPopUpButton").outlet(u"partner", &LinkedPopUp::partner);
    }
    std::u16string_view className() const override { return u"LinkedPopUp"; }
    void awakeFromNib() override { partnerWhenAwake = partner.lock(); }

    std::weak_ptr<LinkedPopUp> partner;
    std::shared_ptr<LinkedPopUp> partnerWhenAwake;
};

TEST_F(NibConnections, AnObjectsNameIsTheOutletOnTheOwner) {
    loadFile({"saveBtn"}, column({widget("QPushButton", "saveBtn")}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    EXPECT_TRUE(view<NSButton>("saveBtn"));
}

TEST_F(NibConnections, TheRootIsTheContentOfTheWindow) {
    loadFile({"_window", "theWindow"}, property("outlets", std::vector<std::string>{"theWindow"}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    EXPECT_EQ(view<NSWindow>("_window"), contents.window);
    EXPECT_EQ(view<NSWindow>("theWindow"), contents.window);
    EXPECT_TRUE(contents.window->contentView());
}

TEST_F(NibConnections, FurtherOutletsOfTheOwnerAreConnected) {
    loadFile({"first", "second"},
             column({widget("QPushButton", "first", property("outlets", std::vector<std::string>{"owner.second"}))}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    EXPECT_EQ(view<NSView>("first"), view<NSView>("second"));
}

TEST_F(NibConnections, TwoObjectsMayKnowEachOtherWhicheverComesFirst) {
    const ClassRegistration registration(LinkedPopUp::describe());
    loadFile({"one", "two"},
             column({widget("LinkedPopUp", "one", property("outlets", std::vector<std::string>{"two.partner"})),
                     widget("LinkedPopUp", "two", property("outlets", std::vector<std::string>{"one.partner"}))}),
             customClass("LinkedPopUp", "QComboBox"));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    const auto one = view<LinkedPopUp>("one");
    const auto two = view<LinkedPopUp>("two");
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->partner.lock(), two);
    EXPECT_EQ(two->partner.lock(), one);
    EXPECT_EQ(one->partnerWhenAwake, two);
    EXPECT_EQ(two->partnerWhenAwake, one);
    one->partnerWhenAwake.reset();
}

TEST_F(NibConnections, ActionsGoToTheOwner) {
    show({"button"}, column({widget("QPushButton", "button", property("action", "act:"))}));
    QTest::mouseClick(shown("button"), Qt::LeftButton);
    EXPECT_EQ(owner->taken(), Log{"act"});
    EXPECT_EQ(view<NSButton>("button")->target(), owner);
}

TEST_F(NibConnections, EveryObjectAwakesWhenAllIsConnected) {
    const ClassRegistration registration(Controller::describe());
    loadFile({"pageVC"},
             column({widget("QWidget", "aPage",
                            property("controller", "PageController") + property("controllerOutlet", "pageVC") +
                                column({widget("QPushButton", "button")}))}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    EXPECT_EQ(owner->taken(), Log{"awake"});
    const auto controller = view<Controller>("pageVC");
    ASSERT_TRUE(controller);
    EXPECT_EQ(controller->log, (Log{"awake", "viewDidLoad"}));
}

TEST_F(NibConnections, APagesControllerOwnsWhatIsInsideIt) {
    const ClassRegistration registration(Controller::describe());
    show({"pageVC", "outside"},
         column({widget("QWidget", "aPage",
                        property("controller", "PageController") + property("controllerOutlet", "pageVC") +
                            column({widget("QPushButton", "button", property("action", "act:"))})),
                 widget("QPushButton", "outside", property("action", "act:"))}));
    const auto controller = view<Controller>("pageVC");
    ASSERT_TRUE(controller && controller->button.lock());
    EXPECT_EQ(contents.objects, std::vector<std::shared_ptr<NSObject>>{controller});
    EXPECT_EQ(widgetOf(*controller->view()), window->findChild<QWidget*>("aPage"));
    QTest::mouseClick(widgetOf(*controller->button.lock()), Qt::LeftButton);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(controller->log.back(), "act");
    QTest::mouseClick(shown("outside"), Qt::LeftButton);
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(NibConnections, AnObjectInsideAPageCanBelongToControllerAndOwner) {
    const ClassRegistration registration(Controller::describe());
    loadFile({"pageVC", "shared"},
             column({widget("QWidget", "aPage",
                            property("controller", "PageController") + property("controllerOutlet", "pageVC") +
                                column({widget("QPushButton", "shared",
                                               property("outlets", std::vector<std::string>{"pageVC.button"}))}))}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    EXPECT_EQ(view<Controller>("pageVC")->button.lock(), view<NSButton>("shared"));
}

TEST_F(NibConnections, ControlsHaveTheTagAndTheStateOfTheFile) {
    loadFile({"button"},
             column({widget("QPushButton", "button", property("tag", "6") + setting("enabled", "bool", "false"))}));
    EXPECT_EQ(view<NSButton>("button")->tag(), 6);
    EXPECT_FALSE(view<NSButton>("button")->isEnabled());
    EXPECT_FALSE(shown("button")->isEnabled());
}

TEST_F(NibConnections, TextsAreShownInTheBundlesLanguage) {
    QDir(folder.path()).mkdir("en.lproj");
    write("en.lproj/Localizable.strings", "\"Deg\" = \"Degrees\"; \"Tip\" = \"Turns\"; \"Page\" = \"Location\";");
    loadFile({"label", "tabs"},
             column({widget("QLabel", "label", setting("text", "string", "Deg") + setting("toolTip", "string", "Tip")),
                     widget("QTabWidget", "tabs",
                            widget("QWidget", "first",
                                   property("identifier", "first") +
                                       "<attribute name='title'><string>Page</string></attribute>"))}));
    EXPECT_EQ(view<NSTextField>("label")->stringValue(), u"Degrees");
    EXPECT_EQ(view<NSTextField>("label")->toolTip(), u"Turns");
    EXPECT_EQ(view<NSTabView>("tabs")->tabViewItemAtIndex(0)->label(), u"Location");
}

TEST_F(NibConnections, ContainersAndLabelsMayHaveAnyName) {
    loadFile({}, column({widget("QFrame", "whatever", column({widget("QLabel", "anything")}))}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
}

} // namespace
