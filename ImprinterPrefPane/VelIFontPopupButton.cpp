// SPDX-License-Identifier: MIT
#include "VelIFontPopupButton.h"

#include "VelIFontAttributePopupButton.h"
#include "VelIFonts.h"

#include <Foundation/NSString.h>

namespace pane {

using namespace platform;

namespace {

const ClassRegistration registration{VelIFontPopupButton::describeClass()};

/// A family that the catalog does not know keeps its drawing.
void restyleInOwnFace(NSMenuItem& item) {
    if (const auto title = VelIFonts::sharedVelIFonts()->attributedStringInFontForFontFamily(item.title()))
        item.setAttributedTitle(title);
}

} // namespace

VelIFontPopUpProtocol::~VelIFontPopUpProtocol() = default;
VelIFontPopupDelegate::~VelIFontPopupDelegate() = default;

void restyleInMenuFont(NSMenuItem& item, NSControlSize size) {
    const auto font = NSFont::menuFontOfSize(NSFont::systemFontSizeForControlSize(size));
    item.setAttributedTitle(std::make_shared<NSAttributedString>(
        item.title(), NSAttributedString::Attributes{{NSFontAttributeName, font}}));
}

VelIFontPopupButton::~VelIFontPopupButton() {
    // By now the centre knows this observer as one that is gone.
    NSNotificationCenter::defaultCenter().removeObserver(nullptr);
}

std::u16string_view VelIFontPopupButton::className() const {
    return u"VelIFontPopupButton";
}

NSClass VelIFontPopupButton::describeClass() {
    using Button = VelIFontPopupButton;
    return ClassTable<Button>(u"VelIFontPopupButton", u"NSPopUpButton")
        .outlet(u"fontAttributePopUpBtn", &Button::m_fontAttributePopUpBtn)
        .action(u"onFontSelectionChanged:", &Button::onFontSelectionChanged)
        .action(u"onFontAttributeChanged:", &Button::onFontAttributeChanged);
}

std::shared_ptr<VelIFontPopupButton> VelIFontPopupButton::self() {
    return std::static_pointer_cast<VelIFontPopupButton>(shared_from_this());
}

void VelIFontPopupButton::awakeFromNib() {
    m_useFonts = true;
    removeAllItems();
    setMenu(VelIFonts::sharedVelIFonts()->fontMenu(m_useFonts));
    setTarget(self());
    setAction(u"onFontSelectionChanged:");
    const auto faces = fontAttributePopUpBtn();
    tell(faces, &NSControl::setTarget, self());
    tell(faces, &NSControl::setAction, u"onFontAttributeChanged:");
    NSNotificationCenter::defaultCenter().addObserverSelectorNameObject(
        self(), &VelIFontPopupButton::onWillPopupNotification, NSPopUpButtonWillPopUpNotification, self());
}

std::vector<std::u16string> VelIFontPopupButton::buildFontList() {
    return VelIFonts::sharedVelIFonts()->buildFontList();
}

void VelIFontPopupButton::onWillPopupNotification(const NSNotification&) {
    const auto selected = selectedItem();
    if (!selected) {
        m_lastSelectedItemTag = -1;
        return;
    }
    if (!m_useFonts)
        return;
    m_lastSelectedItemTag = selected->tag();
    restyleInOwnFace(*selected);
}

void VelIFontPopupButton::dismissPopUp() {
    const auto selected = selectedItem();
    if (selected && m_useFonts)
        restyleInMenuFont(*selected, controlSize());
}

void VelIFontPopupButton::selectItemWithTitle(const std::u16string& title) {
    const auto former = selectedItem();
    NSPopUpButton::selectItemWithTitle(title);
    const auto selected = selectedItem();
    if (selected == former)
        return;
    if (former)
        restyleInOwnFace(*former);
    if (selected && m_useFonts)
        restyleInMenuFont(*selected, controlSize());
}

void VelIFontPopupButton::selectItem(const std::shared_ptr<NSMenuItem>& item) {
    const auto former = selectedItem();
    if (item != former) {
        if (former)
            restyleInOwnFace(*former);
        if (item && m_useFonts)
            restyleInMenuFont(*item, controlSize());
    }
    NSPopUpButton::selectItem(item);
}

void VelIFontPopupButton::selectItemAtIndex(NSInteger index) {
    NSPopUpButton::selectItemAtIndex(index);
}

bool VelIFontPopupButton::selectItemWithTag(NSInteger tag) {
    return NSPopUpButton::selectItemWithTag(tag);
}

void VelIFontPopupButton::updatePopupForFont(const std::shared_ptr<NSFont>& font) {
    // A missing name compares equal to anything, so a missing font changes nothing.
    const auto family = font && !font->familyName().empty() ? std::optional(font->familyName()) : std::nullopt;
    const auto shownFamily = titleOfSelectedItem();
    if (!shownFamily || caseInsensitiveCompare(family, *shownFamily) != 0)
        selectItemWithTitle(family.value_or(u""));
    if (!family)
        return;
    updateAttributePopupForFontFamily(*family);

    const auto faces = fontAttributePopUpBtn();
    const auto& catalog = VelIFonts::sharedVelIFonts();
    if (const auto shownFace = tell(faces, &NSPopUpButton::titleOfSelectedItem)) {
        // A display name against a full font name: they differ as a rule, and then the face is selected again.
        const auto shownFont = catalog->fullFontNameForFamilyAttibute(family, shownFace);
        if (shownFont && caseInsensitiveCompare(font->displayName(), *shownFont) == 0)
            return;
    }
    if (const auto attribute = catalog->attributeNameForFullFontNameFamilyName(font->fontName(), *family))
        tell(faces, &NSPopUpButton::selectItemWithTitle, *attribute);
}

void VelIFontPopupButton::updateAttributePopupForFontFamily(const std::u16string& family) {
    if (const auto menu = VelIFonts::sharedVelIFonts()->fontAttributeMenuForFontUseFont(family, m_useFonts))
        tell(fontAttributePopUpBtn(), &NSPopUpButton::setMenu, menu);
}

std::optional<std::u16string> VelIFontPopupButton::currentSelectedFullFontName() {
    return VelIFonts::sharedVelIFonts()->fullFontNameForFamilyAttibute(
        titleOfSelectedItem(), tell(fontAttributePopUpBtn(), &NSPopUpButton::titleOfSelectedItem));
}

void VelIFontPopupButton::onFontSelectionChanged(const std::shared_ptr<NSObject>&) {
    const auto selected = selectedItem();
    if (tell(selected, &NSMenuItem::tag) == m_lastSelectedItemTag)
        return;
    if (selected)
        updateAttributePopupForFontFamily(selected->title());
    report();
}

void VelIFontPopupButton::onFontAttributeChanged(const std::shared_ptr<NSObject>&) {
    report();
}

void VelIFontPopupButton::report() {
    const auto name = currentSelectedFullFontName();
    if (const auto block = m_onFontChanged) // which may set another one
        block(name);
    if (const auto told = delegate())
        told->selectedFontUpdatedFullFontName(self(), name);
}

} // namespace pane
