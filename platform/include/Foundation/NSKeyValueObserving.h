// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// Hears when the value under a key of another object was set. See NSObject's `addObserverForKey`.
class NSKeyValueObserver {
public:
    virtual ~NSKeyValueObserver();
    virtual void observeValueForKey(const std::u16string& key) = 0;
};

} // namespace platform
