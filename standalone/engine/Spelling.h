// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Stamp.h>

#include <optional>

namespace engine {

/// What is to be written beside the glyphs of a whole title, so that programs that extract text find exactly the title;
/// none where the glyphs say it all. `askew`: the title is turned by an angle that is no quarter turn, where such
/// programs do not find words by themselves.
///
/// Extractors that know nothing better put glyphs in order by where they stand, and turn what runs from right to left
/// around. They do so with a given text too: its parts of that direction are written the other way round, each followed
/// by U+202A, which ends the part, and led by as many of them as make the page one that runs from left to right.
/// Extractors add and drop such marks themselves.
std::optional<std::u16string> spellingOf(const Stamp& stamp, bool askew);

} // namespace engine
