// SPDX-License-Identifier: MIT
#include "TabPeer.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace platform::qt {

void AskingTabBar::want(int index) {
    const QPointer<AskingTabBar> alive(this);
    const bool hadFocus = hasFocus();
    enter([this, index] {
        if (m_wanted && index >= 0 && index != currentIndex() && isTabEnabled(index))
            m_wanted(index);
    });
    // Ending the edit takes the focus from whatever has it; who goes through the tabs by key goes on from there.
    if (alive && hadFocus && !window()->focusWidget())
        setFocus(Qt::OtherFocusReason);
}

void AskingTabBar::wantNext(int step) {
    for (int distance = 1; distance < count(); ++distance) {
        const int index = (currentIndex() + step * distance + count() * distance) % count();
        if (isTabEnabled(index) && isTabVisible(index))
            return want(index);
    }
}

void AskingTabBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        want(tabAt(event->position().toPoint()));
}

void AskingTabBar::keyPressEvent(QKeyEvent* event) {
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    if (event->key() == Qt::Key_Left)
        wantNext(mirrored ? 1 : -1);
    else if (event->key() == Qt::Key_Right)
        wantNext(mirrored ? -1 : 1);
    else
        event->ignore();
}

void AskingTabBar::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

AskingTabWidget::AskingTabWidget(QWidget* parent) : QTabWidget(parent), m_bar(new AskingTabBar(this)) {
    setTabBar(m_bar);
}

void AskingTabWidget::keyPressEvent(QKeyEvent* event) {
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (!control || (event->key() != Qt::Key_Tab && event->key() != Qt::Key_Backtab)) {
        event->ignore();
        return;
    }
    const QPointer<AskingTabBar> bar(m_bar);
    const auto* left = currentWidget();
    const bool wasInside = left && left->isAncestorOf(window()->focusWidget());
    bar->wantNext(event->key() == Qt::Key_Tab ? 1 : -1);
    // Otherwise the focus would be wherever the order of keys goes on behind what is hidden now.
    if (bar && wasInside && currentWidget() != left)
        bar->setFocus(Qt::ShortcutFocusReason);
}

namespace {

class TabsPeer final : public WidgetPeer, public TabPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setLabel(NSInteger index, const std::u16string& label) override {
        if (auto* tabs = as<QTabWidget>())
            tabs->setTabText(static_cast<int>(index), withoutShortcut(label));
    }
    void select(NSInteger index) override {
        if (auto* tabs = as<QTabWidget>())
            tabs->setCurrentIndex(static_cast<int>(index));
    }
};

class StackPeer final : public WidgetPeer, public TabPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setLabel(NSInteger, const std::u16string&) override {}
    void select(NSInteger index) override {
        if (auto* stack = as<QStackedWidget>())
            stack->setCurrentIndex(static_cast<int>(index));
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeTabPeer(const std::shared_ptr<NSTabView>& view, AskingTabWidget& widget) {
    widget.bar().setWanted(
        [weak = std::weak_ptr<NSTabView>(view)](int index) { tell(weak, &NSTabView::userSelects, index); });
    return std::make_unique<TabsPeer>(widget);
}

std::unique_ptr<ViewPeer> makeStackPeer(QStackedWidget& widget) {
    return std::make_unique<StackPeer>(widget);
}

} // namespace platform::qt
