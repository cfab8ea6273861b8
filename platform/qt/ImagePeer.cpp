// SPDX-License-Identifier: MIT
#include "ImagePeer.h"

#include "Picture.h"

#include <AppKit/NSImage.h>

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>

namespace platform::qt {

ImageWidget::ImageWidget(QWidget* parent) : QLabel(parent) {
    setFocusPolicy(Qt::NoFocus);
}

void ImageWidget::setImage(const QImage& image) {
    m_image = image;
    m_reduced = {};
    update();
    if (QAccessible::isActive()) {
        QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&changed);
    }
}

QString ImageWidget::description() const {
    QString text;
    enter([&] {
        if (m_describe)
            text = toQt(m_describe());
    });
    return text;
}

QRect ImageWidget::pictureRect() const {
    const auto room = rect().adjusted(margin(), margin(), -margin(), -margin());
    if (m_image.isNull() || room.isEmpty())
        return {};
    const auto size = m_image.size().scaled(room.size(), Qt::KeepAspectRatio).expandedTo({1, 1});
    return {room.left() + (room.width() - size.width()) / 2, room.top() + (room.height() - size.height()) / 2,
            size.width(), size.height()};
}

void ImageWidget::paintEvent(QPaintEvent* event) {
    const auto place = pictureRect();
    if (place.isEmpty())
        return;
    QPainter painter(this);
    painter.setClipRect(event->rect());
    const auto pixels = place.size() * devicePixelRatioF();
    if (pixels.width() < m_image.width()) {
        // Averaging keeps small type readable; what was drawn once is kept for the next exposure.
        if (m_reduced.size() != pixels)
            m_reduced = m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.drawImage(place, m_reduced);
    } else {
        m_reduced = {};
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, m_image);
    }
    auto line = palette().color(QPalette::WindowText);
    line.setAlpha(60);
    painter.setPen(line);
    painter.drawRect(place.adjusted(-1, -1, 0, 0));
}

namespace {

class PicturePeer final : public WidgetPeer, public ImagePeer {
public:
    using WidgetPeer::WidgetPeer;

    void setImage(const std::shared_ptr<const NSImage>& image) override {
        auto* shown = as<ImageWidget>();
        const auto* picture = image ? dynamic_cast<const QtPicture*>(&image->picture()) : nullptr;
        if (shown)
            shown->setImage(picture ? picture->image : QImage());
    }
    void setDescriber(std::function<std::u16string()> describe) override {
        if (auto* shown = as<ImageWidget>())
            shown->setDescriber(std::move(describe));
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeImagePeer(ImageWidget& widget) {
    return std::make_unique<PicturePeer>(widget);
}

} // namespace platform::qt
