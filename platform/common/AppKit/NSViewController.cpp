// SPDX-License-Identifier: MIT
#include <AppKit/NSViewController.h>

#include <AppKit/NSNib.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSException.h>

namespace platform {

std::u16string_view NSViewController::className() const {
    return u"NSViewController";
}

NSClass NSViewController::describeClass() {
    return ClassTable<NSViewController>(u"NSViewController").outlet(u"view", &NSViewController::m_view);
}

void NSViewController::initWithNibNameBundle(const std::u16string& name, const std::shared_ptr<NSBundle>& bundle) {
    m_nibName = name;
    m_nibBundle = bundle;
}

void NSViewController::loadView() {
    if (!m_nibBundle) {
        NSLog("a view controller has no bundle to load " + toUtf8(m_nibName) + " from");
        return;
    }
    for (const auto& problem : loadNibNamedOwner(*m_nibBundle, m_nibName, shared_from_this()).problems)
        NSLog(problem);
}

const std::shared_ptr<NSView>& NSViewController::view() {
    if (!m_view) {
        loadView();
        if (m_view)
            viewDidLoad();
    }
    return m_view;
}

void NSViewController::viewDidLoad() {}

} // namespace platform
