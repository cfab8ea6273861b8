// SPDX-License-Identifier: MIT
#include <AppKit/NSPopUpButton.h>

#include <AppKit/NSButton.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNotification.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

NSPopUpButtonCell::NSPopUpButtonCell() = default;

NSPopUpButtonCell::~NSPopUpButtonCell() {
    if (menu())
        menu()->setOnChange({});
}

std::u16string_view NSPopUpButtonCell::className() const {
    return u"NSPopUpButtonCell";
}

void NSPopUpButtonCell::setPullsDown(bool pullsDown) {
    hideFace(false);
    m_pullsDown = pullsDown;
    hideFace(true);
    changed();
}

void NSPopUpButtonCell::setMenu(const std::shared_ptr<NSMenu>& newMenu) {
    if (newMenu == menu())
        return;
    hideFace(false);
    if (menu())
        menu()->setOnChange({});
    m_selected.reset();
    if (newMenu) {
        const auto& items = newMenu->itemArray();
        const auto on = std::find_if(items.begin(), items.end(),
                                     [](const auto& item) { return item->state() == NSControlStateValueOn; });
        newMenu->setOnChange([this] {
            hideFace(true);
            changed();
        });
        NSCell::setMenu(newMenu);
        hideFace(true);
        selectItem(on != items.end() ? *on : items.empty() ? nullptr : items.front());
    } else {
        NSCell::setMenu(nullptr);
    }
}

void NSPopUpButtonCell::hideFace(bool hide) const {
    if (m_pullsDown && menu() && menu()->numberOfItems() > 0)
        menu()->itemAtIndex(0)->setHidden(hide);
}

std::shared_ptr<NSMenuItem> NSPopUpButtonCell::selectedItem() const {
    return m_selected && menu() && m_selected->menu() == menu() ? m_selected : nullptr;
}

void NSPopUpButtonCell::selectItem(const std::shared_ptr<NSMenuItem>& item) {
    const auto wanted = item && item->menu() == menu() ? item : nullptr;
    const auto before = selectedItem();
    m_selected = wanted;
    if (!m_pullsDown && before != wanted && before)
        before->setState(NSControlStateValueOff);
    if (!m_pullsDown && wanted)
        wanted->setState(NSControlStateValueOn);
    changed();
}

std::u16string NSPopUpButtonCell::titleOfSelectedItem() const {
    return tell(selectedItem(), &NSMenuItem::title);
}

std::shared_ptr<NSMenuItem> NSPopUpButtonCell::faceItem() const {
    if (!m_pullsDown)
        return selectedItem();
    return menu() && menu()->numberOfItems() > 0 ? menu()->itemAtIndex(0) : nullptr;
}

void NSPopUpButtonCell::dismissPopUp() {}

NSPopUpButton::NSPopUpButton() {
    NSPopUpButton::setCell(std::make_shared<NSPopUpButtonCell>());
    m_popUpCell->setMenu(std::make_shared<NSMenu>());
}

NSPopUpButton::~NSPopUpButton() = default;

std::u16string_view NSPopUpButton::className() const {
    return u"NSPopUpButton";
}

void NSPopUpButton::setCell(const std::shared_ptr<NSCell>& cell) {
    const auto popUp = std::dynamic_pointer_cast<NSPopUpButtonCell>(cell);
    if (!popUp)
        throw NSInvalidArgumentException("a pop-up button needs a pop-up button's cell");
    const auto former = m_popUpCell;
    m_popUpCell = popUp;
    NSControl::setCell(popUp);
    if (former && former != popUp) {
        const auto menu = former->menu();
        const auto selected = former->selectedItem();
        popUp->setPullsDown(former->pullsDown());
        former->setMenu(nullptr);
        popUp->setMenu(menu);
        popUp->selectItem(selected);
    }
}

void NSPopUpButton::addItemWithTitle(const std::u16string& title) {
    if (!menu())
        popUpCell().setMenu(std::make_shared<NSMenu>());
    const auto same = menu()->indexOfItemWithTitle(title);
    if (same >= 0)
        menu()->removeItemAtIndex(same);
    const auto item = menu()->addItemWithTitleActionKeyEquivalent(title, {}, {});
    if (menu()->numberOfItems() == 1)
        popUpCell().selectItem(item);
}

void NSPopUpButton::removeAllItems() {
    tell(menu(), &NSMenu::removeAllItems);
}

NSInteger NSPopUpButton::numberOfItems() const {
    return tell(menu(), &NSMenu::numberOfItems);
}

std::shared_ptr<NSMenuItem> NSPopUpButton::itemAtIndex(NSInteger index) const {
    if (!menu())
        throw NSRangeException("the button has no menu");
    return menu()->itemAtIndex(index);
}

std::shared_ptr<NSMenuItem> NSPopUpButton::itemWithTitle(const std::u16string& title) const {
    return tell(menu(), &NSMenu::itemWithTitle, title);
}

NSInteger NSPopUpButton::indexOfItemWithTitle(const std::u16string& title) const {
    return menu() ? menu()->indexOfItemWithTitle(title) : -1;
}

NSInteger NSPopUpButton::indexOfSelectedItem() const {
    const auto selected = popUpCell().selectedItem();
    return selected ? menu()->indexOfItem(selected) : -1;
}

NSInteger NSPopUpButton::selectedTag() const {
    const auto selected = popUpCell().selectedItem();
    return selected ? selected->tag() : -1;
}

std::optional<std::u16string> NSPopUpButton::titleOfSelectedItem() const {
    const auto selected = popUpCell().selectedItem();
    return selected ? std::optional(selected->title()) : std::nullopt;
}

void NSPopUpButton::selectItem(const std::shared_ptr<NSMenuItem>& item) {
    popUpCell().selectItem(item);
}

void NSPopUpButton::selectItemAtIndex(NSInteger index) {
    popUpCell().selectItem(index == -1 ? nullptr : itemAtIndex(index));
}

bool NSPopUpButton::selectItemWithTag(NSInteger tag) {
    const auto item = tell(menu(), &NSMenu::itemWithTag, tag);
    if (item)
        popUpCell().selectItem(item);
    return item != nullptr;
}

void NSPopUpButton::selectItemWithTitle(const std::u16string& title) {
    popUpCell().selectItem(title.empty() ? nullptr : itemWithTitle(title));
}

std::shared_ptr<NSMenu> NSPopUpButton::userOpens() {
    if (!isEnabled())
        return nullptr;
    auto& center = NSNotificationCenter::defaultCenter();
    center.postNotificationNameObject(NSPopUpButtonCellWillPopUpNotification, m_popUpCell);
    center.postNotificationNameObject(NSPopUpButtonWillPopUpNotification, shared_from_this());
    if (!menu())
        popUpCell().setMenu(std::make_shared<NSMenu>());
    menu()->update(true);
    return menu();
}

void NSPopUpButton::userChose(const std::shared_ptr<NSMenuItem>& item) {
    const auto self = shared_from_this(); // an action may let go of the button
    const auto chosen = item && item->isEnabled() ? item : nullptr;
    if (chosen && chosen->menu() == menu())
        popUpCell().selectItem(chosen);
    const auto dismissed = m_popUpCell;
    dismissed->dismissPopUp();
    if (!chosen)
        return;
    if (chosen->action().empty())
        sendAction();
    else
        NSMenu::userChooses(chosen);
}

void NSPopUpButton::cellChanged() {
    if (auto* shown = dynamic_cast<PopUpPeer*>(peer()))
        shown->showFace(*this);
}

void NSPopUpButton::showAll() {
    NSControl::showAll();
    cellChanged();
}

} // namespace platform
