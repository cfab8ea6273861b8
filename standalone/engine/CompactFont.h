// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace engine {

/// The character identifiers of a CID-keyed CFF table, by glyph; an empty list for a table that is keyed by names,
/// whose glyph numbers serve as identifiers; none for a table that cannot be read. (Adobe Technical Note 5176.)
std::optional<std::vector<unsigned>> compactFontIdentifiers(std::string_view table, unsigned glyphCount);

} // namespace engine
