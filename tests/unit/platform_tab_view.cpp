// SPDX-License-Identifier: MIT
#include "platform_peers.h"

#include <AppKit/NSTabView.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform_test;

class FakeTabPeer final : public FakePeer, public TabPeer {
public:
    void setLabel(NSInteger index, const std::u16string& label) override { labels[index] = label; }
    void select(NSInteger index) override { selected = index; }

    std::map<NSInteger, std::u16string> labels;
    NSInteger selected = -1;
};

/// Notes which page is asked for, and from which.
class Delegate final : public NSTabViewDelegate {
public:
    bool tabViewShouldSelectTabViewItem(const std::shared_ptr<NSTabView>& tabView,
                                        const std::shared_ptr<NSTabViewItem>& item) override {
        asked.push_back(toUtf8(tabView->selectedTabViewItem()->identifier() + u" to " + item->identifier()));
        if (onAsk)
            onAsk();
        return agrees;
    }
    Log asked;
    bool agrees = true;
    std::function<void()> onAsk;
};

class TabView : public testing::Test {
protected:
    TabView() {
        for (const auto* identifier : {u"Title", u"Location", u"Pages"})
            tabs->addTabViewItem(std::make_shared<NSTabViewItem>(identifier, std::make_shared<NSView>()));
        tabs->setDelegate(delegate);
    }
    std::u16string selected() const { return tabs->selectedTabViewItem()->identifier(); }

    std::shared_ptr<NSTabView> tabs = std::make_shared<NSTabView>();
    FakeTabPeer& peer = give<FakeTabPeer>(*tabs);
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
};

TEST_F(TabView, SelectsItsFirstPage) {
    EXPECT_EQ(std::make_shared<NSTabView>()->selectedTabViewItem(), nullptr) << "it has none";
    EXPECT_EQ(selected(), u"Title");
    EXPECT_EQ(peer.selected, 0);
    EXPECT_EQ(delegate->asked, Log{});
    EXPECT_EQ(tabs->numberOfTabViewItems(), 3);
    EXPECT_EQ(tabs->subviews().size(), 3u);
}

TEST_F(TabView, AsksForAClickWhileTheOldPageIsSelected) {
    EXPECT_TRUE(tabs->userSelects(1));
    EXPECT_EQ(delegate->asked, Log{"Title to Location"});
    EXPECT_EQ(selected(), u"Location");
    EXPECT_EQ(peer.selected, 1);
}

TEST_F(TabView, AsksNothingForAClickOnTheSelectedPage) {
    EXPECT_TRUE(tabs->userSelects(0));
    EXPECT_EQ(delegate->asked, Log{});
}

TEST_F(TabView, AsksForASelectionByProgramAlsoOfTheSelectedPage) {
    tabs->selectTabViewItemWithIdentifier(u"Pages");
    tabs->selectTabViewItemWithIdentifier(u"Pages");
    EXPECT_EQ(delegate->asked, (Log{"Title to Pages", "Pages to Pages"}));
    EXPECT_EQ(selected(), u"Pages");
    EXPECT_EQ(peer.selected, 2);
}

TEST_F(TabView, ChangesNothingWhereTheDelegateRefuses) {
    delegate->agrees = false;
    peer.selected = 1; // what the toolkit shows after the click
    EXPECT_FALSE(tabs->userSelects(1));
    EXPECT_EQ(selected(), u"Title");
    EXPECT_EQ(peer.selected, 0) << "the old page is shown again";
    tabs->selectTabViewItemWithIdentifier(u"Pages");
    EXPECT_EQ(selected(), u"Title");
    EXPECT_EQ(delegate->asked, (Log{"Title to Location", "Title to Pages"}));
}

TEST_F(TabView, CommitsAnEditAfterTheDelegateHasAgreedAndWhileTheOldPageIsSelected) {
    const auto window = std::make_shared<NSWindow>();
    class Peer final : public WindowPeer {
    public:
        bool clearFocus() override { return onClear(); }
        bool contains(ViewPeer&) override { return true; }
        std::function<bool()> onClear;
    };
    auto windowPeer = std::make_unique<Peer>();
    bool lets = true;
    Log order;
    windowPeer->onClear = [&] {
        order.push_back("commit on " + toUtf8(selected()));
        return lets;
    };
    window->setPeer(std::move(windowPeer));
    peer.inWindow = window;
    delegate->onAsk = [&] { order.push_back("asked"); };
    EXPECT_TRUE(tabs->userSelects(1));
    EXPECT_EQ(order, (Log{"asked", "commit on Title"}));
    lets = false;
    peer.selected = 2;
    EXPECT_FALSE(tabs->userSelects(2)) << "a field that refuses to end keeps its page";
    EXPECT_EQ(selected(), u"Location");
    EXPECT_EQ(peer.selected, 1);
    order.clear();
    delegate->agrees = false;
    EXPECT_FALSE(tabs->userSelects(0));
    EXPECT_EQ(order, Log{"asked"}) << "nothing is committed for a page that stays";
}

TEST_F(TabView, RaisesForAPageThatIsNotThere) {
    for (const NSInteger index : {NSInteger(-1), NSInteger(3), static_cast<NSInteger>(NSNotFound)}) {
        EXPECT_THROW(tabs->tabViewItemAtIndex(index), NSRangeException);
        EXPECT_THROW(tabs->userSelects(index), std::out_of_range);
    }
    for (const auto* identifier : {u"", u"pages", u"Pages "}) {
        EXPECT_THROW(tabs->selectTabViewItemWithIdentifier(identifier), NSRangeException);
        EXPECT_EQ(tabs->indexOfTabViewItemWithIdentifier(identifier), NSNotFound);
    }
    EXPECT_EQ(delegate->asked, Log{});
    EXPECT_EQ(selected(), u"Title");
}

TEST_F(TabView, FindsPagesByIdentifierAndIndex) {
    EXPECT_EQ(tabs->indexOfTabViewItemWithIdentifier(u"Title"), 0u);
    EXPECT_EQ(tabs->indexOfTabViewItemWithIdentifier(u"Pages"), 2u);
    EXPECT_EQ(tabs->tabViewItemAtIndex(1)->identifier(), u"Location");
}

TEST_F(TabView, ShowsLabelsNowAndInANewPeer) {
    tabs->tabViewItemAtIndex(1)->setLabel(u"Place");
    EXPECT_EQ(peer.labels[1], u"Place");
    tabs->selectTabViewItemWithIdentifier(u"Location");
    const auto& next = give<FakeTabPeer>(*tabs);
    EXPECT_EQ(next.labels, (std::map<NSInteger, std::u16string>{{0, u""}, {1, u"Place"}, {2, u""}}));
    EXPECT_EQ(next.selected, 1);
}

TEST_F(TabView, NeedsNoDelegate) {
    delegate.reset();
    EXPECT_TRUE(tabs->userSelects(2));
    EXPECT_EQ(selected(), u"Pages");
}

TEST_F(TabView, MaySelectAPageWhileItIsAsked) {
    delegate->agrees = false;
    delegate->onAsk = [&] {
        delegate->onAsk = nullptr;
        delegate->agrees = true;
        tabs->selectTabViewItemWithIdentifier(u"Pages");
        delegate->agrees = false;
    };
    EXPECT_FALSE(tabs->userSelects(1));
    EXPECT_EQ(selected(), u"Pages");
    EXPECT_EQ(peer.selected, 2);
}

} // namespace
