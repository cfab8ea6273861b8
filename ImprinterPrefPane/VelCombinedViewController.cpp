// SPDX-License-Identifier: MIT
#include "VelCombinedViewController.h"

#include <AppKit/NSButton.h>

using namespace platform;

namespace pane {

namespace {

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

void VelCombinedViewController::updateConfiguation() {}
void VelCombinedViewController::onAdd(const std::shared_ptr<NSObject>&) {}
void VelCombinedViewController::onRemove(const std::shared_ptr<NSObject>&) {}

NSInteger VelCombinedViewController::numberOfRowsInTableView(const std::shared_ptr<NSTableView>&) {
    return 0;
}

std::shared_ptr<NSTableCellView>
VelCombinedViewController::tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>&,
                                                          const std::shared_ptr<NSTableColumn>&, NSInteger) {
    return nullptr;
}

} // namespace pane
