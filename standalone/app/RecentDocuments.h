// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QStringList>

#include <functional>

namespace app {

/// The submenu of the documents that were stamped last, at most ten, the latest first. They are remembered in the
/// user's own settings, which nobody else may read, and nowhere else.
class RecentDocuments final : public QMenu {
public:
    static constexpr int most = 10;

    /// `stamp` is told a document that was chosen.
    RecentDocuments(std::function<void(const QString&)> stamp, QWidget* parent);

    void add(const QStringList& files);
    void remove(const QString& file);
    static QStringList files();

private:
    void store(const QStringList& files);
    /// Makes the items anew.
    void fill();

    std::function<void(const QString&)> m_stamp;
};

} // namespace app
