// SPDX-License-Identifier: MIT
#pragma once

#include "PaneHost.h"

#include <model/ImprinterModel.h>

#include <QListWidget>

class QPushButton;

namespace app {

/// The names of the configurations in their order. A row can be dragged into a pane's table of configurations.
class OrderList final : public QListWidget {
public:
    explicit OrderList(QWidget* parent);

    /// Told when a drag that was taken has ended.
    void setDropped(std::function<void()> dropped) { m_dropped = std::move(dropped); }

    /// What a drag of these rows carries.
    static std::shared_ptr<platform::NSPasteboard> pasteboardOf(const platform::NSIndexSet& rows);

protected:
    void startDrag(Qt::DropActions supported) override;

private:
    std::function<void()> m_dropped;
};

/// A small window in which the configurations are put in order: with buttons and keys here, or by dragging a row into
/// the pane. After each move the pane shows the new order, with the configuration being edited selected.
class OrderPalette final : public QWidget {
public:
    OrderPalette(model::ImprinterModel& model, PaneHost& pane, QWidget* parent);
    ~OrderPalette() override;

    /// Shows the configurations anew; to be called when the model has changed.
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// Moves the selected row by one, up (-1) or down (1).
    void move(int direction);
    void enableButtons();

    model::ImprinterModel& m_model;
    PaneHost& m_pane;
    OrderList* m_list;
    QPushButton* m_up;
    QPushButton* m_down;
};

} // namespace app
