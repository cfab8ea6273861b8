// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace platform {

/// Deferred work on the one thread everything runs on. A block is held with all it captures until it has run; there is
/// no cancel. What leaves a block as an exception is logged.
class MainQueue {
public:
    using Block = std::function<void()>;
    virtual ~MainQueue();
    /// Runs `block` after the current event, never inside the call; blocks run in the order queued.
    virtual void async(Block block) = 0;
    /// Runs `block` once `seconds` have passed; blocks run in the order in which they are due.
    virtual void after(double seconds, Block block) = 0;
};

/// The queue in force: the event loop's, or the one a test put in its place.
MainQueue& mainQueue();
/// Null gives the event loop's queue back. Answers the former one.
std::shared_ptr<MainQueue> setMainQueue(std::shared_ptr<MainQueue> queue);

/// `dispatch_async` and `dispatch_after` on the main queue.
void dispatchAsync(MainQueue::Block block);
void dispatchAfter(double seconds, MainQueue::Block block);

} // namespace platform
