// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/dispatch.h>

namespace platform {

/// `performSelector:withObject:afterDelay:`: runs `block` once `seconds` have passed, but not while a menu is open, a
/// drag runs or an alert waits; what falls due meanwhile runs after that, in order. It belongs to the act of the user
/// during which it was asked for.
void performAfterDelay(double seconds, MainQueue::Block block);

/// Stands for a loop that only follows a menu, a drag or an alert, as long as it lives.
class TrackingLoop {
public:
    TrackingLoop();
    ~TrackingLoop();
    TrackingLoop(const TrackingLoop&) = delete;
    TrackingLoop& operator=(const TrackingLoop&) = delete;
};

/// One act of the user, with all that is done on the user's behalf because of it: what can be undone of it is undone in
/// one step. One that begins inside another is part of it.
class UserAct {
public:
    UserAct();
    /// Goes on with an earlier act.
    explicit UserAct(NSUInteger earlier);
    ~UserAct();
    UserAct(const UserAct&) = delete;
    UserAct& operator=(const UserAct&) = delete;

    /// The number of the act that runs; 0 while none does.
    static NSUInteger current();

private:
    NSUInteger m_outer;
};

} // namespace platform
