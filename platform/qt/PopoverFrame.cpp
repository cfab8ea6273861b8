// SPDX-License-Identifier: MIT
#include "PopoverFrame.h"

#include "Blending.h"
#include "Entry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

namespace platform::qt {

namespace {

constexpr int padding = 6;
constexpr int shadow = 16;
constexpr int shadowDrop = 4;

/// Dark text on a light ground.
QPalette lightPalette() {
    QPalette palette(QColor(0xEC, 0xEC, 0xEC), QColor(0xF6, 0xF6, 0xF6));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x6F, 0xC6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

/// The program's window at a place of the screen, not counting what only decorates; null where there is none.
QWindow* windowAt(QPoint place) {
    const auto takesInput = [](const QWindow& window) { return !(window.flags() & Qt::WindowTransparentForInput); };
    auto* top = QGuiApplication::topLevelAt(place);
    if (!top || takesInput(*top))
        return top;
    for (auto* window : QGuiApplication::topLevelWindows())
        if (window->isVisible() && takesInput(*window) && window->geometry().contains(place))
            return window;
    return nullptr;
}

/// Sends a press that closed the popover to what is below it, before the release can come. The toolkit would do so
/// later and only where it could grab the mouse.
void passOn(const QMouseEvent& press) {
    auto* window = windowAt(press.globalPosition().toPoint());
    if (!window)
        return;
    QMouseEvent again(press.type(), window->mapFromGlobal(press.globalPosition()), press.globalPosition(),
                      press.button(), press.buttons(), press.modifiers());
    QCoreApplication::sendEvent(window, &again);
}

QMargins arrowMargins(NSRectEdge edge) {
    constexpr int length = static_cast<int>(popoverArrowLength);
    switch (edge) {
    case NSRectEdge::minX:
        return {0, 0, length, 0};
    case NSRectEdge::minY:
        return {0, length, 0, 0};
    case NSRectEdge::maxX:
        return {length, 0, 0, 0};
    case NSRectEdge::maxY:
        break;
    }
    return {0, 0, 0, length};
}

} // namespace

PopoverFrame::PopoverFrame(const std::shared_ptr<NSPopover>& popover, bool transient)
    : QWidget(nullptr, (transient ? Qt::Popup : Qt::Tool) | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      m_popover(popover), m_blends(windowsBlend()) {
    setAttribute(Qt::WA_TranslucentBackground, m_blends);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_NoMouseReplay);
    if (popover->appearance())
        setPalette(lightPalette());
}

PopoverFrame::~PopoverFrame() {
    takeContentOut();
}

void PopoverFrame::setContent(const std::shared_ptr<NSView>& view, QWidget& content) {
    m_view = view;
    m_content = &content;
    m_contentSize = content.size();
    setWindowTitle(content.windowTitle());
    content.setParent(this);
    content.show();
}

void PopoverFrame::takeContentOut() {
    // The content belongs to its view; where that has gone it goes with the frame.
    if (!m_content || m_content->parentWidget() != this || m_view.expired())
        return;
    m_content->setParent(nullptr);
    m_content->resize(m_contentSize);
}

QSize PopoverFrame::wantedBody() const {
    return m_contentSize.grownBy({padding, padding, padding, padding});
}

void PopoverFrame::place(const PopoverPlacement& placement) {
    const QRect wanted(qRound(placement.body.origin.x), qRound(placement.body.origin.y),
                       qRound(placement.body.size.width), qRound(placement.body.size.height));
    m_edge = placement.edge;
    const int around = m_blends ? shadow : 1;
    m_around = QMargins(around, around, around, around) + arrowMargins(m_edge);
    const QRect frame = wanted.marginsAdded(m_around);
    m_tip = QPoint(qRound(placement.tip.x), qRound(placement.tip.y)) - frame.topLeft();
    setGeometry(frame);
    layOut();
}

void PopoverFrame::focusContent() {
    if (focusWidget())
        return;
    for (auto* child : findChildren<QWidget*>())
        if ((child->focusPolicy() & Qt::TabFocus) && child->isEnabled())
            return child->setFocus();
}

QRect PopoverFrame::body() const {
    return m_form == Form::window ? rect() : rect().marginsRemoved(m_around);
}

void PopoverFrame::layOut() {
    const int inset = m_form == Form::window ? 0 : padding;
    if (m_content && m_content->parentWidget() == this)
        m_content->setGeometry(body().adjusted(inset, inset, -inset, -inset));
    if (m_form == Form::window || m_blends)
        clearMask();
    else
        setMask(QRegion(outline().toFillPolygon().toPolygon()));
    update();
}

QPainterPath PopoverFrame::outline() const {
    QPainterPath path;
    path.addRoundedRect(QRectF(body()).adjusted(0.5, 0.5, -0.5, -0.5), popoverCornerRadius, popoverCornerRadius);
    if (m_form != Form::attached)
        return path;
    // The arrow, foot inside the body, from the tip along the way it came from.
    const bool vertical = m_edge == NSRectEdge::minY || m_edge == NSRectEdge::maxY;
    const double away = m_edge == NSRectEdge::minY || m_edge == NSRectEdge::maxX ? 1 : -1;
    const QPointF tip(m_tip);
    const auto point = [&](double along, double across) {
        return vertical ? tip + QPointF(across, away * along) : tip + QPointF(away * along, across);
    };
    const double half = popoverArrowWidth / 2;
    QPainterPath arrow(point(popoverArrowLength + 1, -half));
    arrow.lineTo(point(popoverArrowLength, -half));
    arrow.quadTo(point(popoverArrowLength * 0.8, -half * 0.6), point(1, -1));
    arrow.quadTo(point(0, 0), point(1, 1));
    arrow.quadTo(point(popoverArrowLength * 0.8, half * 0.6), point(popoverArrowLength, half));
    arrow.lineTo(point(popoverArrowLength + 1, half));
    arrow.closeSubpath();
    return path.united(arrow);
}

void PopoverFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (m_form == Form::window) {
        painter.fillRect(rect(), palette().window());
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const auto path = outline();
    if (m_blends)
        for (int ring = shadow - shadowDrop; ring > 0; ring -= 2) {
            painter.setPen(QPen(QColor(0, 0, 0, 9), 2 * ring, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.setBrush(Qt::NoBrush);
            painter.drawPath(path.translated(0, shadowDrop));
        }
    auto line = palette().color(QPalette::WindowText);
    line.setAlpha(m_blends ? 70 : 255);
    painter.setPen(m_blends ? line : palette().color(QPalette::Dark));
    painter.setBrush(palette().window());
    painter.drawPath(path);
}

void PopoverFrame::resizeEvent(QResizeEvent*) {
    layOut();
}

void PopoverFrame::mousePressEvent(QMouseEvent* event) {
    if (m_form != Form::attached)
        return event->ignore();
    if (!outline().contains(event->position())) {
        const QPointer<PopoverFrame> alive(this);
        enter([this] { tell(m_popover, &NSPopover::userDismisses); });
        if (!alive || !isVisible())
            passOn(*event);
        return;
    }
    m_pressed = event->button() == Qt::LeftButton;
    m_press = event->globalPosition().toPoint();
    m_placeBefore = pos();
}

void PopoverFrame::mouseMoveEvent(QMouseEvent* event) {
    const auto way = event->globalPosition().toPoint() - m_press;
    if (!m_pressed || !(event->buttons() & Qt::LeftButton))
        return;
    if (m_form == Form::attached && way.manhattanLength() >= 2 * QApplication::startDragDistance()) {
        m_pressed = false;
        const QPointer<PopoverFrame> alive(this);
        bool detached = false;
        enter([&] { detached = tell(m_popover, &NSPopover::userDrags); });
        if (!alive || !detached)
            return;
        m_pressed = true;
        m_form = Form::following;
        layOut();
    }
    if (m_form == Form::following)
        move(m_placeBefore + way);
}

void PopoverFrame::mouseReleaseEvent(QMouseEvent*) {
    m_pressed = false;
    if (m_form == Form::following)
        becomeWindow();
}

void PopoverFrame::becomeWindow() {
    const auto inner = m_content ? m_content->geometry() : body();
    const QRect content(mapToGlobal(inner.topLeft()), inner.size());
    m_form = Form::window;
    clearMask(); // while there is a native window to clear it of
    hide();
    setAttribute(Qt::WA_TranslucentBackground, false);
    setAttribute(Qt::WA_NoSystemBackground, false);
    setWindowFlags(Qt::Window);
    setMinimumSize(QSize(160, 160).boundedTo(content.size()));
    setGeometry(content);
    layOut();
    show();
    activateWindow();
}

void PopoverFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_form == Form::attached)
        enter([this] { tell(m_popover, &NSPopover::userDismisses); });
    else if (event->matches(QKeySequence::Close) && m_form == Form::window)
        close();
    else
        event->ignore();
}

void PopoverFrame::closeEvent(QCloseEvent* event) {
    // The popover takes it off the screen, if its delegate agrees.
    event->ignore();
    enter([this] { tell(m_popover, &NSPopover::performClose); });
}

} // namespace platform::qt
