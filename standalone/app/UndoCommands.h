// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QAction;
class QMenu;
class QWidget;

namespace app {

class MainWindow;
class Session;

/// Undo and Redo of the window's Edit menu and their keys.
///
/// A text that is being edited and has something to undo undoes that itself; what was done to the configurations comes
/// after it.
class UndoCommands final : public QObject {
public:
    /// A part of `window`.
    UndoCommands(Session& session, MainWindow& window, QMenu& menu);

protected:
    /// Lets the keys pass a text that has nothing to undo.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void perform(bool again);
    /// Enables what can be done now.
    void validate();

    Session& m_session;
    MainWindow& m_window;
    QAction* m_undo;
    QAction* m_redo;
};

} // namespace app
