// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <set>

namespace engine {

/// A name beside `input` that neither a file nor one of `taken` has: "letter-stamped.pdf", then "letter-stamped-2.pdf"
/// and so on for the suffix "-stamped".
std::filesystem::path nameOfDuplicate(const std::filesystem::path& input, const char* suffix,
                                      const std::set<std::filesystem::path>& taken);

} // namespace engine
