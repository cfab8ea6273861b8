// SPDX-License-Identifier: MIT
#include "VelCombinedViewController.h"

#include <AppKit/NSButton.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <algorithm>

using namespace platform;

namespace pane {

namespace {

constexpr NSInteger candidateTag = 1;

using ConfigurationPointer = VelCombinedViewController::ConfigurationPointer;

/// Raises NSRangeException beyond the end.
ConfigurationPointer objectAtIndex(const std::vector<ConfigurationPointer>& list, NSUInteger index) {
    if (index >= list.size())
        throw NSRangeException("index " + std::to_string(index) + " beyond " + std::to_string(list.size()) +
                               " configurations");
    return list[index];
}

const ClassRegistration registration{VelCombinedViewController::describeClass()};

} // namespace

std::u16string_view VelCombinedViewController::className() const {
    return u"VelCombinedViewController";
}

NSClass VelCombinedViewController::describeClass() {
    using Controller = VelCombinedViewController;
    return ClassTable<Controller>(u"VelCombinedViewController", u"NSViewController")
        .outlet(u"allConfigurationsTable", &Controller::m_allConfigurationsTable)
        .outlet(u"selectedConfigurationsTable", &Controller::m_selectedConfigurationsTable)
        .outlet(u"addBtn", &Controller::m_addBtn)
        .outlet(u"removeBtn", &Controller::m_removeBtn)
        .action(u"onAdd:", &Controller::onAdd)
        .action(u"onRemove:", &Controller::onRemove);
}

void VelCombinedViewController::viewDidLoad() {
    NSViewController::viewDidLoad();
    tell(m_addBtn, &NSControl::setEnabled, false);
    tell(m_removeBtn, &NSControl::setEnabled, false);
}

host::ConfigurationArray VelCombinedViewController::members() const {
    return tell(m_configuration, &host::ImprinterConfiguration::configurations);
}

void VelCombinedViewController::reloadTables() {
    tell(m_allConfigurationsTable, &NSTableView::reloadData);
    tell(m_selectedConfigurationsTable, &NSTableView::reloadData);
}

void VelCombinedViewController::updateConfiguation() {
    const auto ordinary = tell(m_imprinter, &host::Imprinter::nonCombinedConfigurations);
    m_nonCombinedConfigs = ordinary ? *ordinary : std::vector<ConfigurationPointer>();
    if (const auto taken = members())
        std::erase_if(m_nonCombinedConfigs, [&](const ConfigurationPointer& candidate) {
            return std::find(taken->begin(), taken->end(), candidate) != taken->end();
        });
    reloadTables();
}

VelCombinedViewController::ConfigurationPointer
VelCombinedViewController::configuarationAtIndex(NSInteger index) const {
    const auto list = tell(m_imprinter, &host::Imprinter::configurations);
    return static_cast<NSUInteger>(index) < count(list) ? (*list)[static_cast<NSUInteger>(index)] : nullptr;
}

VelCombinedViewController::ConfigurationPointer
VelCombinedViewController::combindedConfiguarationAtIndex(NSInteger index) const {
    const auto list = members();
    return static_cast<NSUInteger>(index) < count(list) ? (*list)[static_cast<NSUInteger>(index)] : nullptr;
}

NSInteger VelCombinedViewController::numberOfRowsInTableView(const std::shared_ptr<NSTableView>& table) {
    if (table->tag() == candidateTag)
        return static_cast<NSInteger>(m_nonCombinedConfigs.size());
    if (!tell(m_configuration, &host::ImprinterConfiguration::combinedConfiguration))
        return 0;
    return static_cast<NSInteger>(count(members()));
}

std::shared_ptr<NSTableCellView>
VelCombinedViewController::tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>& table,
                                                          const std::shared_ptr<NSTableColumn>&, NSInteger row) {
    if (table->tag() != candidateTag) {
        auto view = table->makeViewWithIdentifierOwner(u"ConfigCell", shared_from_this());
        tell(tell(view, &NSTableCellView::textField), &NSControl::setStringValue,
             tell(combindedConfiguarationAtIndex(row), &host::ImprinterConfiguration::name));
        return view;
    }
    const auto candidate = objectAtIndex(m_nonCombinedConfigs, static_cast<NSUInteger>(row));
    auto view = table->makeViewWithIdentifierOwner(u"AllConfigCell", shared_from_this());
    const auto field = tell(view, &NSTableCellView::textField);
    tell(field, &NSControl::setStringValue, candidate->name());
    // Without an edited configuration there is no identifier, and a missing one compares equal to any.
    const auto edited = m_configuration ? std::optional(m_configuration->uniqueID()) : std::nullopt;
    tell(field, &NSControl::setEnabled, caseInsensitiveCompare(edited, candidate->uniqueID()) != 0);
    return view;
}

void VelCombinedViewController::tableViewSelectionDidChange(const NSNotification& notification) {
    const auto table = std::dynamic_pointer_cast<NSTableView>(notification.object);
    tell(tell(table, &NSTableView::tag) == candidateTag ? m_addBtn : m_removeBtn, &NSControl::setEnabled,
         table && table->selectedRow() != -1);
}

void VelCombinedViewController::onAdd(const std::shared_ptr<NSObject>&) {
    std::vector<ConfigurationPointer> added;
    tell(m_allConfigurationsTable, &NSTableView::selectedRowIndexes).enumerateIndexesUsingBlock([&](NSUInteger row) {
        const auto candidate = objectAtIndex(m_nonCombinedConfigs, row);
        added.push_back(candidate);
        tell(m_configuration, &host::ImprinterConfiguration::addConfiguration, candidate);
    });
    std::erase_if(m_nonCombinedConfigs, [&](const ConfigurationPointer& candidate) {
        return std::find(added.begin(), added.end(), candidate) != added.end();
    });
    reloadTables();
    tell(m_addBtn, &NSControl::setEnabled, false);
}

void VelCombinedViewController::onRemove(const std::shared_ptr<NSObject>&) {
    std::vector<ConfigurationPointer> removed;
    tell(m_selectedConfigurationsTable, &NSTableView::selectedRowIndexes)
        .enumerateIndexesUsingBlock([&](NSUInteger row) {
            // The list is read afresh each time, so an index counts in what earlier removals have left.
            const auto list = members();
            const auto member = objectAtIndex(list ? *list : std::vector<ConfigurationPointer>(), row);
            removed.push_back(member);
            tell(m_configuration, &host::ImprinterConfiguration::deleteConfiguration, member);
        });
    m_nonCombinedConfigs.insert(m_nonCombinedConfigs.end(), removed.begin(), removed.end());
    reloadTables();
    tell(m_removeBtn, &NSControl::setEnabled, false);
}

} // namespace pane
