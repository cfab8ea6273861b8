// SPDX-License-Identifier: MIT
#include <Foundation/NSObject.h>

#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>
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

} // namespace platform
