// SPDX-License-Identifier: MIT
#include "MenuPictures.h"

#include "Picture.h"

#include <AppKit/NSImage.h>

#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QProxyStyle>
#include <QStyleOption>

namespace platform::qt {

namespace {

constexpr const char* pictureProperty = "picture";
constexpr int left = 24; // where titles begin
constexpr int above = 3;

QPixmap pictureOf(const QAction* line) {
    return line ? line->property(pictureProperty).value<QPixmap>() : QPixmap();
}

/// Draws menus as the application's style does, but lines with pictures as large as the pictures are.
class PictureMenuStyle final : public QProxyStyle {
public:
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        const auto wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        const auto* menu = qobject_cast<const QMenu*>(widget);
        if (type != CT_MenuItem || !item || !menu)
            return wanted;
        for (const auto* line : menu->actions()) {
            const auto picture = pictureOf(line);
            if (line->text() == item->text && !picture.isNull()) {
                const auto logical = picture.deviceIndependentSize().toSize();
                return {left + logical.width() + left, logical.height() + 2 * above};
            }
        }
        return wanted;
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        const auto* menu = qobject_cast<const QMenu*>(widget);
        const auto picture =
            element == CE_MenuItem && item && menu ? pictureOf(menu->actionAt(item->rect.center())) : QPixmap();
        if (picture.isNull()) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        auto untitled = *item;
        untitled.text.clear();
        QProxyStyle::drawControl(element, &untitled, painter, widget);
        const auto size = picture.deviceIndependentSize().toSize();
        const QRect place(item->rect.x() + left, item->rect.center().y() - size.height() / 2 + 1, size.width(),
                          size.height());
        painter->setOpacity(item->state & State_Enabled ? 1 : 0.5);
        painter->drawPixmap(visualRect(item->direction, item->rect, place), picture);
        painter->setOpacity(1);
    }
};

} // namespace

void showPicture(QAction& line, const NSImage& image) {
    const auto& picture = static_cast<const QtPicture&>(image.picture());
    line.setProperty(pictureProperty, QPixmap::fromImage(picture.image));
    if (line.text().isEmpty())
        line.setText(QString(picture.description).replace(QLatin1Char('&'), QLatin1String("&&")));
    auto* menu = qobject_cast<QMenu*>(line.parent());
    if (menu && !dynamic_cast<PictureMenuStyle*>(menu->style())) {
        auto* style = new PictureMenuStyle;
        style->setParent(menu);
        menu->setStyle(style);
    }
}

} // namespace platform::qt
