// SPDX-License-Identifier: MIT
#include "TablePeer.h"

#include "Dragging.h"
#include "FrameLines.h"
#include "TextFieldPeer.h"

#include <Foundation/dispatch.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace platform::qt {

TableWidget::TableWidget(QWidget* parent) : QTableView(parent), m_header(new TableHeader(this)) {
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false);
    setAutoScroll(false);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new CellDelegate(this));
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    setHorizontalHeader(m_header);
}

void TableWidget::setTable(const std::shared_ptr<NSTableView>& table) {
    m_table = table;
    m_model = new TableModel(table, this);
    // Whatever an interface file says of these, the view alone selects.
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setModel(m_model);
}

void TableWidget::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    enter([this] { tell(m_table, &NSTableView::loadIfNeeded); });
}

void TableWidget::reload(NSInteger rows) {
    ++m_renameRequests;
    const int scrolled = verticalScrollBar()->value();
    m_model->reload(rows);
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
}

void TableWidget::showSelection(const NSIndexSet& rows, NSInteger current) {
    ++m_changes;
    QItemSelection selection;
    const int lastColumn = m_model->columnCount() - 1;
    for (const auto& range : rows.ranges())
        selection.select(m_model->index(static_cast<int>(range.location), 0),
                         m_model->index(static_cast<int>(range.location + range.length - 1), lastColumn));
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    selectionModel()->setCurrentIndex(m_model->index(static_cast<int>(current), 0), QItemSelectionModel::NoUpdate);
    if (rows.count() < 2)
        m_anchor = current;
}

void TableWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        enter([&] { press(indexAt(event->position().toPoint()), event->modifiers()); });
}

void TableWidget::press(const QModelIndex& index, Qt::KeyboardModifiers modifiers) {
    const auto table = m_table.lock();
    ++m_renameRequests;
    if (!table)
        return;
    const auto row = static_cast<NSInteger>(index.row()); // -1 in the empty area
    const bool multiple = table->allowsMultipleSelection();
    if (!index.isValid()) {
        table->userSelects({}, -1);
        return;
    }
    const auto selected = table->selectedRowIndexes();
    const NSIndexSet alone(static_cast<NSUInteger>(row));
    if (modifiers & Qt::ControlModifier) {
        auto rows = multiple ? selected : alone;
        if (selected.containsIndex(static_cast<NSUInteger>(row)))
            rows.removeIndex(static_cast<NSUInteger>(row));
        else
            rows.addIndex(static_cast<NSUInteger>(row));
        m_anchor = row;
        table->userSelects(rows, row);
    } else if ((modifiers & Qt::ShiftModifier) && multiple) {
        selectFromAnchor(row);
    } else if (selected == alone) {
        renameLater(index);
    } else {
        m_anchor = row;
        table->userSelects(alone, row);
    }
}

void TableWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier)
        enter([&] {
            ++m_renameRequests;
            const auto index = indexAt(event->position().toPoint());
            if (selectionModel()->isSelected(index))
                rename(index);
        });
}

void TableWidget::keyPressEvent(QKeyEvent* event) {
    const auto table = m_table.lock();
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const auto scroll = [this](QAbstractSlider::SliderAction action) { verticalScrollBar()->triggerAction(action); };
    ++m_renameRequests;
    if (!table)
        return;
    if (event->matches(QKeySequence::SelectAll) && table->allowsMultipleSelection()) {
        NSIndexSet all;
        all.addRange({0, static_cast<NSUInteger>(table->numberOfRows())});
        enter([&] { table->userSelects(all, table->selectedRow()); });
        return;
    }
    switch (event->key()) {
    case Qt::Key_Up:
        enter([&] { step(-1, shift && table->allowsMultipleSelection()); });
        break;
    case Qt::Key_Down:
        enter([&] { step(1, shift && table->allowsMultipleSelection()); });
        break;
    case Qt::Key_F2:
        enter([&] { renameSelected(); });
        break;
    case Qt::Key_PageUp:
        scroll(QAbstractSlider::SliderPageStepSub);
        break;
    case Qt::Key_PageDown:
        scroll(QAbstractSlider::SliderPageStepAdd);
        break;
    case Qt::Key_Home:
        scroll(QAbstractSlider::SliderToMinimum);
        break;
    case Qt::Key_End:
        scroll(QAbstractSlider::SliderToMaximum);
        break;
    default:
        event->ignore();
    }
}

void TableWidget::step(int direction, bool extend) {
    const auto table = m_table.lock();
    const auto rows = table->numberOfRows();
    const auto from = table->selectedRow();
    const auto first = from >= 0 ? from + direction : direction > 0 ? 0 : rows - 1;
    // A refused row is skipped: nothing was selected while it was asked for.
    for (auto row = first; row >= 0 && row < rows; row += direction) {
        const auto before = table->selectedRowIndexes();
        const int changes = m_changes;
        if (extend)
            selectFromAnchor(row);
        else
            table->userSelects(NSIndexSet(static_cast<NSUInteger>(row)), row);
        if (table->selectedRow() == row || m_changes > changes + 1 || !(table->selectedRowIndexes() == before))
            break;
        if (m_editor)
            break;
    }
    if (table->selectedRow() >= 0)
        scrollTo(m_model->index(static_cast<int>(table->selectedRow()), 0));
}

void TableWidget::selectFromAnchor(NSInteger row) {
    const auto anchor = std::max<NSInteger>(m_anchor, 0);
    NSIndexSet rows;
    rows.addRange(
        {static_cast<NSUInteger>(std::min(anchor, row)), static_cast<NSUInteger>(std::abs(row - anchor) + 1)});
    tell(m_table, &NSTableView::userSelects, rows, row);
    m_anchor = anchor;
}

void TableWidget::renameLater(const QModelIndex& index) {
    const int request = m_renameRequests;
    const auto start = [self = QPointer<TableWidget>(this), request, at = QPersistentModelIndex(index)] {
        if (self && self->m_renameRequests == request && at.isValid())
            self->rename(at);
    };
    dispatchAfter(QApplication::doubleClickInterval() / 1000.0, start);
}

void TableWidget::renameSelected() {
    const auto table = m_table.lock();
    for (int column = 0; table && !m_editor && column < m_model->columnCount(); ++column)
        rename(m_model->index(static_cast<int>(table->selectedRow()), column));
}

void TableWidget::rename(const QModelIndex& index) {
    const auto table = m_table.lock();
    auto* shown = table && table->isEnabled() && commitEditing() ? m_model->cellAt(index) : nullptr;
    const auto cell = shown ? table->viewAtColumnRow(index.column(), index.row()) : nullptr;
    if (!cell || !cell->textField()->acceptsFirstResponder())
        return;
    scrollTo(index);
    m_editedField = cell->textField();
    m_editor = new LineEdit(viewport());
    m_editor->setGeometry(visualRect(index));
    m_editor->showText(shown->text());
    m_editor->setField(m_editedField);
    m_editor->setFinished([this] { removeEditor(); });
    shown->setEditor(m_editor);
    table->setEditedCell(cell);
    m_editor->show();
    m_editor->setFocus(Qt::OtherFocusReason);
    m_editor->selectAll();
}

bool TableWidget::commitEditing() {
    const QPointer<LineEdit> editor = m_editor;
    if (editor && !editor->endEditing(NSTextField::Ending::focusLost))
        return false;
    if (editor == m_editor)
        removeEditor();
    return true;
}

void TableWidget::abandonEditing() {
    if (const auto field = m_editedField)
        field->userCancelsEditing();
    removeEditor();
}

void TableWidget::removeEditor() {
    if (!m_editor)
        return;
    auto* closing = m_editor.data();
    m_editor.clear();
    m_editedField.reset();
    tell(m_table, &NSTableView::setEditedCell, nullptr);
    // Nothing the editor does from here on is the user's.
    closing->setField(nullptr);
    closing->setFinished({});
    if (window()->focusWidget() == closing)
        setFocus(Qt::OtherFocusReason);
    closing->hide();
    closing->deleteLater();
    viewport()->update();
}

void TableWidget::dragOver(const QDropEvent& event) {
    NSDragOperation answer = NSDragOperationNone;
    enter([&] {
        const auto table = m_table.lock();
        const auto at = event.position().toPoint();
        const int row = rowAt(at.y());
        const double into = row < 0 ? 0 : at.y() - rowViewportPosition(row) + 0.5;
        if (table)
            answer = table->userDragsOver(draggingInfoOf(event), row, row < 0 ? 0 : into / rowHeight(row));
    });
    m_dropAction = dropActionOf(answer);
    viewport()->update();
}

void TableWidget::endDrag() {
    stopAutoScroll();
    setAutoScroll(false);
    viewport()->update();
}

void TableWidget::dragEnterEvent(QDragEnterEvent* event) {
    const auto table = m_table.lock();
    // Taken even where the first place refuses: only then does the toolkit tell of the next ones.
    if (!table || !draggingInfoOf(*event)->carries(table->registeredDraggedTypes()))
        return event->ignore();
    setAutoScroll(true); // on as long as the drag is over the table
    event->accept();
}

void TableWidget::dragMoveEvent(QDragMoveEvent* event) {
    dragOver(*event);
    const int y = event->position().toPoint().y();
    if (y < autoScrollMargin() || y > viewport()->height() - autoScrollMargin())
        startAutoScroll();
    if (!(event->possibleActions() & m_dropAction))
        return event->ignore();
    event->setDropAction(m_dropAction);
    event->accept();
}

void TableWidget::dragLeaveEvent(QDragLeaveEvent*) {
    tell(m_table, &NSTableView::userDragsOut);
    endDrag();
}

void TableWidget::dropEvent(QDropEvent* event) {
    const auto info = draggingInfoOf(*event);
    bool accepted = false;
    const QPointer<TableWidget> self(this);
    enter([&] { accepted = tell(m_table, &NSTableView::userDrops, info); });
    event->setDropAction(accepted ? m_dropAction : Qt::IgnoreAction);
    event->setAccepted(accepted);
    if (self)
        endDrag();
}

bool TableWidget::event(QEvent* event) {
    const bool answer = QTableView::event(event);
    if (event->type() == QEvent::Paint)
        mendFrameLines(*this);
    return answer;
}

void TableWidget::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    const auto table = m_table.lock();
    if (!table || !table->proposedDrop())
        return;
    const auto [row, operation] = *table->proposedDrop();
    const bool below = row >= table->numberOfRows();
    const int boundary =
        below ? verticalHeader()->length() - verticalOffset() : rowViewportPosition(static_cast<int>(row));
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    if (operation == NSTableViewDropOperation::above)
        painter.drawLine(0, std::max(boundary, 1), viewport()->width(), std::max(boundary, 1));
    else
        painter.drawRect(1, boundary + 1, viewport()->width() - 2, rowHeight(static_cast<int>(row)) - 2);
}

namespace {

class RowsPeer final : public WidgetPeer, public TablePeer {
public:
    using WidgetPeer::WidgetPeer;

    void setColumnTitle(NSInteger column, const std::u16string&) override {
        if (auto* table = as<TableWidget>())
            table->showTitle(static_cast<int>(column));
    }
    void setHeader(bool visible, bool bottomBorder) override {
        if (auto* table = as<TableWidget>()) {
            table->headerView().setVisible(visible);
            table->headerView().setBottomBorder(bottomBorder);
        }
    }
    void reload(NSInteger rows) override {
        if (auto* table = as<TableWidget>())
            table->reload(rows);
    }
    void setSelection(const NSIndexSet& rows, NSInteger current) override {
        if (auto* table = as<TableWidget>())
            table->showSelection(rows, current);
    }
    void setDraggedTypes(const std::vector<std::u16string>& types) override {
        if (auto* table = as<TableWidget>())
            table->setAcceptDrops(!types.empty());
    }
    bool commitEditing() override {
        auto* table = as<TableWidget>();
        return !table || table->commitEditing();
    }
    void abandonEditing() override {
        if (auto* table = as<TableWidget>())
            table->abandonEditing();
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeTablePeer(const std::shared_ptr<NSTableView>& view, TableWidget& widget) {
    widget.setTable(view);
    return std::make_unique<RowsPeer>(widget);
}

} // namespace platform::qt
