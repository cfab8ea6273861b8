// SPDX-License-Identifier: MIT
#include "Owner.h"

#include <Foundation/NSString.h>

using namespace platform;

namespace testing_support {

NSClass Owner::describe(const std::vector<std::string>& outlets) {
    NSClass cls;
    cls.name = u"Owner";
    for (auto name : outlets) {
        const bool needed = !name.ends_with('?');
        if (!needed)
            name.pop_back();
        cls.outlets[fromUtf8(name)] = {
            [name](NSObject& owner, const std::shared_ptr<NSObject>& object) {
                if (name.ends_with("Window") && object->className() != u"NSWindow")
                    return false;
                dynamic_cast<Owner&>(owner).connected[name] = object;
                return true;
            },
            [name](const NSObject& owner) { return dynamic_cast<const Owner&>(owner).outlet<NSObject>(name); }, needed};
    }
    cls.actions[u"act:"] = [](NSObject& target, const std::shared_ptr<NSObject>&) {
        auto& owner = dynamic_cast<Owner&>(target);
        owner.log.push_back("act");
        if (owner.onAction)
            owner.onAction();
    };
    cls.actions[u"rename:"] = [](NSObject& target, const std::shared_ptr<NSObject>& sender) {
        auto& owner = dynamic_cast<Owner&>(target);
        const auto text = toUtf8(std::dynamic_pointer_cast<NSTextField>(sender)->stringValue());
        const auto row = owner.outlet<NSTableView>("table")->selectedRow();
        owner.log.push_back("rename row " + std::to_string(row) + " " + text);
        if (owner.onAction)
            owner.onAction();
    };
    cls.keys[u"number"] = {[](const NSObject&) -> NSValue { return 1.0; }, {}, true};
    return cls;
}

NSInteger Owner::numberOfRowsInTableView(const std::shared_ptr<NSTableView>&) {
    return static_cast<NSInteger>(rows.size());
}

std::shared_ptr<NSTableCellView> Owner::tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>& table,
                                                                       const std::shared_ptr<NSTableColumn>& column,
                                                                       NSInteger row) {
    ++cellsAsked;
    const auto kind = column == table->tableColumns().front() ? u"Edited" : u"Fixed";
    auto cell = table->makeViewWithIdentifierOwner(kind, shared_from_this());
    cell->textField()->setStringValue(rows.at(static_cast<std::size_t>(row)));
    cell->textField()->setEnabled(!disabledRows.contains(row));
    return cell;
}

bool Owner::tableViewShouldSelectRow(const std::shared_ptr<NSTableView>&, NSInteger row) {
    log.push_back("shouldSelect " + std::to_string(row));
    return !refusedRows.contains(row);
}

void Owner::tableViewSelectionDidChange(const NSNotification& notification) {
    std::string selected;
    std::dynamic_pointer_cast<NSTableView>(notification.object)
        ->selectedRowIndexes()
        .enumerateIndexesUsingBlock([&](NSUInteger row) { selected += " " + std::to_string(row); });
    log.push_back("selected" + selected);
    if (onSelection)
        onSelection();
}

bool Owner::tabViewShouldSelectTabViewItem(const std::shared_ptr<NSTabView>& tabView,
                                           const std::shared_ptr<NSTabViewItem>& item) {
    log.push_back("from " + toUtf8(tabView->selectedTabViewItem()->identifier()) + " to " + toUtf8(item->identifier()));
    return !refusesTabs;
}

bool Owner::controlTextShouldBeginEditing(const std::shared_ptr<NSControl>&) {
    log.push_back("shouldBegin");
    return !refusesBegin;
}

bool Owner::controlTextShouldEndEditing(const std::shared_ptr<NSControl>&) {
    log.push_back("shouldEnd");
    return !refusesEnd;
}

void Owner::controlTextDidChange(const NSNotification& notification) {
    log.push_back("change " + toUtf8(std::dynamic_pointer_cast<NSTextField>(notification.object)->stringValue()));
    if (onTextChange)
        onTextChange();
}

NSClass Controller::describe() {
    return ClassTable<Controller>(u"PageController", u"NSViewController")
        .outlet(u"button", &Controller::button)
        .action(u"act:", &Controller::act);
}

} // namespace testing_support
