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

/// Edits the member list of a combined configuration: candidates on one side, members on the other.
///
/// The candidates are the controller's own list, made anew by `updateConfiguation`; the members are the
/// configuration's, read afresh at every use. The tables are told apart by their tags: 1 is the candidate table, any
/// other the members'.
class VelCombinedViewController : public platform::NSViewController,
                                  public platform::NSTableViewDataSource,
                                  public platform::NSTableViewDelegate {
public:
    using NSInteger = platform::NSInteger;
    using ConfigurationPointer = std::shared_ptr<host::ImprinterConfiguration>;

    std::u16string_view className() const override;
    static platform::NSClass describeClass();
    void viewDidLoad() override;

    std::shared_ptr<host::Imprinter> imprinter() const { return m_imprinter; }
    void setImprinter(const std::shared_ptr<host::Imprinter>& imprinter) { m_imprinter = imprinter; }
    ConfigurationPointer configuration() const { return m_configuration; }
    void setConfiguration(const ConfigurationPointer& configuration) { m_configuration = configuration; }
    const std::vector<ConfigurationPointer>& nonCombinedConfigs() const { return m_nonCombinedConfigs; }
    void setNonCombinedConfigs(std::vector<ConfigurationPointer> configurations) {
        m_nonCombinedConfigs = std::move(configurations);
    }

    /// Makes the candidates anew and reloads both tables.
    virtual void updateConfiguation(); // sic
    /// A configuration of the imprinter; null for an index it does not have.
    virtual ConfigurationPointer configuarationAtIndex(NSInteger index) const; // sic
    /// A member of the configuration; null for an index it does not have.
    virtual ConfigurationPointer combindedConfiguarationAtIndex(NSInteger index) const; // sic
    virtual void onAdd(const std::shared_ptr<platform::NSObject>& sender);
    /// Raises NSRangeException where an index lies beyond the members left; what was removed before stays removed.
    virtual void onRemove(const std::shared_ptr<platform::NSObject>& sender);

    NSInteger numberOfRowsInTableView(const std::shared_ptr<platform::NSTableView>& table) override;
    std::shared_ptr<platform::NSTableCellView>
    tableViewViewForTableColumnRow(const std::shared_ptr<platform::NSTableView>& table,
                                   const std::shared_ptr<platform::NSTableColumn>& column, NSInteger row) override;
    void tableViewSelectionDidChange(const platform::NSNotification& notification) override;

private:
    host::ConfigurationArray members() const;
    void reloadTables();

    std::shared_ptr<host::Imprinter> m_imprinter;
    ConfigurationPointer m_configuration;
    std::vector<ConfigurationPointer> m_nonCombinedConfigs;
    std::weak_ptr<platform::NSTableView> m_allConfigurationsTable;
    std::weak_ptr<platform::NSTableView> m_selectedConfigurationsTable;
    std::weak_ptr<platform::NSButton> m_addBtn;
    std::weak_ptr<platform::NSButton> m_removeBtn;
};

} // namespace pane
