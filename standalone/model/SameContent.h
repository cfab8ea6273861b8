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

} // namespace model
