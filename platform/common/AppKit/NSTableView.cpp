// SPDX-License-Identifier: MIT
#include <AppKit/NSTableView.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

namespace {

/// Cell views kept at most between two reloads; more than any screen shows.
constexpr std::size_t keptCells = 1024;

/// How much of a row's height counts as near its boundary, at either end.
constexpr double boundary = 1.0 / 3;

} // namespace

NSTableViewDataSource::~NSTableViewDataSource() = default;
NSDragOperation NSTableViewDataSource::tableViewValidateDropProposedRowProposedDropOperation(
    const std::shared_ptr<NSTableView>&, const std::shared_ptr<NSDraggingInfo>&, NSInteger, NSTableViewDropOperation) {
    return NSDragOperationNone;
}
bool NSTableViewDataSource::tableViewAcceptDropRowDropOperation(const std::shared_ptr<NSTableView>&,
                                                                const std::shared_ptr<NSDraggingInfo>&, NSInteger,
                                                                NSTableViewDropOperation) {
    return false;
}
NSTableViewDelegate::~NSTableViewDelegate() = default;
bool NSTableViewDelegate::tableViewShouldSelectRow(const std::shared_ptr<NSTableView>&, NSInteger) {
    return true;
}
void NSTableViewDelegate::tableViewSelectionDidChange(const NSNotification&) {}

void NSTableColumn::setTitle(const std::u16string& title) {
    m_title = title;
    const auto table = m_table.lock();
    auto* shown = table ? dynamic_cast<TablePeer*>(table->peer()) : nullptr;
    if (!shown)
        return;
    const auto& columns = table->tableColumns();
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].get() == this)
            shown->setColumnTitle(static_cast<NSInteger>(i), title);
}

NSTableCellView::NSTableCellView(std::u16string identifier)
    : m_identifier(std::move(identifier)), m_textField(std::make_shared<NSTextField>()) {}

NSTableView::~NSTableView() {
    if (m_delegateToken)
        NSNotificationCenter::defaultCenter().removeObserver(m_delegateToken);
}

std::u16string_view NSTableView::className() const {
    return u"NSTableView";
}

void NSTableView::setDelegate(const std::shared_ptr<NSTableViewDelegate>& delegate) {
    auto& center = NSNotificationCenter::defaultCenter();
    if (m_delegateToken)
        center.removeObserver(m_delegateToken);
    m_delegateToken.reset();
    m_delegate = delegate;
    if (!delegate)
        return;
    m_delegateToken = center.addObserverForNameObjectQueueUsingBlock(
        NSTableViewSelectionDidChangeNotification, shared_from_this(), nullptr,
        [weak = m_delegate](const NSNotification& notification) {
            if (const auto told = weak.lock())
                told->tableViewSelectionDidChange(notification);
        });
}

void NSTableView::addTableColumn(const std::shared_ptr<NSTableColumn>& column) {
    column->m_table = std::static_pointer_cast<NSTableView>(shared_from_this());
    m_columns.push_back(column);
}

std::shared_ptr<NSTableColumn> NSTableView::tableColumnWithIdentifier(const std::u16string& identifier) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const auto& column) { return column->identifier() == identifier; });
    return found == m_columns.end() ? nullptr : *found;
}

void NSTableView::setHeaderView(const std::shared_ptr<NSTableHeaderView>& headerView) {
    m_headerView = headerView;
    if (auto* shown = dynamic_cast<TablePeer*>(peer()))
        shown->setHeader(headerView != nullptr, headerView && headerView->hasBottomBorder);
}

void NSTableView::registerCell(const std::u16string& identifier, const std::u16string& action) {
    m_cellKinds[identifier] = {action};
}

std::shared_ptr<NSTableCellView> NSTableView::makeViewWithIdentifierOwner(const std::u16string& identifier,
                                                                          const std::shared_ptr<NSObject>& owner) {
    const auto kind = m_cellKinds.find(identifier);
    if (kind == m_cellKinds.end())
        return nullptr;
    auto cell = std::make_shared<NSTableCellView>(identifier);
    cell->textField()->setEditable(!kind->second.action.empty());
    cell->textField()->setSendsActionOnEndEditing(true);
    cell->textField()->setTarget(owner);
    cell->textField()->setAction(kind->second.action);
    return cell;
}

void NSTableView::loadIfNeeded() {
    if (!m_loaded && m_dataSource.lock())
        reloadData();
}

void NSTableView::reloadData() {
    m_loaded = true;
    const auto self = std::static_pointer_cast<NSTableView>(shared_from_this());
    auto* shown = dynamic_cast<TablePeer*>(peer());
    if (shown)
        shown->abandonEditing();
    m_edited.reset();
    m_cells.clear();
    m_rows = std::max<NSInteger>(tell(m_dataSource, &NSTableViewDataSource::numberOfRowsInTableView, self), 0);
    if (shown)
        shown->reload(m_rows);
    auto kept = m_selection;
    kept.removeIndexesFrom(static_cast<NSUInteger>(m_rows));
    changeSelection(std::move(kept), m_selectedRow);
}

void NSTableView::selectRowIndexesByExtendingSelection(const NSIndexSet& rows, bool extend) {
    loadIfNeeded();
    auto there = rows;
    there.removeIndexesFrom(static_cast<NSUInteger>(m_rows));
    const auto last = there.lastIndex();
    if (extend)
        for (const auto& range : m_selection.ranges())
            there.addRange(range);
    changeSelection(std::move(there), last == NSNotFound ? m_selectedRow : static_cast<NSInteger>(last));
}

bool NSTableView::userSelects(const NSIndexSet& rows, NSInteger last) {
    if (!isEnabled() || rows == m_selection)
        return rows == m_selection;
    const auto self = std::static_pointer_cast<NSTableView>(shared_from_this());
    const auto showAgain = [this] {
        if (auto* shown = dynamic_cast<TablePeer*>(peer()))
            shown->setSelection(m_selection, m_selectedRow);
        return false;
    };
    if (auto* shown = dynamic_cast<TablePeer*>(peer()); shown && !shown->commitEditing())
        return showAgain();
    auto wanted = rows;
    wanted.removeIndexesFrom(static_cast<NSUInteger>(m_rows));
    bool asked = false;
    bool allowed = false;
    if (const auto delegate = m_delegate.lock()) {
        const auto before = m_selection;
        const auto proposed = wanted;
        proposed.enumerateIndexesUsingBlock([&](NSUInteger row) {
            if (before.containsIndex(row))
                return;
            asked = true;
            if (delegate->tableViewShouldSelectRow(self, static_cast<NSInteger>(row)))
                allowed = true;
            else
                wanted.removeIndex(row);
        });
    }
    if (asked && !allowed)
        return showAgain();
    // Whoever was asked may have changed the number of rows.
    wanted.removeIndexesFrom(static_cast<NSUInteger>(m_rows));
    changeSelection(wanted, last);
    return m_selection == rows;
}

void NSTableView::changeSelection(NSIndexSet selection, NSInteger selectedRow) {
    const bool changed = !(selection == m_selection);
    m_selection = std::move(selection);
    if (selectedRow < 0 || !m_selection.containsIndex(static_cast<NSUInteger>(selectedRow)))
        selectedRow = m_selection.count() ? static_cast<NSInteger>(m_selection.lastIndex()) : -1;
    m_selectedRow = selectedRow;
    if (auto* shown = dynamic_cast<TablePeer*>(peer()))
        shown->setSelection(m_selection, m_selectedRow);
    if (changed)
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSTableViewSelectionDidChangeNotification,
                                                                         shared_from_this());
}

NSDragOperation NSTableView::userDragsOver(const std::shared_ptr<NSDraggingInfo>& info, NSInteger row,
                                           double fraction) {
    m_drop.reset();
    const auto source = m_dataSource.lock();
    if (!source || !isEnabled() || !info->carries(registeredDraggedTypes()))
        return NSDragOperationNone;
    NSTableViewDrop drop;
    if (row < 0 || row >= m_rows)
        drop.row = m_rows;
    else if (fraction < boundary)
        drop.row = row;
    else if (fraction > 1 - boundary)
        drop.row = row + 1;
    else
        drop = {row, NSTableViewDropOperation::on};
    const auto answer = source->tableViewValidateDropProposedRowProposedDropOperation(
        std::static_pointer_cast<NSTableView>(shared_from_this()), info, drop.row, drop.operation);
    if (answer != NSDragOperationNone)
        m_drop = drop;
    return answer;
}

bool NSTableView::userDrops(const std::shared_ptr<NSDraggingInfo>& info) {
    const auto drop = std::exchange(m_drop, std::nullopt);
    const auto source = m_dataSource.lock();
    return drop && source &&
           source->tableViewAcceptDropRowDropOperation(std::static_pointer_cast<NSTableView>(shared_from_this()), info,
                                                       drop->row, drop->operation);
}

std::shared_ptr<NSTableCellView> NSTableView::viewAtColumnRow(NSInteger column, NSInteger row) {
    if (column < 0 || column >= static_cast<NSInteger>(m_columns.size()) || row < 0 || row >= m_rows)
        return nullptr;
    const auto place = std::make_pair(column, row);
    if (const auto known = m_cells.find(place); known != m_cells.end())
        return known->second;
    const auto delegate = m_delegate.lock();
    if (!delegate)
        return nullptr;
    const auto self = std::static_pointer_cast<NSTableView>(shared_from_this());
    auto cell = delegate->tableViewViewForTableColumnRow(self, m_columns[static_cast<std::size_t>(column)], row);
    if (m_cells.size() >= keptCells)
        std::erase_if(m_cells, [edited = m_edited.lock()](const auto& entry) { return entry.second != edited; });
    m_cells[place] = cell;
    return cell;
}

void NSTableView::setEditedCell(const std::shared_ptr<NSTableCellView>& cell) {
    const auto former = m_edited.lock();
    m_edited = cell;
    if (former && former != cell)
        std::erase_if(m_cells, [&](const auto& entry) { return entry.second == former; });
}

void NSTableView::showAll() {
    NSControl::showAll();
    setHeaderView(m_headerView);
    for (const auto& column : m_columns)
        column->setTitle(column->title());
    if (auto* shown = dynamic_cast<TablePeer*>(peer())) {
        shown->reload(m_rows);
        shown->setSelection(m_selection, m_selectedRow);
    }
}

} // namespace platform
