// SPDX-License-Identifier: MIT
#include "HostBundle.h"

#include <Foundation/NSString.h>

#include <QLocale>

namespace app {

std::shared_ptr<platform::NSBundle> hostBundle() {
    static const auto bundle = platform::NSBundle::bundleWithPath(bundleFolder() / "ImprinterHost.bundle");
    return bundle;
}

QString text(const char16_t* english) {
    const auto bundle = hostBundle();
    return toQt(bundle ? bundle->localizedStringForKeyValueTable(english, u"", u"") : english);
}

QString text(const char16_t* english, const std::vector<QString>& arguments) {
    std::vector<std::u16string> texts;
    texts.reserve(arguments.size());
    for (const auto& argument : arguments)
        texts.push_back(argument.toStdU16String());
    return toQt(platform::stringWithFormat(text(english).toStdU16String(), texts));
}

QString written(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

QString toQt(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

QString shown(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace app
