// SPDX-License-Identifier: MIT
#pragma once

#include "Interface.h"

#include <AppKit/NSTableView.h>

#include <QLineEdit>
#include <QTableView>

namespace testing_support {

/// A table of two columns, of which the first is edited, beside a text field.
class TableTest : public InterfaceTest {
protected:
    void showTable(bool multiple = false, std::vector<std::u16string> rows = {u"one", u"two", u"three", u"four"}) {
        owner->rows = std::move(rows);
        auto settings = property("columns", std::vector<std::string>{"name", "kind"}) +
                        property("cells", std::vector<std::string>{"Edited rename:", "Fixed"}) +
                        property("delegate", "owner") + property("dataSource", "owner");
        if (multiple)
            settings += "<property name='multipleSelection' stdset='0'><bool>true</bool></property>";
        show({"table", "field?"}, column({widget("QTableView", "table", settings), widget("QLineEdit", "field")}));
        table = view<platform::NSTableView>("table");
        grid = shown<QTableView>("table");
        ASSERT_TRUE(table && grid);
        owner->taken();
    }

    QRect cell(int row, int column = 0) const { return grid->visualRect(grid->model()->index(row, column)); }
    void click(int row, Qt::KeyboardModifiers modifiers = {}, int column = 0) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, cell(row, column).center());
    }
    void clickEmptyArea() {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, {20, grid->viewport()->height() - 3});
    }
    void doubleClick(int row, int column = 0) {
        click(row, {}, column);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell(row, column).center());
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(grid, pressed, modifiers); }
    void select(std::initializer_list<platform::NSUInteger> rows) {
        table->selectRowIndexesByExtendingSelection(platform::NSIndexSet(rows), false);
        owner->taken();
    }

    /// The rows that are drawn selected.
    std::vector<int> shownSelection() const {
        std::vector<int> rows;
        for (const auto& index : grid->selectionModel()->selectedRows())
            rows.push_back(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    QLineEdit* editor() const { return grid->viewport()->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly); }
    bool editing() const { return editor() && editor()->isVisible(); }

    std::shared_ptr<platform::NSTableView> table;
    QTableView* grid = nullptr;
};

using Rows = std::vector<int>;

} // namespace testing_support
