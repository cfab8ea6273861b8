// SPDX-License-Identifier: MIT
#include <AppKit/NSPopover.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <Peers.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

using Log = std::vector<std::string>;

class AnchorPeer final : public ViewPeer {
public:
    explicit AnchorPeer(std::shared_ptr<NSWindow> inWindow) : m_window(std::move(inWindow)) {}
    void setHidden(bool) override {}
    void setEnabled(bool) override {}
    std::shared_ptr<NSWindow> window() override { return m_window; }
    bool focus() override { return false; }

private:
    std::shared_ptr<NSWindow> m_window;
};

/// Writes down what it is told. What takes time ends when the test says so.
class SlowPeer final : public PopoverPeer {
public:
    SlowPeer(Log& log, std::weak_ptr<NSPopover> popover, bool& anchorIsVisible)
        : m_log(log), m_popover(std::move(popover)), m_anchorIsVisible(anchorIsVisible) {}

    bool canShowBeside(NSView&) override { return m_anchorIsVisible; }
    void show(NSRect rect, NSView&, NSRectEdge edge, double seconds) override {
        m_log.push_back("show " + std::to_string(static_cast<int>(rect.size.width)) + " at " +
                        std::to_string(static_cast<int>(edge)));
        if (seconds == 0)
            m_popover.lock()->hasAppeared();
    }
    void hide(double seconds) override {
        m_log.push_back("hide");
        if (seconds == 0)
            m_popover.lock()->hasDisappeared();
    }

private:
    Log& m_log;
    std::weak_ptr<NSPopover> m_popover;
    bool& m_anchorIsVisible;
};

class Delegate final : public NSPopoverDelegate {
public:
    explicit Delegate(Log& log) : m_log(log) {}
    void popoverWillShow(const NSNotification& notification) override { note("willShow", notification); }
    void popoverDidShow(const NSNotification& notification) override { note("didShow", notification); }
    bool popoverShouldClose(const std::shared_ptr<NSPopover>&) override {
        m_log.push_back("shouldClose");
        return closes;
    }
    void popoverWillClose(const NSNotification& notification) override { note("willClose", notification); }
    void popoverDidClose(const NSNotification& notification) override { note("didClose", notification); }
    bool popoverShouldDetach(const std::shared_ptr<NSPopover>&) override {
        m_log.push_back("shouldDetach");
        return detaches;
    }

    bool closes = true;
    bool detaches = true;
    /// Run inside a message, by its name.
    std::map<std::string, std::function<void()>> inside;

private:
    void note(const std::string& message, const NSNotification& notification) {
        m_log.push_back(message);
        EXPECT_TRUE(std::dynamic_pointer_cast<NSPopover>(notification.object));
        auto name = message;
        name[0] = static_cast<char>(name[0] - 'a' + 'A');
        EXPECT_EQ(toUtf8(notification.name), "NSPopover" + name + "Notification");
        if (const auto act = inside.find(message); act != inside.end())
            act->second();
    }

    Log& m_log;
};

class PopoverState : public testing::Test {
protected:
    PopoverState() {
        NSPopover::setAnimationDuration(1);
        anchor->setPeer(std::make_unique<AnchorPeer>(std::make_shared<NSWindow>()));
        const auto controller = std::make_shared<NSViewController>();
        controller->setView(std::make_shared<NSView>());
        popover->setContentViewController(controller);
        popover->setBehavior(NSPopoverBehavior::transient);
        popover->setDelegate(delegate);
        popover->setPeer(std::make_unique<SlowPeer>(log, popover, anchorIsVisible));
    }

    void show(double width = 80) {
        popover->showRelativeToRectOfViewPreferredEdge({{0, 0}, {width, 20}}, anchor, NSRectEdge::maxY);
    }
    void showFully() {
        show();
        popover->hasAppeared();
        log.clear();
    }
    void tearOff() {
        showFully();
        ASSERT_TRUE(popover->userDrags());
        log.clear();
    }
    Log taken() { return std::exchange(log, {}); }

    Log log;
    bool anchorIsVisible = true;
    std::shared_ptr<NSView> anchor = std::make_shared<NSView>();
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>(log);
    std::shared_ptr<NSPopover> popover = std::make_shared<NSPopover>();
};

// Showing

TEST_F(PopoverState, StartsClosedAttachedAnimatedAndLeftToTheProgram) {
    const auto fresh = std::make_shared<NSPopover>();
    EXPECT_FALSE(fresh->isShown());
    EXPECT_FALSE(fresh->isDetached());
    EXPECT_TRUE(fresh->animates());
    EXPECT_EQ(fresh->behavior(), NSPopoverBehavior::applicationDefined);
    EXPECT_EQ(fresh->appearance(), nullptr);
    EXPECT_EQ(fresh->contentViewController(), nullptr);
}

TEST_F(PopoverState, SaysThatItWillShowBeforeAndThatItDidShowAfterTheAnimation) {
    show();
    EXPECT_EQ(taken(), (Log{"willShow", "show 80 at 3"}));
    EXPECT_TRUE(popover->isShown());
    popover->hasAppeared();
    EXPECT_EQ(taken(), Log{"didShow"});
    popover->hasAppeared();
    EXPECT_EQ(taken(), Log());
}

TEST_F(PopoverState, WithoutAnimationStandsAtOnce) {
    popover->setAnimates(false);
    show();
    EXPECT_EQ(taken(), (Log{"willShow", "show 80 at 3", "didShow"}));
    popover->close();
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

TEST_F(PopoverState, ShownWhileShownOnlyMoves) {
    showFully();
    show(120);
    EXPECT_EQ(taken(), Log{"show 120 at 3"});
}

TEST_F(PopoverState, ShownBesideAViewThatIsNotOnScreenDoesNothing) {
    anchorIsVisible = false;
    show();
    EXPECT_EQ(taken(), Log());
    EXPECT_FALSE(popover->isShown());
}

TEST_F(PopoverState, BesideNoViewOrAViewInNoWindowIsAnInvalidArgument) {
    EXPECT_THROW(popover->showRelativeToRectOfViewPreferredEdge({}, nullptr, NSRectEdge::maxY),
                 NSInvalidArgumentException);
    EXPECT_THROW(popover->showRelativeToRectOfViewPreferredEdge({}, std::make_shared<NSView>(), NSRectEdge::maxY),
                 NSInvalidArgumentException);
    EXPECT_EQ(taken(), Log());
}

TEST_F(PopoverState, WithoutContentIsAnInconsistency) {
    popover->setContentViewController(nullptr);
    try {
        show();
        FAIL();
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
    }
    EXPECT_EQ(taken(), Log());
}

TEST_F(PopoverState, ADelegateThatClosesItBeforeItIsShownKeepsItOffTheScreen) {
    delegate->inside["willShow"] = [this] { popover->close(); };
    popover->setAnimates(false);
    show();
    EXPECT_EQ(taken(), (Log{"willShow", "willClose", "hide", "didClose"}));
    EXPECT_FALSE(popover->isShown());
}

// Closing

TEST_F(PopoverState, ClosedByTheProgramIsNotAsked) {
    showFully();
    delegate->closes = false;
    popover->close();
    EXPECT_EQ(taken(), (Log{"willClose", "hide"}));
    EXPECT_TRUE(popover->isShown());
    popover->hasDisappeared();
    EXPECT_EQ(taken(), Log{"didClose"});
    EXPECT_FALSE(popover->isShown());
}

TEST_F(PopoverState, ClosedByTheUserAsksFirst) {
    showFully();
    popover->userDismisses();
    EXPECT_EQ(taken(), (Log{"shouldClose", "willClose", "hide"}));
}

TEST_F(PopoverState, ARefusalKeepsItOpen) {
    showFully();
    delegate->closes = false;
    popover->userDismisses();
    popover->performClose();
    EXPECT_EQ(taken(), (Log{"shouldClose", "shouldClose"}));
    EXPECT_TRUE(popover->isShown());
}

TEST_F(PopoverState, OneLeftToTheProgramIsNotDismissed) {
    popover->setBehavior(NSPopoverBehavior::applicationDefined);
    showFully();
    popover->userDismisses();
    EXPECT_EQ(taken(), Log());
}

TEST_F(PopoverState, ClosingTwiceSaysItOnce) {
    showFully();
    popover->close();
    popover->close();
    popover->performClose();
    popover->hasDisappeared();
    popover->hasDisappeared();
    popover->close();
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

TEST_F(PopoverState, ShownAgainWhileClosingNeverSaysThatItDidClose) {
    showFully();
    popover->userDismisses();
    log.clear();
    show();
    popover->hasAppeared();
    popover->hasDisappeared(); // what was still under way
    EXPECT_EQ(taken(), (Log{"willShow", "show 80 at 3", "didShow"}));
    EXPECT_TRUE(popover->isShown());
    popover->close();
    popover->hasDisappeared();
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

TEST_F(PopoverState, CanBeShownAgainAfterItHasClosed) {
    showFully();
    popover->close();
    popover->hasDisappeared();
    log.clear();
    show();
    EXPECT_EQ(taken(), (Log{"willShow", "show 80 at 3"}));
}

TEST_F(PopoverState, TheClosingOfTheAnchorsWindowClosesItAtOnceWithoutAsking) {
    showFully();
    delegate->closes = false;
    popover->anchorWindowHasClosed();
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

TEST_F(PopoverState, TheClosingOfTheAnchorsWindowEndsAnAnimationUnderWay) {
    showFully();
    popover->close();
    log.clear();
    popover->anchorWindowHasClosed();
    EXPECT_EQ(taken(), (Log{"hide", "didClose"}));
}

TEST_F(PopoverState, ADelegateMayLetGoOfItWhenItHasClosed) {
    showFully();
    delegate->inside["didClose"] = [this] { popover.reset(); };
    const std::weak_ptr<NSPopover> weak = popover;
    popover->anchorWindowHasClosed();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

TEST_F(PopoverState, WorksWithoutDelegate) {
    delegate.reset();
    showFully();
    EXPECT_FALSE(popover->userDrags());
    popover->performClose();
    popover->hasDisappeared();
    EXPECT_EQ(taken(), Log{"hide"});
}

// Tearing off

TEST_F(PopoverState, DraggedAsksAndIsDetachedWithoutACloseMessage) {
    showFully();
    EXPECT_TRUE(popover->userDrags());
    EXPECT_EQ(taken(), Log{"shouldDetach"});
    EXPECT_TRUE(popover->isDetached());
    EXPECT_TRUE(popover->isShown());
}

TEST_F(PopoverState, WhereTheDelegateRefusesADragDoesNothing) {
    showFully();
    delegate->detaches = false;
    EXPECT_FALSE(popover->userDrags());
    EXPECT_FALSE(popover->isDetached());
    EXPECT_EQ(taken(), Log{"shouldDetach"});
}

TEST_F(PopoverState, ADelegateThatSaysNothingRefuses) {
    class Silent final : public NSPopoverDelegate {};
    const auto silent = std::make_shared<Silent>();
    popover->setDelegate(silent);
    showFully();
    EXPECT_FALSE(popover->userDrags());
    EXPECT_FALSE(popover->isDetached());
}

TEST_F(PopoverState, DraggedWhileItStillAppearsStandsFirst) {
    show();
    log.clear();
    EXPECT_TRUE(popover->userDrags());
    EXPECT_EQ(taken(), (Log{"didShow", "shouldDetach"}));
}

TEST_F(PopoverState, DraggedWhileClosingIsNotDetached) {
    showFully();
    popover->close();
    log.clear();
    EXPECT_FALSE(popover->userDrags());
    EXPECT_EQ(taken(), Log());
}

TEST_F(PopoverState, DetachedIsNotTransientAnyMore) {
    tearOff();
    popover->userDismisses();
    EXPECT_EQ(taken(), Log());
    EXPECT_TRUE(popover->isShown());
}

TEST_F(PopoverState, DetachedStaysWhereItIsWhenShownAgain) {
    tearOff();
    show();
    EXPECT_EQ(taken(), Log());
    EXPECT_TRUE(popover->isDetached());
}

TEST_F(PopoverState, TheWindowOfADetachedOneSendsTheCloseMessagesAtOnce) {
    tearOff();
    popover->performClose();
    EXPECT_EQ(taken(), (Log{"shouldClose", "willClose", "hide", "didClose"}));
    EXPECT_FALSE(popover->isShown());
    EXPECT_FALSE(popover->isDetached());
}

TEST_F(PopoverState, ClosedWhileDetachedStartsAttachedTheNextTime) {
    tearOff();
    popover->close();
    showFully();
    EXPECT_FALSE(popover->isDetached());
    EXPECT_TRUE(popover->userDrags());
}

TEST_F(PopoverState, TheClosingOfTheAnchorsWindowClosesADetachedOneToo) {
    tearOff();
    popover->anchorWindowHasClosed();
    EXPECT_EQ(taken(), (Log{"willClose", "hide", "didClose"}));
}

} // namespace
