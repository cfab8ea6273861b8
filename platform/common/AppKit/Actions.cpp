// SPDX-License-Identifier: MIT
#include "Actions.h"

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

namespace platform {

const NSClass::Action* actionOf(const std::shared_ptr<NSObject>& target, const std::u16string& selector) {
    const auto* table = target ? target->classTable() : nullptr;
    return table && !selector.empty() ? table->action(selector) : nullptr;
}

void sendAction(const std::u16string& selector, const std::shared_ptr<NSObject>& target,
                const std::shared_ptr<NSObject>& sender) {
    if (!target || selector.empty())
        return;
    if (const auto* handler = actionOf(target, selector))
        (*handler)(*target, sender);
    else
        NSLog(toUtf8(target->className()) + " has no action " + toUtf8(selector));
}

} // namespace platform
