// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSDragging.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSIndexSet.h>

#include <map>
#include <optional>

namespace platform {

inline const std::u16string NSTableViewSelectionDidChangeNotification = u"NSTableViewSelectionDidChangeNotification";

class NSTableView;

/// A column, found by its identifier.
class NSTableColumn final : public NSObject {
public:
    explicit NSTableColumn(std::u16string identifier) : m_identifier(std::move(identifier)) {}
    const std::u16string& identifier() const { return m_identifier; }
    /// What the header shows.
    const std::u16string& title() const { return m_title; }
    void setTitle(const std::u16string& title);

private:
    friend class NSTableView;
    std::u16string m_identifier;
    std::u16string m_title;
    std::weak_ptr<NSTableView> m_table;
};

/// The view of one cell. Reused views keep their state, so whoever asks for one sets all it shows.
class NSTableCellView final : public NSView {
public:
    explicit NSTableCellView(std::u16string identifier);
    const std::u16string& identifier() const { return m_identifier; }
    const std::shared_ptr<NSTextField>& textField() const { return m_textField; }

private:
    std::u16string m_identifier;
    std::shared_ptr<NSTextField> m_textField;
};

/// The header of a table.
struct NSTableHeaderView {
    bool hasBottomBorder = false;
};

/// Where a drag would be dropped: on a row, or in the space above it.
enum class NSTableViewDropOperation { on = 0, above = 1 };

/// A row and an operation; below the last row it is above the number of rows.
struct NSTableViewDrop {
    NSInteger row = 0;
    NSTableViewDropOperation operation = NSTableViewDropOperation::above;
    bool operator==(const NSTableViewDrop&) const = default;
};

/// Rows start no drags; a table only receives them.
class NSTableViewDataSource {
public:
    virtual ~NSTableViewDataSource();
    /// Asked on reload, not at every access.
    virtual NSInteger numberOfRowsInTableView(const std::shared_ptr<NSTableView>& table) = 0;
    /// Asked again as the pointer moves; none refuses the drop there.
    virtual NSDragOperation
    tableViewValidateDropProposedRowProposedDropOperation(const std::shared_ptr<NSTableView>& table,
                                                          const std::shared_ptr<NSDraggingInfo>& info, NSInteger row,
                                                          NSTableViewDropOperation operation);
    /// Sent once, on release, with the row and the operation last validated, and only if that answer was not none.
    virtual bool tableViewAcceptDropRowDropOperation(const std::shared_ptr<NSTableView>& table,
                                                     const std::shared_ptr<NSDraggingInfo>& info, NSInteger row,
                                                     NSTableViewDropOperation operation);
};

class NSTableViewDelegate {
public:
    virtual ~NSTableViewDelegate();
    /// The view of a cell that is about to be seen; may be null.
    virtual std::shared_ptr<NSTableCellView>
    tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>& table,
                                   const std::shared_ptr<NSTableColumn>& column, NSInteger row) = 0;
    /// Asked before a selection the user makes, for each row that would be newly selected; never for a selection by
    /// program.
    virtual bool tableViewShouldSelectRow(const std::shared_ptr<NSTableView>& table, NSInteger row);
    /// After every change of the set of selected rows, whoever made it; the notification's object is the table.
    virtual void tableViewSelectionDidChange(const NSNotification& notification);
};

/// Rows of cells, of which the user can select some.
///
/// The selection-did-change notification is posted synchronously, after the change, and only if the set of rows really
/// changed: the delegate hears it first.
class NSTableView final : public NSControl {
public:
    ~NSTableView() override;
    std::u16string_view className() const override;

    void setDataSource(const std::shared_ptr<NSTableViewDataSource>& source) { m_dataSource = source; }
    void setDelegate(const std::shared_ptr<NSTableViewDelegate>& delegate);

    void addTableColumn(const std::shared_ptr<NSTableColumn>& column);
    const std::vector<std::shared_ptr<NSTableColumn>>& tableColumns() const { return m_columns; }
    /// Null where no column has the identifier.
    std::shared_ptr<NSTableColumn> tableColumnWithIdentifier(const std::u16string& identifier) const;

    /// Null shows no header.
    const std::shared_ptr<NSTableHeaderView>& headerView() const { return m_headerView; }
    void setHeaderView(const std::shared_ptr<NSTableHeaderView>& headerView);

    /// A kind of cell of the interface file: `action` is what its text field sends on a rename; empty for cells that
    /// are not edited.
    void registerCell(const std::u16string& identifier, const std::u16string& action);
    /// A view of that kind, or null for an identifier the interface file does not have.
    std::shared_ptr<NSTableCellView> makeViewWithIdentifierOwner(const std::u16string& identifier,
                                                                 const std::shared_ptr<NSObject>& owner);

    bool allowsMultipleSelection() const { return m_multiple; }
    void setAllowsMultipleSelection(bool allows) { m_multiple = allows; }

    /// The number of rows at the last reload; 0 before the first.
    NSInteger numberOfRows() const { return m_rows; }
    /// Reads the number of rows for the first time: when rows are first selected or the table is first seen.
    void loadIfNeeded();
    /// Reads the number of rows and drops all cell views. Selected row numbers that still exist stay selected; if some
    /// were dropped, that is posted once before this returns. An edit in progress is abandoned.
    void reloadData();

    /// The row selected last, or -1.
    NSInteger selectedRow() const { return m_selectedRow; }
    const NSIndexSet& selectedRowIndexes() const { return m_selection; }
    /// Replaces or extends the selection. Rows that do not exist are left out; the delegate is not asked, nothing is
    /// scrolled, no focus is taken.
    void selectRowIndexesByExtendingSelection(const NSIndexSet& rows, bool extend);

    /// The user wants `rows` selected, `last` being the one under the pointer or the caret (-1 if none). Rows the
    /// delegate refuses are left out; if it refuses all that are new, nothing changes. An edit is committed before the
    /// delegate is asked. Answers whether the selection is now as wanted.
    bool userSelects(const NSIndexSet& rows, NSInteger last);

    /// The user drags something over the table, the pointer `fraction` (0 to 1) of the height into `row`, or below the
    /// last row where there is no such row. Near the boundary of a row a drop above it is proposed, over its middle one
    /// on it. Asks nobody, and answers none, for a drag that carries no registered type.
    NSDragOperation userDragsOver(const std::shared_ptr<NSDraggingInfo>& info, NSInteger row, double fraction);
    /// The user dragged it out again, or gave up.
    void userDragsOut() { m_drop.reset(); }
    /// The user let go of it. Answers whether it was accepted.
    bool userDrops(const std::shared_ptr<NSDraggingInfo>& info);
    /// Where it would be dropped now; none while there is no drag that would be taken.
    const std::optional<NSTableViewDrop>& proposedDrop() const { return m_drop; }

    /// The cell as it is shown, asked of the delegate the first time and kept until the next reload.
    std::shared_ptr<NSTableCellView> viewAtColumnRow(NSInteger column, NSInteger row);

    /// The cell whose text the user is changing, or null. A cell whose edit has ended is asked for anew, so that it
    /// shows what became of the text.
    void setEditedCell(const std::shared_ptr<NSTableCellView>& cell);
    std::shared_ptr<NSTableCellView> editedCell() const { return m_edited.lock(); }

protected:
    void showAll() override;

private:
    friend class NSTableColumn;
    void changeSelection(NSIndexSet selection, NSInteger selectedRow);

    struct CellKind {
        std::u16string action;
    };
    std::weak_ptr<NSTableViewDataSource> m_dataSource;
    std::weak_ptr<NSTableViewDelegate> m_delegate;
    NSNotificationCenter::Token m_delegateToken;
    std::vector<std::shared_ptr<NSTableColumn>> m_columns;
    std::shared_ptr<NSTableHeaderView> m_headerView;
    std::map<std::u16string, CellKind, std::less<>> m_cellKinds;
    std::map<std::pair<NSInteger, NSInteger>, std::shared_ptr<NSTableCellView>> m_cells;
    std::weak_ptr<NSTableCellView> m_edited;
    std::optional<NSTableViewDrop> m_drop;
    NSIndexSet m_selection;
    NSInteger m_selectedRow = -1;
    NSInteger m_rows = 0;
    bool m_loaded = false;
    bool m_multiple = false;
};

} // namespace platform
