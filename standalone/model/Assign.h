// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace model {

template <class T>
bool sameContent(const T& left, const T& right) {
    return left == right;
}

/// What is held by pointer and never changes is the same when its content is.
template <class T>
bool sameContent(const std::shared_ptr<const T>& left, const std::shared_ptr<const T>& right) {
    return left == right || (left && right && *left == *right);
}

/// Answers whether that was a change. The value is stored in either case: -0 equals 0 and is another number.
template <class T>
bool assign(T& member, const T& value) {
    const bool same = sameContent(member, value);
    member = value;
    return !same;
}

} // namespace model
