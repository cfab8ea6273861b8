// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <functional>

namespace testing_support {

/// Runs `open`, which shows a menu and returns when it is closed, and `act` once the menu stands; what is then still
/// open is closed. Answers whether there was a menu.
inline bool withMenu(const std::function<void()>& open, const std::function<void(QMenu&)>& act) {
    bool shown = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        poll.stop();
        shown = true;
        act(*menu);
        while (auto* left = QApplication::activePopupWidget())
            left->close();
    });
    poll.start(1);
    open();
    return shown;
}

/// The lines of a menu as they read; "-" for a separator.
inline QStringList linesOf(const QMenu& menu) {
    QStringList lines;
    for (const auto* action : menu.actions())
        if (action->isVisible())
            lines.push_back(action->isSeparator() ? QStringLiteral("-") : action->text());
    return lines;
}

inline QAction* lineOf(const QMenu& menu, const QString& title) {
    for (auto* action : menu.actions())
        if (action->text() == title)
            return action;
    return nullptr;
}

/// A click on a line, which closes the menu unless the line is disabled.
inline void click(QMenu& menu, const QString& title) {
    auto* line = lineOf(menu, title);
    if (!line)
        qFatal("there is no line %s", qPrintable(title));
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(line).center());
}

/// A right click, as the window system reports it.
inline void rightClick(QWidget& widget, const QPoint& at) {
    QTest::mouseClick(&widget, Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget.mapToGlobal(at));
    QApplication::sendEvent(&widget, &event);
}

} // namespace testing_support
