// SPDX-License-Identifier: MIT
#include <Foundation/NSNotification.h>

#include <algorithm>

namespace platform {

struct NSNotificationCenter::Entry {
    std::weak_ptr<NSObject> observer;
    Token token; // holds the observer of a block
    std::u16string name;
    std::weak_ptr<NSObject> object;
    bool anyObject = false;
    Block block;
    bool removed = false;
};

NSNotificationCenter::NSNotificationCenter() = default;
NSNotificationCenter::~NSNotificationCenter() = default;

NSOperationQueue& NSOperationQueue::mainQueue() {
    static NSOperationQueue queue;
    return queue;
}

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    // Never destroyed: an observer left registered may hold views, which must not outlive the toolkit.
    static auto& center = *new NSNotificationCenter;
    return center;
}

NSNotificationCenter::Token NSNotificationCenter::addObserverForNameObjectQueueUsingBlock(
    const std::u16string& name, const std::shared_ptr<NSObject>& object, NSOperationQueue*, Block block) {
    auto entry = std::make_shared<Entry>();
    entry->token = std::make_shared<NSObject>();
    entry->observer = entry->token;
    entry->name = name;
    entry->object = object;
    entry->anyObject = !object;
    entry->block = std::move(block);
    m_entries.push_back(entry);
    return entry->token;
}

void NSNotificationCenter::addWeak(const std::shared_ptr<NSObject>& observer, const std::u16string& name,
                                   const std::shared_ptr<NSObject>& object, Block block) {
    auto entry = std::make_shared<Entry>();
    entry->observer = observer;
    entry->name = name;
    entry->object = object;
    entry->anyObject = !object;
    entry->block = std::move(block);
    m_entries.push_back(std::move(entry));
}

void NSNotificationCenter::removeObserver(const std::shared_ptr<NSObject>& observer) {
    removeObserverNameObject(observer, {}, nullptr);
}

void NSNotificationCenter::removeObserverNameObject(const std::shared_ptr<NSObject>& observer,
                                                    const std::u16string& name,
                                                    const std::shared_ptr<NSObject>& object) {
    // A block that goes may hold the last owner of another observer, which then comes here as well: the list is whole
    // again before anything goes.
    std::vector<std::shared_ptr<Entry>> removed;
    std::erase_if(m_entries, [&](const std::shared_ptr<Entry>& entry) {
        const auto held = entry->observer.lock();
        if (held &&
            (held != observer || (!name.empty() && entry->name != name) || (object && entry->object.lock() != object)))
            return false;
        entry->removed = true;
        removed.push_back(entry);
        return true;
    });
}

void NSNotificationCenter::postNotificationNameObject(const std::u16string& name,
                                                      const std::shared_ptr<NSObject>& object) {
    const NSNotification notification{name, object};
    const auto snapshot = m_entries;
    for (const auto& entry : snapshot) {
        if (entry->removed || (!entry->name.empty() && entry->name != name) ||
            (!entry->anyObject && (!object || entry->object.lock() != object)))
            continue;
        entry->block(notification);
    }
}

} // namespace platform
