// SPDX-License-Identifier: MIT
#include "TableTest.h"

#include "DragUser.h"

using namespace platform;
using namespace testing_support;

namespace {

const std::u16string rowsType = u"RowsForTests";

NSData bytes(const std::string& text) {
    return std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end());
}

/// Takes drops above rows.
class DropSource final : public NSObject, public NSTableViewDataSource {
public:
    NSInteger numberOfRowsInTableView(const std::shared_ptr<NSTableView>&) override { return rows; }
    NSDragOperation tableViewValidateDropProposedRowProposedDropOperation(const std::shared_ptr<NSTableView>&,
                                                                          const std::shared_ptr<NSDraggingInfo>& info,
                                                                          NSInteger row,
                                                                          NSTableViewDropOperation operation) override {
        log.push_back((operation == NSTableViewDropOperation::above ? "above " : "on ") + std::to_string(row));
        source = info->draggingSource();
        return operation == NSTableViewDropOperation::above && row != refused ? answer : NSDragOperationNone;
    }
    bool tableViewAcceptDropRowDropOperation(const std::shared_ptr<NSTableView>&,
                                             const std::shared_ptr<NSDraggingInfo>& info, NSInteger row,
                                             NSTableViewDropOperation) override {
        const auto data = info->draggingPasteboard()->dataForType(rowsType);
        log.push_back("drop " + std::to_string(row) + " " + (data ? std::string(data->begin(), data->end()) : "nil"));
        if (onDrop)
            onDrop();
        return takes;
    }
    Log taken() { return std::exchange(log, {}); }

    NSInteger rows = 3;
    NSInteger refused = -1;
    NSDragOperation answer = NSDragOperationMove;
    bool takes = true;
    std::shared_ptr<NSObject> source;
    std::function<void()> onDrop;
    Log log;
};

class TableDrops : public TableTest {
protected:
    void SetUp() override {
        showTable();
        table->setDataSource(drops);
        table->reloadData();
        table->registerForDraggedTypes({rowsType});
        pasteboard->setDataForType(bytes("2"), rowsType);
    }
    /// A place in a row, as a part of its height.
    QPoint at(int row, double fraction) const {
        const auto rect = cell(row);
        return {rect.x() + 5, rect.y() + static_cast<int>(rect.height() * fraction)};
    }
    DragUser drag() { return DragUser(*grid->viewport(), *pasteboard); }

    std::shared_ptr<DropSource> drops = std::make_shared<DropSource>();
    std::shared_ptr<NSPasteboard> pasteboard = std::make_shared<NSPasteboard>();
    std::shared_ptr<NSObject> origin = std::make_shared<NSPasteboard>();
};

TEST_F(TableDrops, NearABoundaryADropAboveIsProposedAndOverTheMiddleOneOnTheRow) {
    auto user = drag();
    user.moves(at(1, 0.1));
    user.moves(at(1, 0.5));
    user.moves(at(1, 0.9));
    EXPECT_EQ(drops->taken(), (Log{"above 1", "on 1", "above 2"}));
}

TEST_F(TableDrops, BelowTheLastRowADropAboveTheNumberOfRowsIsProposed) {
    auto user = drag();
    user.moves({5, grid->viewport()->height() - 3});
    EXPECT_EQ(drops->taken(), Log{"above 3"});
}

TEST_F(TableDrops, AnEmptyTableProposesADropAboveRowNought) {
    drops->rows = 0;
    table->reloadData();
    drag().moves({5, 5});
    EXPECT_EQ(drops->taken(), Log{"above 0"});
}

TEST_F(TableDrops, TheAnswerIsWhatTheToolkitIsTold) {
    auto user = drag();
    EXPECT_EQ(user.moves(at(1, 0.1)), Qt::MoveAction);
    EXPECT_EQ(user.moves(at(1, 0.5)), Qt::IgnoreAction);
    drops->answer = NSDragOperationCopy;
    EXPECT_EQ(user.moves(at(1, 0.9)), Qt::CopyAction);
}

TEST_F(TableDrops, OnReleaseTheDropLastValidatedComesOnce) {
    auto user = drag();
    user.moves(at(0, 0.1));
    user.moves(at(2, 0.9));
    drops->taken();
    EXPECT_TRUE(user.drops());
    EXPECT_EQ(drops->taken(), Log{"drop 3 2"});
    EXPECT_EQ(table->proposedDrop(), std::nullopt);
}

TEST_F(TableDrops, ARefusedDropIsNotSent) {
    drops->refused = 1;
    EXPECT_FALSE(drag().dropsAt(at(1, 0.1)));
    EXPECT_EQ(drops->taken(), Log{"above 1"});
    EXPECT_EQ(table->proposedDrop(), std::nullopt);
}

TEST_F(TableDrops, ADropThatFailsIsReportedSo) {
    drops->takes = false;
    EXPECT_FALSE(drag().dropsAt(at(1, 0.1)));
    EXPECT_EQ(drops->taken(), (Log{"above 1", "drop 1 2"}));
}

TEST_F(TableDrops, ADragThatLeavesProposesNothingAnyMore) {
    auto user = drag();
    user.moves(at(1, 0.1));
    EXPECT_EQ(table->proposedDrop(), (NSTableViewDrop{1, NSTableViewDropOperation::above}));
    user.leaves();
    EXPECT_EQ(table->proposedDrop(), std::nullopt);
}

TEST_F(TableDrops, OtherTypesAskNothing) {
    pasteboard->clearContents();
    pasteboard->setDataForType(bytes("2"), u"SomethingElse");
    EXPECT_FALSE(drag().dropsAt(at(1, 0.1)));
    EXPECT_EQ(drops->taken(), Log());
}

TEST_F(TableDrops, WithoutRegisteredTypesNothingIsAsked) {
    table->registerForDraggedTypes({});
    EXPECT_FALSE(drag().dropsAt(at(1, 0.1)));
    EXPECT_EQ(drops->taken(), Log());
}

TEST_F(TableDrops, ADisabledTableAsksNothing) {
    table->setEnabled(false);
    auto user = drag();
    EXPECT_EQ(user.moves(at(1, 0.1)), Qt::IgnoreAction);
    EXPECT_EQ(drops->taken(), Log());
}

TEST_F(TableDrops, ADragFromElsewhereHasNoSource) {
    drag().moves(at(1, 0.1));
    EXPECT_EQ(drops->source, nullptr);
}

TEST_F(TableDrops, ADeclaredDragHasItsSourceAndItsOwnPasteboard) {
    const RunningDrag running(origin, pasteboard);
    auto user = drag();
    user.moves(at(1, 0.1));
    EXPECT_EQ(drops->source, origin);
}

TEST_F(TableDrops, ADragThatHasEndedIsNobodysSource) {
    { const RunningDrag running(origin, pasteboard); }
    drag().moves(at(1, 0.1));
    EXPECT_EQ(drops->source, nullptr);
}

TEST_F(TableDrops, TheWindowMayGoInADrop) {
    auto user = drag();
    user.moves(at(1, 0.1));
    drops->onDrop = [&] {
        owner->connected.clear();
        contents = {};
        table.reset();
        window.release()->deleteLater();
    };
    EXPECT_TRUE(user.drops());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(TableDrops, NeitherSelectionNorFocusChange) {
    select({0});
    drag().dropsAt(at(2, 0.1));
    EXPECT_EQ(table->selectedRow(), 0);
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(TableDrops, RowsStartNoDrags) {
    EXPECT_FALSE(grid->dragEnabled());
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, cell(0).center());
    QMouseEvent move(QEvent::MouseMove, cell(2).center(), grid->viewport()->mapToGlobal(cell(2).center()), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(grid->viewport(), &move);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, cell(2).center());
    EXPECT_EQ(table->selectedRow(), 0);
}

TEST(Pasteboard, HoldsDataUnderItsTypesUntilItIsCleared) {
    const auto pasteboard = std::make_shared<NSPasteboard>();
    EXPECT_EQ(pasteboard->dataForType(rowsType), nullptr);
    pasteboard->setDataForType(bytes("a"), rowsType);
    pasteboard->setDataForType(bytes("b"), u"Other");
    pasteboard->setDataForType(bytes("c"), rowsType);
    EXPECT_EQ(*pasteboard->dataForType(rowsType), *bytes("c"));
    EXPECT_EQ(pasteboard->types(), (std::vector<std::u16string>{u"Other", rowsType}));
    pasteboard->setDataForType(nullptr, u"Other");
    EXPECT_EQ(pasteboard->types(), std::vector<std::u16string>{rowsType});
    const auto before = pasteboard->changeCount();
    pasteboard->clearContents();
    EXPECT_EQ(pasteboard->types(), std::vector<std::u16string>());
    EXPECT_GT(pasteboard->changeCount(), before);
}

} // namespace
