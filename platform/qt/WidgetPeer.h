// SPDX-License-Identifier: MIT
#pragma once

#include "Entry.h"
#include "Peers.h"
#include "Text.h"

#include <AppKit/NSTextField.h>

#include <QPointer>
#include <QWidget>

namespace platform::qt {

/// A widget in which the user edits text: whoever moves the focus away asks it first.
class EditingWidget {
public:
    virtual ~EditingWidget() = default;
    /// NO where the edit goes on and the focus must stay.
    virtual bool endEditing(NSTextField::Ending ending) = 0;
};

/// What all peers have in common: the widget, which may die before the peer. A widget without parent goes with its
/// peer.
class WidgetPeer : public virtual ViewPeer {
public:
    explicit WidgetPeer(QWidget& widget) : m_widget(&widget) {}
    ~WidgetPeer() override;

    QWidget* widget() const { return m_widget; }

    void setHidden(bool hidden) override;
    void setEnabled(bool enabled) override;
    void setMenu(const std::shared_ptr<NSMenu>& menu) override;
    void setToolTip(const std::u16string& text) override;
    void setAccessibilityLabel(const std::u16string& text) override;
    std::shared_ptr<NSWindow> window() override;
    bool focus() override;
    NSSize size() override;

protected:
    template <class Widget>
    Widget* as() const {
        return static_cast<Widget*>(m_widget.data());
    }

private:
    QPointer<QWidget> m_widget;
    bool m_hidden = false;
};

/// Ends the edit of whatever has the focus in the window of `widget`. NO where it refused.
bool endEditingInWindow(const QWidget& widget);

/// Takes the focus from `widget` and what is in it, before they are hidden or disabled.
void giveUpFocus(QWidget& widget);

} // namespace platform::qt
