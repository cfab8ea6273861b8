// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace engine {

/// Corrects the index of a JPEG file of several pictures, one behind the other, whose first one became longer or
/// shorter. `first` is that picture as it is now, `file` the whole file as it was, in which it took up `length` bytes.
/// An index that is broken stays as it is.
void correctIndex(std::string& first, std::string_view file, std::size_t length);

} // namespace engine
