// SPDX-License-Identifier: MIT
#include <Foundation/NSObject.h>

#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSString.h>

namespace platform {

NSObject::NSObject() = default;
NSObject::~NSObject() = default;

std::u16string_view NSObject::className() const {
    return {};
}

const NSClass* NSObject::classTable() const {
    return NSClassFromString(className());
}

bool NSObject::isKindOfClass(const NSClass* wanted) const {
    const auto* own = classTable();
    return own && wanted && own->isSubclassOf(wanted);
}

void NSObject::awakeFromNib() {}

void NSObject::setNilValueForKey(const std::u16string& key) {
    throw NSInvalidArgumentException("setNilValueForKey: nil for the number under the key " + toUtf8(key));
}

void NSObject::addObserverForKey(const std::shared_ptr<NSKeyValueObserver>& observer, const std::u16string& key) {
    std::erase_if(m_observers, [](const auto& entry) { return entry.second.expired(); });
    m_observers.emplace_back(key, observer);
}

void NSObject::didChangeValueForKey(const std::u16string& key) {
    if (m_observers.empty())
        return;
    const auto* table = classTable();
    const auto observers = m_observers; // who is told may add others
    for (const auto& [observed, observer] : observers) {
        const auto* entry = table ? table->key(observed) : nullptr;
        if (observed != key && !(entry && entry->affectedBy.contains(key)))
            continue;
        if (const auto told = observer.lock())
            told->observeValueForKey(observed);
    }
}

NSKeyValueObserver::~NSKeyValueObserver() = default;

} // namespace platform
