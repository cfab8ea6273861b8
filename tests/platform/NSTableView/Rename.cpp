// SPDX-License-Identifier: MIT
#include "TableTest.h"

#include <QApplication>

using namespace platform;
using namespace testing_support;

namespace {

class TableRename : public TableTest {
protected:
    void type(const char* text) { QTest::keyClicks(editor(), text); }
};

TEST_F(TableRename, ADoubleClickOpensTheCellWithAllItsTextSelected) {
    showTable();
    doubleClick(1);
    ASSERT_TRUE(editing());
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_EQ(editor()->selectedText(), "two");
    EXPECT_EQ(table->editedCell(), table->viewAtColumnRow(0, 1));
}

TEST_F(TableRename, ADoubleClickOnARefusedRowOpensNothing) {
    showTable();
    select({0});
    owner->refusedRows = {1};
    doubleClick(1);
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, F2OpensTheSelectedRowsCell) {
    showTable();
    select({2});
    key(Qt::Key_F2);
    ASSERT_TRUE(editing());
    EXPECT_EQ(editor()->text(), "three");
}

TEST_F(TableRename, AClickOnTheSelectedRowOpensItAfterTheDoubleClickTime) {
    showTable();
    select({1});
    click(1);
    EXPECT_FALSE(editing());
    queue->advance(QApplication::doubleClickInterval() / 1000.0 + 0.01);
    ASSERT_TRUE(editing());
    EXPECT_EQ(editor()->text(), "two");
}

TEST_F(TableRename, AnotherClickMeanwhileOpensNothing) {
    showTable();
    select({1});
    click(1);
    click(2);
    queue->advance(10);
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, AReloadMeanwhileOpensNothing) {
    showTable();
    select({1});
    click(1);
    table->reloadData();
    queue->advance(10);
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, ACellWithoutActionIsNotEdited) {
    showTable();
    doubleClick(1, 1);
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, ADisabledCellIsNotEdited) {
    showTable();
    owner->disabledRows = {1};
    table->reloadData();
    doubleClick(1);
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, ReturnSendsTheCellsActionOnceAndClosesIt) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    QTest::keyClick(editor(), Qt::Key_Return);
    EXPECT_EQ(owner->taken(), Log{"rename row 1 new"});
    EXPECT_FALSE(editing());
    EXPECT_EQ(table->editedCell(), nullptr);
    EXPECT_TRUE(grid->hasFocus());
}

TEST_F(TableRename, TheRowShowsAtOnceWhatBecameOfTheText) {
    showTable();
    doubleClick(1);
    type("new");
    QTest::keyClick(editor(), Qt::Key_Return);
    EXPECT_EQ(grid->model()->index(1, 0).data().toString(), "two") << "the owner keeps its names";
}

TEST_F(TableRename, EscapeRestoresTheTextAndSendsNothing) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    QTest::keyClick(editor(), Qt::Key_Escape);
    EXPECT_FALSE(editing());
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(grid->model()->index(1, 0).data().toString(), "two");
}

TEST_F(TableRename, AClickOnAnotherRowRenamesTheOldOneBeforeTheNewOneIsAskedFor) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    click(2);
    EXPECT_EQ(owner->taken(), (Log{"rename row 1 new", "shouldSelect 2", "selected 2"}));
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, AClickInTheEmptyAreaRenamesBeforeItDeselects) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    clickEmptyArea();
    EXPECT_EQ(owner->taken(), (Log{"rename row 1 new", "selected"}));
}

TEST_F(TableRename, AFieldThatRefusesToEndKeepsTheSelection) {
    showTable();
    doubleClick(1);
    table->editedCell()->textField()->setDelegate(owner);
    owner->refusesEnd = true;
    type("new");
    owner->taken();
    click(2);
    const auto log = owner->taken();
    EXPECT_EQ(std::count(log.begin(), log.end(), "shouldSelect 2"), 0);
    EXPECT_EQ(table->selectedRow(), 1);
    EXPECT_TRUE(editing());
}

TEST_F(TableRename, TabSendsTheActionAndClosesTheCell) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    QTest::keyClick(editor(), Qt::Key_Tab);
    EXPECT_EQ(owner->taken(), Log{"rename row 1 new"});
    EXPECT_FALSE(editing());
}

TEST_F(TableRename, AnEditWithoutAChangeSendsNothingWhenTheFocusLeaves) {
    showTable();
    doubleClick(1);
    owner->taken();
    shown("field")->setFocus();
    EXPECT_FALSE(editing());
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TableRename, AReloadAbandonsTheEditWithoutItsAction) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    table->reloadData();
    EXPECT_FALSE(editing());
    EXPECT_EQ(table->editedCell(), nullptr);
    EXPECT_EQ(owner->taken(), Log());
    EXPECT_EQ(grid->model()->index(1, 0).data().toString(), "two");
}

TEST_F(TableRename, AnActionThatReloadsTheTableClosesTheCellOnce) {
    showTable();
    doubleClick(1);
    type("new");
    owner->taken();
    owner->onAction = [this] { table->reloadData(); };
    QTest::keyClick(editor(), Qt::Key_Return);
    EXPECT_FALSE(editing());
    EXPECT_EQ(owner->taken(), Log{"rename row 1 new"});
}

TEST_F(TableRename, ScrollingLeavesTheEditorOnItsRow) {
    showTable(false, std::vector<std::u16string>(100, u"row"));
    doubleClick(3);
    grid->scrollTo(grid->model()->index(20, 0));
    EXPECT_EQ(editor()->geometry().top(), cell(3).top());
}

} // namespace
