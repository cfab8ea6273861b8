// SPDX-License-Identifier: MIT
#pragma once

#include "TableHeader.h"
#include "TableModel.h"

#include <QTableView>

namespace platform::qt {

class LineEdit;

/// The rows of a table view. The toolkit selects nothing by itself: what the user wants goes to the view, which then
/// says what is selected. A cell is renamed in its place.
class TableWidget final : public QTableView {
public:
    explicit TableWidget(QWidget* parent);

    /// Shows `table` from now on.
    void setTable(const std::shared_ptr<NSTableView>& table);
    void reload(NSInteger rows);
    void showSelection(const NSIndexSet& rows, NSInteger current);
    void showTitle(int column) { m_model->titleChanged(column); }
    TableHeader& headerView() const { return *m_header; }

    /// Opens the editor of a cell that can be edited.
    void rename(const QModelIndex& index);
    LineEdit* editor() const { return m_editor; }
    /// NO where the field refused.
    bool commitEditing();
    void abandonEditing();

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent*) override {}
    void mouseReleaseEvent(QMouseEvent*) override {}
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyboardSearch(const QString&) override {}
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex&, const QEvent*) const override {
        return QItemSelectionModel::NoUpdate;
    }

private:
    void press(const QModelIndex& index, Qt::KeyboardModifiers modifiers);
    void step(int direction, bool extend);
    void selectFromAnchor(NSInteger row);
    void renameLater(const QModelIndex& index);
    void renameSelected();
    void removeEditor();
    void dragOver(const QDropEvent& event);
    void endDrag();

    std::weak_ptr<NSTableView> m_table;
    TableHeader* m_header;
    TableModel* m_model = nullptr;
    QPointer<LineEdit> m_editor;
    std::shared_ptr<NSTextField> m_editedField;
    NSInteger m_anchor = -1;
    Qt::DropAction m_dropAction = Qt::IgnoreAction; // of the drag over the table, as last answered
    int m_changes = 0;                              // counts what the view said about its selection
    int m_renameRequests = 0;                       // a later request, or any other act, makes an earlier one void
};

std::unique_ptr<ViewPeer> makeTablePeer(const std::shared_ptr<NSTableView>& view, TableWidget& widget);

} // namespace platform::qt
