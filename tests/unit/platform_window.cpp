// SPDX-License-Identifier: MIT
#include "platform_peers.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSFont.h>
#include <AppKit/NSTextField.h>
#include <PreferencePanes/NSPreferencePane.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform_test;

class FirstResponder : public testing::Test {
protected:
    FirstResponder() {
        window->setPeer(std::unique_ptr<FakeWindowPeer>(&windowPeer));
        windowPeer.inside = &peer;
        content->addSubview(group);
        group->addSubview(field);
    }

    std::shared_ptr<NSView> content = std::make_shared<NSView>();
    std::shared_ptr<NSView> group = std::make_shared<NSView>();
    std::shared_ptr<NSTextField> field = std::make_shared<NSTextField>();
    FakeTextPeer& peer = give<FakeTextPeer>(*field);
    std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(content);
    FakeWindowPeer& windowPeer = *new FakeWindowPeer; // the window owns it
};

TEST_F(FirstResponder, IsTheViewThatIsMadeIt) {
    EXPECT_TRUE(window->makeFirstResponder(field));
    EXPECT_EQ(peer.focusCount, 1);
    EXPECT_FALSE(field->isBeingEdited()) << "the focus begins nothing";
}

TEST_F(FirstResponder, IsNobodyForNull) {
    EXPECT_TRUE(window->makeFirstResponder(nullptr));
    EXPECT_EQ(windowPeer.clearCount, 1);
    windowPeer.lets = false;
    EXPECT_FALSE(window->makeFirstResponder(nullptr)) << "a field refused to end";
}

TEST_F(FirstResponder, StaysWhereTheFieldThatHasItRefusesToEnd) {
    peer.takesFocus = false;
    EXPECT_FALSE(window->makeFirstResponder(field));
}

TEST_F(FirstResponder, IsNoViewThatCannotTakeIt) {
    const struct {
        const char* row;
        std::function<void()> change;
        std::function<void()> undo;
    } table[] = {
        {"hidden", [&] { field->setHidden(true); }, [&] { field->setHidden(false); }},
        {"in a hidden view", [&] { group->setHidden(true); }, [&] { group->setHidden(false); }},
        {"in a hidden view, further out", [&] { content->setHidden(true); }, [&] { content->setHidden(false); }},
        {"disabled", [&] { field->setEnabled(false); }, [&] { field->setEnabled(true); }},
        {"a label", [&] { field->setEditable(false); }, [&] { field->setEditable(true); }},
        {"in another window", [&] { windowPeer.inside = nullptr; }, [&] { windowPeer.inside = &peer; }},
    };
    for (const auto& row : table) {
        row.change();
        EXPECT_FALSE(window->makeFirstResponder(field)) << row.row;
        EXPECT_EQ(peer.focusCount, 0) << row.row;
        row.undo();
    }
    EXPECT_EQ(windowPeer.clearCount, 0) << "whoever has the focus keeps it";
    EXPECT_TRUE(window->makeFirstResponder(field));
}

TEST_F(FirstResponder, IsNoPlainViewAndNoViewThatIsShownNowhere) {
    auto& groupPeer = give<FakePeer>(*group);
    windowPeer.inside = &groupPeer;
    EXPECT_FALSE(window->makeFirstResponder(group));
    EXPECT_EQ(groupPeer.focusCount, 0);
    EXPECT_FALSE(window->makeFirstResponder(std::make_shared<NSTextField>()));
}

TEST(Window, ThatIsShownNowhereMovesNoFocus) {
    const auto field = std::make_shared<NSTextField>();
    auto& peer = give<FakeTextPeer>(*field);
    const auto window = std::make_shared<NSWindow>(field);
    EXPECT_FALSE(window->makeFirstResponder(field));
    EXPECT_FALSE(window->makeFirstResponder(nullptr));
    EXPECT_EQ(peer.focusCount, 0);
}

TEST(View, KnowsWhereItStands) {
    const auto root = std::make_shared<NSView>();
    const auto window = std::make_shared<NSWindow>(root);
    auto leaf = std::make_shared<NSButton>();
    root->addSubview(leaf);
    EXPECT_EQ(leaf->superview(), root);
    EXPECT_EQ(root->superview(), nullptr);
    EXPECT_EQ(root->subviews(), (std::vector<std::shared_ptr<NSView>>{leaf}));
    EXPECT_EQ(leaf->window(), nullptr) << "nothing shows it";
    give<FakeButtonPeer>(*leaf).inWindow = window;
    EXPECT_EQ(leaf->window(), window);
    EXPECT_EQ(window->contentView(), root);
    const std::weak_ptr<NSView> watched = leaf;
    leaf.reset();
    EXPECT_FALSE(watched.expired()) << "whoever holds the root holds the tree";
}

TEST(Font, IsFoundByItsPostScriptName) {
    const auto font = NSFont::fontWithNameSize(u"DejaVuSans", 14.5);
    ASSERT_TRUE(font) << "the DejaVu fonts are not installed";
    EXPECT_EQ(font->fontName(), u"DejaVuSans");
    EXPECT_EQ(font->familyName(), u"DejaVu Sans");
    EXPECT_EQ(font->displayName(), u"DejaVu Sans");
    EXPECT_EQ(font->pointSize(), 14.5);
    const auto bold = NSFont::fontWithNameSize(u"DejaVuSans-Bold", 9);
    ASSERT_TRUE(bold);
    EXPECT_EQ(bold->familyName(), u"DejaVu Sans");
    EXPECT_EQ(bold->displayName(), u"DejaVu Sans Bold");
}

TEST(Font, IsTwelvePointsWithoutASize) {
    EXPECT_EQ(NSFont::fontWithNameSize(u"DejaVuSans", 0)->pointSize(), 12);
    EXPECT_EQ(NSFont::fontWithNameSize(u"DejaVuSans", -3)->pointSize(), 12);
}

TEST(Font, IsNoneForANameThatNoFaceHas) {
    for (const auto* name : {u"", u"NoSuchFace", u"dejavusans", u"DEJAVUSANS", u"DejaVuSan", u"DejaVuSans ",
                             u"DejaVu Sans", u"DejaVuSans*", u"D\u00E9j\u00E0VuSans"})
        EXPECT_EQ(NSFont::fontWithNameSize(name, 12), nullptr) << testing::PrintToString(std::u16string(name));
}

class Pane final : public NSPreferencePane {};

TEST(PreferencePane, IsSelectedBetweenDidSelectAndDidUnselect) {
    Pane pane;
    EXPECT_FALSE(pane.isSelected());
    pane.willSelect();
    EXPECT_FALSE(pane.isSelected());
    pane.didSelect();
    EXPECT_TRUE(pane.isSelected());
    EXPECT_EQ(pane.shouldUnselect(), NSPreferencePaneUnselectReply::now);
    pane.willUnselect();
    EXPECT_TRUE(pane.isSelected());
    pane.didUnselect();
    EXPECT_FALSE(pane.isSelected());
}

TEST(PreferencePane, HasNoViewWithoutABundle) {
    const auto pane = std::make_shared<Pane>();
    EXPECT_EQ(pane->loadMainView(), nullptr);
    EXPECT_EQ(pane->mainView(), nullptr);
    EXPECT_EQ(pane->mainNibName(), u"Main");
}

} // namespace
