// SPDX-License-Identifier: MIT
#include "TableTest.h"

#include <QHeaderView>
#include <QImage>

using namespace platform;
using namespace testing_support;

namespace {

class TableCells : public TableTest {
protected:
    /// The darkest grey in a cell.
    int darkest(int row) const {
        const auto image = grid->viewport()->grab(cell(row)).toImage();
        int found = 255;
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y)
                found = std::min(found, qGray(image.pixel(x, y)));
        return found;
    }
};

TEST_F(TableCells, ShowTheTextOfTheirFields) {
    showTable();
    EXPECT_EQ(grid->model()->index(2, 0).data().toString(), "three");
}

TEST_F(TableCells, AreShownAnewWhenTheirFieldIsSet) {
    showTable();
    table->viewAtColumnRow(0, 2)->textField()->setStringValue(u"drei");
    EXPECT_EQ(grid->model()->index(2, 0).data().toString(), "drei");
}

TEST_F(TableCells, OfADisabledFieldAreDimmed) {
    showTable(false, {u"####", u"####"});
    owner->disabledRows = {1};
    table->reloadData();
    EXPECT_LT(darkest(0), 60);
    EXPECT_GT(darkest(1), 90);
}

TEST_F(TableCells, OfADisabledFieldAreDimmedInASelectedRowToo) {
    showTable(false, {u"####"});
    select({0});
    const auto enabled = grid->viewport()->grab(cell(0)).toImage();
    owner->disabledRows = {0};
    table->reloadData();
    EXPECT_EQ(shownSelection(), Rows{0});
    EXPECT_NE(grid->viewport()->grab(cell(0)).toImage(), enabled);
}

TEST_F(TableCells, HaveUniformRowsAndNoGrid) {
    showTable();
    EXPECT_EQ(cell(0).height(), cell(3).height());
    EXPECT_FALSE(grid->showGrid());
    EXPECT_TRUE(grid->verticalHeader()->isHidden());
}

TEST_F(TableCells, AColumnsTitleIsShownInTheHeader) {
    showTable();
    table->tableColumnWithIdentifier(u"name")->setTitle(u"Configurations:");
    EXPECT_EQ(grid->model()->headerData(0, Qt::Horizontal).toString(), "Configurations:");
    EXPECT_TRUE(grid->horizontalHeader()->isVisible());
}

TEST_F(TableCells, ATableWithoutHeaderViewShowsNone) {
    showTable();
    table->setHeaderView(nullptr);
    EXPECT_FALSE(grid->horizontalHeader()->isVisible());
    table->setHeaderView(std::make_shared<NSTableHeaderView>());
    EXPECT_TRUE(grid->horizontalHeader()->isVisible());
}

TEST_F(TableCells, ATableSurvivesItsWidget) {
    showTable();
    doubleClick(1);
    delete grid;
    table->selectRowIndexesByExtendingSelection(NSIndexSet(2), false);
    table->reloadData();
    EXPECT_EQ(table->selectedRow(), 2);
}

TEST_F(TableCells, AWidgetSurvivesItsTable) {
    showTable();
    doubleClick(1);
    table.reset();
    contents = {};
    ASSERT_EQ(view<NSTableView>("table"), nullptr);
    owner->taken();
    click(2);
    key(Qt::Key_Down);
    key(Qt::Key_F2);
    window->grab();
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TableCells, ADelegateThatRaisesLeavesTheCellEmpty) {
    showTable();
    owner->rows.clear(); // so that the delegate reaches beyond the end
    EXPECT_EQ(grid->model()->index(3, 1).data().toString(), "four");
    owner->rows = {u"a", u"b"};
    table->reloadData();
    owner->rows.clear();
    EXPECT_EQ(grid->model()->index(1, 0).data().toString(), "");
    window->grab();
}

} // namespace
