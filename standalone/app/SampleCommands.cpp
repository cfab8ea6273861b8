// SPDX-License-Identifier: MIT
#include "SampleCommands.h"

#include "HostBundle.h"
#include "MainWindow.h"
#include "Questions.h"

#include <Foundation/NSException.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QStatusBar>

namespace app {

namespace {

constexpr int shownFor = 10'000; // milliseconds

} // namespace

SampleCommands::SampleCommands(Session& session, MainWindow& window, QMenu& menu)
    : QObject(&window), m_session(session), m_window(window) {
    auto* own = menu.addMenu(text(u"Sample &Document"));
    const auto add = [&](const QString& title, const std::function<void()>& perform) {
        return own->addAction(title, this, [perform] { platform::runGuarded(perform); });
    };
    add(text(u"&Choose…"), [this] { choose(); });
    m_supplied = add(text(u"Use &Supplied Sample"), [this] { chooseSupplied(); });
    own->addSeparator();
    m_next = add(text(u"&Next Page"), [this] { step(1); });
    m_next->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageDown));
    m_previous = add(text(u"&Previous Page"), [this] { step(-1); });
    m_previous->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageUp));
    for (auto* action : {m_next, m_previous})
        action->setShortcutContext(Qt::ApplicationShortcut); // the preview is a window of its own
    connect(own, &QMenu::aboutToShow, this, [this] { validate(); });
    // A key that finds nothing to do is harmless, one that finds a disabled command is not heard.
    connect(own, &QMenu::aboutToHide, this, [this] {
        m_next->setEnabled(true);
        m_previous->setEnabled(true);
    });
    m_session.setOnSampleLost([this](const QString& file, const QString& reason) {
        m_window.statusBar()->showMessage(text(u"The supplied sample is shown instead of “%@”: %@", {file, reason}),
                                          shownFor);
    });
}

void SampleCommands::validate() {
    const auto* sample = m_session.sample();
    const bool chosen = sample && sample->isChosen();
    m_supplied->setEnabled(chosen);
    m_next->setEnabled(chosen && sample->page() < sample->pageCount());
    m_previous->setEnabled(chosen && sample->page() > 1);
}

void SampleCommands::choose() {
    auto* sample = m_session.sample();
    if (!sample || !m_window.pane().commitEditing())
        return;
    const auto title = text(u"Choose a Sample Document");
    const auto file = QFileDialog::getOpenFileName(&m_window, title, {}, documentFilter());
    if (file.isEmpty())
        return;
    auto problem = sample->choose(file.toStdString());
    while (problem && sample->lacksPassword()) {
        bool given = false;
        const auto password = QInputDialog::getText(
            &m_window, title, text(u"Password for %@:", {QFileInfo(file).fileName()}) + u'\n' + *problem,
            QLineEdit::Password, {}, &given);
        if (!given)
            return;
        problem = sample->choose(file.toStdString(), password.toStdString());
    }
    if (problem)
        m_window.warn(text(u"“%@” cannot be the sample: %@", {file, *problem}));
    else
        m_window.refreshPane();
    tell();
}

void SampleCommands::chooseSupplied() {
    auto* sample = m_session.sample();
    if (!sample || !m_window.pane().commitEditing())
        return;
    sample->chooseSupplied();
    m_window.refreshPane();
    m_window.statusBar()->clearMessage();
}

void SampleCommands::step(int pages) {
    auto* sample = m_session.sample();
    if (!sample || !m_window.pane().commitEditing() || !sample->step(pages))
        return;
    m_window.refreshPane();
    tell();
}

void SampleCommands::tell() {
    const auto* sample = m_session.sample();
    if (!sample || !sample->isChosen())
        return;
    const std::vector<QString> facts{shown(sample->file().filename()), written(sample->page()),
                                     written(sample->pageCount())};
    m_window.statusBar()->showMessage(m_session.isSampleStamped()
                                          ? text(u"Sample: %@, page %@ of %@", facts)
                                          : text(u"Sample: %@, page %@ of %@, which is not stamped", facts),
                                      shownFor);
}

} // namespace app
