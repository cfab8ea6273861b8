// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>

namespace platform {

using TextMap = std::map<std::u16string, std::u16string, std::less<>>;

/// The texts of the dictionary at the root of a property list in XML; values of other types are left out. None for what
/// is no property list, is nested deeper than 32 levels, or declares a document type of its own with entities.
std::optional<TextMap> textsOfPropertyList(const std::string& xml);

} // namespace platform
