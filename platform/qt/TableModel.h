// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSTableView.h>

#include <QAbstractTableModel>
#include <QStyledItemDelegate>

namespace platform::qt {

class LineEdit;

/// Shows the text field of a cell: in the row's place, and in the editor while it is renamed there.
class CellTextPeer final : public TextPeer {
public:
    explicit CellTextPeer(std::function<void()> changed) : m_changed(std::move(changed)) {}
    ~CellTextPeer() override;

    const QString& text() const { return m_text; }
    bool isEnabled() const { return m_enabled; }
    bool isHidden() const { return m_hidden; }
    void setEditor(LineEdit* editor);

    void setText(const std::u16string& text) override;
    void setHidden(bool hidden) override;
    void setEnabled(bool enabled) override;
    std::shared_ptr<NSWindow> window() override { return nullptr; }
    bool focus() override { return false; }

private:
    std::function<void()> m_changed;
    QPointer<QWidget> m_editor;
    QString m_text;
    bool m_enabled = true;
    bool m_hidden = false;
};

/// The rows of a table view. A cell is asked for when it is about to be seen.
class TableModel final : public QAbstractTableModel {
public:
    TableModel(const std::shared_ptr<NSTableView>& table, QObject* parent);

    /// Forgets what is shown and has `rows` rows.
    void reload(NSInteger rows);
    void titleChanged(int column) { emit headerDataChanged(Qt::Horizontal, column, column); }
    /// What shows the cell's text; null where the table has no cell there.
    CellTextPeer* cellAt(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::weak_ptr<NSTableView> m_table;
    int m_rows = 0;
};

/// Draws the text of a disabled cell dimmed, in a selected row too.
class CellDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace platform::qt
