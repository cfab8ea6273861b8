// SPDX-License-Identifier: MIT
#include "PaneHost.h"

#include "PlaceholderTokenField.h"

#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNotification.h>

#include <algorithm>

namespace app {

using namespace platform;

namespace {

constexpr char16_t currentKey[] = u"currentConfiguration";

} // namespace

std::unique_ptr<PaneHost> PaneHost::load(const std::filesystem::path& path, std::string& error) {
    const auto bundle = NSBundle::bundleWithPath(path);
    if (!bundle) {
        error = path.string() + " is no bundle of a settings pane";
        return nullptr;
    }
    if (!bundle->load(error))
        return nullptr;
    const auto* cls = bundle->principalClass();
    auto pane = cls && cls->make ? std::dynamic_pointer_cast<NSPreferencePane>(cls->make()) : nullptr;
    if (!pane) {
        error = path.string() + " names no settings pane as its principal class";
        return nullptr;
    }
    pane->setBundle(bundle);
    runGuarded([&] { pane->loadMainView(); });
    // There is a view even where the pane met an error when it filled it.
    if (!pane->mainView()) {
        error = path.string() + ": the pane's interface could not be loaded";
        return nullptr;
    }
    auto host = std::unique_ptr<PaneHost>(new PaneHost);
    host->m_pane = std::move(pane);
    if (const auto field = std::dynamic_pointer_cast<PlaceholderTokenField>(host->titleField()))
        field->setOnRunsChanged([host = host.get()](const auto& inserted) { host->editRun(inserted); });
    return host;
}

PaneHost::~PaneHost() {
    if (const auto field = std::dynamic_pointer_cast<PlaceholderTokenField>(titleField()))
        field->setOnRunsChanged({});
}

void PaneHost::editRun(const std::shared_ptr<host::ImprinterFont>& run) {
    const auto popUp = std::dynamic_pointer_cast<NSPopUpButton>(outlet(u"fontTokensPopup"));
    if (!popUp)
        return;
    // As before it opens, when the pane makes its menu; the run being edited is then the one that is on.
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSPopUpButtonWillPopUpNotification, popUp);
    const auto& items = popUp->menu()->itemArray();
    if (items.empty())
        return;
    const auto stands = std::find_if(items.begin(), items.end(), [&](const auto& item) {
        return run ? item->representedObject() == NSValue(std::shared_ptr<NSObject>(run)) : item->state() != 0;
    });
    const auto& chosen = stands == items.end() ? items.front() : *stands;
    popUp->selectItem(chosen);
    const auto* cls = m_pane->classTable();
    if ((run || stands == items.end()) && cls && cls->action(chosen->action()))
        (*cls->action(chosen->action()))(*m_pane, chosen);
}

std::shared_ptr<host::ImprinterConfiguration> PaneHost::currentConfiguration() const {
    const auto value = valueForKey(*m_pane, currentKey);
    const auto* object = std::get_if<std::shared_ptr<NSObject>>(&value);
    return object ? std::dynamic_pointer_cast<host::ImprinterConfiguration>(*object) : nullptr;
}

bool PaneHost::performs(std::u16string_view action) const {
    const auto* cls = m_pane->classTable();
    return cls && cls->action(action);
}

void PaneHost::perform(std::u16string_view action) {
    if (performs(action))
        (*m_pane->classTable()->action(action))(*m_pane, nullptr);
}

void PaneHost::willShow() {
    runGuarded([this] { m_pane->willSelect(); });
}

void PaneHost::didShow() {
    runGuarded([this] { m_pane->didSelect(); });
}

bool PaneHost::commitEditing() {
    const auto window = view()->window();
    return !window || window->makeFirstResponder(nullptr);
}

bool PaneHost::leave() {
    if (!m_pane->isSelected())
        return true;
    auto reply = NSPreferencePaneUnselectReply::now;
    runGuarded([this] { commitEditing(); });
    runGuarded([&] { reply = m_pane->shouldUnselect(); });
    if (reply == NSPreferencePaneUnselectReply::cancel)
        return false;
    runGuarded([this] { m_pane->willUnselect(); });
    return true;
}

void PaneHost::show(const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                    const host::Imprinter& imprinter) {
    const auto list = table();
    tell(list, &NSTableView::reloadData);
    // After the last one was deleted the pane keeps it behind its empty page, where it shall stay.
    if (configuration && imprinter.indexOfConfiguration(configuration) == NSNotFound)
        return;
    setValueForKey(*m_pane, std::monostate(), currentKey);
    setValueForKey(*m_pane, std::shared_ptr<NSObject>(configuration), currentKey);
    tell(list, &NSTableView::selectRowIndexesByExtendingSelection,
         NSIndexSet(imprinter.indexOfConfiguration(configuration)), false);
}

void PaneHost::showNone(const host::Imprinter& imprinter) {
    show(nullptr, imprinter);
    tell(std::dynamic_pointer_cast<NSControl>(outlet(u"deleteConfigurationBtn")), &NSControl::setEnabled, false);
    tell(std::dynamic_pointer_cast<NSView>(outlet(u"duplicateRecBtn")), &NSView::setHidden, true);
}

std::shared_ptr<NSTableView> PaneHost::table() const {
    return std::dynamic_pointer_cast<NSTableView>(outlet(u"tableView"));
}

std::shared_ptr<NSTokenField> PaneHost::titleField() const {
    return std::dynamic_pointer_cast<NSTokenField>(outlet(u"titleTokenField"));
}

std::shared_ptr<NSObject> PaneHost::outlet(std::u16string_view name) const {
    const auto* cls = m_pane->classTable();
    const auto* described = cls ? cls->outlet(name) : nullptr;
    return described ? described->object(*m_pane) : nullptr;
}

} // namespace app
