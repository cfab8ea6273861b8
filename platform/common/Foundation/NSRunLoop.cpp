// SPDX-License-Identifier: MIT
#include <Foundation/NSRunLoop.h>

#include <vector>

namespace platform {

namespace {

// One thread runs everything.
int trackingLoops = 0;
NSUInteger runningAct = 0;
NSUInteger lastAct = 0;

std::vector<MainQueue::Block>& held() {
    static std::vector<MainQueue::Block> blocks;
    return blocks;
}

} // namespace

void performAfterDelay(double seconds, MainQueue::Block block) {
    auto performed = [act = runningAct, block = std::move(block)] {
        const UserAct resumed(act);
        block();
    };
    dispatchAfter(seconds, [performed = std::move(performed)]() mutable {
        if (trackingLoops == 0)
            performed();
        else
            held().push_back(std::move(performed));
    });
}

TrackingLoop::TrackingLoop() {
    ++trackingLoops;
}

TrackingLoop::~TrackingLoop() {
    if (--trackingLoops > 0)
        return;
    for (auto& block : std::exchange(held(), {}))
        dispatchAsync(std::move(block));
}

UserAct::UserAct() : m_outer(runningAct) {
    if (runningAct == 0)
        runningAct = ++lastAct;
}

UserAct::UserAct(NSUInteger earlier) : m_outer(std::exchange(runningAct, earlier)) {}

UserAct::~UserAct() {
    runningAct = m_outer;
}

NSUInteger UserAct::current() {
    return runningAct;
}

} // namespace platform
