// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <Foundation/NSException.h>

#include <QLineEdit>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

using namespace platform;
using namespace testing_support;

namespace {

class TabViewTest : public InterfaceTest {
protected:
    static std::string page(const std::string& identifier, const std::string& inside = {}) {
        return widget("QWidget", identifier + "Page",
                      property("identifier", identifier) + "<attribute name='title'><string>" + identifier +
                          "</string></attribute>" + inside);
    }
    void showTabs() {
        show({"tabs", "field"}, column({widget("QTabWidget", "tabs",
                                               property("delegate", "owner") + setting("currentIndex", "number", "1") +
                                                   page("Location", column({widget("QLineEdit", "field")})) +
                                                   page("Appearance") + page("More"))}));
        tabs = view<NSTabView>("tabs");
        tabWidget = shown<QTabWidget>("tabs");
        ASSERT_TRUE(tabs && tabWidget);
    }
    void click(int index) {
        QTest::mouseClick(tabWidget->tabBar(), Qt::LeftButton, {}, tabWidget->tabBar()->tabRect(index).center());
    }
    std::u16string selected() const { return tabs->selectedTabViewItem()->identifier(); }

    std::shared_ptr<NSTabView> tabs;
    QTabWidget* tabWidget = nullptr;
};

TEST_F(TabViewTest, TheFirstPageIsSelectedAtFirst) {
    showTabs();
    EXPECT_EQ(selected(), u"Location");
    EXPECT_EQ(tabWidget->currentIndex(), 0);
    EXPECT_EQ(tabs->numberOfTabViewItems(), 3);
}

TEST_F(TabViewTest, AClickAsksWhileTheOldPageIsSelected) {
    showTabs();
    click(1);
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    EXPECT_EQ(selected(), u"Appearance");
    EXPECT_EQ(tabWidget->currentIndex(), 1);
}

TEST_F(TabViewTest, ARefusedClickLeavesTabAndPage) {
    showTabs();
    owner->refusesTabs = true;
    click(1);
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    EXPECT_EQ(selected(), u"Location");
    EXPECT_EQ(tabWidget->currentIndex(), 0);
    EXPECT_EQ(tabWidget->tabBar()->currentIndex(), 0);
}

TEST_F(TabViewTest, AClickOnTheSelectedTabAsksNothing) {
    showTabs();
    click(0);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TabViewTest, SelectingByProgramAsksToo) {
    showTabs();
    tabs->selectTabViewItemWithIdentifier(u"Appearance");
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    EXPECT_EQ(tabWidget->currentIndex(), 1);
    owner->refusesTabs = true;
    tabs->selectTabViewItemWithIdentifier(u"Location");
    EXPECT_EQ(tabWidget->currentIndex(), 1);
}

TEST_F(TabViewTest, AnUnknownIdentifierRaises) {
    showTabs();
    EXPECT_THROW(tabs->selectTabViewItemWithIdentifier(u"location"), NSRangeException);
    EXPECT_EQ(tabWidget->currentIndex(), 0);
}

TEST_F(TabViewTest, ArrowKeysAskBeforeTheyMove) {
    showTabs();
    QTest::keyClick(tabWidget->tabBar(), Qt::Key_Right);
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    owner->refusesTabs = true;
    QTest::keyClick(tabWidget->tabBar(), Qt::Key_Left);
    EXPECT_EQ(owner->taken(), Log{"from Appearance to Location"});
    EXPECT_EQ(tabWidget->currentIndex(), 1);
}

TEST_F(TabViewTest, ControlTabAsksBeforeItMovesAndGoesAround) {
    showTabs();
    QTest::keyClick(tabWidget, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    QTest::keyClick(tabWidget, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(tabWidget, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(owner->taken(), (Log{"from Appearance to Location", "from Location to More"}));
    owner->refusesTabs = true;
    QTest::keyClick(tabWidget, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabWidget->currentIndex(), 2);
}

TEST_F(TabViewTest, ControlTabInAFieldOfThePageAsksToo) {
    showTabs();
    shown("field")->setFocus();
    owner->refusesTabs = true;
    QTest::keyClick(shown("field"), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(owner->taken(), Log{"from Location to Appearance"});
    EXPECT_EQ(tabWidget->currentIndex(), 0);
}

TEST_F(TabViewTest, ControlTabInAFieldOfThePageLeavesTheFocusWithTheTabs) {
    showTabs();
    shown("field")->setFocus();
    QTest::keyClick(shown("field"), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabWidget->currentIndex(), 1);
    EXPECT_EQ(tabWidget->window()->focusWidget(), tabWidget->tabBar());
}

TEST_F(TabViewTest, LeavingAPageCommitsAnEditOnItAfterTheDelegateAgreed) {
    showTabs();
    view<NSTextField>("field")->setDelegate(owner);
    shown("field")->setFocus();
    QTest::keyClicks(shown("field"), "x");
    owner->taken();
    tabs->userSelects(1);
    EXPECT_EQ(owner->taken(), (Log{"from Location to Appearance", "shouldEnd"}));
    EXPECT_EQ(tabWidget->currentIndex(), 1);
}

TEST_F(TabViewTest, AFieldThatRefusesToEndKeepsItsPage) {
    showTabs();
    view<NSTextField>("field")->setDelegate(owner);
    shown("field")->setFocus();
    QTest::keyClicks(shown("field"), "x");
    owner->refusesEnd = true;
    click(1);
    EXPECT_EQ(tabWidget->currentIndex(), 0);
    EXPECT_EQ(selected(), u"Location");
}

TEST_F(TabViewTest, ALabelCanBeChangedAndTakesNoShortcut) {
    showTabs();
    tabs->tabViewItemAtIndex(1)->setLabel(u"Look & Feel");
    EXPECT_EQ(tabWidget->tabText(1), "Look && Feel");
    EXPECT_EQ(tabs->tabViewItemAtIndex(0)->label(), u"Location");
}

TEST_F(TabViewTest, HidingAndShowingAPagesViewLeavesOtherPagesHidden) {
    showTabs();
    const auto second = tabs->tabViewItemAtIndex(1)->view();
    EXPECT_FALSE(widgetOf(*second)->isVisible());
    second->setHidden(false);
    EXPECT_FALSE(widgetOf(*second)->isVisible());
}

TEST_F(TabViewTest, PagesWithoutTabsAreSelectedByProgram) {
    show({"stack"}, column({widget("QStackedWidget", "stack",
                                   property("delegate", "owner") + page("Configuration") + page("No Imprint"))}));
    const auto stack = view<NSTabView>("stack");
    EXPECT_EQ(shown<QStackedWidget>("stack")->currentIndex(), 0);
    stack->selectTabViewItemWithIdentifier(u"No Imprint");
    EXPECT_EQ(owner->taken(), Log{"from Configuration to No Imprint"});
    EXPECT_EQ(shown<QStackedWidget>("stack")->currentIndex(), 1);
}

TEST_F(TabViewTest, ATabViewSurvivesItsWidgetAndAWidgetItsTabView) {
    showTabs();
    tabs.reset();
    contents = {};
    click(1);
    EXPECT_EQ(tabWidget->currentIndex(), 0);
}

} // namespace
