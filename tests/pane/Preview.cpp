// SPDX-License-Identifier: MIT
#include "PaneTest.h"

#include <VelPreviewViewController.h>

#include <QTemporaryDir>
#include <QWindow>

using namespace platform;
using namespace testing_support;

namespace {

constexpr double never = 3600; // seconds, in an animation that a test does not wait for

std::string stamping(const std::string& configuration) {
    return "imprinter imprintFileAtURLWithIndex Preview.jpg " + configuration + " 0";
}

class Preview : public PaneTest {
protected:
    Preview() { NSPopover::setAnimationDuration(0); }
    ~Preview() override { NSPopover::setAnimationDuration(0.15); }

    NSURL picture(const char* name, const QColor& colour) {
        QImage image(30, 40, QImage::Format_RGB32);
        image.fill(colour);
        const auto path = folder.filePath(QString::fromLatin1(name));
        image.save(path);
        return NSURL::fileURLWithPath(path.toStdString());
    }

    /// A pane on the configurations a and b, whose host answers every stamping with a red page.
    void startWithRed() {
        a = configuration(u"a");
        b = configuration(u"b");
        imprinter->setList({a, b});
        red = picture("red.png", Qt::red);
        blue = picture("blue.png", Qt::blue);
        imprinter->setStampResult(red);
        start();
        window->move(-200, 200); // the button on the screen, with room above it
        QApplication::processEvents();
        taken();
    }

    QWidget& button() { return *widgetOf(*outlet<NSButton>(u"previewBtn")); }
    /// A click as the window system sends it.
    void clickAt(QWidget& target) {
        auto* handle = target.window()->windowHandle();
        const auto at = handle->mapFromGlobal(target.mapToGlobal(target.rect().center()));
        QTest::mouseClick(handle, Qt::LeftButton, {}, at);
        QApplication::processEvents();
    }
    void pressPreview() { clickAt(button()); }

    std::shared_ptr<pane::VelPreviewViewController> controller() { return pane->popoverViewController(); }
    template <class T>
    std::shared_ptr<T> part(std::u16string_view name) {
        return std::dynamic_pointer_cast<T>(controller()->classTable()->outlet(name)->object(*controller()));
    }
    std::shared_ptr<NSScrollView> scroll() { return part<NSScrollView>(u"scrollView"); }
    QWidget* content() { return widgetOf(*controller()->view()); }
    /// What shows the preview; null while it is not on screen.
    QWidget* frame() {
        auto* around = controller() ? content()->window() : nullptr;
        return around && around != content() && around->isVisible() ? around : nullptr;
    }
    /// The colour of the picture on show; none where it is empty.
    QColor shownColour() {
        const auto image = part<NSImageView>(u"imageView");
        if (!image->image())
            return {};
        const auto grabbed = widgetOf(*image)->grab().toImage();
        return grabbed.pixelColor(grabbed.width() / 2, grabbed.height() / 2);
    }
    void zoomWithKeys() { QTest::keyClick(frame()->windowHandle(), Qt::Key_Plus, Qt::ControlModifier); }
    void escape() {
        QTest::keyClick(frame()->windowHandle(), Qt::Key_Escape);
        QApplication::processEvents();
    }
    void tearOff() {
        auto* handle = frame()->windowHandle();
        const auto from = content()->mapToGlobal(content()->rect().center());
        QTest::mousePress(handle, Qt::LeftButton, {}, handle->mapFromGlobal(from));
        for (int step = 1; step <= 4; ++step)
            QTest::mouseMove(handle, handle->mapFromGlobal(from + QPoint(20, -10) * step));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, handle->mapFromGlobal(from + QPoint(80, -40)));
        QApplication::processEvents();
        ASSERT_TRUE(pane->popover());
        ASSERT_TRUE(pane->popover()->isDetached());
        ASSERT_TRUE(frame());
    }
    void changeTitle() {
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification,
                                                                         outlet<NSTokenField>(u"titleTokenField"));
    }

    QTemporaryDir folder;
    std::shared_ptr<RecordingConfiguration> a;
    std::shared_ptr<RecordingConfiguration> b;
    NSURL red = NSURL::fileURLWithPath("");
    NSURL blue = NSURL::fileURLWithPath("");
};

// Rendering

TEST_F(Preview, RendersTheSamplePageWithTheCurrentConfiguration) {
    startWithRed();
    pane->updatePreview();
    EXPECT_EQ(taken(), MessageLog{stamping("a")});
    EXPECT_EQ(pane->previewURL(), red);
}

TEST_F(Preview, WithoutACurrentConfigurationIsNotRendered) {
    startWithRed();
    pane->setCurrentConfiguration(nullptr);
    taken();
    pane->updatePreview();
    EXPECT_EQ(taken(), MessageLog());
    EXPECT_EQ(pane->previewURL(), std::nullopt);
}

TEST_F(Preview, IsRenderedWithoutAPopoverButMakesNone) {
    startWithRed();
    pane->updatePreview();
    EXPECT_EQ(pane->previewURL(), red);
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_EQ(controller(), nullptr);
}

TEST_F(Preview, SwitchingClearsTheResultFirstAndThenRendersForTheNewConfiguration) {
    startWithRed();
    std::optional<NSURL> duringSwitch = red;
    b->onSwitch = [&] { duringSwitch = pane->previewURL(); };
    imprinter->setStampResult(blue);
    pane->setCurrentConfiguration(b);
    EXPECT_EQ(duringSwitch, std::nullopt);
    auto messages = takenWithoutListing();
    // A field that only shows its value reads it again once the switch is over.
    std::erase(messages, "b fillOpacity");
    EXPECT_EQ(messages.back(), stamping("b"));
    EXPECT_EQ(pane->previewURL(), blue);
}

TEST_F(Preview, SwitchingToNoneLeavesNoResult) {
    startWithRed();
    pane->setCurrentConfiguration(nullptr);
    EXPECT_EQ(pane->previewURL(), std::nullopt);
}

TEST_F(Preview, ANilResultIsKeptAsTheResultButLeavesTheOldPicture) {
    startWithRed();
    pressPreview();
    imprinter->setStampResult(std::nullopt);
    pane->updatePreview();
    EXPECT_EQ(pane->previewURL(), std::nullopt);
    EXPECT_EQ(shownColour(), QColor(Qt::red));
}

TEST_F(Preview, AnOpenPopoverFollowsTheTitleWithinTheSameNotification) {
    startWithRed();
    pressPreview();
    EXPECT_EQ(shownColour(), QColor(Qt::red));
    imprinter->setStampResult(blue);
    taken();
    changeTitle();
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", stamping("a")}));
    EXPECT_EQ(shownColour(), QColor(Qt::blue));
}

TEST_F(Preview, AResultWrittenToTheSamePlaceIsLoadedAnew) {
    startWithRed();
    pressPreview();
    picture("red.png", Qt::green);
    pane->updatePreview();
    EXPECT_EQ(shownColour(), QColor(Qt::green));
}

TEST_F(Preview, AResultThatCannotBeReadClearsThePicture) {
    startWithRed();
    pressPreview();
    imprinter->setStampResult(NSURL::fileURLWithPath("/missing.bmp"));
    pane->updatePreview();
    EXPECT_FALSE(shownColour().isValid());
}

// Showing

TEST_F(Preview, PressingTheButtonDoesNotRender) {
    startWithRed();
    pressPreview();
    EXPECT_EQ(taken(), MessageLog());
    EXPECT_TRUE(frame());
    EXPECT_EQ(shownColour(), QColor(Qt::red));
}

TEST_F(Preview, WithoutAResultIsEmpty) {
    startWithRed();
    imprinter->setStampResult(std::nullopt);
    pane->updatePreview();
    pressPreview();
    EXPECT_TRUE(frame());
    EXPECT_FALSE(shownColour().isValid());
}

TEST_F(Preview, StandsAboveTheButtonInAPopoverAsThePaneWantsIt) {
    startWithRed();
    pressPreview();
    const auto popover = pane->popover();
    ASSERT_TRUE(popover);
    EXPECT_EQ(popover->contentViewController(), controller());
    ASSERT_TRUE(popover->appearance());
    EXPECT_EQ(popover->appearance()->name(), NSAppearanceNameVibrantLight);
    EXPECT_TRUE(popover->animates());
    EXPECT_EQ(popover->behavior(), NSPopoverBehavior::transient);
    EXPECT_EQ(popover->delegate(), std::static_pointer_cast<NSPopoverDelegate>(pane));
    EXPECT_FALSE(popover->isDetached());
    EXPECT_LE(content()->mapToGlobal(content()->rect().bottomLeft()).y(), button().mapToGlobal(QPoint()).y());
}

TEST_F(Preview, TheControllerIsMadeForTheFirstOneWithBothOutletsConnected) {
    startWithRed();
    EXPECT_EQ(controller(), nullptr);
    pressPreview();
    ASSERT_TRUE(controller());
    EXPECT_TRUE(scroll());
    EXPECT_TRUE(part<NSImageView>(u"imageView"));
    EXPECT_TRUE(scroll()->allowsMagnification());
}

TEST_F(Preview, OpenedTwiceWithoutClosingReusesThePopoverTheControllerAndTheZoom) {
    startWithRed();
    pressPreview();
    const auto first = controller();
    const auto popover = pane->popover();
    zoomWithKeys();
    pane->onPreview(outlet<NSButton>(u"previewBtn"));
    EXPECT_EQ(controller(), first);
    EXPECT_EQ(pane->popover(), popover);
    EXPECT_EQ(scroll()->magnification(), 1.25);
}

TEST_F(Preview, AfterClosingTheNextOneIsANewPopoverWithTheSameControllerAndPicture) {
    startWithRed();
    pressPreview();
    const auto first = controller();
    const auto popover = pane->popover();
    escape();
    EXPECT_EQ(controller(), first);
    EXPECT_EQ(shownColour(), QColor(Qt::red));
    pressPreview();
    EXPECT_EQ(controller(), first);
    EXPECT_TRUE(pane->popover());
    EXPECT_NE(pane->popover(), popover);
    EXPECT_TRUE(frame());
}

TEST_F(Preview, CreatingAPopoverWhereThereIsOneDoesNothing) {
    startWithRed();
    pane->createPopover();
    const auto popover = pane->popover();
    ASSERT_TRUE(popover);
    pane->createPopover();
    EXPECT_EQ(pane->popover(), popover);
}

TEST_F(Preview, TheButtonIsEnabledOnlyWhileAConfigurationIsCurrent) {
    startWithRed();
    EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
    pane->setCurrentConfiguration(nullptr);
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    pane->setCurrentConfiguration(b);
    EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
}

// Closing

TEST_F(Preview, ClosedByEscapeIsForgottenAndTheZoomReset) {
    startWithRed();
    pressPreview();
    zoomWithKeys();
    ASSERT_EQ(scroll()->magnification(), 1.25);
    escape();
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_FALSE(frame());
    EXPECT_EQ(scroll()->magnification(), 1.0);
}

TEST_F(Preview, ClosedByAClickOutsideIsForgottenAndTheZoomReset) {
    startWithRed();
    pressPreview();
    zoomWithKeys();
    clickAt(*widgetOf(*outlet<NSButton>(u"duplicateRecBtn")));
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_EQ(scroll()->magnification(), 1.0);
}

TEST_F(Preview, TheZoomIsKeptUntilThePopoverHasClosed) {
    startWithRed();
    pressPreview();
    zoomWithKeys();
    NSPopover::setAnimationDuration(never);
    escape();
    EXPECT_TRUE(pane->popover());
    EXPECT_EQ(scroll()->magnification(), 1.25);
}

TEST_F(Preview, PressedWhileThePopoverIsStillClosingShowsTheSameOneAgain) {
    startWithRed();
    pressPreview();
    const auto popover = pane->popover();
    zoomWithKeys();
    NSPopover::setAnimationDuration(never);
    escape();
    ASSERT_FALSE(frame());
    NSPopover::setAnimationDuration(0);
    pressPreview();
    EXPECT_EQ(pane->popover(), popover);
    EXPECT_TRUE(frame());
    EXPECT_EQ(scroll()->magnification(), 1.25);
    escape();
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_EQ(scroll()->magnification(), 1.0);
}

TEST_F(Preview, AClickOnTheButtonClosesAnAttachedOneAndOpensItAgain) {
    startWithRed();
    pressPreview();
    NSPopover::setAnimationDuration(never);
    pressPreview();
    EXPECT_TRUE(pane->popover());
    EXPECT_TRUE(frame());
}

TEST_F(Preview, ClosesWithTheWindowOfThePane) {
    startWithRed();
    pressPreview();
    window->close();
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_FALSE(frame());
}

// Torn off

TEST_F(Preview, MayAlwaysBeTornOffAndIsNotForgottenThen) {
    startWithRed();
    pressPreview();
    const auto popover = pane->popover();
    zoomWithKeys();
    tearOff();
    EXPECT_EQ(pane->popover(), popover);
    EXPECT_EQ(scroll()->magnification(), 1.25);
    EXPECT_EQ(frame()->windowTitle(), QStringLiteral("Preview"));
}

TEST_F(Preview, PressedWhileTornOffOnlyBringsItsWindowToTheFront) {
    startWithRed();
    pressPreview();
    tearOff();
    const auto popover = pane->popover();
    const auto place = frame()->geometry();
    imprinter->setStampResult(blue);
    frame()->showMinimized();
    QApplication::processEvents();
    taken();
    pressPreview();
    EXPECT_EQ(taken(), MessageLog());
    EXPECT_EQ(pane->popover(), popover);
    ASSERT_TRUE(frame());
    EXPECT_FALSE(frame()->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(frame()));
    EXPECT_EQ(frame()->geometry(), place);
}

TEST_F(Preview, TornOffStaysOpenWhileThePaneIsUsedAndFollowsTheTitle) {
    startWithRed();
    pressPreview();
    tearOff();
    clickAt(*widgetOf(*outlet<NSButton>(u"duplicateRecBtn")));
    EXPECT_TRUE(frame());
    imprinter->setStampResult(blue);
    changeTitle();
    EXPECT_EQ(shownColour(), QColor(Qt::blue));
}

TEST_F(Preview, TheWindowOfATornOffOneForgetsThePopoverAndResetsTheZoomWhenItCloses) {
    startWithRed();
    pressPreview();
    const auto first = controller();
    tearOff();
    zoomWithKeys();
    frame()->close();
    QApplication::processEvents();
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_EQ(controller(), first);
    EXPECT_EQ(scroll()->magnification(), 1.0);
    pressPreview();
    ASSERT_TRUE(frame());
    EXPECT_FALSE(pane->popover()->isDetached());
}

TEST_F(Preview, TornOffClosesWithTheWindowOfThePane) {
    startWithRed();
    pressPreview();
    tearOff();
    window->close();
    EXPECT_EQ(pane->popover(), nullptr);
    EXPECT_FALSE(frame());
}

// The controller's own rendering

TEST_F(Preview, TheControllerRendersByItselfAndShowsTheResult) {
    startWithRed();
    pressPreview();
    imprinter->setStampResult(blue);
    taken();
    controller()->updatePreviewWithImprinterWith(imprinter, b);
    EXPECT_EQ(taken(), MessageLog{stamping("b")});
    EXPECT_EQ(shownColour(), QColor(Qt::blue));
    EXPECT_EQ(pane->previewURL(), red);
}

TEST_F(Preview, TheControllersOwnRenderingLeavesThePictureWhereNothingCameBack) {
    startWithRed();
    pressPreview();
    imprinter->setStampResult(std::nullopt);
    controller()->updatePreviewWithImprinterWith(imprinter, b);
    EXPECT_EQ(shownColour(), QColor(Qt::red));
    controller()->updatePreviewWithImprinterWith(nullptr, b);
    EXPECT_EQ(shownColour(), QColor(Qt::red));
}

TEST_F(Preview, ANilURLClearsThePicture) {
    startWithRed();
    pressPreview();
    controller()->setPreviewURL(std::nullopt);
    EXPECT_FALSE(shownColour().isValid());
}

TEST_F(Preview, AfterANilResultTheNextPressShowsNothing) {
    startWithRed();
    pane->updatePreview();
    pressPreview();
    EXPECT_EQ(shownColour(), QColor(Qt::red));
    escape();
    imprinter->setStampResult(std::nullopt);
    pane->updatePreview();
    pressPreview();
    EXPECT_FALSE(shownColour().isValid());
}

TEST_F(Preview, StampsTheSampleOfThePanesOwnBundle) {
    startWithRed();
    pane->updatePreview();
    EXPECT_EQ(imprinter->stampedFrom()->path(), std::filesystem::path(PANE_BUNDLE) / "Preview.jpg");
}

TEST_F(Preview, TheSampleIsAnA4PageAt150DotsPerInchOfModestSize) {
    const auto sample = std::filesystem::path(PANE_BUNDLE) / "Preview.jpg";
    EXPECT_EQ(QImage(QString::fromStdString(sample.string())).size(), QSize(1240, 1754));
    EXPECT_LT(std::filesystem::file_size(sample), 600'000U);
}

} // namespace
