// SPDX-License-Identifier: MIT
#include "MainWindow.h"

#include "HostBundle.h"
#include "SettingsDialog.h"

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>
#include <engine/Stamper.h>

#include <QCloseEvent>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>

#include <iostream>

namespace app {

using namespace platform;

namespace {

QString fromPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

/// "letter stamped.pdf" beside "letter.pdf".
QString suggestedOutput(const QString& input) {
    const std::filesystem::path path(input.toStdString());
    return fromPath(path.parent_path() / (path.stem().string() + " stamped" + path.extension().string()));
}

} // namespace

MainWindow::MainWindow(Session& session, std::unique_ptr<PaneHost> pane) : m_session(session), m_pane(std::move(pane)) {
    setWindowTitle(QStringLiteral("Imprinter"));
    setWindowIcon(QIcon::fromTheme(QStringLiteral("imprinter")));
    makeMenus();
    m_session.setOnSaveFailure([this](const store::Failure& failure) { tellSaveFailure(failure); });

    m_pane->willShow();
    setCentralWidget(widgetOf(*m_pane->view()));
    m_pane->didShow();

    m_selectionObserver = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
        NSTableViewSelectionDidChangeNotification, m_pane->table(), nullptr,
        [this](const NSNotification&) { rememberSelection(); });
}

MainWindow::~MainWindow() {
    NSNotificationCenter::defaultCenter().removeObserver(m_selectionObserver);
    m_session.setOnSaveFailure({});
}

void MainWindow::makeMenus() {
    auto* file = menuBar()->addMenu(text(u"&File"));
    auto* stamp = file->addAction(text(u"&Stamp Document…"), this, &MainWindow::stampDocument);
    stamp->setShortcut(QKeySequence::Open);
    file->addSeparator();
    auto* settings = file->addAction(text(u"Se&ttings…"), this, &MainWindow::editSettings);
    settings->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    auto* quit = file->addAction(text(u"&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
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
    m_pane->refresh(m_session.model());
}

void MainWindow::closeEvent(QCloseEvent* event) {
    bool left = false;
    runGuarded([&] { left = m_pane->leave(); });
    if (left && m_session.hasUnsaved()) {
        // Once told, the user may close again and do without.
        left = m_warned;
        m_warned = true;
        if (!left)
            runGuarded([&] {
                m_pane->willShow();
                m_pane->didShow();
            });
    }
    event->setAccepted(left);
    if (left)
        runGuarded([&] {
            takeCentralWidget();
            m_pane->didLeave();
        });
}

void MainWindow::rememberSelection() {
    const auto current = m_pane->currentConfiguration();
    if (current && m_pane->table() && m_pane->table()->selectedRow() >= 0)
        NSUserDefaults::standardUserDefaults().setObjectForKey(current->uniqueID(), u"ImprinterPrefLastSelected");
}

void MainWindow::stampDocument() {
    const auto configuration = m_pane->currentConfiguration();
    if (!configuration) {
        QMessageBox::information(this, windowTitle(), text(u"Select a configuration first."));
        return;
    }
    const auto input = QFileDialog::getOpenFileName(this, text(u"Stamp Document"), {},
                                                    text(u"Documents and pictures (*.pdf *.png *.jpg *.jpeg)"));
    if (input.isEmpty())
        return;
    const auto output = QFileDialog::getSaveFileName(this, text(u"Save the Stamped Document"), suggestedOutput(input));
    if (output.isEmpty())
        return;
    engine::StampJob job;
    job.input = input.toStdString();
    job.output = output.toStdString();
    job.configurations = {configuration};
    const auto outcome = engine::stampFile(job);
    if (outcome)
        statusBar()->showMessage(text(u"Stamped:") + u' ' + output, 10000);
    else
        QMessageBox::warning(this, windowTitle(),
                             fromPath(outcome.path) + u'\n' + QString::fromStdString(outcome.sentence));
}

void MainWindow::editSettings() {
    SettingsDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        m_pane->refresh(m_session.model());
}

void MainWindow::tellSaveFailure(const store::Failure& failure) {
    QMessageBox::warning(this, windowTitle(), toQt(failure.sentence));
}

} // namespace app
