// SPDX-License-Identifier: MIT
#pragma once

#include "Peers.h"

#include <QObject>
#include <QPointer>
#include <QVariantAnimation>

namespace platform::qt {

class PopoverFrame;

/// Shows a popover in a frame of its own and watches the window it points into.
class QtPopoverPeer final : public QObject, public PopoverPeer {
public:
    explicit QtPopoverPeer(const std::shared_ptr<NSPopover>& popover) : m_popover(popover) {}
    ~QtPopoverPeer() override;

    bool canShowBeside(NSView& view) override;
    void show(NSRect rect, NSView& view, NSRectEdge edge, double seconds) override;
    void hide(double seconds) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool makeFrame();
    void dropFrame();
    void watch(QWidget* anchorWindow);
    /// Fades `widget` in or out, then runs `finished`; at once where nothing can fade.
    void fade(QWidget& widget, double from, double to, double seconds, const std::function<void()>& finished);
    void endFade();

    std::weak_ptr<NSPopover> m_popover;
    QPointer<PopoverFrame> m_frame;
    QPointer<QWidget> m_ghost; // what is seen of it while it disappears
    QPointer<QWidget> m_anchorWindow;
    QPointer<QVariantAnimation> m_fade;
};

} // namespace platform::qt
