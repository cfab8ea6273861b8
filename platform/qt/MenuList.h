// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSMenu.h>

#include <QFrame>
#include <QPointer>

class QEventLoop;
class QListView;

namespace platform::qt {

/// Whether the menu is one of those shown as a list: some of its items are drawn in fonts of their own, and it has
/// neither submenus nor separators.
bool isShownAsList(const NSMenu& menu);

/// A pop-up's menu as a list, which may be long: lines are drawn as they come into view, and typing the first letters
/// finds one.
class MenuList final : public QFrame {
public:
    MenuList(const NSMenu& menu, const std::shared_ptr<NSMenuItem>& selected, QWidget& button);
    ~MenuList() override;

    QListView& view() { return *m_view; }

    /// Shows it over the button, the selected line on its face, until it is closed. Answers the item chosen, or null;
    /// then it may be gone.
    std::shared_ptr<NSMenuItem> run();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void choose(const QModelIndex& index);
    void place();

    QWidget& m_button;
    QListView* m_view;
    std::vector<std::shared_ptr<NSMenuItem>> m_items;
    QPointer<QEventLoop> m_loop;
    std::shared_ptr<NSMenuItem> m_chosen;
    QPoint m_pressedAt;   // where the pointer was when the list opened
    bool m_armed = false; // whether letting go of the button chooses: the press that opened the list does not
};

} // namespace platform::qt
