// SPDX-License-Identifier: MIT
#include <app/Window.h>

#include "HostBundle.h"
#include "Language.h"
#include "MainWindow.h"
#include "Pictures.h"
#include "Signals.h"

#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>

#include <QApplication>
#include <QCryptographicHash>
#include <QScreen>
#include <QStyle>

#include <iostream>
#include <map>

namespace app {

namespace {

std::unique_ptr<MainWindow> openWindow(Session& session) {
    std::string error;
    auto pane = PaneHost::load(bundleFolder() / "ImprinterPrefPane.prefPane", error);
    if (!pane) {
        std::cerr << "imprinter: " << error << '\n';
        return nullptr;
    }
    return std::make_unique<MainWindow>(session, std::move(pane));
}

/// What the toolkit says about running without a display concerns nobody.
void dropOffscreenNoise(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || message.contains(QLatin1String("This plugin does not support")) ||
        message.contains(QLatin1String("XDG_RUNTIME_DIR")))
        return;
    std::cerr << message.toStdString() << '\n';
}

void prepare(QApplication& application) {
    QApplication::setApplicationName(QStringLiteral("imprinter"));
    QApplication::setApplicationDisplayName(QStringLiteral("Imprinter"));
    QGuiApplication::setDesktopFileName(QStringLiteral("imprinter"));
    followLanguage(application);
}

/// Settings as they are at first, which nobody keeps.
class PassingDefaults final : public platform::NSUserDefaults {
public:
    std::optional<std::u16string> stringForKey(const std::u16string& key) const override {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::nullopt : std::optional(found->second);
    }
    void setObjectForKey(const std::u16string& value, const std::u16string& key) override { m_values[key] = value; }
    void removeObjectForKey(const std::u16string& key) override { m_values.erase(key); }

private:
    std::map<std::u16string, std::u16string> m_values;
};

/// The user's settings, in which what was selected last is kept apart for a store that is not the usual one.
class StoreDefaults final : public platform::NSUserDefaults {
public:
    StoreDefaults(NSUserDefaults& standard, const std::filesystem::path& store)
        : m_standard(standard), m_suffix(u"/" + QString::fromLatin1(nameOf(store)).toStdU16String()) {}
    std::optional<std::u16string> stringForKey(const std::u16string& key) const override {
        return m_standard.stringForKey(keyFor(key));
    }
    void setObjectForKey(const std::u16string& value, const std::u16string& key) override {
        m_standard.setObjectForKey(value, keyFor(key));
    }
    void removeObjectForKey(const std::u16string& key) override { m_standard.removeObjectForKey(keyFor(key)); }

private:
    /// A short one, as paths may be long and hold any byte.
    static QByteArray nameOf(const std::filesystem::path& store) {
        return QCryptographicHash::hash(store.native(), QCryptographicHash::Sha256).left(12).toHex();
    }
    std::u16string keyFor(const std::u16string& key) const {
        return key == u"ImprinterPrefLastSelected" ? key + m_suffix : key;
    }

    NSUserDefaults& m_standard;
    std::u16string m_suffix;
};

/// Where the file really is; its path where that cannot be told.
std::filesystem::path whereItIs(const std::filesystem::path& file) {
    std::error_code unknown;
    const auto path = std::filesystem::absolute(file, unknown);
    const auto known = std::filesystem::weakly_canonical(path, unknown);
    return unknown ? path : known;
}

void keepSelectionApart(const std::filesystem::path& store) {
    const auto file = whereItIs(store);
    if (file != whereItIs(store::Store::defaultPath()))
        platform::NSUserDefaults::setStandardUserDefaults(
            std::make_shared<StoreDefaults>(platform::NSUserDefaults::standardUserDefaults(), file));
}

} // namespace

int runWindow(int& argc, char** argv, const std::filesystem::path& store,
              const std::vector<std::filesystem::path>& documents) {
    // A display that is named but not there would abort the toolkit; offscreen is what it then falls back to.
    const bool chosen = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (!chosen)
        qputenv("QT_QPA_PLATFORM",
                qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ? "wayland;xcb;offscreen" : "xcb;offscreen");
    QApplication application(argc, argv);
    if (!chosen && QGuiApplication::platformName() == QLatin1String("offscreen"))
        return noDisplay;
    prepare(application);
    keepSelectionApart(store);
    Session session(store);
    const auto window = openWindow(session);
    if (!window)
        return 1;
    closeOnSignals(*window);
    window->offerDocuments(documents);
    const int frame = window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    window->fitInto(window->screen()->availableGeometry().size() - QSize(0, frame));
    window->show();
    for (const auto& message : session.messages())
        window->warn(message);
    session.keepJournal();
    window->offerUnsaved();
    return window->isVisible() ? QApplication::exec() : 0; // a signal may have closed it meanwhile
}

int drawPictures(int& argc, char** argv, const std::filesystem::path& store, const std::filesystem::path& folder) {
    qInstallMessageHandler(dropOffscreenNoise);
    QApplication application(argc, argv);
    prepare(application);
    chooseLook(qEnvironmentVariable("IMPRINTER_LOOK").toStdString());
    platform::NSUserDefaults::setStandardUserDefaults(std::make_shared<PassingDefaults>());
    Session session(store);
    for (const auto& message : session.messages())
        std::cerr << "imprinter: " << platform::toUtf8(message.sentence) << '\n';
    const auto window = openWindow(session);
    return window && leavePictures(*window, session, folder) ? 0 : 1;
}

} // namespace app
