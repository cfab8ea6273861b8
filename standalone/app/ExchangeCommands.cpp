// SPDX-License-Identifier: MIT
#include "ExchangeCommands.h"

#include "HostBundle.h"
#include "MainWindow.h"
#include "Questions.h"
#include "Sentences.h"

#include <Foundation/NSException.h>

#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QStatusBar>

namespace app {

namespace fs = std::filesystem;

namespace {

constexpr int shownNames = 10;

QString filter() {
    return text(u"Configurations (*.json)");
}

store::Configurations own(const host::ConfigurationArray& handed) {
    store::Configurations list;
    for (const auto& configuration : *handed)
        list.push_back(std::dynamic_pointer_cast<model::Configuration>(configuration));
    return list;
}

/// `name` as a file may be called.
QString fileNameOf(QString name) {
    for (auto& character : name)
        if (character < u' ' || QStringLiteral("/\\:*?\"<>|").contains(character))
            character = u'-';
    constexpr int longest = 60; // whose UTF-8 every file system takes
    name = name.left(longest).trimmed();
    return (name.isEmpty() || name.startsWith(u'.') ? text(u"Configurations") : name) + QStringLiteral(".json");
}

} // namespace

ExchangeCommands::ExchangeCommands(Session& session, MainWindow& window, QMenu& menu)
    : QObject(&window), m_session(session), m_window(window) {
    const auto add = [&](const QString& title, void (ExchangeCommands::*perform)()) {
        menu.addAction(title, this, [this, perform] { platform::runGuarded([&] { (this->*perform)(); }); });
    };
    add(text(u"&Import Configurations…"), &ExchangeCommands::import);
    add(text(u"&Export Configuration…"), &ExchangeCommands::exportCurrent);
    add(text(u"Export &All Configurations…"), &ExchangeCommands::exportAll);
}

void ExchangeCommands::import() {
    if (!m_window.pane().commitEditing())
        return;
    const auto files = QFileDialog::getOpenFileNames(&m_window, text(u"Import Configurations"), {}, filter());
    std::size_t imported = 0;
    for (const auto& file : files) {
        const auto more = importFile(file.toStdString());
        if (!more)
            break;
        imported += *more;
    }
    if (imported > 0)
        m_window.statusBar()->showMessage(imported == 1 ? text(u"One configuration imported.")
                                                        : text(u"%@ configurations imported.", {written(imported)}),
                                          10000);
}

std::optional<std::size_t> ExchangeCommands::importFile(const fs::path& file) {
    std::error_code none;
    if (!fs::exists(file, none)) {
        m_window.warn(text(u"There is no file “%@”.", {shown(file)}));
        return 0;
    }
    const auto read = store::Store(file).read();
    if (read.standIns) {
        for (const auto& failure : read.messages)
            m_window.warn(failure);
        return 0;
    }
    auto list = own(m_session.model().configurations());
    auto present = store::Present::leave;
    if (const auto names = store::differingNames(list, read.configurations); !names.empty()) {
        const auto choice = askAboutPresent(m_window, file, names);
        if (!choice)
            return std::nullopt;
        present = *choice;
        list = own(m_session.model().configurations()); // whoever was asked had time
    }
    const auto joined = store::importInto(list, read.configurations, present);
    if (joined.nested) {
        m_window.warn(text(u"Nothing was imported from “%@”: “%@” would contain “%@”, which is combined itself.",
                           {shown(file), toQt(joined.nested->outer), toQt(joined.nested->inner)}));
        return 0;
    }
    if (joined.imported.empty()) {
        m_window.statusBar()->showMessage(text(u"There is nothing new in “%@”.", {shown(file)}), 10000);
        return 0;
    }
    m_session.model().setConfigurations(std::move(list));
    m_window.show(joined.imported.front());
    return joined.imported.size();
}

std::optional<store::Present> askAboutPresent(QWidget& parent, const fs::path& file,
                                              const std::vector<std::u16string>& names) {
    QMessageBox box(QMessageBox::Question, parent.window()->windowTitle(),
                    text(u"Some of the configurations in “%@” are here already and say something else:", {shown(file)}),
                    QMessageBox::Cancel, &parent);
    box.setTextFormat(Qt::PlainText);
    QStringList lines;
    for (const auto& name : names)
        if (lines.size() < shownNames)
            lines.append(toQt(name));
    if (names.size() > static_cast<std::size_t>(shownNames))
        lines.append(QStringLiteral("…"));
    box.setInformativeText(lines.join(u'\n'));
    const QAbstractButton* replace = box.addButton(text(u"&Replace"), QMessageBox::AcceptRole);
    auto* both = box.addButton(text(u"Keep &Both"), QMessageBox::AcceptRole);
    const QAbstractButton* leave = box.addButton(text(u"&Leave"), QMessageBox::AcceptRole);
    box.setDefaultButton(both); // nobody loses anything by it
    fitButtons(box);
    box.exec();
    if (box.clickedButton() == replace)
        return store::Present::replace;
    if (box.clickedButton() == both)
        return store::Present::keepBoth;
    return box.clickedButton() == leave ? std::optional(store::Present::leave) : std::nullopt;
}

void ExchangeCommands::exportCurrent() {
    if (!m_window.pane().commitEditing())
        return;
    const auto current = std::dynamic_pointer_cast<model::Configuration>(m_window.pane().currentConfiguration());
    if (!current || m_session.model().indexOfConfiguration(current) == platform::NSNotFound) {
        QMessageBox::information(&m_window, m_window.windowTitle(), text(u"Select a configuration first."));
        return;
    }
    exportTo(store::withMembers({current}), fileNameOf(toQt(current->name())));
}

void ExchangeCommands::exportAll() {
    if (m_window.pane().commitEditing())
        exportTo(own(m_session.model().configurations()), fileNameOf(text(u"Configurations")));
}

void ExchangeCommands::exportTo(const store::Configurations& configurations, const QString& name) {
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    auto chosen =
        QFileDialog::getSaveFileName(&m_window, text(u"Export Configurations"), folder + u'/' + name, filter());
    if (chosen.isEmpty())
        return;
    const fs::path file = chosen.toStdString();
    std::error_code none;
    if (fs::equivalent(file, m_session.file(), none) || fs::equivalent(file, store::Store::defaultPath(), none)) {
        m_window.warn(text(u"“%@” is the file that the configurations are kept in.", {chosen}));
        return;
    }
    if (const auto failure = store::exportTo(file, configurations))
        m_window.warn(*failure);
    else
        m_window.statusBar()->showMessage(text(u"Exported to %@.", {chosen}), 10000);
}

} // namespace app
