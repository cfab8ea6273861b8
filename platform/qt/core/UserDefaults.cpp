// SPDX-License-Identifier: MIT
#include <Foundation/NSUserDefaults.h>

#include "Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <utility>

namespace platform {

namespace {

/// The file `imprinter/imprinter.ini` in the user's folder for settings.
class SettingsFile final : public NSUserDefaults {
public:
    SettingsFile()
        : m_settings(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/imprinter/imprinter.ini"),
                     QSettings::IniFormat) {}

    std::optional<std::u16string> stringForKey(const std::u16string& key) const override {
        const auto value = m_settings.value(qt::toQt(key));
        if (!value.isValid())
            return std::nullopt;
        // An unquoted comma in a file edited by hand makes the text a list.
        if (value.typeId() == QMetaType::QStringList)
            return qt::fromQt(value.toStringList().join(QStringLiteral(", ")));
        return qt::fromQt(value.toString());
    }
    void setObjectForKey(const std::u16string& value, const std::u16string& key) override {
        keepPrivate();
        m_settings.setValue(qt::toQt(key), qt::toQt(value));
    }
    void removeObjectForKey(const std::u16string& key) override { m_settings.remove(qt::toQt(key)); }

private:
    /// What is in the settings concerns nobody but the user. The toolkit leaves the file as open as it finds it.
    void keepPrivate() {
        if (std::exchange(m_private, true))
            return;
        constexpr auto owners = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
        QFile file(m_settings.fileName());
        QDir().mkpath(QFileInfo(file).path());
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, owners))
            file.setPermissions(file.permissions() & owners);
    }

    QSettings m_settings;
    bool m_private = false;
};

std::shared_ptr<NSUserDefaults>& replacement() {
    static std::shared_ptr<NSUserDefaults> defaults;
    return defaults;
}

} // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
    if (replacement())
        return *replacement();
    static SettingsFile file;
    return file;
}

void NSUserDefaults::setStandardUserDefaults(std::shared_ptr<NSUserDefaults> defaults) {
    replacement() = std::move(defaults);
}

} // namespace platform
