// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace engine {

/// What a person should hear about a run that worked all the same.
struct Warning {
    /// Behind each kind what its arguments are. Pages are two: the first one, and how many others there are.
    enum class Kind {
        fontMissing,        ///< the font that is not on this machine, and the one in its place
        characterElsewhere, ///< the font, the characters that it lacks, and the font that they are taken from
        characterMissing,   ///< the characters
        noFont,             ///< none
        notEmbeddable,      ///< the font
        unknownPlaceholder, ///< the placeholder
        outsidePage,        ///< pages
        largerThanPage,     ///< pages
        beyondEdge,         ///< pages
        contentUnread,      ///< pages
        repaired,           ///< none
        pictureDamaged,     ///< none
        paintedInGreys,     ///< none
        profileLeftOut,     ///< none
        otherNames,         ///< none
    };
    /// How many kinds there are.
    static constexpr std::size_t kinds = static_cast<std::size_t>(Kind::otherNames) + 1;

    Kind kind = Kind::noFont;
    std::vector<std::string> arguments; ///< UTF-8; numbers in digits.

    /// For people, complete, in English.
    std::string sentence() const;

    auto operator<=>(const Warning&) const = default;
};

} // namespace engine
