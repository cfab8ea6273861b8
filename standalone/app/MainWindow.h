// SPDX-License-Identifier: MIT
#pragma once

#include "PaneHost.h"
#include "Session.h"

#include <QMainWindow>

namespace app {

/// The window that shows the pane, and the program's menus.
class MainWindow final : public QMainWindow {
public:
    MainWindow(Session& session, std::unique_ptr<PaneHost> pane);
    ~MainWindow() override;

    PaneHost& pane() { return *m_pane; }

    /// A sentence for people, shown as it stands.
    void warn(const QString& sentence);

    /// Once the window was painted: what had to wait for that.
    void afterFirstPaint();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void makeMenus();
    void rememberSelection();
    void stampDocument();
    void editSettings();
    void showPane();
    /// Shows the pane's list and current configuration anew, without flicker and with the focus where it is.
    void refreshPane();

    Session& m_session;
    std::unique_ptr<PaneHost> m_pane;
    platform::NSNotificationCenter::Token m_selectionObserver;
    bool m_painted = false;
    bool m_warned = false;
};

} // namespace app
