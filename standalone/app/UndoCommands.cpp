// SPDX-License-Identifier: MIT
#include "UndoCommands.h"

#include "HostBundle.h"
#include "MainWindow.h"

#include <Foundation/NSException.h>

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTextEdit>

namespace app {

namespace {

bool isText(const QWidget* widget) {
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QTextEdit*>(widget);
}

/// Whether the widget is a text with something of its own to undo, or to do again.
bool hasOwn(const QWidget* widget, bool again) {
    if (const auto* line = qobject_cast<const QLineEdit*>(widget))
        return again ? line->isRedoAvailable() : line->isUndoAvailable();
    const auto* text = qobject_cast<const QTextEdit*>(widget);
    return text && (again ? text->document()->isRedoAvailable() : text->document()->isUndoAvailable());
}

} // namespace

UndoCommands::UndoCommands(Session& session, MainWindow& window, QMenu& menu)
    : QObject(&window), m_session(session), m_window(window) {
    const auto add = [&](const QString& title, QKeySequence::StandardKey key, bool again) {
        auto* action = menu.addAction(title, this, [this, again] { platform::runGuarded([&] { perform(again); }); });
        action->setShortcuts(key);
        action->setShortcutContext(Qt::ApplicationShortcut); // where the order is put right, too
        return action;
    };
    m_undo = add(text(u"&Undo"), QKeySequence::Undo, false);
    m_redo = add(text(u"&Redo"), QKeySequence::Redo, true);
    connect(&menu, &QMenu::aboutToShow, this, [this] { validate(); });
    // A key that finds nothing to do is harmless, one that finds a disabled command is not heard.
    connect(&menu, &QMenu::aboutToHide, this, [this] {
        m_undo->setEnabled(true);
        m_redo->setEnabled(true);
    });
    qApp->installEventFilter(this);
}

void UndoCommands::validate() {
    const auto* focus = m_window.focusWidget();
    m_undo->setEnabled(hasOwn(focus, false) || m_session.history().canUndo());
    m_redo->setEnabled(hasOwn(focus, true) || m_session.history().canRedo());
}

bool UndoCommands::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return false;
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget || widget->window() != &m_window || !isText(widget))
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    const bool undoes = key->matches(QKeySequence::Undo);
    if (!undoes && !key->matches(QKeySequence::Redo))
        return false;
    if (hasOwn(widget, !undoes)) {
        if (undoes && event->type() == QEvent::KeyPress)
            m_session.textUndoes();
        return false;
    }
    event->ignore();
    return true;
}

void UndoCommands::perform(bool again) {
    auto* focus = m_window.focusWidget();
    if (hasOwn(focus, again)) {
        // As its key does, which the fields of the pane hear of.
        const auto keys = QKeySequence::keyBindings(again ? QKeySequence::Redo : QKeySequence::Undo).front()[0];
        QKeyEvent press(QEvent::KeyPress, keys.key(), keys.keyboardModifiers());
        QApplication::sendEvent(focus, &press);
        return;
    }
    m_window.undo(again);
}

} // namespace app
