// SPDX-License-Identifier: MIT
#include "TableTest.h"

#include <QElapsedTimer>
#include <QScrollBar>

using namespace platform;
using namespace testing_support;

namespace {

class TableReload : public TableTest {};

TEST_F(TableReload, ATableReadsItsRowsWhenItIsFirstSeen) {
    showTable();
    EXPECT_EQ(table->numberOfRows(), 4);
    EXPECT_EQ(grid->model()->rowCount(), 4);
}

TEST_F(TableReload, RowsThatStillExistStaySelectedAndNothingIsTold) {
    showTable();
    select({1});
    owner->rows.push_back(u"five");
    table->reloadData();
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(shownSelection(), Rows{1});
    EXPECT_EQ(grid->model()->rowCount(), 5);
}

TEST_F(TableReload, DroppedRowsAreToldOnceBeforeTheReloadReturns) {
    showTable(true);
    select({0, 2, 3});
    owner->rows = {u"one", u"two"};
    table->reloadData();
    EXPECT_EQ(owner->taken(), Log{"selected 0"});
    EXPECT_EQ(shownSelection(), Rows{0});
}

TEST_F(TableReload, NothingIsToldLater) {
    showTable();
    select({3});
    owner->rows.clear();
    table->reloadData();
    EXPECT_EQ(owner->taken(), Log{"selected"});
    QCoreApplication::processEvents();
    queue->advance(10);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(grid->model()->rowCount(), 0);
}

TEST_F(TableReload, TheCellsAreAskedForAgain) {
    showTable();
    owner->rows[0] = u"eins";
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), "one");
    table->reloadData();
    EXPECT_EQ(grid->model()->index(0, 0).data().toString(), "eins");
}

TEST_F(TableReload, TheScrollPositionIsKept) {
    showTable(false, std::vector<std::u16string>(200, u"row"));
    grid->verticalScrollBar()->setValue(100);
    table->reloadData();
    EXPECT_EQ(grid->verticalScrollBar()->value(), 100);
}

TEST_F(TableReload, TenThousandRowsAskOnlyForTheCellsThatAreSeen) {
    showTable(false, std::vector<std::u16string>(10000, u"row"));
    owner->cellsAsked = 0;
    QElapsedTimer timer;
    timer.start();
    table->reloadData();
    window->grab();
    select({9999});
    grid->scrollToBottom();
    window->grab();
    EXPECT_LT(timer.elapsed(), 500);
    EXPECT_LT(owner->cellsAsked, 200);
    EXPECT_EQ(shownSelection(), Rows{9999});
}

} // namespace
