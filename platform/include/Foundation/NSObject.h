// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace platform {

class NSClass;
class NSKeyValueObserver;

using NSInteger = std::int64_t;
using NSUInteger = std::uint64_t;

/// "No such index" of arrays, index sets and tab views: positive when read as signed.
inline constexpr NSUInteger NSNotFound = 0x7FFFFFFFFFFFFFFF;

/// A list handed out: immutable and shared, so that asking for it costs nothing. A null pointer is nil.
template <class T>
using NSArray = std::shared_ptr<const std::vector<T>>;

/// An object with identity, held by `std::shared_ptr`.
class NSObject : public std::enable_shared_from_this<NSObject> {
public:
    NSObject();
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;
    virtual ~NSObject();

    /// The name under which the object's class registered its table; empty for a class that has none.
    virtual std::u16string_view className() const;

    /// The registered table of the object's class, or null.
    const NSClass* classTable() const;

    /// Whether the object's class is `wanted` or inherits from it; NO for null.
    bool isKindOfClass(const NSClass* wanted) const;

    /// Sent to every object of an interface file after all outlets are connected, in no promised order.
    virtual void awakeFromNib();

    /// Sent in place of a number's setter when the value for `key` is nil.
    /// The inherited one raises NSInvalidArgumentException.
    virtual void setNilValueForKey(const std::u16string& key);

    /// Says that the setter of `key` was run. Every setter of a key that controls are bound to sends this as its last
    /// act, whoever called it and whether or not the value is another; nothing watches setters by itself.
    /// Observers of the key hear it, in the order in which they were added, and so do those of the keys that the
    /// class's table declares to be affected by it.
    void didChangeValueForKey(const std::u16string& key);
    /// The observer is looked on weakly.
    void addObserverForKey(const std::shared_ptr<NSKeyValueObserver>& observer, const std::u16string& key);

private:
    std::vector<std::pair<std::u16string, std::weak_ptr<NSKeyValueObserver>>> m_observers;
};

/// Sends a message to an object that may be missing: a missing one answers nil, 0 or NO, and the arguments are
/// evaluated all the same. `message` is a member function or any callable whose first argument is the object.
template <class Target, class Message, class... Arguments>
auto tell(const std::shared_ptr<Target>& target, Message&& message, Arguments&&... arguments) {
    using Answer = std::decay_t<std::invoke_result_t<Message, Target&, Arguments...>>;
    if constexpr (std::is_void_v<Answer>) {
        if (target)
            std::invoke(std::forward<Message>(message), *target, std::forward<Arguments>(arguments)...);
    } else {
        return target
                   ? Answer(std::invoke(std::forward<Message>(message), *target, std::forward<Arguments>(arguments)...))
                   : Answer();
    }
}

/// The same for an object that is only looked on.
template <class Target, class Message, class... Arguments>
auto tell(const std::weak_ptr<Target>& target, Message&& message, Arguments&&... arguments) {
    return tell(target.lock(), std::forward<Message>(message), std::forward<Arguments>(arguments)...);
}

/// The number of elements; 0 for nil.
template <class T>
NSUInteger count(const NSArray<T>& array) {
    return array ? array->size() : 0;
}

/// The position of the very object in `array`: NSNotFound if it is not there, but 0 for nil, as a message to nil
/// answers.
template <class T>
NSUInteger indexOfObject(const NSArray<std::shared_ptr<T>>& array, const std::shared_ptr<T>& object) {
    if (!array)
        return 0;
    for (NSUInteger i = 0; i < array->size(); ++i)
        if ((*array)[i] == object && object)
            return i;
    return NSNotFound;
}

} // namespace platform
