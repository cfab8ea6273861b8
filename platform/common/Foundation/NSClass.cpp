// SPDX-License-Identifier: MIT
#include <Foundation/NSClass.h>

#include "LoadingBundle.h"

#include <algorithm>
#include <mutex>

namespace platform {

namespace {

/// Newest last, so that a name registered twice answers with the newest until that one goes.
struct Registry {
    std::mutex mutex;
    std::map<std::u16string, std::vector<std::shared_ptr<NSClass>>, std::less<>> classes;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

template <class Entry>
const Entry* findInherited(const NSClass* cls, std::map<std::u16string, Entry, std::less<>> NSClass::*table,
                           std::u16string_view name) {
    for (; cls; cls = cls->superclass())
        if (const auto found = (cls->*table).find(name); found != (cls->*table).end())
            return &found->second;
    return nullptr;
}

} // namespace

std::shared_ptr<NSBundle>& loadingBundle() {
    static std::shared_ptr<NSBundle> bundle;
    return bundle;
}

const NSClass* NSClass::superclass() const {
    return NSClassFromString(superclassName);
}

const NSClass::Outlet* NSClass::outlet(std::u16string_view outletName) const {
    return findInherited(this, &NSClass::outlets, outletName);
}

const NSClass::Action* NSClass::action(std::u16string_view selector) const {
    return findInherited(this, &NSClass::actions, selector);
}

const NSClass::Key* NSClass::key(std::u16string_view keyName) const {
    return findInherited(this, &NSClass::keys, keyName);
}

bool NSClass::isSubclassOf(const NSClass* other) const {
    for (const auto* cls = this; cls; cls = cls->superclass())
        if (cls == other)
            return true;
    return false;
}

const NSClass* NSClassFromString(std::u16string_view name) {
    const std::lock_guard lock(registry().mutex);
    const auto found = registry().classes.find(name);
    return found == registry().classes.end() || found->second.empty() ? nullptr : found->second.back().get();
}

ClassRegistration::ClassRegistration(NSClass description) : m_class(std::make_shared<NSClass>(std::move(description))) {
    m_class->bundle = loadingBundle();
    const std::lock_guard lock(registry().mutex);
    registry().classes[m_class->name].push_back(m_class);
}

ClassRegistration::~ClassRegistration() {
    const std::lock_guard lock(registry().mutex);
    std::erase(registry().classes[m_class->name], m_class);
}

} // namespace platform
