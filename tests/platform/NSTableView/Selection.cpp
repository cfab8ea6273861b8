// SPDX-License-Identifier: MIT
#include "TableTest.h"

#include <QHeaderView>

using namespace platform;
using namespace testing_support;

namespace {

class TableSelection : public TableTest {};

TEST_F(TableSelection, AClickAsksThenSelectsThenTells) {
    showTable();
    click(1);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 1", "selected 1"}));
    EXPECT_EQ(shownSelection(), Rows{1});
    EXPECT_EQ(table->selectedRow(), 1);
}

TEST_F(TableSelection, TheOldRowIsStillSelectedWhileTheNewOneIsAskedFor) {
    showTable();
    select({0});
    struct Delegate final : NSObject, NSTableViewDelegate {
        std::shared_ptr<NSTableCellView> tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>&,
                                                                        const std::shared_ptr<NSTableColumn>&,
                                                                        NSInteger) override {
            return nullptr;
        }
        bool tableViewShouldSelectRow(const std::shared_ptr<NSTableView>& asking, NSInteger) override {
            selectedWhenAsked = asking->selectedRow();
            shownWhenAsked = grid->selectionModel()->isRowSelected(0) && !grid->selectionModel()->isRowSelected(1);
            return true;
        }
        QTableView* grid = nullptr;
        NSInteger selectedWhenAsked = -1;
        bool shownWhenAsked = false;
    };
    const auto delegate = std::make_shared<Delegate>();
    delegate->grid = grid;
    table->setDelegate(delegate);
    click(1);
    EXPECT_EQ(delegate->selectedWhenAsked, 0);
    EXPECT_TRUE(delegate->shownWhenAsked);
    EXPECT_EQ(table->selectedRow(), 1);
}

TEST_F(TableSelection, ARefusedRowLeavesTheSelectionAsItWas) {
    showTable();
    select({0});
    owner->refusedRows = {2};
    click(2);
    EXPECT_EQ(owner->taken(), Log{"shouldSelect 2"});
    EXPECT_EQ(shownSelection(), Rows{0});
}

TEST_F(TableSelection, AClickOnTheSelectedRowAsksNothing) {
    showTable();
    select({1});
    click(1);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows{1});
}

TEST_F(TableSelection, AClickInTheEmptyAreaDeselectsAllWithoutAsking) {
    showTable();
    select({1});
    clickEmptyArea();
    EXPECT_EQ(owner->taken(), Log{"selected"});
    EXPECT_EQ(shownSelection(), Rows());
    EXPECT_EQ(table->selectedRow(), -1);
}

TEST_F(TableSelection, AControlClickOnTheSelectedRowDeselectsIt) {
    showTable();
    select({1});
    click(1, Qt::ControlModifier);
    EXPECT_EQ(owner->taken(), Log{"selected"});
    EXPECT_EQ(shownSelection(), Rows());
}

TEST_F(TableSelection, WhoeverHearsOfADeselectionMaySelectAgainFromWithin) {
    showTable();
    select({1});
    owner->onSelection = [this] {
        if (table->selectedRow() < 0)
            table->selectRowIndexesByExtendingSelection(NSIndexSet(1), false);
    };
    clickEmptyArea();
    EXPECT_EQ(owner->taken(), (Log{"selected", "selected 1"}));
    EXPECT_EQ(shownSelection(), Rows{1});
}

TEST_F(TableSelection, SelectingByProgramAsksNothingAndTellsOnce) {
    showTable();
    table->selectRowIndexesByExtendingSelection(NSIndexSet(2), false);
    table->selectRowIndexesByExtendingSelection(NSIndexSet(2), false);
    EXPECT_EQ(owner->taken(), Log{"selected 2"});
    EXPECT_EQ(shownSelection(), Rows{2});
}

TEST_F(TableSelection, SelectingARowThatIsNotThereSelectsNothing) {
    showTable();
    select({1});
    table->selectRowIndexesByExtendingSelection(NSIndexSet(NSNotFound), false);
    EXPECT_EQ(owner->taken(), Log{"selected"});
    table->selectRowIndexesByExtendingSelection(NSIndexSet(99), false);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows());
}

TEST_F(TableSelection, SelectingByProgramNeitherScrollsNorTakesTheFocus) {
    showTable(false, std::vector<std::u16string>(200, u"row"));
    shown("field")->setFocus();
    select({150});
    EXPECT_EQ(grid->indexAt({5, 5}).row(), 0);
    EXPECT_TRUE(shown("field")->hasFocus());
}

TEST_F(TableSelection, DownAndUpMoveByOneRowAndAsk) {
    showTable();
    select({1});
    key(Qt::Key_Down);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 2", "selected 2"}));
    key(Qt::Key_Up);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 1", "selected 1"}));
    EXPECT_EQ(shownSelection(), Rows{1});
}

TEST_F(TableSelection, DownWithoutASelectionTakesTheFirstRowAndUpTheLast) {
    showTable();
    key(Qt::Key_Down);
    EXPECT_EQ(shownSelection(), Rows{0});
    select({});
    key(Qt::Key_Up);
    EXPECT_EQ(shownSelection(), Rows{3});
}

TEST_F(TableSelection, TheKeysStopAtTheEnds) {
    showTable();
    select({3});
    key(Qt::Key_Down);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows{3});
}

TEST_F(TableSelection, TheKeysSkipRefusedRows) {
    showTable();
    select({0});
    owner->refusedRows = {1, 2};
    key(Qt::Key_Down);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 1", "shouldSelect 2", "shouldSelect 3", "selected 3"}));
    EXPECT_EQ(shownSelection(), Rows{3});
}

TEST_F(TableSelection, TheKeysStayWhereAllFurtherRowsAreRefused) {
    showTable();
    select({1});
    owner->refusedRows = {2, 3};
    key(Qt::Key_Down);
    EXPECT_EQ(shownSelection(), Rows{1});
}

TEST_F(TableSelection, TheKeysGoNoFurtherWhereWhoeverHearsSelectsTheOldRowAgain) {
    showTable();
    select({0});
    owner->onSelection = [this] {
        if (table->selectedRow() != 0)
            table->selectRowIndexesByExtendingSelection(NSIndexSet(0), false);
    };
    key(Qt::Key_Down);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 1", "selected 1", "selected 0"}));
    EXPECT_EQ(shownSelection(), Rows{0});
}

TEST_F(TableSelection, TheKeysScrollToTheRowTheySelect) {
    showTable(false, std::vector<std::u16string>(200, u"row"));
    select({150});
    key(Qt::Key_Down);
    EXPECT_TRUE(grid->viewport()->rect().intersects(cell(151)));
}

TEST_F(TableSelection, HomeAndEndScrollWithoutSelecting) {
    showTable(false, std::vector<std::u16string>(200, u"row"));
    select({3});
    key(Qt::Key_End);
    EXPECT_TRUE(grid->viewport()->rect().intersects(cell(199)));
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(table->selectedRow(), 3);
}

TEST_F(TableSelection, OnlyOneRowIsSelectedUnlessTheTableAllowsMore) {
    showTable();
    click(0);
    click(2, Qt::ShiftModifier);
    EXPECT_EQ(shownSelection(), Rows{2});
    click(1, Qt::ControlModifier);
    EXPECT_EQ(shownSelection(), Rows{1});
    QTest::keySequence(grid, QKeySequence::SelectAll);
    EXPECT_EQ(shownSelection(), Rows{1});
}

TEST_F(TableSelection, ControlAndShiftClicksExtendWhereTheTableAllowsIt) {
    showTable(true);
    click(0);
    click(2, Qt::ControlModifier);
    EXPECT_EQ(shownSelection(), (Rows{0, 2}));
    click(0);
    click(3, Qt::ShiftModifier);
    EXPECT_EQ(shownSelection(), (Rows{0, 1, 2, 3}));
    click(1, Qt::ControlModifier);
    EXPECT_EQ(shownSelection(), (Rows{0, 2, 3}));
    click(2);
    EXPECT_EQ(shownSelection(), Rows{2});
}

TEST_F(TableSelection, ShiftAndTheKeysExtendFromWhereTheSelectionBegan) {
    showTable(true);
    click(1);
    key(Qt::Key_Down, Qt::ShiftModifier);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(shownSelection(), (Rows{1, 2, 3}));
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(shownSelection(), (Rows{1, 2}));
    key(Qt::Key_Up, Qt::ShiftModifier);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(shownSelection(), (Rows{0, 1}));
}

TEST_F(TableSelection, SelectAllAsksForEachNewRowAndLeavesRefusedOnesOut) {
    showTable(true);
    select({0});
    owner->refusedRows = {2};
    QTest::keySequence(grid, QKeySequence::SelectAll);
    EXPECT_EQ(owner->taken(), (Log{"shouldSelect 1", "shouldSelect 2", "shouldSelect 3", "selected 0 1 3"}));
    EXPECT_EQ(shownSelection(), (Rows{0, 1, 3}));
}

TEST_F(TableSelection, ARightClickChangesNothing) {
    showTable();
    select({0});
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, cell(2).center());
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows{0});
}

TEST_F(TableSelection, AClickOnTheHeaderSelectsNothing) {
    showTable();
    QTest::mouseClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, {10, 5});
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows());
}

TEST_F(TableSelection, ADisabledTableIgnoresClicks) {
    showTable();
    table->setEnabled(false);
    click(1);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TableSelection, AnEditInAnotherFieldEndsBeforeTheRowIsAskedFor) {
    showTable();
    view<NSTextField>("field")->setDelegate(owner);
    shown("field")->setFocus();
    QTest::keyClicks(shown("field"), "x");
    owner->taken();
    click(1);
    EXPECT_EQ(owner->taken(), (Log{"shouldEnd", "shouldSelect 1", "selected 1"}));
}

} // namespace
