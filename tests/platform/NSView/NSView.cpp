// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <QPointer>

using namespace platform;
using namespace testing_support;

namespace {

class ViewTest : public InterfaceTest {};

TEST_F(ViewTest, TheTreeOfViewsFollowsTheFile) {
    show({"group", "button"}, column({widget("QGroupBox", "group", column({widget("QPushButton", "button")}))}));
    EXPECT_EQ(view<NSView>("button")->superview(), view<NSView>("group"));
    EXPECT_EQ(view<NSView>("group")->superview(), contents.window->contentView());
    EXPECT_EQ(view<NSView>("group")->tag(), -1);
}

TEST_F(ViewTest, ARootWithoutParentGoesWithItsView) {
    loadFile({"button"}, column({widget("QPushButton", "button")}));
    const QPointer<QWidget> root = widgetOf(*contents.window->contentView());
    ASSERT_TRUE(root);
    contents = {};
    EXPECT_FALSE(root);
}

TEST_F(ViewTest, ARootInAHostsWindowStaysTheHosts) {
    show({"button"}, column({widget("QPushButton", "button")}));
    const QPointer<QWidget> root = window->centralWidget();
    contents = {};
    EXPECT_TRUE(root);
}

TEST_F(ViewTest, ViewsSurviveTheHostsWindow) {
    show({"button"}, column({widget("QPushButton", "button")}));
    window.reset();
    const auto button = view<NSButton>("button");
    ASSERT_TRUE(button);
    button->setTitle(u"still");
    EXPECT_EQ(widgetOf(*button), nullptr);
    EXPECT_EQ(button->window(), nullptr);
}

TEST_F(ViewTest, HidingAContainerMovesTheFocusOutOfIt) {
    show({"group", "button"}, column({widget("QGroupBox", "group", column({widget("QPushButton", "button")}))}));
    shown("button")->setFocus();
    view<NSView>("group")->setHidden(true);
    EXPECT_EQ(window->focusWidget(), nullptr);
    EXPECT_FALSE(view<NSView>("button")->isHidden());
    EXPECT_FALSE(shown("button")->isVisible());
}

TEST_F(ViewTest, ToolTipAndAccessibleNameComeFromTheFileAndCanBeChanged) {
    show({"button"},
         column({widget("QPushButton", "button",
                        setting("toolTip", "string", "Saves") + setting("accessibleName", "string", "Save"))}));
    const auto button = view<NSButton>("button");
    EXPECT_EQ(button->toolTip(), u"Saves");
    EXPECT_EQ(button->accessibilityLabel(), u"Save");
    button->setToolTip(u"Sichert");
    EXPECT_EQ(shown("button")->toolTip(), "Sichert");
    EXPECT_EQ(shown("button")->accessibleName(), "Save");
}

} // namespace
