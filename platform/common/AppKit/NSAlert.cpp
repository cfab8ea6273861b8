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
    return answerer() ? answerer()(*this) : runAlertModally(*this);
}

} // namespace platform
