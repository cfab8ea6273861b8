// SPDX-License-Identifier: MIT
#include <engine/WrittenTime.h>

#include <QDateTime>
#include <QLocale>

namespace engine {

namespace {

QLocale localeOfTimes() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const auto value = qgetenv(variable); !value.isEmpty())
            return QLocale(QString::fromLocal8Bit(value));
    return QLocale::c();
}

} // namespace

WrittenTime::WrittenTime(std::chrono::system_clock::time_point moment) {
    const auto locale = localeOfTimes();
    const bool anywhere = locale.language() == QLocale::C;
    auto days = anywhere ? QStringLiteral("yyyy-MM-dd") : locale.dateFormat(QLocale::ShortFormat);
    if (days.count(u'y') == 2)
        days.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    const auto times = anywhere ? QStringLiteral("HH:mm") : locale.timeFormat(QLocale::ShortFormat);
    const auto seconds = std::chrono::system_clock::to_time_t(moment);
    const auto local = QDateTime::fromSecsSinceEpoch(seconds);
    day = locale.toString(local.date(), days).toStdU16String();
    time = locale.toString(local.time(), times).toStdU16String();
}

} // namespace engine
