// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSCell.h>
#include <AppKit/NSControl.h>

namespace platform {

/// A group of radio buttons; at most one of its cells is selected.
class NSMatrix final : public NSControl {
public:
    ~NSMatrix() override;
    std::u16string_view className() const override;

    /// In the order of the cells; the cell's title and tag can be changed afterwards.
    std::shared_ptr<NSCell> addCell(const std::u16string& title, NSInteger tag);
    const std::vector<std::shared_ptr<NSCell>>& cells() const { return m_cells; }

    /// The last cell with that tag, or null.
    std::shared_ptr<NSCell> cellWithTag(NSInteger tag) const;
    /// NO, and the selection as it was, for a tag no cell has.
    bool selectCellWithTag(NSInteger tag);
    const std::shared_ptr<NSCell>& selectedCell() const { return m_selected; }

    /// The user chose a cell: selects it and sends the action, also for the one already selected.
    void userSelects(const std::shared_ptr<NSCell>& cell);

protected:
    void showAll() override;

private:
    void showCells();

    std::vector<std::shared_ptr<NSCell>> m_cells;
    std::shared_ptr<NSCell> m_selected;
};

} // namespace platform
