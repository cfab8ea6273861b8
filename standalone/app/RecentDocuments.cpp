// SPDX-License-Identifier: MIT
#include "RecentDocuments.h"

#include "HostBundle.h"

#include <Foundation/NSException.h>
#include <Foundation/NSUserDefaults.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

namespace app {

namespace {

constexpr char16_t key[] = u"ImprinterRecentDocuments";

/// As a menu shows it: no letter of a name is a shortcut.
QString titleOf(const QString& file, const QStringList& all) {
    const QFileInfo info(file);
    auto title = info.fileName();
    // Two of one name are told apart by their folders.
    for (const auto& other : all)
        if (other != file && QFileInfo(other).fileName() == title) {
            title += QStringLiteral(" — ") + QFileInfo(info.path()).fileName();
            break;
        }
    constexpr int longest = 60;
    if (title.size() > longest)
        title = title.left(longest / 2) + u'…' + title.right(longest / 2);
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace

RecentDocuments::RecentDocuments(std::function<void(const QString&)> stamp, QWidget* parent)
    : QMenu(text(u"Stamp &Recent Document"), parent), m_stamp(std::move(stamp)) {
    setToolTipsVisible(true);
    fill();
}

QStringList RecentDocuments::files() {
    QStringList files;
    const auto stored = platform::NSUserDefaults::standardUserDefaults().stringForKey(key);
    const auto list = QJsonDocument::fromJson(toQt(stored.value_or(u"[]")).toUtf8()).array();
    for (const auto& file : list)
        if (files.size() < most && !file.toString().isEmpty())
            files.append(file.toString());
    return files;
}

void RecentDocuments::add(const QStringList& added) {
    auto all = files();
    // Those that were stamped together stand in their order.
    for (auto file = added.rbegin(); file != added.rend(); ++file) {
        const auto path = QFileInfo(*file).absoluteFilePath();
        all.removeAll(path);
        all.prepend(path);
    }
    store(all.mid(0, most));
}

void RecentDocuments::remove(const QString& file) {
    auto all = files();
    all.removeAll(file);
    store(all);
}

void RecentDocuments::store(const QStringList& files) {
    auto& defaults = platform::NSUserDefaults::standardUserDefaults();
    if (files.isEmpty())
        defaults.removeObjectForKey(key);
    else
        defaults.setObjectForKey(
            QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(files)).toJson(QJsonDocument::Compact))
                .toStdU16String(),
            key);
    fill();
}

void RecentDocuments::fill() {
    // One of them may be the item that is being performed.
    for (auto* action : actions()) {
        removeAction(action);
        action->deleteLater();
    }
    const auto all = files();
    for (const auto& file : all) {
        auto* action =
            addAction(titleOf(file, all), this, [this, file] { platform::runGuarded([&] { m_stamp(file); }); });
        action->setToolTip(file);
        action->setData(file);
    }
    addSeparator();
    addAction(text(u"&Clear List"), this, [this] { store({}); });
    menuAction()->setEnabled(!all.isEmpty());
}

} // namespace app
