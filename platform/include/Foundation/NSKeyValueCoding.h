// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <variant>

namespace platform {

/// A value under a key: nil, a number, a text or an object. The kinds of number are kept apart, because single
/// precision is narrowed exactly where a control says so.
using NSValue = std::variant<std::monostate, bool, NSInteger, float, double, std::u16string, std::shared_ptr<NSObject>>;

/// nil, text that starts with no number and objects are 0.
double doubleValue(const NSValue& value);
bool isNil(const NSValue& value);

/// The value under `key` of the object's class table or of a class it inherits from.
/// Raises NSException "NSUnknownKeyException" for a key no table has.
NSValue valueForKey(const NSObject& object, const std::u16string& key);

/// Writes through the setter in the class table; nil for a number goes to `setNilValueForKey` instead.
/// Raises NSException "NSUnknownKeyException" for a key without setter.
void setValueForKey(NSObject& object, const NSValue& value, const std::u16string& key);

} // namespace platform
