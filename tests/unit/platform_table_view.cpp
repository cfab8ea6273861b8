// SPDX-License-Identifier: MIT
#include "platform_peers.h"

#include <AppKit/NSTableView.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform_test;

/// "2-4,7"
std::string textOf(const NSIndexSet& rows) {
    std::string text;
    for (const auto& range : rows.ranges()) {
        text += (text.empty() ? "" : ",") + std::to_string(range.location);
        if (range.length > 1)
            text += "-" + std::to_string(range.location + range.length - 1);
    }
    return text.empty() ? "none" : text;
}

class FakeTablePeer final : public FakePeer, public TablePeer {
public:
    void setColumnTitle(NSInteger column, const std::u16string& title) override { titles[column] = title; }
    void setHeader(bool visible, bool bottomBorder) override { header = {visible, bottomBorder}; }
    void reload(NSInteger rows) override { note("reload " + std::to_string(rows)); }
    void setSelection(const NSIndexSet& rows, NSInteger current) override {
        selection = textOf(rows) + " at " + std::to_string(current);
    }
    bool commitEditing() override {
        note("commit");
        if (onCommit)
            onCommit();
        return commits;
    }
    void abandonEditing() override { note("abandon"); }

    void note(const std::string& what) const {
        if (log)
            log->push_back(what);
    }
    Log* log = nullptr;
    bool commits = true;
    std::function<void()> onCommit;
    std::string selection;
    std::map<NSInteger, std::u16string> titles;
    std::pair<bool, bool> header;
};

class Rows final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
    explicit Rows(Log& log) : m_log(log) {}
    NSInteger numberOfRowsInTableView(const std::shared_ptr<NSTableView>&) override {
        m_log.push_back("count");
        return count;
    }
    std::shared_ptr<NSTableCellView> tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>& table,
                                                                    const std::shared_ptr<NSTableColumn>& column,
                                                                    NSInteger row) override {
        m_log.push_back("cell " + std::to_string(row));
        return row == withoutCell ? nullptr : table->makeViewWithIdentifierOwner(column->identifier(), nullptr);
    }
    bool tableViewShouldSelectRow(const std::shared_ptr<NSTableView>& table, NSInteger row) override {
        m_log.push_back("should select " + std::to_string(row) + " from " + textOf(table->selectedRowIndexes()));
        if (onAsk)
            onAsk();
        return !refused.containsIndex(static_cast<NSUInteger>(row));
    }
    void tableViewSelectionDidChange(const NSNotification& notification) override {
        const auto table = std::dynamic_pointer_cast<NSTableView>(notification.object);
        m_log.push_back("did change to " + textOf(table->selectedRowIndexes()));
        if (onChange)
            onChange();
    }

    NSInteger count = 5;
    NSInteger withoutCell = -1;
    NSIndexSet refused;
    std::function<void()> onAsk;
    std::function<void()> onChange;

private:
    Log& m_log;
};

class Table : public testing::Test {
protected:
    Table() {
        table->setDataSource(rows);
        table->setDelegate(rows);
        table->addTableColumn(std::make_shared<NSTableColumn>(u"name"));
        table->registerCell(u"name", u"onAction:");
        table->registerCell(u"icon", u"");
        table->reloadData();
        peer.log = &log;
        log.clear();
    }

    void select(const NSIndexSet& wanted, bool extend = false) {
        table->selectRowIndexesByExtendingSelection(wanted, extend);
    }
    std::string selected() const { return textOf(table->selectedRowIndexes()); }
    /// An observer beside the delegate.
    NSNotificationCenter::Token observe() {
        return NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
            NSTableViewSelectionDidChangeNotification, table, nullptr,
            [this](const NSNotification&) { log.push_back("observer"); });
    }

    Log log;
    std::shared_ptr<Rows> rows = std::make_shared<Rows>(log);
    std::shared_ptr<NSTableView> table = std::make_shared<NSTableView>();
    FakeTablePeer& peer = give<FakeTablePeer>(*table);
};

TEST_F(Table, HasNothingSelectedAtFirst) {
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_EQ(selected(), "none");
    EXPECT_FALSE(table->allowsMultipleSelection());
    EXPECT_EQ(table->numberOfRows(), 5);
}

TEST_F(Table, SelectedByTheUserCommitsThenAsksThenSelectsThenTells) {
    select(NSIndexSet(1));
    log.clear();
    EXPECT_TRUE(table->userSelects(NSIndexSet(3), 3));
    EXPECT_EQ(log, (Log{"commit", "should select 3 from 1", "did change to 3"}));
    EXPECT_EQ(table->selectedRow(), 3);
    EXPECT_EQ(peer.selection, "3 at 3");
}

TEST_F(Table, AsksNothingForASelectionThatIsAsItWas) {
    select(NSIndexSet(1));
    log.clear();
    EXPECT_TRUE(table->userSelects(NSIndexSet(1), 1));
    EXPECT_EQ(log, Log{});
}

TEST_F(Table, ThatIsDisabledIsNotSelectedByTheUser) {
    table->setEnabled(false);
    EXPECT_FALSE(table->userSelects(NSIndexSet(3), 3));
    EXPECT_EQ(log, Log{});
    EXPECT_EQ(selected(), "none");
}

TEST_F(Table, KeepsItsSelectionWhereAnEditRefusesToEnd) {
    select(NSIndexSet(1));
    log.clear();
    peer.commits = false;
    peer.selection = "3 at 3"; // what the toolkit shows after the click
    EXPECT_FALSE(table->userSelects(NSIndexSet(3), 3));
    EXPECT_EQ(log, Log{"commit"});
    EXPECT_EQ(selected(), "1");
    EXPECT_EQ(peer.selection, "1 at 1");
}

TEST_F(Table, KeepsItsSelectionWhereTheDelegateRefusesAllNewRows) {
    select(NSIndexSet{0, 1});
    log.clear();
    rows->refused = {3, 4};
    peer.selection = "3 at 3";
    EXPECT_FALSE(table->userSelects(NSIndexSet(3), 3));
    EXPECT_EQ(log, (Log{"commit", "should select 3 from 0-1"}));
    EXPECT_EQ(selected(), "0-1");
    EXPECT_EQ(table->selectedRow(), 1);
    EXPECT_EQ(peer.selection, "0-1 at 1") << "the toolkit shows it again";
    log.clear();
    EXPECT_FALSE(table->userSelects(NSIndexSet{1, 3, 4}, 4)) << "a part of the old rows alone is not what was wanted";
    EXPECT_EQ(log, (Log{"commit", "should select 3 from 0-1", "should select 4 from 0-1"}));
    EXPECT_EQ(selected(), "0-1");
}

TEST_F(Table, LeavesOutTheRowsThatTheDelegateRefuses) {
    table->setAllowsMultipleSelection(true);
    select(NSIndexSet(0));
    log.clear();
    rows->refused = NSIndexSet(2);
    EXPECT_FALSE(table->userSelects(NSIndexSet{0, 1, 2, 3}, 3));
    EXPECT_EQ(log, (Log{"commit", "should select 1 from 0", "should select 2 from 0", "should select 3 from 0",
                        "did change to 0-1,3"}));
    EXPECT_EQ(table->selectedRow(), 3);
    rows->refused = NSIndexSet(4);
    EXPECT_FALSE(table->userSelects(NSIndexSet{0, 1, 2, 3, 4}, 4));
    EXPECT_EQ(selected(), "0-3");
    EXPECT_EQ(table->selectedRow(), 3) << "the row under the pointer was refused";
}

TEST_F(Table, DeselectsWithoutAsking) {
    rows->refused = {0, 1, 2, 3, 4};
    select(NSIndexSet{1, 2});
    log.clear();
    EXPECT_TRUE(table->userSelects(NSIndexSet(2), -1));
    EXPECT_TRUE(table->userSelects(NSIndexSet(), -1));
    EXPECT_EQ(log, (Log{"commit", "did change to 2", "commit", "did change to none"}));
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_EQ(peer.selection, "none at -1");
}

TEST_F(Table, SelectsNoRowThatTheUserCannotSee) {
    EXPECT_FALSE(table->userSelects(NSIndexSet{4, 5, 6}, 6));
    EXPECT_EQ(log, (Log{"commit", "should select 4 from none", "did change to 4"}));
    EXPECT_EQ(table->selectedRow(), 4);
}

TEST_F(Table, SelectsWhatIsStillThereWhenTheCommitTookRowsAway) {
    peer.onCommit = [&] {
        rows->count = 3;
        table->reloadData();
        log.clear();
    };
    EXPECT_FALSE(table->userSelects(NSIndexSet{2, 4}, 4));
    EXPECT_EQ(log, (Log{"should select 2 from none", "did change to 2"}));
}

TEST_F(Table, SelectsWhatIsStillThereWhenTheQuestionTookRowsAway) {
    rows->onAsk = [&] {
        rows->count = 3;
        table->reloadData();
    };
    EXPECT_FALSE(table->userSelects(NSIndexSet(4), 4));
    EXPECT_EQ(selected(), "none");
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_EQ(peer.selection, "none at -1");
}

TEST_F(Table, SelectedByProgramAsksAndCommitsNothing) {
    rows->refused = {0, 1, 2, 3, 4};
    select(NSIndexSet(2));
    EXPECT_EQ(log, Log{"did change to 2"});
    EXPECT_EQ(peer.selection, "2 at 2");
    EXPECT_EQ(peer.focusCount, 0);
}

TEST_F(Table, SelectedByProgramSetsRowsWhateverItsFlagSays) {
    select(NSIndexSet{0, 2, 3});
    EXPECT_EQ(selected(), "0,2-3");
    EXPECT_EQ(table->selectedRow(), 3);
    select(NSIndexSet(1), true);
    EXPECT_EQ(selected(), "0-3");
    EXPECT_EQ(table->selectedRow(), 1) << "the row selected last";
    select(NSIndexSet(), true);
    EXPECT_EQ(table->selectedRow(), 1);
    select(NSIndexSet(4));
    EXPECT_EQ(selected(), "4");
    select(NSIndexSet());
    EXPECT_EQ(selected(), "none");
    EXPECT_EQ(table->selectedRow(), -1);
}

TEST_F(Table, TellsOnlyOfARealChange) {
    select(NSIndexSet{1, 2});
    log.clear();
    select(NSIndexSet{2, 1});
    select(NSIndexSet(1), true);
    select(NSIndexSet{1, 2, 5, 99});
    table->reloadData();
    EXPECT_EQ(log, (Log{"abandon", "count", "reload 5"}));
    select(NSIndexSet(1));
    EXPECT_EQ(log.back(), "did change to 1");
}

TEST_F(Table, SelectsNothingForARowThatWasNotFound) {
    select(NSIndexSet(2));
    log.clear();
    select(NSIndexSet(NSNotFound));
    EXPECT_EQ(selected(), "none");
    EXPECT_EQ(log, Log{"did change to none"});
    select(NSIndexSet(5));
    select(NSIndexSet(NSNotFound - 1));
    EXPECT_EQ(selected(), "none");
    EXPECT_EQ(log.size(), 1u);
}

TEST_F(Table, ReloadedKeepsTheRowsThatStillExist) {
    select(NSIndexSet{1, 4});
    select(NSIndexSet(0), true);
    log.clear();
    rows->count = 3;
    table->reloadData();
    EXPECT_EQ(log, (Log{"abandon", "count", "reload 3", "did change to 0-1"})) << "told once, before it returns";
    EXPECT_EQ(table->selectedRow(), 0) << "the row selected last still exists";
    log.clear();
    rows->count = 7;
    table->reloadData();
    EXPECT_EQ(log, (Log{"abandon", "count", "reload 7"}));
    EXPECT_EQ(selected(), "0-1");
    rows->count = 1;
    select(NSIndexSet(1));
    table->reloadData();
    EXPECT_EQ(selected(), "none");
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_EQ(peer.selection, "none at -1");
}

TEST_F(Table, ReloadedWithAnotherLastRowTakesTheHighestThatIsLeft) {
    select(NSIndexSet{0, 2, 4});
    rows->count = 3;
    table->reloadData();
    EXPECT_EQ(table->selectedRow(), 2);
}

TEST_F(Table, HasNoRowsWithoutADataSource) {
    rows->count = -1;
    table->reloadData();
    EXPECT_EQ(table->numberOfRows(), 0) << "no number of rows";
    rows->count = 5;
    table->reloadData();
    select(NSIndexSet(2));
    table->setDataSource(nullptr);
    table->reloadData();
    EXPECT_EQ(table->numberOfRows(), 0);
    EXPECT_EQ(selected(), "none");
}

TEST_F(Table, ReadsItsRowsOnceBeforeTheFirstSelection) {
    const auto fresh = std::make_shared<NSTableView>();
    fresh->loadIfNeeded();
    EXPECT_EQ(fresh->numberOfRows(), 0);
    fresh->setDataSource(rows);
    EXPECT_EQ(log, Log{});
    fresh->selectRowIndexesByExtendingSelection(NSIndexSet(3), false);
    EXPECT_EQ(fresh->selectedRow(), 3);
    fresh->selectRowIndexesByExtendingSelection(NSIndexSet(2), false);
    fresh->loadIfNeeded();
    EXPECT_EQ(log, Log{"count"});
}

TEST_F(Table, IsSelectedAgainFromWithinTheNotification) {
    rows->onChange = [&] {
        if (table->selectedRow() < 0)
            select(NSIndexSet(2));
    };
    const auto token = observe();
    select(NSIndexSet(2));
    log.clear();
    table->userSelects(NSIndexSet(), -1);
    EXPECT_EQ(log, (Log{"commit", "did change to none", "did change to 2", "observer", "observer"}));
    EXPECT_EQ(selected(), "2");
    EXPECT_EQ(peer.selection, "2 at 2");
    NSNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(Table, IsReloadedFromWithinTheNotification) {
    rows->onChange = [&] {
        rows->onChange = nullptr;
        rows->count = 2;
        table->reloadData();
    };
    select(NSIndexSet{1, 4});
    EXPECT_EQ(log, (Log{"did change to 1,4", "abandon", "count", "reload 2", "did change to 1"}));
    EXPECT_EQ(table->selectedRow(), 1);
}

TEST_F(Table, TellsItsDelegateBeforeTheObserversThatCameLater) {
    const auto token = observe();
    select(NSIndexSet(2));
    EXPECT_EQ(log, (Log{"did change to 2", "observer"}));
    NSNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(Table, AsksAndTellsNoDelegateThatWasTakenAway) {
    table->setDelegate(nullptr);
    EXPECT_TRUE(table->userSelects(NSIndexSet(2), 2));
    select(NSIndexSet(3));
    EXPECT_EQ(log, Log{"commit"});
    EXPECT_EQ(table->viewAtColumnRow(0, 0), nullptr);
}

TEST_F(Table, TellsADelegateSetTwiceOnce) {
    table->setDelegate(rows);
    select(NSIndexSet(2));
    EXPECT_EQ(log, Log{"did change to 2"});
}

TEST_F(Table, LooksOnDataSourceAndDelegateWeakly) {
    const std::weak_ptr<Rows> watched = rows;
    rows.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(table->userSelects(NSIndexSet(2), 2));
    table->reloadData();
    EXPECT_EQ(table->numberOfRows(), 0);
}

TEST_F(Table, TellsNobodyOfAnotherTable) {
    const auto other = std::make_shared<NSTableView>();
    other->setDataSource(rows);
    other->selectRowIndexesByExtendingSelection(NSIndexSet(2), false);
    EXPECT_EQ(log, Log{"count"});
}

TEST_F(Table, AsksForACellOnceUntilItIsReloaded) {
    const auto cell = table->viewAtColumnRow(0, 1);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->identifier(), u"name");
    EXPECT_EQ(table->viewAtColumnRow(0, 1), cell);
    EXPECT_EQ(log, Log{"cell 1"});
    select(NSIndexSet(1));
    EXPECT_EQ(table->viewAtColumnRow(0, 1), cell) << "a selection asks for no cell";
    table->reloadData();
    log.clear();
    EXPECT_NE(table->viewAtColumnRow(0, 1), cell);
    EXPECT_EQ(log, Log{"cell 1"});
}

TEST_F(Table, MayHaveRowsWithoutCell) {
    rows->withoutCell = 1;
    EXPECT_EQ(table->viewAtColumnRow(0, 1), nullptr);
    EXPECT_EQ(table->viewAtColumnRow(0, 1), nullptr);
    EXPECT_EQ(log, Log{"cell 1"}) << "asked once all the same";
}

TEST_F(Table, HasNoCellOutsideItsRowsAndColumns) {
    const std::pair<NSInteger, NSInteger> places[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 5}};
    for (const auto& [column, row] : places)
        EXPECT_EQ(table->viewAtColumnRow(column, row), nullptr);
    EXPECT_EQ(log, Log{});
}

TEST_F(Table, KeepsTheCellBeingEditedAmongAnyNumberOfOthers) {
    rows->count = 5000;
    table->reloadData();
    const auto edited = table->viewAtColumnRow(0, 0);
    table->setEditedCell(edited);
    for (NSInteger row = 1; row < 5000; ++row)
        table->viewAtColumnRow(0, row);
    EXPECT_EQ(table->viewAtColumnRow(0, 0), edited);
    EXPECT_EQ(table->editedCell(), edited);
    table->reloadData();
    EXPECT_EQ(table->editedCell(), nullptr);
}

TEST_F(Table, MakesCellsOfTheKindsItKnows) {
    const auto listener = std::make_shared<Listener>();
    EXPECT_EQ(table->makeViewWithIdentifierOwner(u"absent", listener), nullptr);
    const auto name = table->makeViewWithIdentifierOwner(u"name", listener);
    ASSERT_TRUE(name);
    EXPECT_TRUE(name->textField()->isEditable());
    EXPECT_TRUE(name->textField()->sendsActionOnEndEditing());
    name->textField()->userChangedText(u"new");
    name->textField()->userEndsEditing(NSTextField::Ending::focusLost);
    EXPECT_EQ(listener->senders, std::vector<std::shared_ptr<NSObject>>{name->textField()});
    const auto icon = table->makeViewWithIdentifierOwner(u"icon", listener);
    ASSERT_TRUE(icon);
    EXPECT_FALSE(icon->textField()->isEditable()) << "a kind without action is not edited";
}

TEST_F(Table, FindsAColumnByItsIdentifierAndTitlesIt) {
    const auto column = table->tableColumnWithIdentifier(u"name");
    ASSERT_TRUE(column);
    column->setTitle(u"Name");
    EXPECT_EQ(peer.titles, (std::map<NSInteger, std::u16string>{{0, u"Name"}}));
    EXPECT_EQ(table->tableColumnWithIdentifier(u"Name"), nullptr);
    tell(table->tableColumnWithIdentifier(u"absent"), &NSTableColumn::setTitle, u"Name");
}

TEST_F(Table, ShowsAllOfItInANewPeer) {
    table->tableColumnWithIdentifier(u"name")->setTitle(u"Name");
    table->setHeaderView(std::make_shared<NSTableHeaderView>(NSTableHeaderView{true}));
    EXPECT_EQ(peer.header, std::pair(true, true));
    select(NSIndexSet{1, 2});
    auto next = std::make_unique<FakeTablePeer>();
    auto& shown = *next;
    log.clear();
    shown.log = &log;
    table->setPeer(std::move(next));
    EXPECT_EQ(shown.titles[0], u"Name");
    EXPECT_EQ(shown.header, std::pair(true, true));
    EXPECT_EQ(shown.selection, "1-2 at 2");
    EXPECT_EQ(log, Log{"reload 5"});
    table->setHeaderView(nullptr);
    EXPECT_EQ(shown.header, std::pair(false, false));
}

TEST_F(Table, StopsListeningWhenItIsGone) {
    auto other = std::make_shared<NSTableView>();
    other->setDelegate(rows);
    const std::weak_ptr<NSTableView> watched = other;
    other.reset();
    EXPECT_TRUE(watched.expired());
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSTableViewSelectionDidChangeNotification,
                                                                     nullptr);
    EXPECT_EQ(log, Log{});
}

} // namespace
