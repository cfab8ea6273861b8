// SPDX-License-Identifier: MIT
#include "Menu.h"

#include "Entry.h"
#include "MenuPictures.h"
#include "NamedImage.h"
#include "Text.h"

#include <Foundation/NSRunLoop.h>

#include <QAbstractScrollArea>
#include <QContextMenuEvent>

#include <algorithm>

namespace platform::qt {

ShownMenu::ShownMenu(const NSMenu& menu, QWidget& parent) : m_menu(new QMenu(&parent)) {
    fill(*m_menu, menu);
}

ShownMenu::~ShownMenu() {
    delete m_menu;
}

void ShownMenu::fill(QMenu& shown, const NSMenu& menu) {
    shown.setSeparatorsCollapsible(true);
    for (const auto& item : menu.itemArray()) {
        if (item->isHidden())
            continue;
        if (item->isSeparatorItem()) {
            shown.addSeparator();
            continue;
        }
        QAction* line = nullptr;
        if (item->submenu()) {
            auto* inner = shown.addMenu(withoutShortcut(item->title()));
            fill(*inner, *item->submenu());
            line = inner->menuAction();
        } else {
            line = shown.addAction(withoutShortcut(item->title()));
            m_lines.emplace_back(line, item);
        }
        if (item->image())
            showPicture(*line, *item->image());
        else
            line->setIcon(namedImage(item->imageName()));
        line->setEnabled(item->isEnabled());
        line->setCheckable(item->state() != 0);
        line->setChecked(item->state() != 0);
    }
}

QAction* ShownMenu::lineOf(const std::shared_ptr<NSMenuItem>& item) const {
    for (const auto& [line, shown] : m_lines)
        if (shown == item)
            return line;
    return nullptr;
}

QAction* ShownMenu::firstLine() const {
    const auto lines = m_menu->actions();
    const auto first = std::find_if(lines.begin(), lines.end(),
                                    [](const auto* line) { return line->isEnabled() && !line->isSeparator(); });
    return first == lines.end() ? nullptr : *first;
}

std::shared_ptr<NSMenuItem> ShownMenu::run(const QPoint& place, QAction* under) {
    const TrackingLoop open;
    const auto* chosen = m_menu->exec(place, under);
    for (const auto& [line, item] : m_lines)
        if (line == chosen)
            return item;
    return nullptr;
}

namespace {

class ContextMenu final : public QObject {
public:
    explicit ContextMenu(QWidget& widget) : QObject(&widget), m_widget(widget) {
        m_widget.installEventFilter(this);
        if (auto* area = qobject_cast<QAbstractScrollArea*>(&widget))
            area->viewport()->installEventFilter(this);
    }
    void setMenu(const std::shared_ptr<NSMenu>& menu) { m_menu = menu; }

    static ContextMenu* of(const QWidget& widget) {
        for (auto* child : widget.children())
            if (auto* found = dynamic_cast<ContextMenu*>(child))
                return found;
        return nullptr;
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ContextMenu || !m_menu)
            return QObject::eventFilter(watched, event);
        const auto& request = static_cast<const QContextMenuEvent&>(*event);
        // The key opens it where the selection is, wherever the pointer may be.
        const bool byKey = request.reason() == QContextMenuEvent::Keyboard;
        auto* place = qobject_cast<QAbstractScrollArea*>(&m_widget)
                          ? static_cast<QAbstractScrollArea&>(m_widget).viewport()
                          : &m_widget;
        const auto caret = m_widget.inputMethodQuery(Qt::ImCursorRectangle).toRect() & place->rect();
        const auto at =
            byKey ? place->mapToGlobal(caret.isValid() ? caret.center() : place->rect().center()) : request.globalPos();
        enter([&] {
            const auto menu = m_menu;
            menu->update();
            std::shared_ptr<NSMenuItem> chosen;
            {
                ShownMenu shown(*menu, m_widget);
                if (!shown.isEmpty())
                    chosen = shown.run(at);
            }
            NSMenu::userChooses(chosen);
        });
        return true;
    }

private:
    QWidget& m_widget;
    std::shared_ptr<NSMenu> m_menu;
};

} // namespace

void showContextMenu(QWidget& widget, const std::shared_ptr<NSMenu>& menu) {
    auto* shower = ContextMenu::of(widget);
    if (!shower && !menu)
        return;
    if (!shower)
        shower = new ContextMenu(widget);
    shower->setMenu(menu);
}

} // namespace platform::qt
