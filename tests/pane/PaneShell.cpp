// SPDX-License-Identifier: MIT
#include "PaneTest.h"

#include <VelCombinedViewController.h>

#include <AppKit/NSCell.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSTokenField.h>

#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTreeView>

using namespace platform;
using namespace testing_support;

namespace {

class PaneStart : public PaneTest {};
class PaneSwitching : public PaneTest {};
class PaneList : public PaneTest {};
class PaneDuplicateOption : public PaneTest {};
class PaneSaving : public PaneTest {};
class PageListGuard : public PaneTest {};
class PaneLeaving : public PaneTest {};

/// What a page list can look like when it says nothing.
const std::optional<std::u16string> blankLists[] = {std::nullopt, u"", u"  ", u" \t\n\u00A0\u200B "};

QAbstractItemView& tableWidget(QMainWindow& window) {
    auto* table = window.findChild<QAbstractItemView*>(QStringLiteral("tableView"));
    EXPECT_NE(table, nullptr);
    return *table;
}

void clickRow(QMainWindow& window, int row) {
    auto& table = tableWidget(window);
    const auto rect = table.visualRect(table.model()->index(row, 0));
    QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::NoModifier, rect.center());
}

void clickTab(QMainWindow& window, int index) {
    auto* tabs = window.findChild<QTabWidget*>(QStringLiteral("tabView"));
    ASSERT_NE(tabs, nullptr);
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, Qt::NoModifier, tabs->tabBar()->tabRect(index).center());
}

// Start

TEST_F(PaneStart, WithoutTheHostClassTheInterfaceStaysAsLoaded) {
    load();
    show();
    EXPECT_EQ(pane->imprinter(), nullptr);
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->numberOfRows(), 0);
    EXPECT_EQ(mainPage(), outlet<NSTabView>(u"mainTabView")->tabViewItemAtIndex(0)->identifier());
    EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
    EXPECT_EQ(log, MessageLog());
}

TEST_F(PaneStart, AHostWithoutListShowsTheEmptyPage) {
    imprinter->setNilList();
    start();
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
    EXPECT_TRUE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->numberOfRows(), 0);
}

TEST_F(PaneStart, AHostWithAnEmptyListShowsTheEmptyPage) {
    imprinter->setList({});
    start();
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
    EXPECT_TRUE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->numberOfRows(), 0);
}

TEST_F(PaneStart, AHostClassThatAnswersNoModelShowsTheEmptyPage) {
    imprinter = nullptr;
    registerHost();
    load();
    show();
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_TRUE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
}

TEST_F(PaneStart, ShowsTheFirstConfigurationWhereNoneIsRemembered) {
    const auto a = configuration(u"a");
    imprinter->setList({a, configuration(u"b")});
    start();
    EXPECT_EQ(pane->currentConfiguration(), a);
    EXPECT_EQ(mainPage(), u"Imprint Configuration");
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), 0);
    EXPECT_TRUE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
}

TEST_F(PaneStart, ShowsTheRememberedConfiguration) {
    const auto b = configuration(u"b");
    imprinter->setList({configuration(u"a"), b});
    defaults->setObjectForKey(u"b", u"ImprinterPrefLastSelected");
    start();
    EXPECT_EQ(pane->currentConfiguration(), b);
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), 1);
}

TEST_F(PaneStart, ARememberedConfigurationThatIsGoneLeavesTheListWithoutSelection) {
    imprinter->setList({configuration(u"a"), configuration(u"b")});
    defaults->setObjectForKey(u"gone", u"ImprinterPrefLastSelected");
    start();
    EXPECT_EQ(pane->currentConfiguration(), nullptr);
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->numberOfRows(), 2);
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), -1);
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
}

TEST_F(PaneStart, ARememberedConfigurationThatIsNotListedIsShownWithoutARowAndCanBeDeleted) {
    const auto stranger = configuration(u"stranger");
    imprinter->setList({configuration(u"a")});
    imprinter->answerForID = stranger;
    defaults->setObjectForKey(u"stranger", u"ImprinterPrefLastSelected");
    start();
    EXPECT_EQ(pane->currentConfiguration(), stranger);
    EXPECT_EQ(mainPage(), u"Imprint Configuration");
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), -1);
    EXPECT_TRUE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
}

TEST_F(PaneStart, IsSetUpBeforeTheHostIsLookedUpAndTheTitleWrapsLast) {
    imprinter->setList({configuration(u"a")});
    defaults->setObjectForKey(u"a", u"ImprinterPrefLastSelected");
    registerHost();
    std::vector<std::string> seen;
    onMessage() = [&](const std::string& message) {
        const auto table = outlet<NSTableView>(u"tableView");
        EXPECT_FALSE(outlet<NSControl>(u"titleTokenField")->cell()->wraps()) << message;
        const bool deletes = outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled();
        EXPECT_EQ(deletes, false) << message;
        if (message == "plugin imprinter") {
            seen.push_back("host");
            EXPECT_EQ(table->registeredDraggedTypes(), std::vector<std::u16string>{u"VelImprintPasteboardType"});
            EXPECT_TRUE(table->headerView() && table->headerView()->hasBottomBorder);
            EXPECT_EQ(table->tableColumnWithIdentifier(u"Imprinter")->title(), u"Configurations:");
            EXPECT_EQ(outlet<NSButton>(u"previewBtn")->title(), u"Preview");
            EXPECT_NE(table->menu(), nullptr);
            EXPECT_GT(outlet<NSPopUpButton>(u"borderStylePopup")->numberOfItems(), 1);
            EXPECT_EQ(pane->imprinter(), nullptr);
        } else if (message == "imprinter configurationForID a") {
            seen.push_back("remembered");
            EXPECT_EQ(pane->imprinter(), imprinter);
            EXPECT_EQ(pane->currentConfiguration(), nullptr);
        } else if (message == "a duplicateRecord") {
            seen.push_back("switched");
            EXPECT_EQ(mainPage(), u"Imprint Configuration");
            EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
            EXPECT_EQ(table->selectedRow(), -1);
        }
    };
    load();
    onMessage() = {};
    EXPECT_EQ(seen, (std::vector<std::string>{"host", "remembered", "switched", "switched"}));
    EXPECT_TRUE(outlet<NSControl>(u"titleTokenField")->cell()->wraps());
    EXPECT_TRUE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), 0);
}

TEST_F(PaneStart, AsksTheHostInOrder) {
    imprinter->setList({configuration(u"a")});
    defaults->setObjectForKey(u"a", u"ImprinterPrefLastSelected");
    registerHost();
    load();
    EXPECT_EQ(taken(), (MessageLog{
                           "plugin imprinter",
                           "imprinter configurations",
                           "imprinter configurationForID a",
                           "a combinedConfiguration",
                           // The Appearance editor: the title, border and fill, and the menu of font runs.
                           "a titleTokens",
                           "a borderStyle",
                           "a borderStyle",
                           "a borderEnabled",
                           "a borderThickness",
                           "a fillEnabled",
                           "a borderColour",
                           "a fillColour",
                           "a titleTokens",
                           // The Location editor: nine buttons, three numbers, the choice of pages and its preview.
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a position",
                           "a rotation",
                           "a offset",
                           "a offset",
                           "a occurance",
                           "a setOccurance 0",
                           "a occurance",
                           "imprinter imprintFileAtURLWithIndex Preview.jpg a 0",
                           "a duplicateRecord",
                           "imprinter imprintFileAtURLWithIndex Preview.jpg a 0",
                           // The field and the stepper of the fill opacity look at it again.
                           "a fillOpacity",
                           "a fillOpacity",
                           "a duplicateRecord",
                           // The row to select, and the table's first look at its rows.
                           "imprinter configurations",
                           "imprinter configurations",
                           // The selection changed: twice asked whether there is a list.
                           "imprinter configurations",
                       }));
}

TEST_F(PaneStart, FetchesTheModelOnce) {
    imprinter->setList({configuration(u"a")});
    start();
    pane->willUnselect();
    pane->didSelect();
    pane->setCurrentConfiguration(nullptr);
    EXPECT_EQ(std::count(log.begin(), log.end(), "plugin imprinter"), 1);
}

TEST_F(PaneStart, TitlesTheShell) {
    imprinter->setList({configuration(u"a")});
    start();
    EXPECT_EQ(outlet<NSButton>(u"previewBtn")->title(), u"Preview");
    EXPECT_EQ(outlet<NSButton>(u"duplicateRecBtn")->title(), u"Duplicate item before Imprinting");
    const auto title = [this](std::u16string_view table, const std::u16string& column) {
        return outlet<NSTableView>(table)->tableColumnWithIdentifier(column)->title();
    };
    EXPECT_EQ(title(u"tableView", u"Imprinter"), u"Configurations:");
    EXPECT_EQ(title(u"combinedTableView", u"Combined"), u"Combined:");
    EXPECT_EQ(title(u"allConfigsTableView", u"Configurations"), u"Configurations");
}

TEST_F(PaneStart, PreparesTheTableForDropsAndGivesItAHeader) {
    load();
    const auto table = outlet<NSTableView>(u"tableView");
    EXPECT_EQ(table->registeredDraggedTypes(), std::vector<std::u16string>{u"VelImprintPasteboardType"});
    ASSERT_TRUE(table->headerView());
    EXPECT_TRUE(table->headerView()->hasBottomBorder);
}

// Switching

TEST_F(PaneSwitching, ToTheConfigurationAlreadyShownDoesNothing) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    taken();
    pane->setCurrentConfiguration(a);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(PaneSwitching, FromNoneToNoneRunsEveryStep) {
    imprinter->setList({});
    start();
    outlet<NSTabView>(u"mainTabView")->selectTabViewItemWithIdentifier(u"Imprint Combined");
    outlet<NSButton>(u"previewBtn")->setEnabled(true);
    pane->setPreviewURL(NSURL::fileURLWithPath("/stamped.bmp"));
    pane->setCurrentConfiguration(nullptr);
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_EQ(pane->previewURL(), std::nullopt);
}

TEST_F(PaneSwitching, ClearsThePreviewFirstAndRefreshesItLast) {
    const auto b = configuration(u"b");
    imprinter->setList({configuration(u"a"), b});
    imprinter->setStampResult(NSURL::fileURLWithPath("/first.bmp"));
    start();
    EXPECT_EQ(pane->previewURL(), NSURL::fileURLWithPath("/first.bmp"));
    imprinter->setStampResult(NSURL::fileURLWithPath("/second.bmp"));
    bool looked = false;
    b->onSwitch = [&] {
        EXPECT_EQ(pane->previewURL(), std::nullopt);
        EXPECT_EQ(pane->currentConfiguration(), b);
        EXPECT_EQ(mainPage(), u"Imprint Configuration");
        looked = true;
    };
    taken();
    pane->setCurrentConfiguration(b);
    b->onSwitch = {};
    EXPECT_TRUE(looked);
    EXPECT_EQ(pane->previewURL(), NSURL::fileURLWithPath("/second.bmp"));
    auto messages = taken();
    std::erase(messages, "b position");
    const std::string stamped = "imprinter imprintFileAtURLWithIndex Preview.jpg b 0";
    EXPECT_EQ(messages, (MessageLog{"b combinedConfiguration",
                                    "b titleTokens",
                                    "b borderStyle",
                                    "b borderStyle",
                                    "b borderEnabled",
                                    "b borderThickness",
                                    "b fillEnabled",
                                    "b borderColour",
                                    "b fillColour",
                                    "b titleTokens",
                                    "b rotation",
                                    "b offset",
                                    "b offset",
                                    "b occurance",
                                    "b setOccurance 0",
                                    "b occurance",
                                    stamped,
                                    "b duplicateRecord",
                                    stamped,
                                    "b fillOpacity",
                                    "b fillOpacity"}));
}

TEST_F(PaneSwitching, ANilStampResultIsKeptAsNone) {
    imprinter->setList({configuration(u"a")});
    start();
    EXPECT_EQ(pane->previewURL(), std::nullopt);
}

TEST_F(PaneSwitching, ToACombinedOneShowsItsPageAndHandsItToItsEditor) {
    const auto combined = configuration(u"c", true);
    imprinter->setList({configuration(u"a"), combined});
    start();
    outlet<NSButton>(u"previewBtn")->setEnabled(false);
    pane->setCurrentConfiguration(combined);
    EXPECT_EQ(mainPage(), u"Imprint Combined");
    const auto controller = outlet<NSViewController>(u"combinedVC");
    ASSERT_TRUE(controller);
    const auto editor = std::static_pointer_cast<pane::VelCombinedViewController>(controller);
    EXPECT_EQ(editor->imprinter(), imprinter);
    EXPECT_EQ(editor->configuration(), combined);
    EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
}

TEST_F(PaneSwitching, ToACombinedOneAsksForItsMembersAndItsStamp) {
    const auto combined = configuration(u"c", true);
    imprinter->setList({configuration(u"a"), combined});
    start();
    taken();
    pane->setCurrentConfiguration(combined);
    EXPECT_EQ(taken(), (MessageLog{"c combinedConfiguration", "imprinter nonCombinedConfigurations", "c configurations",
                                   "c combinedConfiguration", "c configurations", "c duplicateRecord",
                                   "imprinter imprintFileAtURLWithIndex Preview.jpg c 0",
                                   // The field and the stepper of the fill opacity look at it again.
                                   "c fillOpacity", "c fillOpacity"}));
}

TEST_F(PaneSwitching, ToNoneShowsTheEmptyPageAndAsksForNoStamp) {
    imprinter->setList({configuration(u"a")});
    start();
    taken();
    pane->setCurrentConfiguration(nullptr);
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(PaneSwitching, StoresNothing) {
    const auto b = configuration(u"b");
    imprinter->setList({configuration(u"a"), b});
    start();
    taken();
    pane->setCurrentConfiguration(b);
    for (const auto& message : taken()) {
        EXPECT_NE(message, "imprinter saveConfigurations");
        // The choice of pages is written back as it was read, with the tag of its cell.
        EXPECT_TRUE(message.find(" set") == std::string::npos || message == "b setOccurance 0") << message;
    }
}

// The list

TEST_F(PaneList, ShowsTheHostsConfigurationsByKindAndName) {
    const auto combined = configuration(u"c", true);
    imprinter->setList({configuration(u"a"), combined});
    start();
    const auto table = outlet<NSTableView>(u"tableView");
    EXPECT_EQ(table->numberOfRows(), 2);
    const auto first = table->viewAtColumnRow(0, 0);
    const auto second = table->viewAtColumnRow(0, 1);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->identifier(), u"ImprinterCellID");
    EXPECT_EQ(first->textField()->stringValue(), u"a");
    EXPECT_EQ(second->identifier(), u"CombinedCellID");
    EXPECT_EQ(second->textField()->stringValue(), u"c");
}

TEST_F(PaneList, DoesNotConsultTheColumn) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto cell = pane->tableViewViewForTableColumnRow(outlet<NSTableView>(u"tableView"), nullptr, 0);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->textField()->stringValue(), u"a");
}

TEST_F(PaneList, AnswersNoConfigurationForRowsItDoesNotHave) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    EXPECT_EQ(pane->configuarationAtIndex(0), a);
    EXPECT_EQ(pane->configuarationAtIndex(1), nullptr);
    EXPECT_EQ(pane->configuarationAtIndex(-1), nullptr);
}

TEST_F(PaneList, AnswersNoConfigurationWithoutHost) {
    load();
    EXPECT_EQ(pane->configuarationAtIndex(0), nullptr);
    EXPECT_EQ(pane->numberOfRowsInTableView(nullptr), 0);
    EXPECT_FALSE(pane->tableViewShouldSelectRow(nullptr, 0));
}

TEST_F(PaneList, TheProposalOfARowSwitchesTheEditorsBeforeTheSelectionChanges) {
    const auto b = configuration(u"b");
    imprinter->setList({configuration(u"a"), b});
    start();
    const auto table = outlet<NSTableView>(u"tableView");
    NSInteger selectedAtSwitch = -2;
    b->onSwitch = [&] { selectedAtSwitch = selectedAtSwitch == -2 ? table->selectedRow() : selectedAtSwitch; };
    clickRow(*window, 1);
    b->onSwitch = {};
    EXPECT_EQ(selectedAtSwitch, 0);
    EXPECT_EQ(table->selectedRow(), 1);
    EXPECT_EQ(pane->currentConfiguration(), b);
}

TEST_F(PaneList, ARowThatIsNoLongerListedCannotBeSelected) {
    const auto a = configuration(u"a");
    imprinter->setList({a, configuration(u"b")});
    start();
    imprinter->setList({a});
    clickRow(*window, 1);
    EXPECT_EQ(pane->currentConfiguration(), a);
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), 0);
}

TEST_F(PaneList, ASelectionByProgramDoesNotSwitchTheEditors) {
    const auto a = configuration(u"a");
    imprinter->setList({a, configuration(u"b")});
    start();
    outlet<NSButton>(u"deleteConfigurationBtn")->setEnabled(false);
    outlet<NSTableView>(u"tableView")->selectRowIndexesByExtendingSelection(NSIndexSet(1), false);
    EXPECT_EQ(pane->currentConfiguration(), a);
    EXPECT_TRUE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
}

TEST_F(PaneList, AClickBelowTheRowsSelectsTheCurrentConfigurationAgain) {
    imprinter->setList({configuration(u"a"), configuration(u"b")});
    start();
    clickRow(*window, 1);
    auto& table = tableWidget(*window);
    const QPoint below(20, table.viewport()->height() - 10);
    ASSERT_FALSE(table.indexAt(below).isValid());
    QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::NoModifier, below);
    EXPECT_EQ(outlet<NSTableView>(u"tableView")->selectedRow(), 1);
    EXPECT_EQ(table.currentIndex().row(), 1);
}

TEST_F(PaneList, ACurrentConfigurationThatIsNoLongerListedSelectsNothing) {
    imprinter->setList({configuration(u"a"), configuration(u"b")});
    start();
    imprinter->setList({configuration(u"c")});
    const auto table = outlet<NSTableView>(u"tableView");
    table->selectRowIndexesByExtendingSelection(NSIndexSet(), false);
    EXPECT_EQ(table->selectedRow(), -1);
}

TEST_F(PaneList, TheButtonsFollowWhetherThereIsAListNotWhetherItIsEmpty) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto table = outlet<NSTableView>(u"tableView");
    const auto erase = outlet<NSButton>(u"deleteConfigurationBtn");
    const auto box = outlet<NSButton>(u"duplicateRecBtn");
    imprinter->setNilList();
    table->reloadData();
    EXPECT_FALSE(erase->isEnabled());
    EXPECT_TRUE(box->isHidden());

    imprinter->setList({configuration(u"b")});
    table->reloadData();
    table->selectRowIndexesByExtendingSelection(NSIndexSet(0), false);
    erase->setEnabled(false);
    box->setHidden(true);
    imprinter->setList({});
    table->reloadData();
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_TRUE(erase->isEnabled());
    EXPECT_FALSE(box->isHidden());
}

// The duplicate-record option

TEST_F(PaneDuplicateOption, ShowsTheStoredCodeAndFollowsTheDefaultAtZero) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    const auto box = outlet<NSButton>(u"duplicateRecBtn");
    struct Row {
        NSInteger code;
        bool byDefault;
        NSInteger state;
    };
    for (const auto& row : {Row{0, false, 0}, Row{0, true, 1}, Row{1, false, 1}, Row{1, true, 1}, Row{2, true, 0},
                            Row{2, false, 0}, Row{7, true, 0}, Row{-1, true, 0}}) {
        a->values.duplicateRecord = row.code;
        defaults->setBoolForKey(row.byDefault, u"ImprinterDuplicateRecord");
        pane->updateDuplicateRecord();
        EXPECT_EQ(box->state(), row.state) << "code " << row.code << ", default " << row.byDefault;
    }
}

TEST_F(PaneDuplicateOption, IsOffWithoutADefault) {
    imprinter->setList({configuration(u"a")});
    start();
    EXPECT_EQ(outlet<NSButton>(u"duplicateRecBtn")->state(), NSControlStateValueOff);
}

TEST_F(PaneDuplicateOption, AClickStoresTheChoiceAndEndsFollowingTheDefault) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    auto* box = window->findChild<QWidget*>(QStringLiteral("duplicateRecBtn"));
    ASSERT_NE(box, nullptr);
    taken();
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    EXPECT_EQ(taken(), MessageLog{"a setDuplicateRecord 1"});
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    EXPECT_EQ(taken(), MessageLog{"a setDuplicateRecord 2"});
    defaults->setBoolForKey(true, u"ImprinterDuplicateRecord");
    pane->updateDuplicateRecord();
    EXPECT_EQ(outlet<NSButton>(u"duplicateRecBtn")->state(), NSControlStateValueOff);
}

TEST_F(PaneDuplicateOption, DoesNothingWithoutAConfiguration) {
    imprinter->setList({});
    start();
    const auto box = outlet<NSButton>(u"duplicateRecBtn");
    defaults->setBoolForKey(true, u"ImprinterDuplicateRecord");
    taken();
    pane->updateDuplicateRecord();
    EXPECT_EQ(box->state(), NSControlStateValueOff);
    pane->onDuplicateRecord(box);
    EXPECT_EQ(taken(), MessageLog());
}

// Saving

TEST_F(PaneSaving, StoresTheListThroughTheHost) {
    imprinter->setList({configuration(u"a")});
    start();
    taken();
    pane->saveConfiguration();
    const auto messages = takenWithoutListing();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back(), "imprinter saveConfigurations");
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter saveConfigurations"), 1);
}

TEST_F(PaneSaving, WithoutACurrentConfigurationNothingIsStoredNotEvenTheList) {
    imprinter->setList({configuration(u"a")});
    defaults->setObjectForKey(u"gone", u"ImprinterPrefLastSelected");
    start();
    taken();
    pane->saveConfiguration();
    EXPECT_EQ(taken(), MessageLog());
}

// The guard on the Location page

TEST_F(PageListGuard, RefusesToLeaveALocationPageWithABlankListAndAsksAfterwards) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 4;
    const auto tabs = outlet<NSTabView>(u"tabView");
    ASSERT_EQ(tabs->selectedTabViewItem()->identifier(), u"Location");
    outlet<NSTextField>(u"customOccurance")->setHidden(false);
    for (const auto& list : blankLists) {
        a->values.customOccurance = list;
        alerts.clear();
        window->setFocus();
        clickTab(*window, 1);
        EXPECT_EQ(tabs->selectedTabViewItem()->identifier(), u"Location");
        EXPECT_TRUE(window->findChild<QLineEdit*>(QStringLiteral("customOccurance"))->hasFocus());
        EXPECT_EQ(alerts.size(), 0U) << "the alert comes after the click";
        queue->advance(0);
        EXPECT_EQ(alerts, std::vector<std::u16string>{u"Custom occurance requires a value"});
    }
    EXPECT_EQ(informativeTexts.front(), u"Set the page numbers to imprint i.e 1,2,4");
    EXPECT_EQ(buttonTitles.front(), std::vector<std::u16string>{u"OK:"});
    for (const auto style : alertStyles)
        EXPECT_EQ(style, NSAlertStyle::warning);
    EXPECT_FALSE(alertStyles.empty());
}

TEST_F(PageListGuard, LetsAListThatSaysSomethingGo) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 4;
    a->values.customOccurance = u"1,2";
    clickTab(*window, 1);
    EXPECT_EQ(outlet<NSTabView>(u"tabView")->selectedTabViewItem()->identifier(), u"Appearance");
    EXPECT_EQ(queue->waiting(), 0U);
}

TEST_F(PageListGuard, LooksAtABlankListOnlyForCustomPages) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 3;
    a->values.customOccurance = u"";
    clickTab(*window, 1);
    EXPECT_EQ(outlet<NSTabView>(u"tabView")->selectedTabViewItem()->identifier(), u"Appearance");
}

TEST_F(PageListGuard, ReadsTheModelNotTheField) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 4;
    a->values.customOccurance = u"";
    outlet<NSTextField>(u"customOccurance")->setStringValue(u"5");
    const auto tabs = outlet<NSTabView>(u"tabView");
    EXPECT_FALSE(pane->tabViewShouldSelectTabViewItem(tabs, tabs->tabViewItemAtIndex(1)));
}

TEST_F(PageListGuard, LetsTheAppearancePageGoWhateverTheList) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    const auto tabs = outlet<NSTabView>(u"tabView");
    tabs->selectTabViewItemWithIdentifier(u"Appearance");
    a->values.occurance = 4;
    clickTab(*window, 0);
    EXPECT_EQ(tabs->selectedTabViewItem()->identifier(), u"Location");
}

TEST_F(PageListGuard, LetsEverythingGoWithoutAConfiguration) {
    imprinter->setList({});
    start();
    const auto tabs = outlet<NSTabView>(u"tabView");
    EXPECT_TRUE(pane->tabViewShouldSelectTabViewItem(tabs, tabs->tabViewItemAtIndex(1)));
}

TEST_F(PageListGuard, GuardsTheEditorsTabsAlone) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 4;
    const auto other = std::make_shared<NSTabView>();
    EXPECT_TRUE(pane->tabViewShouldSelectTabViewItem(other, nullptr));
}

TEST_F(PageListGuard, AnAllowedSwitchShowsTheBoxUnlessThePageBeingLeftIsTheEmptyOne) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto tabs = outlet<NSTabView>(u"tabView");
    const auto box = outlet<NSButton>(u"duplicateRecBtn");
    box->setHidden(true);
    tabs->selectTabViewItemWithIdentifier(u"Appearance");
    EXPECT_FALSE(box->isHidden());
    tabs->addTabViewItem(std::make_shared<NSTabViewItem>(u"nO iMPRINT", nullptr));
    tabs->selectTabViewItemWithIdentifier(u"nO iMPRINT");
    EXPECT_FALSE(box->isHidden());
    tabs->selectTabViewItemWithIdentifier(u"Location");
    EXPECT_TRUE(box->isHidden());
}

TEST_F(PageListGuard, AMissingPageCountsAsLocationAndAsEmpty) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    const auto bare = std::make_shared<NSTabView>();
    ASSERT_TRUE(pane->classTable()->outlet(u"tabView")->connect(*pane, bare));
    EXPECT_TRUE(pane->tabViewShouldSelectTabViewItem(bare, nullptr));
    EXPECT_TRUE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
    a->values.occurance = 4;
    EXPECT_FALSE(pane->tabViewShouldSelectTabViewItem(bare, nullptr));
}

// Leaving

TEST_F(PaneLeaving, LetsTheUserGoInEveryCase) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    for (const NSInteger code : {0, 4, 9})
        for (const auto& list : blankLists) {
            a->values.occurance = code;
            a->values.customOccurance = list;
            EXPECT_EQ(pane->shouldUnselect(), NSPreferencePaneUnselectReply::now);
        }
}

TEST_F(PaneLeaving, WithoutACurrentConfigurationTheUserGoesAndNothingIsAsked) {
    imprinter->setList({});
    start();
    taken();
    EXPECT_EQ(pane->shouldUnselect(), NSPreferencePaneUnselectReply::now);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(PaneLeaving, ABlankListFallsBackToEveryPage) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    for (const auto& list : blankLists) {
        a->values.occurance = 4;
        a->values.customOccurance = list;
        pane->shouldUnselect();
        EXPECT_EQ(a->values.occurance, list ? 0 : 4) << "a list that was never set is left alone";
    }
}

TEST_F(PaneLeaving, AListThatSaysSomethingStays) {
    const auto a = configuration(u"a");
    imprinter->setList({a});
    start();
    a->values.occurance = 4;
    a->values.customOccurance = u"7";
    pane->shouldUnselect();
    EXPECT_EQ(a->values.occurance, 4);
    a->values.occurance = 2;
    a->values.customOccurance = u"";
    pane->shouldUnselect();
    EXPECT_EQ(a->values.occurance, 2);
}

TEST_F(PaneLeaving, AChangeOfTheTitleRefreshesThePreviewWhileThePaneIsShown) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto field = outlet<NSTokenField>(u"titleTokenField");
    auto& center = NSNotificationCenter::defaultCenter();
    const MessageLog refreshed{"a setTitleTokens", "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"};
    taken();
    center.postNotificationNameObject(NSControlTextDidChangeNotification, field);
    EXPECT_EQ(taken(), refreshed);
    center.postNotificationNameObject(NSControlTextDidChangeNotification, outlet<NSTextField>(u"customOccurance"));
    EXPECT_EQ(taken(), MessageLog{"a setCustomOccurance "});
    pane->willUnselect();
    taken();
    center.postNotificationNameObject(NSControlTextDidChangeNotification, field);
    EXPECT_EQ(taken(), MessageLog{"a setTitleTokens"});
}

TEST_F(PaneLeaving, ShownTwiceWithoutLeavingTheFirstObserverStaysForGood) {
    imprinter->setList({configuration(u"a")});
    start();
    pane->didSelect();
    pane->willUnselect();
    taken();
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification,
                                                                     outlet<NSTokenField>(u"titleTokenField"));
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"}));
}

TEST_F(PaneLeaving, TheObserverHoldsThePaneUntilItIsLeft) {
    registerHost();
    load();
    std::weak_ptr<pane::VelImprinterPrefPane> watched = pane;
    auto* held = pane.get();
    held->didSelect();
    pane.reset();
    EXPECT_FALSE(watched.expired());
    held->willUnselect();
    EXPECT_TRUE(watched.expired());
}

TEST_F(PaneLeaving, SavesBeforeItStopsListening) {
    imprinter->setList({configuration(u"a")});
    start();
    bool saved = false;
    imprinter->onSave = [&] {
        saved = true;
        taken();
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification,
                                                                         outlet<NSTokenField>(u"titleTokenField"));
        const auto messages = taken();
        EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"),
                  1);
    };
    pane->willUnselect();
    imprinter->onSave = {};
    EXPECT_TRUE(saved);
}

TEST_F(PaneLeaving, SavesWhenThePaneIsHidden) {
    imprinter->setList({configuration(u"a")});
    start();
    taken();
    pane->willUnselect();
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter saveConfigurations"), 1);
}

TEST_F(PaneLeaving, PassesOnBeingShownButNotBeingLeft) {
    imprinter->setList({configuration(u"a")});
    registerHost();
    load();
    EXPECT_FALSE(pane->isSelected());
    show();
    EXPECT_TRUE(pane->isSelected());
    pane->willUnselect();
    EXPECT_TRUE(pane->isSelected());
    pane->didUnselect();
    EXPECT_FALSE(pane->isSelected());
}

TEST_F(PaneLeaving, TheMenuOfFontRunsIsMadeAnewBeforeItOpensWhileThePaneIsShown) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto runs = outlet<NSPopUpButton>(u"fontTokensPopup");
    auto& center = NSNotificationCenter::defaultCenter();
    const auto menuAfterOpening = [&] {
        center.postNotificationNameObject(NSPopUpButtonWillPopUpNotification, runs);
        return runs->menu();
    };
    const auto before = runs->menu();
    const auto anew = menuAfterOpening();
    EXPECT_NE(anew, before);
    center.postNotificationNameObject(NSPopUpButtonWillPopUpNotification, outlet<NSPopUpButton>(u"borderStylePopup"));
    EXPECT_EQ(runs->menu(), anew) << "another button's menu";
    pane->willUnselect();
    EXPECT_EQ(menuAfterOpening(), anew) << "nobody listens any more";
    pane->didSelect();
    EXPECT_NE(menuAfterOpening(), anew);
    pane->willUnselect();
}

TEST_F(PaneLeaving, TheSecondTimeTheSameObserverIsRemovedAgain) {
    imprinter->setList({configuration(u"a")});
    start();
    pane->willUnselect();
    EXPECT_NO_THROW(pane->willUnselect());
    taken();
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification,
                                                                     outlet<NSTokenField>(u"titleTokenField"));
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"), 0);
}

// Tab stops

class PaneTabs : public PaneTest {
protected:
    /// The names of the controls that the tab key visits, from the list on, until it is back there.
    std::vector<std::string> stops() {
        tableWidget(*window).setFocus();
        std::vector<std::string> names;
        for (int stop = 0; stop < 60; ++stop) {
            const auto* focused = window->focusWidget();
            const auto name = !focused                                ? "nothing"
                              : qobject_cast<const QTabBar*>(focused) ? "the tabs"
                                                                      : focused->objectName().toStdString();
            if (!names.empty() && name == names.front())
                return names;
            names.push_back(name);
            QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        }
        return names;
    }
};

TEST_F(PaneTabs, GoThroughTheLocationInReadingOrder) {
    imprinter->setList({configuration(u"a")});
    start();
    EXPECT_EQ(stops(), (std::vector<std::string>{"tableView", "actionPopupMenu", "deleteConfigurationBtn", "the tabs",
                                                 "topLeftBtn", "xOffset", "yOffset", "rotation", "occuranceEveryPage",
                                                 "duplicateRecBtn", "previewBtn"}));
}

TEST_F(PaneTabs, GoThroughTheAppearanceInReadingOrder) {
    const auto a = configuration(u"a");
    a->values.borderEnabled = a->values.fillEnabled = true;
    imprinter->setList({a});
    start();
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
    pane->enableAppearenceControls(true);
    EXPECT_EQ(stops(), (std::vector<std::string>{"tableView",
                                                 "actionPopupMenu",
                                                 "deleteConfigurationBtn",
                                                 "the tabs",
                                                 "titleTokenField",
                                                 "fontTokensPopup",
                                                 "fontPopup",
                                                 "fontAttributePopup",
                                                 "fontSizeField",
                                                 "fontColour",
                                                 "underlineSegment",
                                                 "strikethroughSegment",
                                                 "outlineSegment",
                                                 "outlineTextThickness",
                                                 "borderEnableBtn",
                                                 "borderStylePopup",
                                                 "borderThickness",
                                                 "borderColourWell",
                                                 "fillEnableBtn",
                                                 "fillColourWell",
                                                 "fillOpacityField",
                                                 "duplicateRecBtn",
                                                 "previewBtn"}));
}

TEST_F(PaneTabs, GoThroughTheCombinedPageInReadingOrder) {
    const auto combined = configuration(u"c", true);
    imprinter->setList({combined, configuration(u"a")});
    start();
    outlet<NSControl>(u"previewBtn")->setEnabled(true);
    EXPECT_EQ(stops(),
              (std::vector<std::string>{"tableView", "actionPopupMenu", "deleteConfigurationBtn", "allConfigsTableView",
                                        "combinedTableView", "duplicateRecBtn", "previewBtn"}));
}

} // namespace
