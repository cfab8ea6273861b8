// SPDX-License-Identifier: MIT
#include "OrderPalette.h"

#include "HostBundle.h"
#include "RowArchive.h"

#include <Foundation/NSException.h>
#include <PlatformQt/Bridge.h>

#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

namespace app {

using namespace platform;

namespace {

/// What panes see as the source of a drag.
class Source final : public NSObject {};

} // namespace

OrderList::OrderList(QWidget* parent) : QListWidget(parent) {
    setDragEnabled(true);
    setDragDropMode(DragOnly);
    setSelectionMode(SingleSelection);
}

std::shared_ptr<NSPasteboard> OrderList::pasteboardOf(const NSIndexSet& rows) {
    auto pasteboard = std::make_shared<NSPasteboard>();
    pasteboard->setDataForType(archiveOfRows(rows), rowsPasteboardType);
    return pasteboard;
}

void OrderList::startDrag(Qt::DropActions) {
    runGuarded([this] {
        NSIndexSet rows;
        for (const auto& index : selectedIndexes())
            rows.addIndex(static_cast<NSUInteger>(index.row()));
        const QPointer<OrderList> self(this);
        // A name being typed in the pane would be lost with the row it stands in.
        if (m_mayMove && !m_mayMove())
            return;
        const auto picture = viewport()->grab(visualRect(currentIndex()));
        const bool moved =
            runDrag(*this, std::make_shared<Source>(), pasteboardOf(rows), picture) == NSDragOperationMove;
        if (moved && self && m_dropped)
            m_dropped();
    });
}

OrderPalette::OrderPalette(model::ImprinterModel& model, PaneHost& pane, std::function<void()> refreshPane,
                           QWidget* parent)
    : QWidget(parent, Qt::Tool), m_model(model), m_pane(pane), m_refreshPane(std::move(refreshPane)),
      m_list(new OrderList(this)), m_up(new QPushButton(text(u"Move &Up"), this)),
      m_down(new QPushButton(text(u"Move &Down"), this)) {
    setWindowTitle(text(u"Order"));
    setObjectName(QStringLiteral("orderPalette"));
    m_list->setAccessibleName(text(u"Configurations in their order"));
    m_list->setToolTip(text(u"Drag a configuration into the list of the main window, or move it with the buttons"));
    m_up->setObjectName(QStringLiteral("moveUp"));
    m_down->setObjectName(QStringLiteral("moveDown"));
    // Beside the marked letters of their titles.
    for (const auto& [button, key] : {std::pair(m_up, Qt::Key_Up), std::pair(m_down, Qt::Key_Down)}) {
        const QKeySequence keys(Qt::CTRL | key);
        button->setToolTip(keys.toString(QKeySequence::NativeText));
        connect(new QShortcut(keys, this), &QShortcut::activated, button, &QPushButton::click);
    }

    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_up);
    buttons->addWidget(m_down);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(buttons);

    connect(m_up, &QPushButton::clicked, this, [this] { runGuarded([this] { move(-1); }); });
    connect(m_down, &QPushButton::clicked, this, [this] { runGuarded([this] { move(1); }); });
    connect(m_list, &QListWidget::currentRowChanged, this, [this] { choose(); });
    m_list->setMayMove([this] { return mayMove(); });
    // The pane moves the row, and leaves the selection to its host.
    m_list->setDropped([this] { showMoved(); });
}

OrderPalette::~OrderPalette() = default;

void OrderPalette::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_chosen = m_pane.currentConfiguration();
    refresh();
    m_list->setFocus();
}

void OrderPalette::placeBeside(const QWidget& window) {
    adjustSize();
    constexpr int gap = 12;
    const auto frame = window.frameGeometry();
    const auto room = window.screen()->availableGeometry();
    const bool leftFirst = layoutDirection() == Qt::RightToLeft;
    const int right = frame.right() + gap;
    const int left = frame.left() - gap - width();
    const bool fitsRight = right + width() <= room.right();
    const bool fitsLeft = left >= room.left();
    const int x = leftFirst ? (fitsLeft ? left : right) : (fitsRight ? right : left);
    QWidget::move(std::clamp(x, room.left(), std::max(room.left(), room.right() - width())),
                  std::clamp(frame.top(), room.top(), std::max(room.top(), room.bottom() - height())));
}

void OrderPalette::refresh() {
    const auto list = m_model.configurations();
    const auto names = static_cast<int>(count(list));
    const auto chosen = m_chosen.lock();
    const QSignalBlocker silence(m_list);
    // Rows are renamed in place, and the selection goes where its configuration went.
    while (m_list->count() > names)
        delete m_list->takeItem(m_list->count() - 1);
    for (int row = 0; row < names; ++row) {
        const auto name = toQt((*list)[static_cast<std::size_t>(row)]->name());
        if (row == m_list->count())
            m_list->addItem(name);
        else if (m_list->item(row)->text() != name)
            m_list->item(row)->setText(name);
    }
    if (const auto row = m_model.indexOfConfiguration(chosen); chosen && row != NSNotFound)
        m_list->setCurrentRow(static_cast<int>(row));
    choose();
}

void OrderPalette::move(int direction) {
    const int row = m_list->currentRow();
    const int target = row + direction;
    if (row < 0 || target < 0 || target >= m_list->count() || !mayMove())
        return;
    // A row is moved above another one, counted before the move.
    m_model.moveConfigurationAtIndexTo(static_cast<NSUInteger>(row),
                                       static_cast<NSUInteger>(direction < 0 ? target : target + 1));
    refresh();
    showMoved();
}

void OrderPalette::showMoved() {
    m_refreshPane();
    if (m_focus && m_focus->isVisible() && m_focus->isEnabled())
        m_focus->setFocus();
}

bool OrderPalette::mayMove() {
    m_focus = parentWidget()->focusWidget(); // ending the edit takes it away
    if (m_pane.commitEditing())
        return true;
    // What the field refuses is said where it stands.
    parentWidget()->raise();
    parentWidget()->activateWindow();
    return false;
}

void OrderPalette::choose() {
    const int row = m_list->currentRow();
    const auto list = m_model.configurations();
    m_chosen.reset();
    if (row >= 0 && static_cast<NSUInteger>(row) < count(list))
        m_chosen = (*list)[static_cast<NSUInteger>(row)];
    m_up->setEnabled(row > 0);
    m_down->setEnabled(row >= 0 && row < m_list->count() - 1);
}

} // namespace app
