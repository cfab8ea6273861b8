// SPDX-License-Identifier: MIT
// The Appearance editor's title: the field, its tokens, its menus and what it puts on pasteboards.
#include "VelImprinterPrefPane.h"

#include "TitleTokens.h"
#include "VelIFontPopupButton.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTokenFieldCell.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSRunLoop.h>

using namespace platform;

namespace pane {

namespace {

const std::u16string changeFont = u"%changeFont%";
const std::u16string pageNumber = u"%pageNumber%";
const std::u16string recordPageCount = u"%recordPageCount%";

/// How long after a paste or drop its follow-up runs, in seconds: the field has put the objects in by then.
constexpr double followUpDelay = 0.01;

NSArray<RepresentedObject> listOf(TitleObjects objects) {
    return std::make_shared<const TitleObjects>(std::move(objects));
}

} // namespace

void VelImprinterPrefPane::setUpTitleField() {
    const auto field = m_titleTokenField.lock();
    tell(field, &NSTextField::setDelegate, self());
    tell(std::dynamic_pointer_cast<host::PlaceholderTokenField>(field), &host::PlaceholderTokenField::setMenuDelegate,
         self());
    tell(field, &NSTokenField::setTokenizingCharacterSet, u"%");
    tell(field, &NSView::registerForDraggedTypes, std::vector<std::u16string>{NSPasteboardTypeString});
}

// Tokens

bool VelImprinterPrefPane::isTokenString(const std::u16string& text) const {
    return pane::isTokenString(text);
}

std::u16string VelImprinterPrefPane::normalizedTitleTokenString(const std::u16string& text) const {
    return pane::normalizedTitleTokenString(text);
}

TitleObjects VelImprinterPrefPane::normalizedTitleTokens(const NSArray<RepresentedObject>& title) const {
    return pane::normalizedTitleTokens(title);
}

NSUInteger VelImprinterPrefPane::lengthOfToken(const RepresentedObject& token) const {
    return pane::lengthOfToken(token);
}

NSArray<RepresentedObject> VelImprinterPrefPane::titleOfField() const {
    return tell(m_titleTokenField, &NSTokenField::objectValue);
}

void VelImprinterPrefPane::storeTitle(const NSArray<RepresentedObject>& title) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setTitleTokens, modelTitle(title));
}

void VelImprinterPrefPane::insertTokenInRange(const RepresentedObject& token, NSRange range) {
    const auto title = listOf(titleByInsertingTokenInRange(titleOfField(), token, range));
    tell(m_titleTokenField, &NSTokenField::setObjectValue, title);
    storeTitle(title);
    updatePreview();
}

void VelImprinterPrefPane::addTokenItem(const std::shared_ptr<NSObject>& sender) {
    const auto represented = tell(std::dynamic_pointer_cast<NSMenuItem>(sender), &NSMenuItem::representedObject);
    const auto* text = std::get_if<std::u16string>(&represented);
    // A missing object compares equal to every text.
    std::shared_ptr<host::ImprinterFont> run;
    if (isNil(represented) || (text && *text == changeFont))
        run = tell(m_currentConfiguration, &host::ImprinterConfiguration::createFontToken);
    const auto range = tell(tell(m_titleTokenField, &NSTokenField::currentEditor), &NSTextView::selectedRange);
    const auto* object = std::get_if<std::shared_ptr<NSObject>>(&represented);
    if (run)
        insertTokenInRange(std::shared_ptr<NSObject>(run), range);
    else if (text)
        insertTokenInRange(*text, range);
    else if (object && *object)
        insertTokenInRange(*object, range);
    else
        throw NSInvalidArgumentException("there is no token to insert");
    if (run) {
        tell(m_fontTokensPopup, &NSPopUpButton::setMenu, createFontTokensMenu());
        tell(m_fontTokensPopup, &NSPopUpButton::selectItemWithTag, 0);
    }
}

FontRuns VelImprinterPrefPane::getFontTokenArray() const {
    return fontRunsOf(titleOfField());
}

NSUInteger VelImprinterPrefPane::renumberFonts(const FontRuns& fonts) {
    NSUInteger number = 0;
    for (const auto& font : fonts)
        font->setFontNumber(number++);
    return number + 1;
}

void VelImprinterPrefPane::fontTokensWereDeletedCurrentFonts(const FontRuns&, const FontRuns& currentFonts) {
    renumberFonts(currentFonts);
    const auto menu = createFontTokensMenu();
    tell(m_fontTokensPopup, &NSPopUpButton::setMenu, menu);
    if (!currentFonts.empty() &&
        std::find(currentFonts.begin(), currentFonts.end(), m_currentFont) == currentFonts.end()) {
        tell(m_fontTokensPopup, &NSPopUpButton::selectItemWithTag, 0);
        onSelectFont(menu->itemWithTag(0));
    }
    updatePreview();
}

FontRuns VelImprinterPrefPane::selectedFontsInRange(NSRange range) const {
    return fontRunsInRange(titleOfField(), range);
}

void VelImprinterPrefPane::updateFontSelections(const FontRuns& fonts) {
    if (fonts.empty())
        return;
    m_currentFont = fonts.front();
    tell(m_fontPopup, &VelIFontPopupButton::updatePopupForFont, m_currentFont->font());
    const auto size = static_cast<float>(m_currentFont->fontSize());
    tell(m_fontSizeField, &NSControl::setFloatValue, size);
    tell(m_fontSizeStepper, &NSControl::setFloatValue, size);
}

void VelImprinterPrefPane::selectedFontUpdatedFullFontName(const std::shared_ptr<VelIFontPopupButton>&,
                                                           const std::optional<std::u16string>& fullFontName) {
    setNameOfCurrentFont(fullFontName);
    updatePreview();
}

// Delegate of the title field

NSTokenStyle VelImprinterPrefPane::tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>& field,
                                                                       const RepresentedObject& object) {
    return fontRunOf(object) ? NSTokenStyle::rounded
                             : tell(field, &NSTokenField::tokenFieldStyleForRepresentedObject, field, object);
}

std::optional<std::u16string>
VelImprinterPrefPane::tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<NSTokenField>& field,
                                                                  const RepresentedObject& object) {
    const auto run = fontRunOf(object);
    return run ? run->name() : tell(field, &NSTokenField::tokenFieldDisplayStringForRepresentedObject, field, object);
}

std::optional<RepresentedObject>
VelImprinterPrefPane::tokenFieldRepresentedObjectForEditingString(const std::shared_ptr<NSTokenField>&,
                                                                  const std::u16string& editingString) {
    return normalizedTitleTokenString(editingString);
}

NSArray<RepresentedObject>
VelImprinterPrefPane::tokenFieldShouldAddObjectsAtIndex(const std::shared_ptr<NSTokenField>& field,
                                                        const NSArray<RepresentedObject>& objects, NSUInteger) {
    storeTitle(tell(field, &NSTokenField::objectValue));
    return m_isDraggingFromSelf ? objects : listOf(normalizedTitleTokens(objects));
}

bool VelImprinterPrefPane::tokenFieldWriteRepresentedObjectsToPasteboard(
    const std::shared_ptr<NSTokenField>&, const NSArray<RepresentedObject>& objects,
    const std::shared_ptr<NSPasteboard>& pasteboard) {
    m_fontLookup.clear();
    m_draggedTokenObjects = objects;
    m_isDraggingFromSelf = true;
    std::vector<std::u16string> items;
    const auto* fontClass = NSClassFromString(u"VelIFontType");
    for (std::size_t i = 0; i < count(objects); ++i) {
        if (const auto* text = std::get_if<std::u16string>(&(*objects)[i])) {
            items.push_back(*text);
        } else if (const auto run = fontRunOf((*objects)[i]); run && run->isKindOfClass(fontClass)) {
            items.push_back(globallyUniqueString());
            m_fontLookup[items.back()] = run;
        }
    }
    return tell(pasteboard, &NSPasteboard::writeObjects, items);
}

NSArray<RepresentedObject>
VelImprinterPrefPane::tokenFieldReadFromPasteboard(const std::shared_ptr<NSTokenField>&,
                                                   const std::shared_ptr<NSPasteboard>& pasteboard) {
    TitleObjects objects;
    const auto items = tell(pasteboard, &NSPasteboard::readObjects);
    for (std::size_t i = 0; i < count(items); ++i) {
        const auto& item = (*items)[i];
        if (const auto found = m_fontLookup.find(item); found != m_fontLookup.end())
            objects.emplace_back(std::shared_ptr<NSObject>(found->second));
        else
            objects.emplace_back(normalizedTitleTokenString(item));
    }
    performAfterDelay(followUpDelay, [pane = self(), reorders = m_isDraggingFromSelf] {
        if (reorders)
            pane->finalizeDragReorder();
        else
            pane->sanitizeTextAfterPaste();
    });
    return listOf(std::move(objects));
}

bool VelImprinterPrefPane::controlTextShouldBeginEditing(const std::shared_ptr<NSControl>& control) {
    const auto field = m_titleTokenField.lock();
    if (field && control == field)
        tell(field->currentEditor(), &NSView::registerForDraggedTypes,
             std::vector<std::u16string>{NSPasteboardTypeString, NSStringPboardType});
    return true;
}

bool VelImprinterPrefPane::controlTextShouldEndEditing(const std::shared_ptr<NSControl>&) {
    tell(m_titleTokenField, &NSTokenField::setObjectValue,
         fieldTitle(tell(m_currentConfiguration, &host::ImprinterConfiguration::titleTokens)));
    return true;
}

void VelImprinterPrefPane::textViewDidChangeSelection(const NSNotification&) {}

void VelImprinterPrefPane::controlTextDidChange(const NSNotification& notification) {
    const auto pages = m_customOccurance.lock();
    if (pages && notification.object == pages) {
        customOccuranceTextChanged();
        return;
    }
    // The field still has the value from before the change; the edit is taken over only after it was looked at.
    const auto formerFonts = getFontTokenArray();
    tell(m_titleTokenField, &NSTokenField::validateEditing);
    const auto title = titleOfField();
    const auto normalized = listOf(normalizedTitleTokens(title));
    if (!title || *title != *normalized)
        tell(m_titleTokenField, &NSTokenField::setObjectValue, normalized);
    storeTitle(normalized);
    const auto fonts = getFontTokenArray();
    if (fonts.size() < formerFonts.size())
        fontTokensWereDeletedCurrentFonts(formerFonts, fonts);
}

// What follows a paste or drop

void VelImprinterPrefPane::sanitizeTextAfterPaste() {
    const auto field = m_titleTokenField.lock();
    if (!field)
        return;
    auto text = field->attributedStringValue();
    if (text.removeCharacters([](char16_t unit) { return unit == u'%'; }))
        field->setAttributedStringValue(text);
}

void VelImprinterPrefPane::finalizeDragReorder() {
    if (m_isDraggingFromSelf && m_draggedTokenObjects) {
        const auto reordered = listOf(titleWithoutFirstOccurrences(titleOfField(), m_draggedTokenObjects));
        const auto title = listOf(normalizedTitleTokens(reordered));
        tell(m_titleTokenField, &NSTokenField::setObjectValue, title);
        storeTitle(title);
        renumberFonts(getFontTokenArray());
        tell(m_fontTokensPopup, &NSPopUpButton::setMenu, createFontTokensMenu());
        updatePreview();
    }
    m_isDraggingFromSelf = false;
    m_draggedTokenObjects.reset();
}

// Menus

void VelImprinterPrefPane::tokenFieldWillPopUpMenuWithPlaceholderMenu(const std::shared_ptr<NSTokenField>&,
                                                                      const std::shared_ptr<NSMenu>&,
                                                                      const std::shared_ptr<NSMenu>& placeholderMenu) {
    if (!placeholderMenu)
        return;
    updateSubmenuWithTargetAction(placeholderMenu, shared_from_this(), u"addTokenItem:");
    placeholderMenu->insertItemAtIndex(NSMenuItem::separatorItem(), 0);
    insertPlaceholderTitleToMenuAtIndex(changeFont, u"Font", placeholderMenu, 0);
    insertPlaceholderTitleToMenuAtIndex(pageNumber, u"Page Number", placeholderMenu,
                                        placeholderMenu->indexOfItemWithRepresentedObject(recordPageCount));
}

void VelImprinterPrefPane::updateSubmenuWithTargetAction(const std::shared_ptr<NSMenu>& menu,
                                                         const std::shared_ptr<NSObject>& target,
                                                         const std::u16string& action) {
    if (!menu)
        return;
    for (const auto& item : menu->itemArray()) {
        if (item->submenu()) {
            updateSubmenuWithTargetAction(item->submenu(), target, action);
        } else {
            item->setTarget(target);
            item->setAction(action);
        }
    }
}

void VelImprinterPrefPane::insertPlaceholderTitleToMenuAtIndex(const std::u16string& placeholder,
                                                               const std::u16string& title,
                                                               const std::shared_ptr<NSMenu>& menu, NSInteger index) {
    const auto localTitle = localized(title);
    const auto item =
        tell(menu, &NSMenu::insertItemWithTitleActionKeyEquivalentAtIndex, u"", u"addTokenItem:", u"", index);
    tell(item, &NSMenuItem::setTarget, shared_from_this());
    const auto cell = std::make_shared<NSTokenFieldCell>(localTitle);
    cell->setTokenizingCharacterSet(newlineCharacterSet);
    cell->setControlSize(NSControlSize::small);
    const auto size = cell->cellSizeForBounds({{0, 0}, {999, 999}});
    const auto image = NSImage::initWithSize(size);
    image->lockFocus();
    cell->drawWithFrameInView({{0, 0}, size}, nullptr);
    image->unlockFocus();
    tell(item, &NSMenuItem::setImage, image);
    tell(item, &NSMenuItem::setRepresentedObject, placeholder);
}

std::shared_ptr<NSMenu> VelImprinterPrefPane::createFontTokensMenu() {
    auto menu = std::make_shared<NSMenu>();
    NSInteger tag = 0;
    for (const auto& run :
         fontRunsOf(fieldTitle(tell(m_currentConfiguration, &host::ImprinterConfiguration::titleTokens)))) {
        const auto item = menu->addItemWithTitleActionKeyEquivalent(run->name(), u"onSelectFont:", u"");
        item->setTarget(shared_from_this());
        item->setTag(tag++);
        item->setRepresentedObject(std::shared_ptr<NSObject>(run));
        if (run == m_currentFont)
            item->setState(1);
    }
    return menu;
}

void VelImprinterPrefPane::fontPopuWillBeDisplayed(const NSNotification&) {
    tell(m_fontTokensPopup, &NSPopUpButton::setMenu, createFontTokensMenu());
}

} // namespace pane
