// SPDX-License-Identifier: MIT
#pragma once

#include "PaneHost.h"

#include <model/ImprinterModel.h>

#include <QListWidget>
#include <QPointer>

class QPushButton;

namespace app {

/// The names of the configurations in their order. A row can be dragged into a pane's table of configurations.
class OrderList final : public QListWidget {
public:
    explicit OrderList(QWidget* parent);

    /// Asked before a drag begins.
    void setMayMove(std::function<bool()> mayMove) { m_mayMove = std::move(mayMove); }
    /// Told when a drag that was taken has ended.
    void setDropped(std::function<void()> dropped) { m_dropped = std::move(dropped); }

    /// What a drag of these rows carries.
    static std::shared_ptr<platform::NSPasteboard> pasteboardOf(const platform::NSIndexSet& rows);

protected:
    void startDrag(Qt::DropActions supported) override;

private:
    std::function<bool()> m_mayMove;
    std::function<void()> m_dropped;
};

/// A small window in which the configurations are put in order: with buttons and keys here, or by dragging a row into
/// the pane. After each move the pane shows the new order, with the configuration being edited selected.
class OrderPalette final : public QWidget {
public:
    /// `refreshPane` shows the model anew in the pane.
    OrderPalette(model::ImprinterModel& model, PaneHost& pane, std::function<void()> refreshPane, QWidget* parent);
    ~OrderPalette() override;

    /// Shows the configurations anew; to be called when the model has changed.
    void refresh();
    /// Moves it to the side of `window` that has room for it; over its edge where there is none.
    void placeBeside(const QWidget& window);

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// Moves the selected row by one, up (-1) or down (1).
    void move(int direction);
    /// NO where the pane has an edit that cannot be ended.
    bool mayMove();
    /// Shows the new order in the pane, and leaves the focus there where it was.
    void showMoved();
    /// Remembers the selected configuration and enables what can be done with it.
    void choose();

    model::ImprinterModel& m_model;
    PaneHost& m_pane;
    std::function<void()> m_refreshPane;
    QPointer<QWidget> m_focus;
    std::weak_ptr<host::ImprinterConfiguration> m_chosen;
    OrderList* m_list;
    QPushButton* m_up;
    QPushButton* m_down;
};

} // namespace app
