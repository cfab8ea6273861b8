// SPDX-License-Identifier: MIT
#include "ValueBinding.h"

#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>

namespace platform {

bool ValueBinding::isDisplayOnly(const NSObject& object) const {
    const auto* table = object.classTable();
    const auto* key = table ? table->key(m_key) : nullptr;
    return key && !key->set;
}

void ValueBinding::show() {
    if (const auto object = m_object.lock())
        runGuarded([&] { m_control.setObjectValue(valueForKey(*object, m_key)); });
}

bool ValueBinding::write(const NSValue& value) {
    const auto object = m_object.lock();
    if (!object)
        return true;
    const bool emptied = isNil(value);
    if (isDisplayOnly(*object)) {
        if (!emptied)
            return true;
        runGuarded([&] { object->setNilValueForKey(m_key); });
        show();
        return false;
    }
    bool written = false;
    m_writing = true;
    runGuarded([&] {
        setValueForKey(*object, value, m_key);
        written = true;
    });
    m_writing = false;
    if (emptied)
        object->didChangeValueForKey(m_key); // what stands in for nil was not set under the key
    else if (!written)
        show();
    return true;
}

void ValueBinding::observeValueForKey(const std::u16string&) {
    if (!m_writing)
        show();
}

} // namespace platform
