// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSColorWell.h>

#include <QColorDialog>
#include <QImage>
#include <QMimeData>

using namespace platform;
using namespace testing_support;

namespace {

class ColorWellTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"well"}, column({widget("NSColorWell", "well", property("action", "act:"))}),
             customClass("NSColorWell", "QPushButton"));
        well = view<NSColorWell>("well");
        ASSERT_TRUE(well);
    }
    /// The colours of the middle of the well, each once.
    std::set<QRgb> middle() const {
        const auto image = shown("well")->grab().toImage();
        std::set<QRgb> colours;
        for (int x = 8; x < image.width() - 8; ++x)
            for (int y = 8; y < image.height() - 8; ++y)
                colours.insert(image.pixel(x, y));
        return colours;
    }

    QColorDialog* panel() const { return window->findChild<QColorDialog*>(); }
    QColorDialog* openPanel() {
        QTest::mouseClick(shown("well"), Qt::LeftButton);
        return panel();
    }
    void drop(const QColor& color) {
        QMimeData mime;
        mime.setColorData(color);
        const QPoint middle = shown("well")->rect().center();
        QDragEnterEvent enters(middle, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(shown("well"), &enters);
        if (!enters.isAccepted())
            return;
        QDropEvent drops(middle, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(shown("well"), &drops);
    }

    std::shared_ptr<NSColorWell> well;
};

TEST_F(ColorWellTest, IsBlackAtFirst) {
    EXPECT_EQ(*well->color(), *NSColor::blackColor());
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(0, 0, 0)});
}

TEST_F(ColorWellTest, ShowsTheColourItWasGivenAndSendsNothing) {
    well->setColor(NSColor::colorWithSRGB(1, 0.2, 0, 1));
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(255, 51, 0)});
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(ColorWellTest, ClampsComponentsOutsideTheRangeOnlyWhereTheyAreDrawn) {
    well->setColor(NSColor::colorWithSRGB(2, -1, 0, 1));
    EXPECT_EQ(middle(), std::set<QRgb>{qRgb(255, 0, 0)});
    EXPECT_EQ(well->color()->redComponent(), 2);
}

TEST_F(ColorWellTest, ACheckerboardShowsThroughATranslucentColour) {
    well->setColor(NSColor::colorWithSRGB(0, 0, 1, 0.5));
    EXPECT_EQ(middle().size(), 2U);
}

TEST_F(ColorWellTest, AClickOpensAPanelWithAlphaThatShowsTheColour) {
    well->setColor(NSColor::colorWithSRGB(1, 0.2, 0, 0.4));
    ASSERT_TRUE(openPanel());
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_FALSE(panel()->isModal());
    EXPECT_TRUE(panel()->testOption(QColorDialog::ShowAlphaChannel));
    EXPECT_EQ(panel()->currentColor().rgba(), qRgba(255, 51, 0, 102));
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(ColorWellTest, SpaceOpensThePanelToo) {
    shown("well")->setFocus();
    QTest::keyClick(shown("well"), Qt::Key_Space);
    EXPECT_TRUE(panel());
}

TEST_F(ColorWellTest, FollowsEachColourThatIsPickedInThePanel) {
    ASSERT_TRUE(openPanel());
    panel()->setCurrentColor(QColor(51, 102, 255));
    EXPECT_EQ(*well->color(), *NSColor::colorWithSRGB(0.2, 0.4, 1, 1));
    panel()->setCurrentColor(QColor(0, 0, 0));
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
    panel()->setCurrentColor(QColor(0, 0, 0, 204));
    EXPECT_EQ(*well->color(), *NSColor::colorWithSRGB(0, 0, 0, 0.8));
}

TEST_F(ColorWellTest, AColourSetWhileThePanelIsOpenShowsInItAndSendsNothing) {
    ASSERT_TRUE(openPanel());
    well->setColor(NSColor::colorWithSRGB(0, 1, 0, 1));
    EXPECT_EQ(panel()->currentColor(), QColor(0, 255, 0));
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(ColorWellTest, DisablingClosesItsPanel) {
    QPointer<QColorDialog> opened(openPanel());
    ASSERT_TRUE(opened);
    well->setEnabled(false);
    EXPECT_TRUE(!opened || !opened->isVisible());
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(ColorWellTest, AClosedPanelPicksNothingMore) {
    QPointer<QColorDialog> opened(openPanel());
    ASSERT_TRUE(opened);
    QTest::keyClick(opened, Qt::Key_Escape);
    if (opened)
        opened->setCurrentColor(QColor(1, 2, 3));
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(*well->color(), *NSColor::blackColor());
}

TEST_F(ColorWellTest, TakesADroppedColourAndSendsTheAction) {
    drop(QColor(255, 0, 51, 0));
    EXPECT_EQ(*well->color(), *NSColor::colorWithSRGB(1, 0, 0.2, 0));
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(ColorWellTest, TakesNoDropWhileDisabled) {
    well->setEnabled(false);
    drop(QColor(255, 0, 51));
    EXPECT_EQ(*well->color(), *NSColor::blackColor());
    EXPECT_EQ(owner->taken(), Log());
}

} // namespace
