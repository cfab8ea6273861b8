// SPDX-License-Identifier: MIT
#include "MenuList.h"

#include "Entry.h"
#include "FontSample.h"
#include "Text.h"

#include <QAbstractListModel>
#include <QApplication>
#include <QEventLoop>
#include <QHash>
#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace platform::qt {

namespace {

constexpr int linesAtMost = 24;
constexpr int widthAtMost = 480;
constexpr int padding = 6;

using Items = std::vector<std::shared_ptr<NSMenuItem>>;

class ItemModel final : public QAbstractListModel {
public:
    ItemModel(const Items& items, QObject* parent) : QAbstractListModel(parent), m_items(items) {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_items.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? toQt(at(index).title()) : QVariant();
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return at(index).isEnabled() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
    }
    const NSMenuItem& at(const QModelIndex& index) const { return *m_items[static_cast<std::size_t>(index.row())]; }

private:
    const Items& m_items;
};

class ItemDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static int markWidth(const QFontMetrics& metrics) { return metrics.height() + padding; }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {1, option.fontMetrics.height() + 2 * padding};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const auto& item = static_cast<const ItemModel&>(*index.model()).at(index);
        const bool current = option.state & QStyle::State_Selected;
        const auto group = item.isEnabled() ? QPalette::Active : QPalette::Disabled;
        const auto colour = option.palette.color(group, current ? QPalette::HighlightedText : QPalette::Text);
        if (current)
            painter->fillRect(option.rect, option.palette.brush(QPalette::Active, QPalette::Highlight));
        painter->setPen(colour);
        const int mark = markWidth(option.fontMetrics);
        if (item.state() != 0) {
            painter->setFont(option.font);
            painter->drawText(QStyle::visualRect(option.direction, option.rect,
                                                 QRect(option.rect.x(), option.rect.y(), mark, option.rect.height())),
                              Qt::AlignCenter, QStringLiteral("\u2713"));
        }
        sampleOf(item, option.font)
            .draw(*painter,
                  QStyle::visualRect(option.direction, option.rect, option.rect.adjusted(mark, 0, -padding, 0)));
    }

private:
    const FontSample& sampleOf(const NSMenuItem& item, const QFont& control) const {
        auto& sample = m_samples[&item];
        if (!sample)
            sample = std::make_shared<FontSample>(item, control);
        return *sample;
    }

    mutable QHash<const NSMenuItem*, std::shared_ptr<FontSample>> m_samples;
};

/// Wide enough for the names, measured in the widget's own font: to measure the samples every font would have to be
/// opened.
int widthFor(const Items& items, const QFontMetrics& metrics) {
    std::vector<const std::u16string*> titles;
    for (const auto& item : items)
        titles.push_back(&item->title());
    const auto longest = std::min<std::size_t>(titles.size(), 30);
    std::partial_sort(titles.begin(), titles.begin() + static_cast<std::ptrdiff_t>(longest), titles.end(),
                      [](const auto* a, const auto* b) { return a->size() > b->size(); });
    int width = 0;
    for (std::size_t i = 0; i < longest; ++i)
        width = std::max(width, metrics.horizontalAdvance(toQt(*titles[i])));
    return std::min(width * 5 / 4, widthAtMost) + ItemDelegate::markWidth(metrics) + 2 * padding;
}

} // namespace

bool isShownAsList(const NSMenu& menu) {
    bool drawn = false;
    for (const auto& item : menu.itemArray()) {
        if (item->isSeparatorItem() || item->submenu())
            return false;
        drawn = drawn || item->attributedTitle();
    }
    return drawn;
}

MenuList::MenuList(const NSMenu& menu, const std::shared_ptr<NSMenuItem>& selected, QWidget& button)
    : QFrame(&button, Qt::Popup), m_button(button), m_view(new QListView(this)), m_pressedAt(QCursor::pos()) {
    for (const auto& item : menu.itemArray())
        if (!item->isHidden())
            m_items.push_back(item);
    setFrameStyle(StyledPanel | Plain);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);

    m_view->setFont(button.font());
    m_view->setAccessibleName(button.accessibleName());
    m_view->setFrameShape(NoFrame);
    m_view->setUniformItemSizes(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    m_view->setMouseTracking(true);
    m_view->setModel(new ItemModel(m_items, m_view));
    m_view->setItemDelegate(new ItemDelegate(m_view));
    m_view->installEventFilter(this);
    m_view->viewport()->installEventFilter(this);
    setFocusProxy(m_view);
    const auto found = std::find(m_items.begin(), m_items.end(), selected);
    if (found != m_items.end())
        m_view->setCurrentIndex(m_view->model()->index(static_cast<int>(found - m_items.begin()), 0));
}

MenuList::~MenuList() {
    if (m_loop)
        m_loop->quit();
}

void MenuList::place() {
    const auto line = m_view->sizeHintForRow(0);
    const auto room = m_button.screen()->availableGeometry();
    const int frame = 2 * frameWidth();
    const int fitting = std::max((room.height() - frame) / line, 1);
    const int lines = std::min({static_cast<int>(m_items.size()), linesAtMost, fitting});
    const bool scrolls = lines < static_cast<int>(m_items.size());
    m_view->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const int bar = scrolls ? m_view->verticalScrollBar()->sizeHint().width() : 0;
    const int width = std::max(m_button.width(), widthFor(m_items, m_view->fontMetrics()) + bar + frame);
    setFixedSize(std::min(width, room.width()), lines * line + frame);

    // The selected line lies over the button where the list is long enough on both sides of it.
    const int selected = std::max(m_view->currentIndex().row(), 0);
    const int last = static_cast<int>(m_items.size()) - lines;
    const int first = std::clamp(selected - lines / 2, 0, last);
    const auto face = m_button.mapToGlobal(QPoint(0, (m_button.height() - line) / 2));
    const int start = m_button.isRightToLeft() ? face.x() + m_button.width() - this->width() : face.x();
    const QPoint wanted(start, face.y() - (selected - first) * line - frameWidth());
    move(std::clamp(wanted.x(), room.left(), std::max(room.right() + 1 - this->width(), room.left())),
         std::clamp(wanted.y(), room.top(), std::max(room.bottom() + 1 - height(), room.top())));
    m_view->verticalScrollBar()->setMaximum(last);
    m_view->verticalScrollBar()->setValue(first);
}

std::shared_ptr<NSMenuItem> MenuList::run() {
    QEventLoop loop;
    m_loop = &loop;
    const QPointer<MenuList> self(this);
    place();
    show();
    m_view->setFocus(Qt::PopupFocusReason);
    loop.exec(QEventLoop::DialogExec);
    return self ? m_chosen : nullptr;
}

void MenuList::choose(const QModelIndex& index) {
    if (!index.isValid() || !(index.flags() & Qt::ItemIsEnabled))
        return;
    m_chosen = m_items[static_cast<std::size_t>(index.row())];
    close();
}

bool MenuList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_view && event->type() == QEvent::KeyPress) {
        switch (static_cast<const QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose(m_view->currentIndex());
            return true;
        case Qt::Key_Escape:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            close();
            return true;
        default:
            return false;
        }
    }
    if (watched != m_view->viewport())
        return false;
    const auto mouse = [event] { return static_cast<const QMouseEvent*>(event); };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_armed = true;
        return true;
    case QEvent::MouseMove:
        if ((mouse()->globalPosition().toPoint() - m_pressedAt).manhattanLength() > QApplication::startDragDistance())
            m_armed = true;
        if (const auto index = m_view->indexAt(mouse()->position().toPoint()); m_armed && index.isValid())
            m_view->setCurrentIndex(index);
        return true;
    case QEvent::MouseButtonRelease:
        if (std::exchange(m_armed, true))
            choose(m_view->indexAt(mouse()->position().toPoint()));
        return true;
    case QEvent::MouseButtonDblClick:
        return true;
    default:
        return false;
    }
}

void MenuList::hideEvent(QHideEvent* event) {
    QFrame::hideEvent(event);
    if (m_loop)
        m_loop->quit();
}

} // namespace platform::qt
