// SPDX-License-Identifier: MIT

// What a command leaves to do two tenths of a second later meets a world that has changed meanwhile.

#include "CommandsTest.h"

using namespace platform;
using namespace testing_support;

namespace {

using Names = std::vector<QString>;

class CommandsLater : public CommandsTest {};

TEST_F(CommandsLater, CreatingThenDeletingAtOnceDeletesWhatWasBeingEdited) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    pressDelete();
    EXPECT_EQ(rows(), (Names{"b", "New Imprinter"}));
    waitForSelection();
    // Both selections come in the order of the commands.
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
    EXPECT_EQ(queue->waiting(), 0U);
}

TEST_F(CommandsLater, ANewConfigurationThatIsDeletedAtOnceIsNotShown) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    const auto made = imprinter->made;
    clickRow(2);
    EXPECT_EQ(pane->currentConfiguration(), made);
    pressDelete();
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"a", "b"}));
    EXPECT_EQ(table()->selectedRow(), 1);
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(CommandsLater, ANewConfigurationThatTheHostTookAwayIsShownWithoutARow) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    imprinter->setList(configurations);
    table()->reloadData();
    taken();
    waitForSelection();
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
    EXPECT_EQ(table()->selectedRow(), 0) << "the selection went back to what was being edited then";
    EXPECT_EQ(taken().front(), "imprinter indexOfConfiguration");
}

TEST_F(CommandsLater, CreatingTwiceShowsTheSecond) {
    startWith({u"a"});
    choose("New Configuration");
    choose("New Combined Configuration");
    waitForSelection();
    EXPECT_EQ(table()->selectedRow(), 2);
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
    EXPECT_EQ(mainPage(), u"Imprint Combined");
}

TEST_F(CommandsLater, CreatingThenDuplicatingCopiesTheRowStillSelected) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    const auto made = imprinter->made;
    choose("Duplicate Configuration");
    EXPECT_EQ(rows(), (Names{"a", "new 2", "b", "New Imprinter"}));
    waitForSelection();
    EXPECT_EQ(table()->selectedRow(), 3);
    EXPECT_EQ(pane->currentConfiguration(), made);
}

TEST_F(CommandsLater, DeletingTwiceAtOnceDeletesOnceAndEndsOnTheEmptyPage) {
    startWith({u"a", u"b", u"c"});
    pressDelete();
    pressDelete(); // what is being edited is gone already, and no row takes its place
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"b", "c"}));
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), nullptr);
    EXPECT_EQ(mainPage(), u"No Imprint");
}

TEST_F(CommandsLater, DeletingTheRestMeanwhileLeavesTheEmptyPage) {
    startWith({u"a", u"b"});
    pressDelete();
    clickRow(0);
    selectRow(0);
    pane->setCurrentConfiguration(configurations[1]);
    pressDelete();
    EXPECT_EQ(mainPage(), u"No Imprint");
    waitForSelection();
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_EQ(pane->currentConfiguration(), nullptr) << "the row that was to be shown is not there any more";
}

TEST_F(CommandsLater, AListThatHasGoneMeanwhileIsHarmless) {
    startWith({u"a", u"b"});
    pressDelete();
    choose("New Configuration");
    const auto made = imprinter->made;
    imprinter->setNilList();
    waitForSelection();
    EXPECT_EQ(queue->waiting(), 0U);
    EXPECT_EQ(pane->currentConfiguration(), made);
}

TEST_F(CommandsLater, TheAnswerToAnAlertMayComeAfterTheSelection) {
    startWith({u"a", u"b", u"c"});
    choose("New Configuration");
    onAlert = [this] { waitForSelection(); };
    pressDelete();
    // The one whose name the alert asked about.
    EXPECT_EQ(alerts.back(), u"Delete a?");
    EXPECT_EQ(rows(), (Names{"b", "c", "New Imprinter"}));
    onAlert = {};
    waitForSelection();
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(CommandsLater, LeavingThePaneMeanwhileIsHarmless) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    pressDelete();
    pane->shouldUnselect();
    pane->willUnselect();
    window->takeCentralWidget();
    pane->didUnselect();
    waitForSelection();
    EXPECT_EQ(queue->waiting(), 0U);
    // Coming back finds the list as the commands left it.
    pane->willSelect();
    window->setCentralWidget(widgetOf(*pane->mainView()));
    pane->didSelect();
    EXPECT_EQ(rows(), (Names{"b", "New Imprinter"}));
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(CommandsLater, ClosingTheWindowMeanwhileIsHarmless) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    pressDelete();
    window->close();
    window.reset(); // and with it the widgets
    waitForSelection();
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(CommandsLater, ABlockKeepsThePaneUntilItHasRun) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    pane->willUnselect();
    window->takeCentralWidget();
    window.reset();
    const std::weak_ptr<pane::VelImprinterPrefPane> weak = pane;
    pane.reset();
    EXPECT_FALSE(weak.expired());
    waitForSelection();
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandsLater, TheDelayIsRealOnTheEventLoop) {
    startWith({u"a"});
    setMainQueue(nullptr);
    choose("New Configuration");
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return table()->selectedRow() == 1; }));
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
}

TEST_F(CommandsLater, CreatingThenRenamingRenamesTheRowStillSelected) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    rename("z");
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"z", "b", "New Imprinter"}));
    EXPECT_EQ(table()->selectedRow(), 2);
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
}

TEST_F(CommandsLater, CreatingThenMovingARowSelectsTheNewOneWhereItIsThen) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    ASSERT_TRUE(dropAbove(0, rowsFrom("rows_2_to_4.binary")));
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"New Imprinter", "a", "b"}));
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
}

TEST_F(CommandsLater, DeletingThenCreatingShowsTheNewOneInTheEnd) {
    startWith({u"a", u"b"});
    pressDelete();
    choose("New Configuration");
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"b", "New Imprinter"}));
    EXPECT_EQ(table()->selectedRow(), 1);
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
}

TEST_F(CommandsLater, DeletingThenMovingShowsWhatStandsInTheRowThen) {
    startWith({u"a", u"b", u"c", u"d"});
    pressDelete();
    ASSERT_TRUE(dropAbove(0, rowsFrom("rows_2_to_4.binary")));
    EXPECT_EQ(rows(), (Names{"d", "b", "c"}));
    waitForSelection();
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[3]);
}

TEST_F(CommandsLater, DeletingThenClickingARowShowsTheNextOneAllTheSame) {
    startWith({u"a", u"b", u"c"});
    pressDelete();
    clickRow(1);
    EXPECT_EQ(pane->currentConfiguration(), configurations[2]);
    waitForSelection();
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

} // namespace
