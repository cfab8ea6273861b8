// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSMenu.h>

#include <QMenu>
#include <QPointer>

namespace platform::qt {

/// A menu as it is shown once: made when it opens, gone when it closes.
class ShownMenu {
public:
    /// Shows the items as they are now; hidden ones are left out, and separators that would then stand at an end.
    ShownMenu(const NSMenu& menu, QWidget& parent);
    ~ShownMenu();
    ShownMenu(const ShownMenu&) = delete;
    ShownMenu& operator=(const ShownMenu&) = delete;

    QMenu& widget() { return *m_menu; }
    bool isEmpty() const { return m_menu->isEmpty(); }
    /// The line of an item, or null.
    QAction* lineOf(const std::shared_ptr<NSMenuItem>& item) const;
    /// The first line that can be chosen, or null.
    QAction* firstLine() const;

    /// Shows it until it is closed, with `under` at the place given if there is one. Answers the item chosen, or null;
    /// then the menu must not be used any more.
    std::shared_ptr<NSMenuItem> run(const QPoint& place, QAction* under = nullptr);

private:
    void fill(QMenu& shown, const NSMenu& menu);

    QPointer<QMenu> m_menu; // which its parent may take along while it is open
    std::vector<std::pair<QAction*, std::shared_ptr<NSMenuItem>>> m_lines;
};

/// Has a right click on `widget`, and the key for it, show `menu` from now on; null shows none. Nothing is selected by
/// it.
void showContextMenu(QWidget& widget, const std::shared_ptr<NSMenu>& menu);

} // namespace platform::qt
