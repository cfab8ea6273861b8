// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// A text no other call gives, on any machine, in any process, at any time: hexadecimal digits and hyphens.
std::u16string globallyUniqueString();

} // namespace platform
