// SPDX-License-Identifier: MIT
#include <Foundation/NSUserDefaults.h>

#include "Text.h"

#include <QSettings>
#include <QStandardPaths>

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
        m_settings.setValue(qt::toQt(key), qt::toQt(value));
    }
    void removeObjectForKey(const std::u16string& key) override { m_settings.remove(qt::toQt(key)); }

private:
    QSettings m_settings;
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
