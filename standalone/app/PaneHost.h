// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTableView.h>
#include <AppKit/NSTokenField.h>
#include <PreferencePanes/NSPreferencePane.h>
#include <host/Imprinter.h>
#include <host/ImprinterFont.h>

namespace app {

/// Loads a settings pane from its bundle and sends it the messages of its life, in their order.
///
/// It knows the pane by the vocabulary alone: the messages of NSPreferencePane, and the outlets and keys of its class
/// table.
class PaneHost {
public:
    /// Null, with the reason in `error`, where the bundle cannot be loaded.
    static std::unique_ptr<PaneHost> load(const std::filesystem::path& bundle, std::string& error);
    ~PaneHost();
    PaneHost(const PaneHost&) = delete;
    PaneHost& operator=(const PaneHost&) = delete;

    const std::shared_ptr<platform::NSView>& view() const { return m_pane->mainView(); }
    platform::NSPreferencePane& pane() { return *m_pane; }
    std::shared_ptr<host::ImprinterConfiguration> currentConfiguration() const;

    /// Around putting the view into a window. An error in the pane is logged.
    void willShow();
    void didShow();

    /// Commits the edit in progress. NO where a field refused to end it.
    bool commitEditing();
    /// The user wants to leave: commits the edit in progress, asks the pane and lets it save. NO only where the pane
    /// refused: a text that its field does not take is given up, and an error in the pane is logged.
    bool leave();
    /// After the view was taken out.
    void didLeave() { m_pane->didUnselect(); }

    /// After the model was changed under the open pane: shows the list anew and reads the current configuration again.
    void refresh(const host::Imprinter& imprinter) { show(currentConfiguration(), imprinter); }
    /// The same, with another configuration as the current one. One that the host does not have is not shown.
    void show(const std::shared_ptr<host::ImprinterConfiguration>& configuration, const host::Imprinter& imprinter);

    /// Shows that there is no configuration, as the pane does after the last one was deleted.
    void showNone(const host::Imprinter& imprinter);

    /// Whether the pane's class has this action, such as "addConfiguration:"; and doing it.
    bool performs(std::u16string_view action) const;
    void perform(std::u16string_view action);

    /// The pane's table of configurations, or null.
    std::shared_ptr<platform::NSTableView> table() const;
    /// The field of the title being edited, or null.
    std::shared_ptr<platform::NSTokenField> titleField() const;

private:
    PaneHost() = default;
    /// Has the pane list the title's font runs anew and edit `run`; null for the one that it edits, or the first where
    /// that one is gone.
    void editRun(const std::shared_ptr<host::ImprinterFont>& run);
    std::shared_ptr<platform::NSObject> outlet(std::u16string_view name) const;
    std::shared_ptr<platform::NSPreferencePane> m_pane;
};

} // namespace app
