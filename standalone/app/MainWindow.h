// SPDX-License-Identifier: MIT
#pragma once

#include "OrderPalette.h"
#include "PaneHost.h"
#include "Session.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

namespace app {

class EmptyHint;
class PaneArea;
class RecentDocuments;

/// The window that shows the pane, and the program's menus.
class MainWindow final : public QMainWindow {
public:
    MainWindow(Session& session, std::unique_ptr<PaneHost> pane);
    ~MainWindow() override;

    PaneHost& pane() { return *m_pane; }

    /// Shows a button that stamps these documents with the configuration then on show, until that is done.
    void offerDocuments(const std::vector<std::filesystem::path>& documents);

    /// A sentence for people, shown as it stands.
    void warn(const QString& sentence, const QString& detail = {});
    /// What was decided without a question.
    void inform(const std::vector<store::Notice>& notices);
    /// About a file of configurations, in the user's language.
    void warn(const store::Failure& failure);

    /// Shows a configuration of the model in the pane, which shows its list anew.
    void show(const std::shared_ptr<host::ImprinterConfiguration>& configuration);
    using QMainWindow::show;

    /// Offers what programs left that ended without saving.
    void offerUnsaved();

    /// Shows the pane's list and current configuration anew, without flicker and with the focus where it is.
    void refreshPane();

    /// Undoes what was done last to the configurations, or does it again, and shows what that changed.
    void undo(bool again);

    /// Makes the window as large as it likes to be, and lets it be as small as `room`, its frame left out; there the
    /// pane is scrolled.
    void fitInto(QSize room);

    /// Once the window was painted: what had to wait for that.
    void afterFirstPaint();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    /// Documents dropped anywhere in the window are stamped with the configuration on show.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeMenus();
    bool isListed(const std::shared_ptr<host::ImprinterConfiguration>& configuration) const;
    /// That of the selected row; null for none.
    std::shared_ptr<host::ImprinterConfiguration> selectedConfiguration() const;
    void rememberSelection();
    /// Where several commands in a row have left the pane with a configuration that is gone, or with none: chooses one.
    void showSomething();
    /// The configuration on show; null, after saying so, where there is none.
    std::shared_ptr<host::ImprinterConfiguration> chosenConfiguration();
    /// Whether copies are stamped.
    static bool duplicates(const host::ImprinterConfiguration& configuration);
    void stampDocument();
    /// A document of the list of recent ones, which may be gone.
    void stampRecent(const QString& file);
    /// Beside them or in place, as the configuration says; one may go where the user says. NO where the user wanted
    /// something else first.
    bool stampFiles(const QStringList& files, bool asksWhereTo = false);
    void editSettings();
    void showPane();
    /// Tells the pane's place how much of the window's room is left for it.
    void shareRoom();
    /// What the window adds to the pane's own controls.
    void helpInPane();
    /// Takes the pane's view out of the window.
    void hidePane();
    /// Shows what to do where there is no configuration, and only there.
    void showHint();
    /// The same after `change`, which shows the pane something else.
    void changePane(const std::function<void()>& change);
    void showOrder();
    /// Asks whether what could neither be saved nor kept is given up.
    bool closesWithoutSaving();
    /// Whose version of a configuration stays that was changed here and elsewhere.
    std::optional<store::Choice> askWhichStays(const store::Conflict& conflict);

    Session& m_session;
    std::unique_ptr<PaneHost> m_pane;
    OrderPalette* m_order;
    RecentDocuments* m_recent;
    QPointer<EmptyHint> m_hint; // in the window while the pane is
    QPointer<PaneArea> m_area;  // likewise
    QSize m_room{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    platform::NSNotificationCenter::Token m_selectionObserver;
    QTimer m_listSettles;
    QTimer m_titleSettles;
    bool m_orderPlaced = false;
    bool m_painted = false;
    bool m_warned = false;
    bool m_closingAgain = false;
    std::optional<store::Failure> m_saveFailure; ///< The last one.
};

} // namespace app
