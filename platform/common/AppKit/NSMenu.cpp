// SPDX-License-Identifier: MIT
#include <AppKit/NSMenu.h>

#include <Foundation/NSException.h>

#include "Actions.h"

#include <algorithm>

namespace platform {

NSValidatedUserInterfaceItem::~NSValidatedUserInterfaceItem() = default;
NSUserInterfaceValidations::~NSUserInterfaceValidations() = default;
NSMenuDelegate::~NSMenuDelegate() = default;

NSMenuItem::NSMenuItem(std::u16string title, std::u16string action, std::u16string keyEquivalent)
    : m_title(std::move(title)), m_action(std::move(action)), m_keyEquivalent(std::move(keyEquivalent)) {}

NSMenuItem::~NSMenuItem() = default;

std::shared_ptr<NSMenuItem> NSMenuItem::separatorItem() {
    auto item = std::make_shared<NSMenuItem>();
    item->m_separator = true;
    return item;
}

void NSMenuItem::setTitle(const std::u16string& title) {
    if (m_attributedTitle && m_attributedTitle->string() != title)
        m_attributedTitle = nullptr;
    m_title = title;
    changed();
}

void NSMenuItem::setAttributedTitle(const std::shared_ptr<const NSAttributedString>& title) {
    m_attributedTitle = title;
    if (title)
        m_title = title->string();
    changed();
}

void NSMenuItem::setImageNamed(const std::u16string& name) {
    m_imageName = name;
    changed();
}

void NSMenuItem::setImage(const std::shared_ptr<NSImage>& image) {
    m_image = image;
    changed();
}

void NSMenuItem::changed() const {
    if (const auto menu = m_menu.lock())
        menu->changed();
}

NSMenu::~NSMenu() = default;

void NSMenu::addItem(const std::shared_ptr<NSMenuItem>& item) {
    insertItemAtIndex(item, numberOfItems());
}

std::shared_ptr<NSMenuItem> NSMenu::addItemWithTitleActionKeyEquivalent(const std::u16string& title,
                                                                        const std::u16string& action,
                                                                        const std::u16string& keyEquivalent) {
    return insertItemWithTitleActionKeyEquivalentAtIndex(title, action, keyEquivalent, numberOfItems());
}

void NSMenu::insertItemAtIndex(const std::shared_ptr<NSMenuItem>& item, NSInteger index) {
    if (index < 0 || index > numberOfItems())
        throw NSRangeException("the menu has no place " + std::to_string(index));
    if (!item)
        throw NSInvalidArgumentException("the menu item is nil");
    if (item->menu())
        throw NSException("NSInternalInconsistencyException", "the item is already in a menu");
    item->m_menu = std::static_pointer_cast<NSMenu>(shared_from_this());
    m_items.insert(m_items.begin() + index, item);
    changed();
}

std::shared_ptr<NSMenuItem> NSMenu::insertItemWithTitleActionKeyEquivalentAtIndex(const std::u16string& title,
                                                                                  const std::u16string& action,
                                                                                  const std::u16string& keyEquivalent,
                                                                                  NSInteger index) {
    auto item = std::make_shared<NSMenuItem>(title, action, keyEquivalent);
    insertItemAtIndex(item, index);
    return item;
}

void NSMenu::removeItemAtIndex(NSInteger index) {
    itemAtIndex(index)->m_menu.reset();
    m_items.erase(m_items.begin() + index);
    changed();
}

void NSMenu::removeAllItems() {
    for (const auto& item : m_items)
        item->m_menu.reset();
    m_items.clear();
    changed();
}

std::shared_ptr<NSMenuItem> NSMenu::itemAtIndex(NSInteger index) const {
    if (index < 0 || index >= numberOfItems())
        throw NSRangeException("the menu has no item " + std::to_string(index));
    return m_items[static_cast<std::size_t>(index)];
}

template <class Wanted>
NSInteger NSMenu::indexWhere(Wanted wanted) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(), wanted);
    return found == m_items.end() ? -1 : found - m_items.begin();
}

NSInteger NSMenu::indexOfItem(const std::shared_ptr<NSMenuItem>& wanted) const {
    return indexWhere([&](const auto& item) { return item == wanted; });
}

NSInteger NSMenu::indexOfItemWithTag(NSInteger tag) const {
    return indexWhere([&](const auto& item) { return item->tag() == tag; });
}

NSInteger NSMenu::indexOfItemWithTitle(const std::u16string& title) const {
    return indexWhere([&](const auto& item) { return item->title() == title; });
}

NSInteger NSMenu::indexOfItemWithRepresentedObject(const NSValue& object) const {
    return indexWhere([&](const auto& item) { return item->representedObject() == object; });
}

std::shared_ptr<NSMenuItem> NSMenu::itemWithTag(NSInteger tag) const {
    const auto index = indexOfItemWithTag(tag);
    return index < 0 ? nullptr : itemAtIndex(index);
}

std::shared_ptr<NSMenuItem> NSMenu::itemWithTitle(const std::u16string& title) const {
    const auto index = indexOfItemWithTitle(title);
    return index < 0 ? nullptr : itemAtIndex(index);
}

void NSMenu::update(bool ofPopUpButton) {
    const auto items = m_items; // whoever is asked may change the menu
    for (const auto& item : items) {
        if (item->m_submenu) {
            item->m_submenu->update();
            item->m_enabled = true;
        } else if (item->m_action.empty()) {
            item->m_enabled = ofPopUpButton;
        } else {
            const auto target = item->target();
            item->m_enabled = actionOf(target, item->m_action) != nullptr;
            if (const auto asked = std::dynamic_pointer_cast<NSUserInterfaceValidations>(target);
                asked && item->m_enabled)
                item->m_enabled = asked->validateUserInterfaceItem(*item);
        }
    }
}

void NSMenu::userChooses(const std::shared_ptr<NSMenuItem>& item) {
    if (item && item->m_enabled)
        sendAction(item->m_action, item->target(), item);
}

void NSMenu::changed() const {
    if (m_onChange)
        m_onChange();
}

} // namespace platform
