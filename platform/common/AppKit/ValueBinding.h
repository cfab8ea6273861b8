// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Foundation/NSKeyValueObserving.h>

namespace platform {

/// Keeps a control and the value under a key of another object the same.
///
/// The control shows the getter whenever a setter of the key was run, except while it is the one that writes. A key
/// without setter is only shown; the change is then said by the control's own action.
class ValueBinding final : public NSKeyValueObserver {
public:
    ValueBinding(NSControl& control, const std::shared_ptr<NSObject>& object, std::u16string key)
        : m_control(control), m_object(object), m_key(std::move(key)) {}

    /// Reads the getter into the control. A getter that raises is logged and changes nothing.
    void show();
    /// Writes what the user chose; nil is an emptied field. An exception is logged, and the getter's value shown again.
    /// Answers NO where the control's action has nothing to say any more.
    bool write(const NSValue& value);

    void observeValueForKey(const std::u16string& key) override;

private:
    bool isDisplayOnly(const NSObject& object) const;

    NSControl& m_control; // owns the binding
    std::weak_ptr<NSObject> m_object;
    std::u16string m_key;
    bool m_writing = false;
};

} // namespace platform
