// SPDX-License-Identifier: MIT
#include "Language.h"

#include "HostBundle.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace app {

QString programLanguage() {
    const auto bundle = hostBundle();
    const auto language = bundle ? QString::fromStdString(bundle->preferredLocalization()) : QString();
    return language.isEmpty() ? QStringLiteral("en") : language;
}

void followLanguage(QApplication& application) {
    // Numbers and dates stay those of the user's locale, which may be of another language.
    const QLocale language(programLanguage().replace(u'-', u'_'));
    auto* translator = new QTranslator(&application);
    if (translator->load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
    QApplication::setLayoutDirection(language.textDirection());
}

} // namespace app
