// SPDX-License-Identifier: MIT
#include <AppKit/NSAlert.h>

#include "Peers.h"

namespace platform {

namespace {

NSAlert::Answerer& answerer() {
    static NSAlert::Answerer instance;
    return instance;
}

} // namespace

void NSAlert::setAnswerer(Answerer newAnswerer) {
    answerer() = std::move(newAnswerer);
}

NSInteger NSAlert::runModal() {
    // Held, since the answer to one alert may set that to the next.
    const auto answer = answerer();
    return answer ? answer(*this) : runAlertModally(*this);
}

} // namespace platform
