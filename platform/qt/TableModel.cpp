// SPDX-License-Identifier: MIT
#include "TableModel.h"

#include "TextFieldPeer.h"

#include <limits>

namespace platform::qt {

CellTextPeer::~CellTextPeer() = default;

void CellTextPeer::setEditor(LineEdit* editor) {
    m_editor = editor;
}

void CellTextPeer::setText(const std::u16string& text) {
    m_text = toQt(text);
    if (auto* editor = static_cast<LineEdit*>(m_editor.data()))
        editor->showText(m_text);
    m_changed();
}

void CellTextPeer::setHidden(bool hidden) {
    m_hidden = hidden;
    m_changed();
}

void CellTextPeer::setEnabled(bool enabled) {
    m_enabled = enabled;
    m_changed();
}

TableModel::TableModel(const std::shared_ptr<NSTableView>& table, QObject* parent)
    : QAbstractTableModel(parent), m_table(table) {}

void TableModel::reload(NSInteger rows) {
    beginResetModel();
    m_rows = static_cast<int>(std::min<NSInteger>(rows, std::numeric_limits<int>::max()));
    endResetModel();
}

CellTextPeer* TableModel::cellAt(const QModelIndex& index) const {
    const auto table = m_table.lock();
    const auto cell = table && index.isValid() ? table->viewAtColumnRow(index.column(), index.row()) : nullptr;
    if (!cell)
        return nullptr;
    const auto& field = cell->textField();
    if (!field->peer())
        field->setPeer(std::make_unique<CellTextPeer>(
            [model = QPointer<TableModel>(const_cast<TableModel*>(this)), at = QPersistentModelIndex(index)] {
                if (model && at.isValid())
                    emit model->dataChanged(at, at);
            }));
    return dynamic_cast<CellTextPeer*>(field->peer());
}

int TableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows;
}

int TableModel::columnCount(const QModelIndex& parent) const {
    const auto table = m_table.lock();
    return parent.isValid() || !table ? 0 : static_cast<int>(table->tableColumns().size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    QVariant answer;
    if (role == Qt::DisplayRole)
        enter([&] {
            if (const auto* cell = cellAt(index); cell && !cell->isHidden())
                answer = cell->text();
        });
    return answer;
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const auto table = m_table.lock();
    if (!table || orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= static_cast<int>(table->tableColumns().size()))
        return {};
    return toQt(table->tableColumns()[static_cast<std::size_t>(section)]->title());
}

void CellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~QStyle::State_HasFocus;
    enter([&] {
        const auto* cell = static_cast<const TableModel*>(index.model())->cellAt(index);
        if (!cell || cell->isEnabled())
            return;
        option->palette.setBrush(QPalette::Text, option->palette.brush(QPalette::Disabled, QPalette::Text));
        auto onHighlight = option->palette.color(QPalette::HighlightedText);
        onHighlight.setAlphaF(0.55F);
        option->palette.setColor(QPalette::HighlightedText, onHighlight);
    });
}

} // namespace platform::qt
