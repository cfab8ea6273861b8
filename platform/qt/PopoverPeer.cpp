// SPDX-License-Identifier: MIT
#include "PopoverPeer.h"

#include "Blending.h"
#include "Entry.h"
#include "PopoverFrame.h"
#include "QtToolkit.h"
#include "WidgetPeer.h"

#include <PlatformQt/Bridge.h>

#include <QEvent>
#include <QLabel>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <cmath>

namespace platform::qt {

namespace {

NSRect rectOf(const QRect& rect) {
    return {{static_cast<double>(rect.x()), static_cast<double>(rect.y())},
            {static_cast<double>(rect.width()), static_cast<double>(rect.height())}};
}

/// A picture of the frame as it stands, for the time in which it disappears: the frame itself has let go of mouse and
/// keyboard by then.
QWidget* makeGhost(QWidget& frame) {
    auto* ghost = new QLabel(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                                          Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    ghost->setAttribute(Qt::WA_TranslucentBackground);
    ghost->setAttribute(Qt::WA_ShowWithoutActivating);
    ghost->setAttribute(Qt::WA_QuitOnClose, false);
    ghost->setPixmap(frame.grab());
    ghost->setGeometry(frame.geometry());
    return ghost;
}

} // namespace

QtPopoverPeer::~QtPopoverPeer() {
    endFade();
    watch(nullptr);
    dropFrame();
}

void QtPopoverPeer::dropFrame() {
    if (!m_frame)
        return;
    m_frame->hide();
    m_frame->takeContentOut();
    if (insideEntry())
        m_frame->deleteLater();
    else
        delete m_frame;
    m_frame = nullptr;
}

bool QtPopoverPeer::canShowBeside(NSView& view) {
    const auto* widget = widgetOf(view);
    return widget && widget->isVisible();
}

bool QtPopoverPeer::makeFrame() {
    const auto popover = m_popover.lock();
    const auto view = popover->contentViewController()->view();
    auto* content = widgetOf(*view);
    if (!content)
        return false;
    dropFrame(); // a new one starts attached, whatever became of the former
    m_frame = new PopoverFrame(popover, popover->behavior() == NSPopoverBehavior::transient);
    m_frame->setContent(view, *content);
    return true;
}

void QtPopoverPeer::show(NSRect rect, NSView& view, NSRectEdge edge, double seconds) {
    auto& anchor = *widgetOf(view);
    const bool moves = m_frame && m_frame->isVisible();
    endFade();
    if (!moves && !makeFrame())
        return;
    watch(anchor.window());
    const QRect within(qRound(rect.origin.x), qRound(rect.origin.y), qRound(rect.size.width), qRound(rect.size.height));
    const auto body = m_frame->wantedBody();
    m_frame->place(placePopover(rectOf({anchor.mapToGlobal(within.topLeft()), within.size()}),
                                {static_cast<double>(body.width()), static_cast<double>(body.height())},
                                rectOf(anchor.screen()->availableGeometry()), edge));
    if (moves)
        return;
    m_frame->focusContent();
    m_frame->winId(); // makes the window handle
    m_frame->windowHandle()->setTransientParent(anchor.window()->windowHandle());
    fade(*m_frame, 0, 1, seconds, [this] { tell(m_popover, &NSPopover::hasAppeared); });
}

void QtPopoverPeer::hide(double seconds) {
    endFade();
    watch(nullptr);
    if (m_frame && m_frame->isVisible()) {
        if (seconds > 0 && windowsBlend())
            m_ghost = makeGhost(*m_frame);
        m_frame->hide();
    }
    const auto finished = [this] {
        endFade();
        tell(m_popover, &NSPopover::hasDisappeared); // may be the last there is of the peer
    };
    if (m_ghost)
        fade(*m_ghost, 1, 0, seconds, finished);
    else
        finished();
}

void QtPopoverPeer::fade(QWidget& widget, double from, double to, double seconds,
                         const std::function<void()>& finished) {
    const bool fades = seconds > 0 && windowsBlend() && widget.style()->styleHint(QStyle::SH_Widget_Animate);
    widget.setWindowOpacity(fades ? from : 1);
    widget.show();
    if (!fades)
        return finished();
    m_fade = new QVariantAnimation;
    m_fade->setDuration(static_cast<int>(std::lround(std::min(seconds, 1e6) * 1000)));
    m_fade->setStartValue(from);
    m_fade->setEndValue(to);
    connect(m_fade, &QVariantAnimation::valueChanged, &widget,
            [&widget](const QVariant& opacity) { widget.setWindowOpacity(opacity.toDouble()); });
    connect(m_fade, &QVariantAnimation::finished, this, [finished] { enter(finished); });
    m_fade->start();
}

void QtPopoverPeer::endFade() {
    // This may run inside the animation's own last signal.
    if (m_fade) {
        m_fade->disconnect();
        m_fade->stop();
        m_fade->deleteLater();
        m_fade = nullptr;
    }
    delete m_ghost;
    if (m_frame)
        m_frame->setWindowOpacity(1);
}

void QtPopoverPeer::watch(QWidget* anchorWindow) {
    if (m_anchorWindow)
        m_anchorWindow->removeEventFilter(this);
    m_anchorWindow = anchorWindow;
    if (m_anchorWindow)
        m_anchorWindow->installEventFilter(this);
}

bool QtPopoverPeer::eventFilter(QObject* watched, QEvent* event) {
    // Hidden by the program, not iconified by the window manager.
    const bool closed = event->type() == QEvent::Hide && !event->spontaneous();
    if (watched == m_anchorWindow && closed)
        enter([popover = m_popover] { tell(popover, &NSPopover::anchorWindowHasClosed); });
    return false;
}

std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover) {
    return std::make_unique<QtPopoverPeer>(popover);
}

} // namespace platform::qt
