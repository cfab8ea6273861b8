// SPDX-License-Identifier: MIT
#include "PlaceholderTokenField.h"

#include "HostBundle.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSTokenFieldCell.h>
#include <Foundation/NSString.h>

#include <algorithm>
#include <array>

using namespace platform;

namespace app {

namespace {

struct Placeholder {
    const char16_t* text;
    const char16_t* title; // in English
};

constexpr std::array placeholders{
    Placeholder{u"%pageNumber%", u"Page Number"},
    Placeholder{u"%recordPageCount%", u"Page Count"},
    Placeholder{u"%recordName%", u"Record Name"},
    Placeholder{u"%user%", u"User"},
    Placeholder{u"%date%", u"Date"},
    Placeholder{u"%time%", u"Time"},
    Placeholder{u"%runningNumber%", u"Running Number"},
};

std::u16string localized(const char16_t* english) {
    return app::text(english).toStdU16String();
}

/// As panes tell placeholders from text: what is one token there is one here.
bool isPlaceholder(const std::u16string& text) {
    return text.size() >= 2 && text.front() == u'%' && text.back() == u'%';
}

/// How a placeholder reads; one that is not known by the name between its signs.
std::u16string titleOf(const std::u16string& placeholder) {
    for (const auto& known : placeholders)
        if (placeholder == known.text)
            return localized(known.title);
    return placeholder.size() > 2 ? placeholder.substr(1, placeholder.size() - 2) : placeholder;
}

std::vector<std::shared_ptr<host::ImprinterFont>> runsOf(const TokenText& title) {
    std::vector<std::shared_ptr<host::ImprinterFont>> runs;
    for (const auto& piece : title.pieces())
        if (const auto* object = std::get_if<std::shared_ptr<NSObject>>(&piece.object))
            if (auto run = std::dynamic_pointer_cast<host::ImprinterFont>(*object))
                runs.push_back(std::move(run));
    return runs;
}

void addPlaceholder(NSMenu& menu, const std::u16string& placeholder) {
    const auto item = menu.addItemWithTitleActionKeyEquivalent({}, {}, {});
    item->setRepresentedObject(placeholder);
    NSTokenFieldCell cell(titleOf(placeholder));
    cell.setTokenizingCharacterSet(newlineCharacterSet);
    cell.setControlSize(NSControlSize::small);
    const auto size = cell.cellSizeForBounds({{0, 0}, {999, 999}});
    const auto image = NSImage::initWithSize(size);
    image->lockFocus();
    cell.drawWithFrameInView({{0, 0}, size}, nullptr);
    image->unlockFocus();
    item->setImage(image);
}

void addSubmenu(NSMenu& menu, const char16_t* english, const std::vector<std::u16string>& held) {
    const auto submenu = std::make_shared<NSMenu>();
    for (const auto& placeholder : held)
        addPlaceholder(*submenu, placeholder);
    menu.addItemWithTitleActionKeyEquivalent(localized(english), {}, {})->setSubmenu(submenu);
}

} // namespace

NSTokenStyle PlaceholderTokenField::tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                                        const RepresentedObject& object) {
    const auto* text = std::get_if<std::u16string>(&object);
    return text && !isPlaceholder(*text) ? NSTokenStyle::none : NSTokenStyle::rounded;
}

std::optional<std::u16string>
PlaceholderTokenField::tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                                   const RepresentedObject& object) {
    const auto* text = std::get_if<std::u16string>(&object);
    return text && isPlaceholder(*text) ? std::optional(titleOf(*text)) : std::nullopt;
}

std::u16string PlaceholderTokenField::insertButtonLabel() const {
    return localized(u"Insert a placeholder");
}

std::shared_ptr<NSMenu> PlaceholderTokenField::placeholderMenu() const {
    auto menu = std::make_shared<NSMenu>();
    addPlaceholder(*menu, u"%recordPageCount%");
    addSubmenu(*menu, u"Date and Time", {u"%date%", u"%time%"});
    addSubmenu(*menu, u"Record", {u"%recordName%", u"%user%", u"%runningNumber%"});
    return menu;
}

void PlaceholderTokenField::complete(const std::shared_ptr<NSMenu>& menu,
                                     const std::shared_ptr<NSMenu>& placeholderMenu) {
    if (const auto completes = menuDelegate())
        completes->tokenFieldWillPopUpMenuWithPlaceholderMenu(
            std::static_pointer_cast<NSTokenField>(shared_from_this()), menu, placeholderMenu);
}

std::shared_ptr<NSMenu> PlaceholderTokenField::insertMenu() {
    auto menu = placeholderMenu();
    complete(menu, menu);
    return menu;
}

std::shared_ptr<NSMenu> PlaceholderTokenField::contextMenu() {
    auto menu = std::make_shared<NSMenu>();
    const auto add = [&](const char16_t* english, const char16_t* action) {
        menu->addItemWithTitleActionKeyEquivalent(localized(english), action, {})->setTarget(shared_from_this());
    };
    add(u"Undo", u"undo:");
    add(u"Redo", u"redo:");
    menu->addItem(NSMenuItem::separatorItem());
    add(u"Cut", u"cut:");
    add(u"Copy", u"copy:");
    add(u"Paste", u"paste:");
    menu->addItem(NSMenuItem::separatorItem());
    add(u"Select All", u"selectAll:");
    menu->addItem(NSMenuItem::separatorItem());
    const auto offered = placeholderMenu();
    menu->addItemWithTitleActionKeyEquivalent(localized(u"Insert"), {}, {})->setSubmenu(offered);
    complete(menu, offered);
    return menu;
}

void PlaceholderTokenField::userUndid(const TokenText& text) {
    const auto before = runsOf(attributedStringValue());
    host::PlaceholderTokenField::userUndid(text);
    const auto runs = runsOf(attributedStringValue());
    if (runs == before)
        return;
    for (std::size_t i = 0; i < runs.size(); ++i)
        runs[i]->setFontNumber(i);
    refreshTokenTitles();
    if (m_onRunsChanged)
        m_onRunsChanged(nullptr);
}

void PlaceholderTokenField::userChoosesMenuItem(const std::shared_ptr<NSMenuItem>& item) {
    const auto before = runsOf(attributedStringValue());
    host::PlaceholderTokenField::userChoosesMenuItem(item);
    for (const auto& run : runsOf(attributedStringValue()))
        if (m_onRunsChanged && std::find(before.begin(), before.end(), run) == before.end())
            return m_onRunsChanged(run);
}

} // namespace app
