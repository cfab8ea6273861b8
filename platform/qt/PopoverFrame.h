// SPDX-License-Identifier: MIT
#pragma once

#include "PopoverPlacement.h"

#include <AppKit/NSPopover.h>

#include <QPainterPath>
#include <QPointer>
#include <QWidget>

namespace platform::qt {

/// What a popover looks like: a rounded body with an arrow and a shadow around its content. Torn off it is an ordinary
/// window filled by the content. What the user does to it goes to the popover.
///
/// Where nothing blends windows into each other, the outline is cut out and the shadow left away.
class PopoverFrame final : public QWidget {
public:
    PopoverFrame(const std::shared_ptr<NSPopover>& popover, bool transient);
    ~PopoverFrame() override;

    /// Takes the content over until it is taken out.
    void setContent(const std::shared_ptr<NSView>& view, QWidget& content);
    /// Gives the content back in the size in which it came.
    void takeContentOut();
    /// Of the body around the content as it came.
    QSize wantedBody() const;
    void place(const PopoverPlacement& placement);
    /// Gives the keyboard to the first of the content that takes it.
    void focusContent();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Form { attached, following, window };

    QRect body() const;
    QPainterPath outline() const;
    void layOut();
    void becomeWindow();

    std::weak_ptr<NSPopover> m_popover;
    std::weak_ptr<NSView> m_view;
    QPointer<QWidget> m_content;
    QSize m_contentSize;
    QMargins m_around; // from the body to the frame's own edges: shadow and arrow
    QPoint m_tip;      // of the arrow
    NSRectEdge m_edge = NSRectEdge::maxY;
    Form m_form = Form::attached;
    bool m_blends;
    bool m_pressed = false;
    QPoint m_press;       // on the screen
    QPoint m_placeBefore; // of the frame, at the press
};

} // namespace platform::qt
