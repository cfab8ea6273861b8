// SPDX-License-Identifier: MIT
#include "TableHeader.h"

#include <QEvent>
#include <QPainter>

namespace platform::qt {

namespace {

constexpr int margin = 3; // as wide as the one of the cells below

} // namespace

TableHeader::TableHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setStretchLastSection(true);
    setSectionsClickable(false);
    setHighlightSections(false);
    setFrameShape(QFrame::NoFrame);
}

void TableHeader::setBottomBorder(bool border) {
    m_bottomBorder = border;
    viewport()->update();
}

QSize TableHeader::sizeHint() const {
    return {QHeaderView::sizeHint().width(), fontMetrics().height() + 2 * margin + 1};
}

void TableHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    painter->save();
    painter->fillRect(rect, palette().window());
    if (m_bottomBorder) {
        painter->setPen(palette().mid().color());
        painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    }
    QFont bold = font();
    bold.setBold(true);
    painter->setFont(bold);
    painter->setPen(palette().windowText().color());
    const QRect inner = rect.adjusted(margin, 0, -margin, -1);
    const auto title = model()->headerData(section, Qt::Horizontal).toString();
    painter->drawText(inner, Qt::AlignVCenter | Qt::AlignLeading,
                      QFontMetrics(bold).elidedText(title, Qt::ElideRight, inner.width()));
    painter->restore();
}

bool TableHeader::event(QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
    return QHeaderView::event(event);
}

} // namespace platform::qt
