// SPDX-License-Identifier: MIT
#include "MainWindow.h"

#include "EmptyHint.h"
#include "ExchangeCommands.h"
#include "HostBundle.h"
#include "PageListHelp.h"
#include "PaneArea.h"
#include "Preflight.h"
#include "PreviewDrag.h"
#include "Questions.h"
#include "RecentDocuments.h"
#include "SampleCommands.h"
#include "Sentences.h"
#include "SettingsDialog.h"
#include "StampRun.h"
#include "UndoCommands.h"

#include <AppKit/NSTokenField.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>
#include <engine/Naming.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <iostream>

namespace app {

using namespace platform;

namespace {

/// "letter-stamped.pdf" beside "letter.pdf", as several documents are named.
QString suggestedOutput(const QString& input) {
    return shown(engine::nameOfDuplicate(input.toStdString(), "-stamped", {}));
}

/// The files on this machine that a drag carries.
QStringList filesOf(const QMimeData& mime) {
    QStringList files;
    for (const auto& url : mime.urls())
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    return files;
}

} // namespace

MainWindow::MainWindow(Session& session, std::unique_ptr<PaneHost> pane) : m_session(session), m_pane(std::move(pane)) {
    setWindowTitle(QStringLiteral("Imprinter"));
    setWindowIcon(QIcon::fromTheme(QStringLiteral("imprinter")));
    setAcceptDrops(true);
    makeMenus();
    m_session.setOnSaveFailure([this](const store::Failure& failure) {
        m_saveFailure = failure;
        if (!m_closingAgain) // the question that follows tells it
            warn(failure);
    });
    m_session.setOnConflict([this](const store::Conflict& conflict) { return askWhichStays(conflict); });
    m_session.setOnWait([this] {
        // Nothing else happens until then, so that it is painted at once.
        statusBar()->showMessage(text(u"Waiting for another program that is saving…"), 10000);
        statusBar()->repaint();
    });
    m_session.setOnNotices([this](const auto& notices) { inform(notices); });
    m_session.setOnMerge([this] {
        // Within a message of the pane; the window may be about to close, too.
        QTimer::singleShot(0, this, [this] {
            runGuarded([this] {
                if (m_pane->pane().isSelected())
                    refreshPane();
            });
        });
    });
    showPane();
    helpInPane();
    m_order = new OrderPalette(
        m_session.model(), *m_pane, [this] { refreshPane(); }, this);
    m_session.setOnModelChange([this](const auto& configuration) {
        if (m_order->isVisible())
            m_order->refresh();
        showHint();
        if (configuration)
            m_titleSettles.start();
        else
            m_listSettles.start();
    });
    // A font run that got another face, or was missing one, may have another name.
    m_titleSettles.setSingleShot(true);
    m_titleSettles.setInterval(0);
    connect(&m_titleSettles, &QTimer::timeout, this,
            [this] { runGuarded([this] { tell(m_pane->titleField(), &NSTokenField::refreshTokenTitles); }); });
    // Longer than the pane takes to choose a row after a change of the list.
    m_listSettles.setSingleShot(true);
    m_listSettles.setInterval(250);
    connect(&m_listSettles, &QTimer::timeout, this, [this] { runGuarded([this] { showSomething(); }); });
    if (const auto table = m_pane->table())
        m_selectionObserver = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
            NSTableViewSelectionDidChangeNotification, table, nullptr,
            [this](const NSNotification&) { rememberSelection(); });
}

MainWindow::~MainWindow() {
    NSNotificationCenter::defaultCenter().removeObserver(m_selectionObserver);
    m_session.setOnSaveFailure({});
    m_session.setOnConflict({});
    m_session.setOnWait({});
    m_session.setOnNotices({});
    m_session.setOnMerge({});
    m_session.setOnModelChange({});
    m_session.setOnSampleLost({});
}

void MainWindow::showPane() {
    m_pane->willShow();
    auto* whole = new QWidget;
    auto* layout = new QVBoxLayout(whole);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_hint = new EmptyHint([this] { runGuarded([this] { m_pane->perform(u"addConfiguration:"); }); }, whole);
    layout->addWidget(m_hint);
    layout->addWidget(widgetOf(*m_pane->view()), 1);
    m_area = new PaneArea(whole);
    setCentralWidget(m_area);
    shareRoom();
    showHint();
    m_pane->didShow();
}

void MainWindow::helpInPane() {
    if (auto* pages = findChild<QLineEdit*>(QStringLiteral("customOccurance")))
        new PageListHelp(*pages);
    // Where the editor of a combined configuration disables a button over rows that are selected still, they look as if
    // there were more to do with them.
    auto& pane = m_pane->pane();
    for (const auto& [name, rows] :
         {std::pair("addBtn", u"allConfigsTableView"), std::pair("removeBtn", u"combinedTableView")}) {
        auto* button = findChild<QAbstractButton*>(QString::fromLatin1(name));
        const auto* outlet = pane.classTable()->outlet(rows);
        const auto beside = outlet ? std::dynamic_pointer_cast<NSTableView>(outlet->object(pane)) : nullptr;
        if (!button || !beside)
            continue;
        const auto deselect = [button, table = std::weak_ptr(beside)] {
            if (!button->isEnabled())
                tell(table, &NSTableView::selectRowIndexesByExtendingSelection, NSIndexSet(), false);
        };
        // When the pane is done.
        connect(
            button, &QAbstractButton::clicked, this, [deselect] { runGuarded(deselect); }, Qt::QueuedConnection);
    }
    const auto table = m_pane->table();
    auto* list = table ? widgetOf(*table) : nullptr;
    if (!list)
        return;
    auto* deletes = new QShortcut(QKeySequence::Delete, list);
    deletes->setContext(Qt::WidgetShortcut); // not while a name is edited
    connect(deletes, &QShortcut::activated, this, [this] {
        runGuarded([this] {
            if (isListed(m_pane->currentConfiguration()))
                m_pane->perform(u"deleteConfiguration:");
        });
    });
}

void MainWindow::fitInto(QSize room) {
    m_room = room;
    shareRoom();
    resize(sizeHint().boundedTo(room));
}

void MainWindow::shareRoom() {
    // The line for messages comes only when there is one.
    const int others = menuBar()->sizeHint().height() + QStatusBar().sizeHint().height();
    const auto* contents = m_area->widget();
    auto* grid = qobject_cast<QGridLayout*>(widgetOf(*m_pane->view())->layout());
    // What the pane has beyond its need makes it look even from page to page; it can do without.
    if (grid && contents->minimumSizeHint().height() + others > m_room.height())
        for (int row = 0; row < grid->rowCount(); ++row)
            grid->setRowMinimumHeight(row, 0);
    if (grid && contents->minimumSizeHint().width() > m_room.width())
        for (int column = 0; column < grid->columnCount(); ++column)
            grid->setColumnMinimumWidth(column, 0);
    m_area->setRoom(m_room - QSize(0, others));
}

void MainWindow::hidePane() {
    widgetOf(*m_pane->view())->setParent(nullptr); // it belongs to the pane
    delete takeCentralWidget();
}

void MainWindow::showHint() {
    if (!m_hint)
        return;
    m_hint->setVisible(count(m_session.model().configurations()) == 0 && m_pane->performs(u"addConfiguration:"));
    if (!m_hint->isHidden() && !focusWidget())
        m_hint->setFocus();
}

void MainWindow::refreshPane() {
    changePane([this] { m_pane->refresh(m_session.model()); });
}

void MainWindow::changePane(const std::function<void()>& change) {
    const QPointer<QWidget> focus = focusWidget();
    setUpdatesEnabled(false);
    change();
    if (focus && focus->isVisible())
        focus->setFocus();
    setUpdatesEnabled(true);
}

void MainWindow::undo(bool again) {
    const QPointer<QWidget> focus = focusWidget(); // ending the edit takes it away
    auto& history = m_session.history();
    if (!(again ? history.canRedo() : history.canUndo()) || !m_pane->commitEditing())
        return;
    const auto row = again ? history.redo() : history.undo();
    changePane([&] {
        const auto list = m_session.model().configurations();
        if (list->empty())
            m_pane->showNone(m_session.model());
        else
            m_pane->show(row && *row < list->size() ? (*list)[*row] : m_pane->currentConfiguration(),
                         m_session.model());
    });
    if (focus && focus->isVisible() && focus->isEnabled())
        focus->setFocus();
}

void MainWindow::show(const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
    changePane([&] { m_pane->show(configuration, m_session.model()); });
}

void MainWindow::warn(const store::Failure& failure) {
    warn(sentenceOf(failure), detailOf(failure));
}

void MainWindow::warn(const QString& sentence, const QString& detail) {
    QMessageBox box(QMessageBox::Warning, windowTitle(), sentence, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(detail);
    box.exec();
}

void MainWindow::inform(const std::vector<store::Notice>& notices) {
    constexpr std::size_t most = 10;
    QStringList sentences;
    for (std::size_t i = 0; i < std::min(most, notices.size()); ++i)
        sentences.append(sentenceOf(notices[i]));
    if (notices.size() > most)
        sentences.append(QStringLiteral("…"));
    QMessageBox box(QMessageBox::Information, windowTitle(), sentences.join(u'\n'), QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

std::optional<store::Choice> MainWindow::askWhichStays(const store::Conflict& conflict) {
    QMessageBox box(
        QMessageBox::Question, windowTitle(),
        toQt(stringWithFormat(fromUtf8(text(u"“%@” was changed here and by another program.").toStdString()),
                              {conflict.mine})),
        QMessageBox::Cancel, this);
    box.setTextFormat(Qt::PlainText);
    QAbstractButton* mine = box.addButton(text(u"Keep &Mine"), QMessageBox::AcceptRole);
    QAbstractButton* theirs = box.addButton(text(u"Take &Theirs"), QMessageBox::AcceptRole);
    QAbstractButton* both = box.addButton(text(u"Keep &Both"), QMessageBox::AcceptRole);
    box.setDefaultButton(qobject_cast<QPushButton*>(both)); // nobody loses anything by it
    fitButtons(box);
    box.exec();
    if (box.clickedButton() == mine)
        return store::Choice::mine;
    if (box.clickedButton() == theirs)
        return store::Choice::theirs;
    return box.clickedButton() == both ? std::optional(store::Choice::both) : std::nullopt;
}

bool MainWindow::closesWithoutSaving() {
    QMessageBox box(QMessageBox::Warning, windowTitle(), text(u"Close without saving?"), QMessageBox::Cancel, this);
    const QAbstractButton* discard = box.addButton(text(u"&Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    if (m_saveFailure)
        box.setInformativeText(sentenceOf(*m_saveFailure));
    box.exec();
    return box.clickedButton() == discard;
}

void MainWindow::offerUnsaved() {
    for (const auto& unsaved : m_session.unsaved()) {
        const auto answer = askAboutUnsaved(*this, unsaved);
        if (answer == Unsaved::takeOver) {
            const auto failure = m_session.takeOver(unsaved);
            refreshPane();
            if (failure)
                warn(*failure);
        } else if (answer == Unsaved::discard) {
            m_session.discard(unsaved);
        }
    }
}

void MainWindow::makeMenus() {
    auto* file = menuBar()->addMenu(text(u"&File"));
    auto* stamp = file->addAction(text(u"&Stamp Document…"), this, &MainWindow::stampDocument);
    stamp->setShortcut(QKeySequence::Open);
    m_recent = new RecentDocuments([this](const QString& recent) { stampRecent(recent); }, this);
    file->addMenu(m_recent);
    file->addSeparator();
    new ExchangeCommands(m_session, *this, *file);
    file->addSeparator();
    new SampleCommands(m_session, *this, *file);
    file->addSeparator();
    auto* settings = file->addAction(text(u"Se&ttings…"), this, &MainWindow::editSettings);
    settings->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    auto* quit = file->addAction(text(u"&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
    auto* edit = menuBar()->addMenu(text(u"&Edit"));
    new UndoCommands(m_session, *this, *edit);
    edit->addSeparator();
    auto* preview = new PreviewDrag(m_session, this);
    edit->addAction(text(u"&Copy Preview Picture"), preview, [preview] { runGuarded([&] { preview->copy(); }); });
    auto* window = menuBar()->addMenu(text(u"&Window"));
    auto* order = window->addAction(text(u"&Order"), this, &MainWindow::showOrder);
    order->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O));
}

bool MainWindow::event(QEvent* event) {
    const bool answer = QMainWindow::event(event);
    if (event->type() == QEvent::Paint && !m_painted) {
        m_painted = true;
        QTimer::singleShot(0, this, [this] { runGuarded([this] { afterFirstPaint(); }); });
    }
    return answer;
}

void MainWindow::afterFirstPaint() {
    // For measuring how long the window takes to open: say that it is there, and end.
    if (qEnvironmentVariableIsSet("IMPRINTER_END_AFTER_PAINT")) {
        std::cout << "painted" << std::endl;
        close();
        return;
    }
    m_session.allowPreviews();
    refreshPane();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (m_session.isSaving()) {
        event->ignore(); // it is asking
        return;
    }
    // After a deletion the next configuration may have come into the same row, and no selection has changed.
    runGuarded([this] { rememberSelection(); });
    m_closingAgain = m_warned;
    const bool left = m_pane->leave();
    if (left && !m_session.hasUnsaved())
        m_session.saveChanges();
    m_closingAgain = false;
    if (!left) {
        event->ignore();
        return;
    }
    // What could not be saved is kept on the screen once. Closing again does without, after asking where the journal
    // does not hold it either; what it is about can still be seen then.
    bool stay = m_session.hasUnsaved();
    if (std::exchange(m_warned, stay) && stay)
        stay = !m_session.isJournalled() && !closesWithoutSaving();
    hidePane();
    runGuarded([this] { m_pane->didLeave(); });
    if (stay)
        runGuarded([this] { showPane(); });
    else
        m_order->close();
    event->setAccepted(!stay);
}

bool MainWindow::isListed(const std::shared_ptr<host::ImprinterConfiguration>& configuration) const {
    return configuration && m_session.model().indexOfConfiguration(configuration) != NSNotFound;
}

std::shared_ptr<host::ImprinterConfiguration> MainWindow::selectedConfiguration() const {
    const auto list = m_session.model().configurations();
    const auto row = static_cast<NSUInteger>(tell(m_pane->table(), &NSTableView::selectedRow));
    return row < count(list) ? (*list)[row] : nullptr;
}

void MainWindow::rememberSelection() {
    auto& defaults = NSUserDefaults::standardUserDefaults();
    const auto current = m_pane->currentConfiguration();
    const bool listed = isListed(current);
    if (const auto selected = selectedConfiguration())
        defaults.setObjectForKey((listed ? current : selected)->uniqueID(), u"ImprinterPrefLastSelected");
    else if (current && !listed)
        defaults.removeObjectForKey(u"ImprinterPrefLastSelected");
}

void MainWindow::showSomething() {
    const auto list = m_session.model().configurations();
    if (count(list) == 0 || isListed(m_pane->currentConfiguration()))
        return;
    const auto selected = selectedConfiguration();
    m_pane->show(selected ? selected : list->front(), m_session.model());
}

std::shared_ptr<host::ImprinterConfiguration> MainWindow::chosenConfiguration() {
    tell(m_pane->view()->window(), &NSWindow::makeFirstResponder, nullptr); // what was typed last belongs to the stamp
    auto configuration = m_pane->currentConfiguration();
    if (isListed(configuration))
        return configuration;
    QMessageBox::information(this, windowTitle(), text(u"Select a configuration first."));
    return nullptr;
}

bool MainWindow::duplicates(const host::ImprinterConfiguration& configuration) {
    const auto code = configuration.duplicateRecord();
    return code == static_cast<NSInteger>(host::DuplicateRecord::followDefault)
               ? NSUserDefaults::standardUserDefaults().boolForKey(u"ImprinterDuplicateRecord")
               : code == static_cast<NSInteger>(host::DuplicateRecord::duplicate);
}

void MainWindow::stampDocument() {
    if (!chosenConfiguration())
        return;
    stampFiles(QFileDialog::getOpenFileNames(this, text(u"Stamp Document"), {}, documentFilter()), true);
}

bool MainWindow::stampFiles(const QStringList& files, bool asksWhereTo) {
    if (files.isEmpty())
        return false;
    const auto configuration = chosenConfiguration();
    if (!configuration)
        return false;
    std::vector<std::filesystem::path> inputs;
    for (const auto& file : files)
        inputs.emplace_back(file.toStdString());
    const bool inPlace = !duplicates(*configuration);
    const auto found = checkDocuments(this, inputs, configuration, inPlace);
    if (!goesOn(this, found))
        return false;
    if (inPlace &&
        QMessageBox::question(this, windowTitle(),
                              inputs.size() == 1
                                  ? text(u"Stamp the original file? It is replaced by its stamped version.")
                                  : text(u"Stamp the original files? %@ files are replaced by their stamped versions.",
                                         {written(inputs.size())}),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return false;
    QString output;
    if (!inPlace && asksWhereTo && inputs.size() == 1) {
        output = QFileDialog::getSaveFileName(this, text(u"Save the Stamped Document"), suggestedOutput(files.front()));
        if (output.isEmpty())
            return false;
    }
    const auto summary = output.isEmpty()
                             ? stampDocuments(this, inputs, configuration, inPlace)
                             : app::stampDocument(this, inputs.front(), output.toStdString(), configuration);
    QStringList stamped;
    for (const auto& input : summary.inputs)
        stamped.append(shown(input));
    m_recent->add(stamped);
    statusBar()->showMessage(tellSummary(this, summary, found.warnings), 10000);
    return true;
}

void MainWindow::stampRecent(const QString& file) {
    if (QFileInfo::exists(file)) {
        stampFiles({file});
        return;
    }
    m_recent->remove(file);
    warn(text(u"There is no file “%@”.", {file}));
}

void MainWindow::offerDocuments(const std::vector<std::filesystem::path>& documents) {
    if (documents.empty())
        return;
    QStringList files;
    for (const auto& document : documents)
        files.append(shown(document));
    const bool one = files.size() == 1;
    const auto number = QLocale().toString(static_cast<qlonglong>(files.size()));
    constexpr int widest = 240; // the tool tip has the whole name
    const auto name = fontMetrics().elidedText(shown(documents.front().filename()), Qt::ElideMiddle, widest);
    const auto what = one ? name : number;
    const auto title = one ? text(u"Stamp “%@”") : text(u"Stamp %@ Documents");
    auto* button =
        new QPushButton(QString(title).replace(QLatin1String("%@"), what).replace(u'&', QLatin1String("&&")));
    button->setObjectName(QStringLiteral("waitingDocuments"));
    button->setToolTip(files.join(u'\n'));
    statusBar()->addPermanentWidget(button);
    connect(button, &QPushButton::clicked, this, [this, files, button] {
        runGuarded([&] {
            if (stampFiles(files))
                button->deleteLater();
        });
    });
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!event->source() && !filesOf(*event->mimeData()).isEmpty()) // not what was dragged out of this program
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const auto files = filesOf(*event->mimeData());
    if (files.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction); // whoever gave the files keeps them
    event->accept();
    // The one who drags waits for the answer.
    QTimer::singleShot(0, this, [this, files] { runGuarded([&] { stampFiles(files); }); });
}

void MainWindow::editSettings() {
    if (!m_pane->commitEditing())
        return;
    SettingsDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        refreshPane();
}

void MainWindow::showOrder() {
    if (!std::exchange(m_orderPlaced, true))
        m_order->placeBeside(*this);
    m_order->show();
    m_order->raise();
    m_order->activateWindow();
}

} // namespace app
