// SPDX-License-Identifier: MIT
#include "Entry.h"

#include <Foundation/NSException.h>

namespace platform::qt {

namespace {

int& depth() {
    static int running = 0;
    return running;
}

} // namespace

void enter(const std::function<void()>& handler) {
    ++depth();
    runGuarded(handler);
    --depth();
}

bool insideEntry() {
    return depth() > 0;
}

} // namespace platform::qt
