// SPDX-License-Identifier: MIT
#include "VelIFontAttributePopupButton.h"

#include "VelIFontPopupButton.h"
#include "VelIFonts.h"

namespace pane {

using namespace platform;

namespace {

const ClassRegistration registration{VelIFontAttributePopupButton::describeClass()};

/// An item that stands for no font keeps its drawing.
void restyleInFont(NSMenuItem& item, const std::optional<std::u16string>& fullFontName) {
    if (fullFontName)
        item.setAttributedTitle(attributedStringInFont(item.title(), *fullFontName));
}

} // namespace

VelIFontAttributePopupButton::~VelIFontAttributePopupButton() {
    // By now the centre knows this observer as one that is gone.
    NSNotificationCenter::defaultCenter().removeObserver(nullptr);
}

std::u16string_view VelIFontAttributePopupButton::className() const {
    return u"VelIFontAttributePopupButton";
}

NSClass VelIFontAttributePopupButton::describeClass() {
    return ClassTable<VelIFontAttributePopupButton>(u"VelIFontAttributePopupButton", u"NSPopUpButton")
        .outlet(u"fontPopUpBtn", &VelIFontAttributePopupButton::m_fontPopUpBtn);
}

bool VelIFontAttributePopupButton::useFonts() const {
    return tell(fontPopUpBtn(), &VelIFontPopupButton::useFonts);
}

std::optional<std::u16string> VelIFontAttributePopupButton::currentFullFontName() const {
    return tell(fontPopUpBtn(), &VelIFontPopupButton::currentSelectedFullFontName);
}

void VelIFontAttributePopupButton::awakeFromNib() {
    removeAllItems();
    const auto self = std::static_pointer_cast<VelIFontAttributePopupButton>(shared_from_this());
    NSNotificationCenter::defaultCenter().addObserverSelectorNameObject(
        self, &VelIFontAttributePopupButton::onWillPopupNotification, NSPopUpButtonWillPopUpNotification, self);
}

void VelIFontAttributePopupButton::onWillPopupNotification(const NSNotification&) {
    const auto selected = selectedItem();
    if (selected && useFonts())
        restyleInFont(*selected, currentFullFontName());
}

void VelIFontAttributePopupButton::dismissPopUp() {
    const auto selected = selectedItem();
    if (selected && useFonts())
        restyleInMenuFont(*selected, controlSize());
}

void VelIFontAttributePopupButton::setMenu(const std::shared_ptr<NSMenu>& menu) {
    const auto former = titleOfSelectedItem();
    NSPopUpButton::setMenu(menu);
    if (former && !former->empty()) {
        const auto same = indexOfItemWithTitle(*former);
        if (same != -1)
            NSPopUpButton::selectItemAtIndex(same);
    }
    const auto selected = selectedItem();
    if (selected && useFonts())
        restyleInMenuFont(*selected, controlSize());
}

void VelIFontAttributePopupButton::selectItemWithTitle(const std::u16string& title) {
    const auto former = selectedItem();
    const auto formerFont = currentFullFontName();
    NSPopUpButton::selectItemWithTitle(title);
    const auto selected = selectedItem();
    if (selected == former)
        return;
    if (former)
        restyleInFont(*former, formerFont);
    if (selected && useFonts())
        restyleInMenuFont(*selected, controlSize());
}

void VelIFontAttributePopupButton::selectItem(const std::shared_ptr<NSMenuItem>& item) {
    const auto former = selectedItem();
    if (item != former) {
        if (former)
            restyleInFont(*former, currentFullFontName());
        if (item && useFonts())
            restyleInMenuFont(*item, controlSize());
    }
    NSPopUpButton::selectItem(item);
}

void VelIFontAttributePopupButton::selectItemAtIndex(NSInteger index) {
    NSPopUpButton::selectItemAtIndex(index);
}

bool VelIFontAttributePopupButton::selectItemWithTag(NSInteger tag) {
    return NSPopUpButton::selectItemWithTag(tag);
}

} // namespace pane
