// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>

namespace platform {

/// The action that `target`'s class table has under `selector`; null for a missing target too.
const NSClass::Action* actionOf(const std::shared_ptr<NSObject>& target, const std::u16string& selector);

/// Sends an action. A missing target or an empty selector sends nothing; a target without that action is logged.
void sendAction(const std::u16string& selector, const std::shared_ptr<NSObject>& target,
                const std::shared_ptr<NSObject>& sender);

} // namespace platform
