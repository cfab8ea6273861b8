// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <functional>

namespace platform {

/// What happened (`name`) to which object; a missing object is null.
struct NSNotification {
    std::u16string name;
    std::shared_ptr<NSObject> object;
};

/// The queue of the one thread everything runs on. Blocks given to it by the notification centre run inside the post.
class NSOperationQueue {
public:
    static NSOperationQueue& mainQueue();
};

/// Tells observers what happened.
///
/// Posting is synchronous, and observers hear in the order in which they registered. An observer removed during a post
/// is not told any more, one added during it not yet.
class NSNotificationCenter {
public:
    using Block = std::function<void(const NSNotification&)>;
    /// What `addObserverForName` answers; it serves only to remove the observer.
    using Token = std::shared_ptr<NSObject>;
    template <class T>
    using Selector = void (T::*)(const NSNotification&);

    NSNotificationCenter();
    ~NSNotificationCenter();
    static NSNotificationCenter& defaultCenter();

    /// The block is held, with all it captures, until the token is removed. An empty name or a null object matches all.
    Token addObserverForNameObjectQueueUsingBlock(const std::u16string& name, const std::shared_ptr<NSObject>& object,
                                                  NSOperationQueue* queue, Block block);

    /// The observer is looked on weakly; added twice it is told twice.
    template <class T>
    void addObserverSelectorNameObject(const std::shared_ptr<T>& observer, Selector<T> selector,
                                       const std::u16string& name, const std::shared_ptr<NSObject>& object) {
        addWeak(observer, name, object,
                [weak = std::weak_ptr<T>(observer), selector](const NSNotification& notification) {
                    if (auto strong = weak.lock())
                        ((*strong).*selector)(notification);
                });
    }

    /// Removes every entry of `observer`; harmless for one that is not registered.
    void removeObserver(const std::shared_ptr<NSObject>& observer);
    /// Removes only the entries of `observer` with this name and object.
    void removeObserverNameObject(const std::shared_ptr<NSObject>& observer, const std::u16string& name,
                                  const std::shared_ptr<NSObject>& object);

    void postNotificationNameObject(const std::u16string& name, const std::shared_ptr<NSObject>& object);

private:
    struct Entry;
    void addWeak(const std::shared_ptr<NSObject>& observer, const std::u16string& name,
                 const std::shared_ptr<NSObject>& object, Block block);
    std::vector<std::shared_ptr<Entry>> m_entries;
};

} // namespace platform
