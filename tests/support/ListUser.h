// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QListView>
#include <QTest>
#include <QTimer>

#include <functional>

namespace testing_support {

/// As `withMenu`, for a pop-up whose menu is shown as a list.
inline bool withList(const std::function<void()>& open, const std::function<void(QListView&)>& act) {
    bool shown = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* const popUp = QApplication::activePopupWidget();
        auto* const list = popUp ? popUp->findChild<QListView*>() : nullptr;
        if (!list)
            return;
        poll.stop();
        shown = true;
        act(*list);
        while (auto* left = QApplication::activePopupWidget())
            left->close();
    });
    poll.start(1);
    open();
    return shown;
}

/// The lines of a list as they read.
inline QStringList linesOf(const QListView& list) {
    QStringList lines;
    for (int row = 0; row < list.model()->rowCount(); ++row)
        lines.push_back(list.model()->index(row, 0).data().toString());
    return lines;
}

inline QString currentLine(const QListView& list) {
    return list.currentIndex().data().toString();
}

/// A click on a line, which closes the list unless the line is disabled.
inline void click(QListView& list, const QString& title) {
    const auto row = linesOf(list).indexOf(title);
    if (row < 0)
        qFatal("there is no line %s", qPrintable(title));
    const auto index = list.model()->index(static_cast<int>(row), 0);
    list.scrollTo(index);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(index).center());
}

} // namespace testing_support
