// SPDX-License-Identifier: MIT
#include "ColorWellPeer.h"

#include "ColorPanel.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace platform::qt {

namespace {

constexpr int square = 5; // of the checkerboard, in pixels

void paintCheckerboard(QPainter& painter, const QRect& area) {
    painter.fillRect(area, Qt::white);
    for (int y = 0; y * square < area.height(); ++y)
        for (int x = y % 2; x * square < area.width(); x += 2)
            painter.fillRect(QRect(area.left() + x * square, area.top() + y * square, square, square) & area,
                             Qt::lightGray);
}

QColor toQColor(const NSColor& color) {
    const auto channel = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    return QColor::fromRgbF(channel(color.redComponent()), channel(color.greenComponent()),
                            channel(color.blueComponent()), channel(color.alphaComponent()));
}

class WellPeer final : public WidgetPeer, public ColorWellPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setColor(const NSColor& color) override {
        if (auto* well = as<ColorWellWidget>())
            well->setColor(toQColor(color));
    }
};

} // namespace

ColorWellWidget::ColorWellWidget(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAcceptDrops(true);
    connect(this, &QAbstractButton::clicked, this, [this] { openPanel(); });
}

void ColorWellWidget::setColor(const QColor& color) {
    m_color = color;
    ColorPanel::shared().show(*this, color);
    update();
}

void ColorWellWidget::pick(const QColor& color) {
    // The toolkit's components are 16 bits wide.
    const auto exact = color.toRgb().rgba64();
    const auto component = [](quint16 channel) { return channel / 65535.0; };
    tell(m_well, &NSColorWell::userPicks,
         NSColor::colorWithSRGB(component(exact.red()), component(exact.green()), component(exact.blue()),
                                component(exact.alpha())));
}

void ColorWellWidget::openPanel() {
    ColorPanel::shared().open(*this, m_color, [this](const QColor& chosen) { pick(chosen); });
}

void ColorWellWidget::changeEvent(QEvent* event) {
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        ColorPanel::shared().close(*this);
}

void ColorWellWidget::hideEvent(QHideEvent* event) {
    QAbstractButton::hideEvent(event);
    // What nobody sees is not changed behind somebody's back.
    if (!event->spontaneous())
        ColorPanel::shared().close(*this);
}

void ColorWellWidget::mousePressEvent(QMouseEvent* event) {
    m_pressed = event->pos();
    QAbstractButton::mousePressEvent(event);
}

void ColorWellWidget::mouseMoveEvent(QMouseEvent* event) {
    const bool far = (event->pos() - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (!event->buttons().testFlag(Qt::LeftButton) || !far)
        return QAbstractButton::mouseMoveEvent(event);
    setDown(false);
    dragOut();
}

void ColorWellWidget::dragOut() {
    QPixmap picture(16, 16);
    picture.fill(m_color);
    auto* mime = new QMimeData;
    mime->setColorData(m_color);
    auto* drag = new QDrag(this); // deletes itself when it has ended, and the data with it
    drag->setMimeData(mime);
    drag->setPixmap(picture);
    drag->exec(Qt::CopyAction);
}

void ColorWellWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasColor() && event->source() != this)
        event->acceptProposedAction();
}

void ColorWellWidget::dragMoveEvent(QDragMoveEvent* event) {
    event->acceptProposedAction();
}

void ColorWellWidget::dropEvent(QDropEvent* event) {
    const auto dropped = qvariant_cast<QColor>(event->mimeData()->colorData());
    if (!dropped.isValid())
        return;
    event->acceptProposedAction();
    enter([&] { pick(dropped); });
}

void ColorWellWidget::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton frame;
    frame.initFrom(this);
    frame.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
    painter.drawControl(QStyle::CE_PushButtonBevel, frame);

    // The line is filled rather than drawn, so that it is as wide at every scale.
    const auto line = rect().adjusted(5, 5, -5, -5);
    const auto area = line.adjusted(1, 1, -1, -1);
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    for (const auto& side : QRegion(line).subtracted(area))
        painter.fillRect(side, palette().color(QPalette::Mid));
    if (m_color.alpha() < 255)
        paintCheckerboard(painter, area);
    painter.fillRect(area, m_color);
    if (ColorPanel::shared().serves(*this)) {
        painter.setOpacity(1);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(rect().adjusted(2, 2, -2, -2));
    }
}

std::unique_ptr<ViewPeer> makeColorWellPeer(const std::shared_ptr<NSColorWell>& view, ColorWellWidget& widget) {
    widget.setWell(view);
    return std::make_unique<WellPeer>(widget);
}

} // namespace platform::qt
