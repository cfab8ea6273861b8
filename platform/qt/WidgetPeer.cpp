// SPDX-License-Identifier: MIT
#include "WidgetPeer.h"

#include "Menu.h"
#include "Window.h"

namespace platform::qt {

WidgetPeer::~WidgetPeer() {
    if (!m_widget || m_widget->parentWidget())
        return;
    if (insideEntry())
        m_widget->deleteLater();
    else
        delete m_widget;
}

void WidgetPeer::setHidden(bool hidden) {
    // A page of a stack is hidden and shown by the stack, the root by its window: only a change of the view's own wish
    // concerns the widget.
    if (!m_widget || hidden == m_hidden)
        return;
    m_hidden = hidden;
    if (hidden)
        giveUpFocus(*m_widget);
    m_widget->setVisible(!hidden);
}

void WidgetPeer::setEnabled(bool enabled) {
    if (!m_widget)
        return;
    if (!enabled)
        giveUpFocus(*m_widget);
    m_widget->setEnabled(enabled);
}

void WidgetPeer::setMenu(const std::shared_ptr<NSMenu>& menu) {
    if (m_widget)
        showContextMenu(*m_widget, menu);
}

void WidgetPeer::setToolTip(const std::u16string& text) {
    if (m_widget)
        m_widget->setToolTip(toQt(text));
}

void WidgetPeer::setAccessibilityLabel(const std::u16string& text) {
    if (m_widget)
        m_widget->setAccessibleName(toQt(text));
}

std::shared_ptr<NSWindow> WidgetPeer::window() {
    return m_widget ? windowShowing(*m_widget) : nullptr;
}

bool WidgetPeer::focus() {
    if (!m_widget || !endEditingInWindow(*m_widget))
        return false;
    m_widget->setFocus(Qt::OtherFocusReason);
    return true;
}

NSSize WidgetPeer::size() {
    return m_widget ? NSSize{static_cast<double>(m_widget->width()), static_cast<double>(m_widget->height())}
                    : NSSize();
}

bool endEditingInWindow(const QWidget& widget) {
    auto* editing = dynamic_cast<EditingWidget*>(widget.window()->focusWidget());
    return !editing || editing->endEditing(NSTextField::Ending::focusLost);
}

void giveUpFocus(QWidget& widget) {
    auto* focused = widget.window()->focusWidget();
    if (!focused || (focused != &widget && !widget.isAncestorOf(focused)))
        return;
    if (auto* editing = dynamic_cast<EditingWidget*>(focused))
        editing->endEditing(NSTextField::Ending::focusLost);
    focused->clearFocus();
}

} // namespace platform::qt
