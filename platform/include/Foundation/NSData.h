// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace platform {

/// Bytes, immutable and shared. A null pointer is nil.
using NSData = std::shared_ptr<const std::vector<std::uint8_t>>;

} // namespace platform
