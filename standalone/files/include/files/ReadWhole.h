// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace files {

/// As many bytes of an open file as there are from its beginning, but at most `most`. Where the file stands is of no
/// matter, and stays. Throws std::system_error.
std::string readWhole(int file, std::size_t most);

} // namespace files
