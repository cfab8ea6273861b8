// SPDX-License-Identifier: MIT
#pragma once

#include <store/Exchange.h>

#include <QObject>

class QMenu;

namespace app {

class MainWindow;
class Session;

/// The commands of the File menu that bring configurations from files and write them into files.
class ExchangeCommands final : public QObject {
public:
    /// A part of `window`.
    ExchangeCommands(Session& session, MainWindow& window, QMenu& menu);

private:
    void import();
    /// Answers how many were imported; none where the user gave it up.
    std::optional<std::size_t> importFile(const std::filesystem::path& file);
    std::optional<store::Present> askAboutPresent(const std::filesystem::path& file,
                                                  const std::vector<std::u16string>& names);
    /// Suggests a file called `name`.
    void exportTo(const store::Configurations& configurations, const QString& name);
    void exportCurrent();
    void exportAll();

    Session& m_session;
    MainWindow& m_window;
};

} // namespace app
