// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// The items of a pasteboard as one piece of data, for the clipboard of the system. They are meant for the program that
// wrote them: to another one they do not exist, since what keys among them stand for is known here alone.

std::vector<std::uint8_t> encodedItems(const std::vector<std::u16string>& texts);

/// None for what is no such data, or was written by another run of a program.
std::optional<std::vector<std::u16string>> decodedItems(const std::vector<std::uint8_t>& data);

} // namespace platform
