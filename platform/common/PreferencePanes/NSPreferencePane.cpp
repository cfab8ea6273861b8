// SPDX-License-Identifier: MIT
#include <PreferencePanes/NSPreferencePane.h>

#include <AppKit/NSNib.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>

namespace platform {

NSPreferencePane::~NSPreferencePane() = default;

std::u16string_view NSPreferencePane::className() const {
    return u"NSPreferencePane";
}

std::u16string NSPreferencePane::mainNibName() const {
    return tell(m_bundle, &NSBundle::objectForInfoDictionaryKey, u"NSMainNibFile").value_or(u"Main");
}

std::shared_ptr<NSView> NSPreferencePane::loadMainView() {
    if (m_mainView || !m_bundle)
        return m_mainView;
    auto contents = loadNibNamedOwner(*m_bundle, mainNibName(), shared_from_this());
    m_problems = std::move(contents.problems);
    for (const auto& problem : m_problems)
        NSLog(problem);
    m_window = contents.window;
    if (!m_window)
        return nullptr;
    m_mainView = m_window->contentView();
    mainViewDidLoad();
    return m_mainView;
}

void NSPreferencePane::mainViewDidLoad() {}
void NSPreferencePane::willSelect() {}
void NSPreferencePane::didSelect() {
    m_selected = true;
}
NSPreferencePaneUnselectReply NSPreferencePane::shouldUnselect() {
    return NSPreferencePaneUnselectReply::now;
}
void NSPreferencePane::willUnselect() {}
void NSPreferencePane::didUnselect() {
    m_selected = false;
}

} // namespace platform
