// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSPopover.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSException.h>

#include <QScreen>
#include <QScrollArea>
#include <QWindow>

using namespace platform;
using namespace testing_support;

namespace {

constexpr double never = 3600; // seconds, in an animation that a test does not wait for

/// Owns what the popover shows.
class Content final : public NSViewController {
public:
    std::u16string_view className() const override { return u"Content"; }
    static NSClass describe() {
        return ClassTable<Content>(u"Content", u"NSViewController")
            .outlet(u"scroll", &Content::scroll)
            .outlet(u"image", &Content::image);
    }
    std::weak_ptr<NSScrollView> scroll;
    std::weak_ptr<NSView> image;
};

class Delegate final : public NSPopoverDelegate {
public:
    void popoverWillShow(const NSNotification&) override { log.push_back("willShow"); }
    void popoverDidShow(const NSNotification&) override { log.push_back("didShow"); }
    bool popoverShouldClose(const std::shared_ptr<NSPopover>&) override { return closes; }
    void popoverWillClose(const NSNotification&) override { log.push_back("willClose"); }
    void popoverDidClose(const NSNotification&) override {
        log.push_back("didClose");
        if (onClosed)
            onClosed();
    }
    bool popoverShouldDetach(const std::shared_ptr<NSPopover>&) override {
        log.push_back("shouldDetach");
        return detaches;
    }
    Log taken() { return std::exchange(log, {}); }

    bool closes = true;
    bool detaches = true;
    std::function<void()> onClosed;
    Log log;
};

class Popovers : public InterfaceTest {
protected:
    Popovers() {
        NSPopover::setAnimationDuration(0);
        write("Content.ui",
              "<?xml version='1.0' encoding='UTF-8'?><ui version='4.0'><class>view</class>" +
                  widget("QWidget", "view",
                         "<property name='geometry'><rect><x>0</x><y>0</y><width>200</width><height>150</height>"
                         "</rect></property>" +
                             setting("windowTitle", "string", "Torn off") +
                             column({widget("NSScrollView", "scroll",
                                            "<property name='allowsMagnification' stdset='0'><bool>true</bool>"
                                            "</property>" +
                                                widget("NSImageView", "image"))})) +
                  "<customwidgets>" + customClass("NSScrollView", "QScrollArea") +
                  customClass("NSImageView", "QLabel") + "</customwidgets></ui>");
        controller->initWithNibNameBundle(u"Content", NSBundle::bundleWithPath(folder.path().toStdString()));
        controller->loadView();
    }
    ~Popovers() override {
        popover.reset();
        NSPopover::setAnimationDuration(0.15);
    }

    /// A window with the anchor at the top and another button below it.
    void showAnchor() {
        show({"other", "anchor"},
             column({widget("QPushButton", "anchor"), widget("QPushButton", "other", property("action", "act:"))}));
        window->move(200, 400);
        QCoreApplication::processEvents();
        anchor = view<NSView>("anchor");
        popover = makePopover();
    }
    std::shared_ptr<NSPopover> makePopover() {
        auto made = std::make_shared<NSPopover>();
        made->setContentViewController(controller);
        made->setBehavior(NSPopoverBehavior::transient);
        made->setDelegate(delegate);
        return made;
    }
    void open(NSRectEdge edge = NSRectEdge::maxY) {
        popover->showRelativeToRectOfViewPreferredEdge(anchor->bounds(), anchor, edge);
        QCoreApplication::processEvents();
    }
    void showAndOpen() {
        showAnchor();
        open();
        ASSERT_TRUE(frame());
        delegate->taken();
    }

    QWidget* content() const { return widgetOf(*controller->view()); }
    /// What is on the screen around the content; null while it is not there.
    QWidget* frame() const {
        auto* around = content()->window();
        return around != content() && around->isVisible() ? around : nullptr;
    }
    static QRect onScreen(const QWidget& widget) { return {widget.mapToGlobal(QPoint()), widget.size()}; }

    /// Mouse events as the window system sends them.
    void clickAt(const QWidget& target) {
        auto* handle = target.window()->windowHandle();
        const auto at = handle->mapFromGlobal(onScreen(target).center());
        QTest::mouseClick(handle, Qt::LeftButton, {}, at);
        QCoreApplication::processEvents();
    }
    /// Moves the pointer by `way` from `from`, both on the screen, and tells the frame's window.
    void drag(QPoint from, QPoint way, bool releases = true) {
        auto* handle = frame()->windowHandle();
        QTest::mousePress(handle, Qt::LeftButton, {}, handle->mapFromGlobal(from));
        for (int step = 1; step <= 4; ++step)
            QTest::mouseMove(handle, handle->mapFromGlobal(from + way * step / 4));
        if (releases)
            QTest::mouseRelease(handle, Qt::LeftButton, {}, handle->mapFromGlobal(from + way));
        QCoreApplication::processEvents();
    }
    void tearOff() {
        drag(onScreen(*content()).center(), {60, -40});
        ASSERT_TRUE(popover->isDetached());
        ASSERT_TRUE(frame());
        delegate->taken();
    }

    ClassRegistration registration{Content::describe()};
    std::shared_ptr<Content> controller = std::make_shared<Content>();
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<NSView> anchor;
    std::shared_ptr<NSPopover> popover;
};

// Place and looks

TEST_F(Popovers, StandAboveTheirAnchorForTheGreatestY) {
    showAndOpen();
    const auto place = onScreen(*shown("anchor"));
    const auto inside = onScreen(*content());
    EXPECT_LT(inside.bottom(), place.top());
    EXPECT_GT(inside.bottom(), place.top() - 40);
    EXPECT_NEAR(inside.center().x(), place.center().x(), 1);
    EXPECT_EQ(inside.size(), QSize(200, 150));
}

TEST_F(Popovers, StandBelowWhereThereIsNoRoomAbove) {
    showAnchor();
    window->move(200, 0);
    window->resize(200, 100);
    QCoreApplication::processEvents();
    open();
    EXPECT_GT(onScreen(*content()).top(), onScreen(*shown("anchor")).bottom());
}

TEST_F(Popovers, PointAtTheAnchorWithAnArrow) {
    showAndOpen();
    const auto place = onScreen(*shown("anchor"));
    const auto picture = frame()->grab().toImage();
    const auto opaque = [&](QPoint at) {
        const auto local = at - frame()->mapToGlobal(QPoint());
        return picture.rect().contains(local) && picture.pixelColor(local).alpha() > 200;
    };
    const QPoint tip(place.center().x(), place.top() - 3);
    EXPECT_TRUE(opaque(tip));
    EXPECT_FALSE(opaque(tip - QPoint(12, 0)));
    EXPECT_FALSE(opaque(tip + QPoint(12, 0)));
}

TEST_F(Popovers, ShownAgainMoveToTheNewPlace) {
    showAndOpen();
    const auto before = onScreen(*content());
    const auto other = view<NSView>("other");
    popover->showRelativeToRectOfViewPreferredEdge(other->bounds(), other, NSRectEdge::maxY);
    EXPECT_GT(onScreen(*content()).top(), before.top());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, KeepTheirOwnColoursOnADarkDesktop) {
    const auto before = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(40, 40, 40)));
    showAnchor();
    popover->setAppearance(NSAppearance::appearanceNamed(NSAppearanceNameVibrantLight));
    open();
    EXPECT_GT(content()->palette().color(QPalette::Window).lightness(), 200);
    EXPECT_LT(content()->palette().color(QPalette::WindowText).lightness(), 60);
    popover->close();
    popover = makePopover();
    open();
    EXPECT_LT(content()->palette().color(QPalette::Window).lightness(), 60);
    QApplication::setPalette(before);
}

TEST_F(Popovers, GiveTheKeyboardToTheirContent) {
    showAndOpen();
    QTest::keyClick(frame()->windowHandle(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(controller->scroll.lock()->magnification(), 1.25);
}

TEST_F(Popovers, AreWhereTheContentsWindowIs) {
    showAnchor();
    EXPECT_EQ(controller->view()->window(), nullptr);
    open();
    EXPECT_TRUE(controller->view()->window());
    EXPECT_NE(controller->view()->window(), anchor->window());
    popover->close();
    popover = makePopover();
    EXPECT_FALSE(frame());
}

TEST_F(Popovers, BesideAHiddenViewShowNothing) {
    showAnchor();
    anchor->setHidden(true);
    open();
    EXPECT_FALSE(popover->isShown());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, BesideAViewInNoWindowAreAnInvalidArgument) {
    showAnchor();
    anchor = controller->view();
    EXPECT_THROW(open(), NSInvalidArgumentException);
}

// Closing

TEST_F(Popovers, CloseOnAClickOutsideWhichGoesOnToWhatWasClicked) {
    showAndOpen();
    clickAt(*shown("other"));
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(Popovers, StayOpenOnAClickInside) {
    showAndOpen();
    clickAt(*content());
    EXPECT_TRUE(frame());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, CloseOnEscape) {
    showAndOpen();
    QTest::keyClick(frame()->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, StayOpenWhereTheDelegateRefuses) {
    showAndOpen();
    delegate->closes = false;
    QTest::keyClick(frame()->windowHandle(), Qt::Key_Escape);
    clickAt(*shown("other"));
    EXPECT_TRUE(frame());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, LeftToTheProgramStayOpenWhateverTheUserDoes) {
    showAnchor();
    popover->setBehavior(NSPopoverBehavior::applicationDefined);
    open();
    ASSERT_TRUE(frame());
    QTest::keyClick(frame()->windowHandle(), Qt::Key_Escape);
    clickAt(*shown("other"));
    EXPECT_TRUE(frame());
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(Popovers, CloseWithTheWindowOfTheirAnchor) {
    showAndOpen();
    window->close();
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, OutliveTheDeletionOfTheAnchorsWindow) {
    showAndOpen();
    window->takeCentralWidget()->setParent(nullptr);
    window.reset();
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, LetGoOfWhileShownDisappearWithoutAMessage) {
    showAndOpen();
    popover.reset();
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, LetGoOfFromTheirOwnLastMessageLeaveTheContentWhole) {
    showAndOpen();
    delegate->onClosed = [this] { popover.reset(); };
    clickAt(*shown("other"));
    EXPECT_EQ(popover, nullptr);
    ASSERT_TRUE(content());
    EXPECT_EQ(content()->size(), QSize(200, 150));
    popover = makePopover();
    open();
    EXPECT_TRUE(frame());
}

// Animation

TEST_F(Popovers, SayThatTheyDidShowOnceTheyHaveAppeared) {
    NSPopover::setAnimationDuration(0.01);
    showAnchor();
    open();
    EXPECT_TRUE(frame());
    EXPECT_TRUE(QTest::qWaitFor([this] { return delegate->log == Log{"willShow", "didShow"}; }));
    popover->close();
    EXPECT_FALSE(frame());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !popover->isShown(); }));
    EXPECT_EQ(delegate->taken(), (Log{"willShow", "didShow", "willClose", "didClose"}));
}

TEST_F(Popovers, WhileTheyDisappearAClickReachesTheWindowBelow) {
    showAndOpen();
    NSPopover::setAnimationDuration(never);
    clickAt(*shown("other"));
    EXPECT_EQ(delegate->taken(), Log{"willClose"});
    EXPECT_TRUE(popover->isShown());
    EXPECT_FALSE(frame());
    clickAt(*shown("other"));
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
}

TEST_F(Popovers, ShownAgainWhileTheyDisappearStandWithoutHavingClosed) {
    showAndOpen();
    NSPopover::setAnimationDuration(never);
    popover->close();
    NSPopover::setAnimationDuration(0);
    open();
    EXPECT_TRUE(frame());
    EXPECT_EQ(frame()->windowOpacity(), 1.0);
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "willShow", "didShow"}));
}

TEST_F(Popovers, TheClosingOfTheAnchorsWindowDoesNotWaitForAnAnimation) {
    showAndOpen();
    NSPopover::setAnimationDuration(never);
    window->close();
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

// Tearing off

TEST_F(Popovers, DraggedBecomeAWindowWithTheSameContent) {
    showAndOpen();
    auto* before = content();
    const auto place = onScreen(*content());
    drag(place.center(), {60, -40});
    EXPECT_EQ(delegate->taken(), Log{"shouldDetach"});
    EXPECT_TRUE(popover->isDetached());
    ASSERT_TRUE(frame());
    EXPECT_EQ(content(), before);
    EXPECT_EQ(content()->size(), place.size());
    EXPECT_EQ(frame()->windowType(), Qt::Window);
    EXPECT_FALSE(frame()->windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(frame()->windowTitle(), QStringLiteral("Torn off"));
    EXPECT_NEAR(onScreen(*content()).center().x(), place.center().x() + 60, 2);
    EXPECT_NEAR(onScreen(*content()).center().y(), place.center().y() - 40, 2);
    EXPECT_TRUE(controller->view()->window());
}

TEST_F(Popovers, FollowThePointerWhileTheyAreDragged) {
    showAndOpen();
    const auto place = onScreen(*content());
    drag(place.center(), {60, -40}, false);
    EXPECT_TRUE(popover->isDetached());
    EXPECT_EQ(onScreen(*content()).topLeft(), place.topLeft() + QPoint(60, -40));
}

TEST_F(Popovers, AreNotTornOffByAShakyClick) {
    showAndOpen();
    const auto place = onScreen(*content());
    drag(place.center(), {3, 3});
    EXPECT_FALSE(popover->isDetached());
    EXPECT_EQ(delegate->taken(), Log());
    EXPECT_EQ(onScreen(*content()), place);
}

TEST_F(Popovers, StayAttachedWhereTheDelegateRefusesADrag) {
    showAndOpen();
    delegate->detaches = false;
    const auto place = onScreen(*content());
    drag(place.center(), {60, -40});
    EXPECT_FALSE(popover->isDetached());
    EXPECT_EQ(delegate->taken(), Log{"shouldDetach"});
    EXPECT_EQ(onScreen(*content()), place);
}

TEST_F(Popovers, TornOffAreNotClosedByAClickOutsideOrEscape) {
    showAndOpen();
    tearOff();
    QTest::keyClick(frame()->windowHandle(), Qt::Key_Escape);
    clickAt(*shown("other"));
    EXPECT_TRUE(frame());
    EXPECT_EQ(delegate->taken(), Log());
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(Popovers, TornOffSendTheCloseMessagesWhenTheirWindowCloses) {
    showAndOpen();
    tearOff();
    frame()->close();
    EXPECT_FALSE(frame());
    EXPECT_FALSE(popover->isDetached());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, TornOffAreClosedByTheKeyThatClosesWindows) {
    showAndOpen();
    tearOff();
    QTest::keySequence(frame()->windowHandle(), QKeySequence::Close);
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, TornOffStayOpenWhereTheDelegateRefuses) {
    showAndOpen();
    tearOff();
    delegate->closes = false;
    frame()->close();
    EXPECT_TRUE(frame());
    EXPECT_EQ(delegate->taken(), Log());
}

TEST_F(Popovers, TornOffCloseWithTheWindowOfTheirAnchor) {
    showAndOpen();
    tearOff();
    window->close();
    EXPECT_FALSE(frame());
    EXPECT_EQ(delegate->taken(), (Log{"willClose", "didClose"}));
}

TEST_F(Popovers, TornOffGrowWithTheirWindow) {
    showAndOpen();
    tearOff();
    frame()->resize(500, 400);
    QCoreApplication::processEvents();
    EXPECT_EQ(content()->size(), QSize(500, 400));
}

TEST_F(Popovers, AfterBeingTornOffStartAttachedInTheirFirstSize) {
    showAndOpen();
    tearOff();
    frame()->resize(500, 400);
    frame()->close();
    open();
    ASSERT_TRUE(frame());
    EXPECT_EQ(frame()->windowType(), Qt::Popup);
    EXPECT_EQ(content()->size(), QSize(200, 150));
}

TEST_F(Popovers, TornOffComeToTheFrontAsAWindow) {
    showAndOpen();
    tearOff();
    frame()->showMinimized();
    QCoreApplication::processEvents();
    controller->view()->window()->makeKeyAndOrderFront(nullptr);
    EXPECT_TRUE(QTest::qWaitForWindowActive(frame()));
    EXPECT_FALSE(frame()->isMinimized());
}

} // namespace
