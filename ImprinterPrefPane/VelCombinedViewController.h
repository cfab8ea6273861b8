// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTableView.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSClass.h>
#include <host/Imprinter.h>

namespace platform {
class NSButton;
}

namespace pane {

/// Edits the member list of a combined configuration.
class VelCombinedViewController final : public platform::NSViewController,
                                        public platform::NSTableViewDataSource,
                                        public platform::NSTableViewDelegate {
public:
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

    std::shared_ptr<host::Imprinter> imprinter() const { return m_imprinter; }
    void setImprinter(const std::shared_ptr<host::Imprinter>& imprinter) { m_imprinter = imprinter; }
    std::shared_ptr<host::ImprinterConfiguration> configuration() const { return m_configuration; }
    void setConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
        m_configuration = configuration;
    }

    virtual void updateConfiguation(); // sic
    virtual void onAdd(const std::shared_ptr<platform::NSObject>& sender);
    virtual void onRemove(const std::shared_ptr<platform::NSObject>& sender);

    platform::NSInteger numberOfRowsInTableView(const std::shared_ptr<platform::NSTableView>& table) override;
    std::shared_ptr<platform::NSTableCellView>
    tableViewViewForTableColumnRow(const std::shared_ptr<platform::NSTableView>& table,
                                   const std::shared_ptr<platform::NSTableColumn>& column,
                                   platform::NSInteger row) override;

private:
    std::shared_ptr<host::Imprinter> m_imprinter;
    std::shared_ptr<host::ImprinterConfiguration> m_configuration;
    std::weak_ptr<platform::NSTableView> m_allConfigurationsTable;
    std::weak_ptr<platform::NSTableView> m_selectedConfigurationsTable;
    std::weak_ptr<platform::NSButton> m_addBtn;
    std::weak_ptr<platform::NSButton> m_removeBtn;
};

} // namespace pane
