// SPDX-License-Identifier: MIT
#include <AppKit/NSTabView.h>

#include <AppKit/NSWindow.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

NSTabViewDelegate::~NSTabViewDelegate() = default;
bool NSTabViewDelegate::tabViewShouldSelectTabViewItem(const std::shared_ptr<NSTabView>&,
                                                       const std::shared_ptr<NSTabViewItem>&) {
    return true;
}

void NSTabViewItem::setLabel(const std::u16string& label) {
    m_label = label;
    if (const auto tabView = m_tabView.lock())
        tabView->showLabel(*this);
}

std::u16string_view NSTabView::className() const {
    return u"NSTabView";
}

void NSTabView::addTabViewItem(const std::shared_ptr<NSTabViewItem>& item) {
    item->m_tabView = std::static_pointer_cast<NSTabView>(shared_from_this());
    m_items.push_back(item);
    if (item->view())
        addSubview(item->view());
    if (!m_selected)
        m_selected = item;
    showLabel(*item);
    showSelected();
}

NSUInteger NSTabView::indexOfTabViewItemWithIdentifier(const std::u16string& identifier) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const auto& item) { return item->identifier() == identifier; });
    return found == m_items.end() ? NSNotFound : static_cast<NSUInteger>(found - m_items.begin());
}

std::shared_ptr<NSTabViewItem> NSTabView::tabViewItemAtIndex(NSInteger index) const {
    if (index < 0 || index >= numberOfTabViewItems())
        throw NSRangeException("no page " + std::to_string(index));
    return m_items[static_cast<std::size_t>(index)];
}

void NSTabView::selectTabViewItemWithIdentifier(const std::u16string& identifier) {
    const auto index = indexOfTabViewItemWithIdentifier(identifier);
    if (index == NSNotFound)
        throw NSRangeException("no page " + toUtf8(identifier));
    select(m_items[index], false);
}

bool NSTabView::userSelects(NSInteger index) {
    const auto item = tabViewItemAtIndex(index);
    return item == m_selected || select(item, true);
}

bool NSTabView::select(const std::shared_ptr<NSTabViewItem>& item, bool byUser) {
    const auto self = std::static_pointer_cast<NSTabView>(shared_from_this());
    if (const auto asked = m_delegate.lock(); asked && !asked->tabViewShouldSelectTabViewItem(self, item)) {
        showSelected();
        return false;
    }
    if (item != m_selected) {
        const auto inWindow = window();
        if (byUser && inWindow && !inWindow->makeFirstResponder(nullptr)) {
            showSelected();
            return false;
        }
        m_selected = item;
    }
    showSelected();
    return true;
}

void NSTabView::showLabel(const NSTabViewItem& item) {
    auto* shown = dynamic_cast<TabPeer*>(peer());
    for (NSInteger index = 0; shown && index < numberOfTabViewItems(); ++index)
        if (m_items[static_cast<std::size_t>(index)].get() == &item)
            shown->setLabel(index, item.label());
}

void NSTabView::showSelected() {
    const auto place = std::find(m_items.begin(), m_items.end(), m_selected);
    if (auto* shown = dynamic_cast<TabPeer*>(peer()); shown && place != m_items.end())
        shown->select(place - m_items.begin());
}

void NSTabView::showAll() {
    NSView::showAll();
    for (const auto& item : m_items)
        showLabel(*item);
    showSelected();
}

} // namespace platform
