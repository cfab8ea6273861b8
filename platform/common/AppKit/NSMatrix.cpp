// SPDX-License-Identifier: MIT
#include <AppKit/NSMatrix.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

NSMatrix::~NSMatrix() {
    for (const auto& cell : m_cells)
        cell->m_changed = nullptr;
}

std::u16string_view NSMatrix::className() const {
    return u"NSMatrix";
}

std::shared_ptr<NSCell> NSMatrix::addCell(const std::u16string& title, NSInteger tag) {
    auto cell = std::make_shared<NSCell>([this] { showCells(); });
    m_cells.push_back(cell);
    cell->setTag(tag);
    cell->setTitle(title);
    return cell;
}

std::shared_ptr<NSCell> NSMatrix::cellWithTag(NSInteger tag) const {
    const auto found =
        std::find_if(m_cells.rbegin(), m_cells.rend(), [tag](const auto& cell) { return cell->tag() == tag; });
    return found == m_cells.rend() ? nullptr : *found;
}

bool NSMatrix::selectCellWithTag(NSInteger tag) {
    const auto cell = cellWithTag(tag);
    if (!cell)
        return false;
    m_selected = cell;
    showCells();
    return true;
}

void NSMatrix::userSelects(const std::shared_ptr<NSCell>& cell) {
    if (!isEnabled())
        return;
    m_selected = cell;
    showCells();
    sendAction();
}

void NSMatrix::showCells() {
    if (auto* shown = dynamic_cast<MatrixPeer*>(peer()))
        shown->showCells(*this);
}

void NSMatrix::showAll() {
    NSControl::showAll();
    showCells();
}

} // namespace platform
