// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace app {

class MainWindow;
class Session;

/// The submenu of the document whose pages the preview shows, and its keys, which work in the preview too.
class SampleCommands final : public QObject {
public:
    /// A part of `window`.
    SampleCommands(Session& session, MainWindow& window, QMenu& menu);

    /// Says which page is shown.
    void tell();

private:
    void choose();
    void chooseSupplied();
    void step(int pages);
    void validate();

    Session& m_session;
    MainWindow& m_window;
    QAction* m_supplied;
    QAction* m_next;
    QAction* m_previous;
};

} // namespace app
