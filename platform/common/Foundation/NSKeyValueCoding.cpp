// SPDX-License-Identifier: MIT
#include <Foundation/NSKeyValueCoding.h>

#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace platform {

namespace {

[[noreturn]] void raiseUnknownKey(const NSObject& object, const std::u16string& key) {
    throw NSException("NSUnknownKeyException", toUtf8(object.className()) + " has no key " + toUtf8(key));
}

const NSClass::Key* findKey(const NSObject& object, const std::u16string& key) {
    const auto* table = object.classTable();
    return table ? table->key(key) : nullptr;
}

} // namespace

double doubleValue(const NSValue& value) {
    return std::visit(
        [](const auto& held) -> double {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_arithmetic_v<Held>)
                return static_cast<double>(held);
            else if constexpr (std::is_same_v<Held, std::u16string>)
                return doubleValue(std::u16string_view(held));
            else
                return 0;
        },
        value);
}

bool isNil(const NSValue& value) {
    if (const auto* object = std::get_if<std::shared_ptr<NSObject>>(&value))
        return !*object;
    return std::holds_alternative<std::monostate>(value);
}

NSValue valueForKey(const NSObject& object, const std::u16string& key) {
    const auto* entry = findKey(object, key);
    if (!entry)
        raiseUnknownKey(object, key);
    return entry->get(object);
}

void setValueForKey(NSObject& object, const NSValue& value, const std::u16string& key) {
    const auto* entry = findKey(object, key);
    if (!entry || !entry->set)
        raiseUnknownKey(object, key);
    if (entry->isNumber && isNil(value))
        object.setNilValueForKey(key);
    else
        entry->set(object, value);
}

} // namespace platform
