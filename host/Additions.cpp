// SPDX-License-Identifier: MIT
#include <host/Additions.h>

#include <AppKit/NSButton.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSTabView.h>

#include <algorithm>

namespace host {

using namespace platform;

namespace {

/// The titles that a view shows by itself, its subviews left out.
void localizeTitles(NSView& view, const std::function<std::u16string(const std::u16string&)>& localized) {
    if (auto* button = dynamic_cast<NSButton*>(&view)) {
        button->setTitle(localized(button->title()));
    } else if (auto* field = dynamic_cast<NSTextField*>(&view)) {
        if (!field->isEditable())
            field->setStringValue(localized(field->stringValue()));
    } else if (auto* matrix = dynamic_cast<NSMatrix*>(&view)) {
        for (const auto& cell : matrix->cells())
            cell->setTitle(localized(cell->title()));
    } else if (auto* table = dynamic_cast<NSTableView*>(&view)) {
        for (const auto& column : table->tableColumns())
            column->setTitle(localized(column->title()));
    } else if (auto* tabs = dynamic_cast<NSTabView*>(&view)) {
        for (NSInteger index = 0; index < tabs->numberOfTabViewItems(); ++index) {
            const auto item = tabs->tabViewItemAtIndex(index);
            item->setLabel(localized(item->label()));
        }
    }
}

} // namespace

void localizeUsingTableBundle(NSView& view, const std::u16string& table, const NSBundle& bundle) {
    const auto localized = [&](const std::u16string& text) {
        return text.empty() ? text : bundle.localizedStringForKeyValueTable(text, u"", table);
    };
    localizeTitles(view, localized);
    view.setToolTip(localized(view.toolTip()));
    view.setAccessibilityLabel(localized(view.accessibilityLabel()));
    for (const auto& subview : view.subviews())
        localizeUsingTableBundle(*subview, table, bundle);
}

void installBottomBorderedHeaderView(NSTableView& table) {
    table.setHeaderView(std::make_shared<NSTableHeaderView>(NSTableHeaderView{true}));
}

std::u16string stringByTrimmingPrefixCharacter(const std::u16string& text, char16_t character) {
    return text.substr(std::min(text.find_first_not_of(character), text.size()));
}

} // namespace host
