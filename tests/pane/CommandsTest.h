// SPDX-License-Identifier: MIT
#pragma once

#include "PaneTest.h"

#include "../support/DragUser.h"
#include "../support/MenuUser.h"

#include <AppKit/NSPopUpButton.h>

#include <QLineEdit>
#include <QTableView>

#include <fstream>
#include <iterator>

namespace testing_support {

/// The commands on configurations, given by a user of the real pane.
class CommandsTest : public PaneTest {
protected:
    using Configurations = std::vector<std::shared_ptr<RecordingConfiguration>>;

    /// A pane on ordinary configurations with these identifiers, which are their names too.
    void startWith(const std::vector<std::u16string>& identifiers) {
        configurations.clear();
        for (const auto& identifier : identifiers)
            configurations.push_back(configuration(identifier));
        imprinter->setList(configurations);
        start();
        taken();
    }

    std::shared_ptr<platform::NSTableView> table() { return outlet<platform::NSTableView>(u"tableView"); }
    QTableView& grid() { return dynamic_cast<QTableView&>(*platform::widgetOf(*table())); }
    QWidget& widget(std::u16string_view name) { return *platform::widgetOf(*outlet<platform::NSView>(name)); }
    QRect rowRect(int row) { return grid().visualRect(grid().model()->index(row, 0)); }

    void clickRow(int row) { QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, rowRect(row).center()); }
    /// Selects without asking, so that another configuration is edited than the one selected.
    void selectRow(platform::NSUInteger row) {
        table()->selectRowIndexesByExtendingSelection(platform::NSIndexSet(row), false);
    }
    void selectNothing() {
        pane->setCurrentConfiguration(nullptr);
        table()->selectRowIndexesByExtendingSelection({}, false);
    }
    std::vector<QString> rows() {
        std::vector<QString> names;
        for (int row = 0; row < grid().model()->rowCount(); ++row)
            names.push_back(grid().model()->index(row, 0).data().toString());
        return names;
    }

    /// Opens the button's menu, or the table's.
    bool withActions(const std::function<void(QMenu&)>& act) {
        return withMenu([this] { QTest::mouseClick(&widget(u"actionPopupMenu"), Qt::LeftButton); }, act);
    }
    bool withTableMenu(const QPoint& at, const std::function<void(QMenu&)>& act) {
        return withMenu([&] { rightClick(*grid().viewport(), at); }, act);
    }
    void choose(const QString& title) {
        EXPECT_TRUE(withActions([&](QMenu& menu) { click(menu, title); }));
    }
    void pressDelete() { QTest::mouseClick(&widget(u"deleteConfigurationBtn"), Qt::LeftButton); }
    /// Renames the selected row.
    void rename(const QString& name, Qt::Key end = Qt::Key_Return) {
        QTest::keyClick(&grid(), Qt::Key_F2);
        auto* editor = grid().viewport()->findChild<QLineEdit*>();
        ASSERT_TRUE(editor);
        editor->selectAll();
        if (name.isEmpty())
            QTest::keyClick(editor, Qt::Key_Delete);
        QTest::keyClicks(editor, name);
        QTest::keyClick(editor, end);
    }

    /// A pasteboard with the archive of a file under the type of the rows.
    static std::shared_ptr<platform::NSPasteboard> rowsFrom(const std::string& file) {
        std::ifstream stream(KEYED_ARCHIVES "/" + file, std::ios::binary);
        EXPECT_TRUE(stream) << file;
        return rowsOf({std::istreambuf_iterator<char>(stream), {}});
    }
    static std::shared_ptr<platform::NSPasteboard> rowsOf(const std::string& archive) {
        auto pasteboard = std::make_shared<platform::NSPasteboard>();
        pasteboard->setDataForType(std::make_shared<const std::vector<std::uint8_t>>(archive.begin(), archive.end()),
                                   u"VelImprintPasteboardType");
        return pasteboard;
    }
    /// The place between two rows, just below the boundary above `row`.
    QPoint above(int row) {
        if (row < grid().model()->rowCount())
            return {rowRect(row).x() + 5, rowRect(row).y() + 2};
        return {5, rowRect(row - 1).bottom() + 10};
    }
    /// A drag from elsewhere in the program. Answers whether it was taken.
    bool dropAbove(int row, const std::shared_ptr<platform::NSPasteboard>& pasteboard) {
        const platform::RunningDrag running(std::make_shared<platform::NSPasteboard>(), pasteboard);
        return DragUser(*grid().viewport(), *pasteboard).dropsAt(above(row));
    }

    /// What was recorded, without what the table asks when it draws its rows.
    MessageLog takenCommands() {
        auto messages = takenWithoutListing();
        std::erase_if(messages, [](const auto& message) { return message.ends_with(" combinedConfiguration"); });
        return messages;
    }
    /// Lets the blocks of the last command run.
    void waitForSelection() { queue->advance(0.2); }

    Configurations configurations;
};

} // namespace testing_support
