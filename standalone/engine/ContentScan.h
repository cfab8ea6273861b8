// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

/// What a page's content leaves open at its end, and what it closes without having opened it.
struct ContentBalance {
    std::size_t openStates = 0;               ///< `q` without `Q`
    std::vector<std::size_t> surplusRestores; ///< Offsets of each `Q` without `q`.
    bool openText = false;                    ///< `BT` without `ET`
    std::size_t openMarks = 0;                ///< `BMC` or `BDC` without `EMC`
    std::string closing; ///< What closes strings, arrays, dictionaries and an image that the end lies in, a line each.
};

/// Counts the operators of a decoded content stream. Strings, comments and the data of inline images are passed over.
ContentBalance scanContent(std::string_view content);

/// Marked content with properties.
struct ContentMark {
    std::size_t begin = 0; ///< Of its tag.
    std::size_t end = 0;   ///< After its `EMC`.
    std::string_view tag;
    std::string_view properties;    ///< As they stand there: a dictionary or a name.
    std::vector<std::string> drawn; ///< Names that `Do` draws inside.
};

/// The outermost marks of a decoded content stream that are closed, in order. They refer to `content`.
std::vector<ContentMark> findMarks(std::string_view content);

} // namespace engine
