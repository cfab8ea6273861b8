// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterConfiguration.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace engine {

/// The pages that are stamped, ascending, each once; positions in the file from 1.
///
/// `occurrence` is a number of `host::Occurrence`; a number that is none selects nothing, so that no page is stamped
/// which nobody asked for. `customPages` counts for a custom occurrence only: decimal whole numbers joined by commas,
/// white space around them allowed; entries that are no page of the file are ignored. None or a blank list selects
/// nothing.
std::vector<std::size_t> choosePages(host::NSInteger occurrence, const std::optional<std::u16string>& customPages,
                                     std::size_t pageCount);

/// Runs of pages, each from its first to its last; positions from 1.
struct PageRange {
    std::size_t first = 1;
    std::size_t last = 1;
};

/// Reads a list such as "1-3,7,10-": numbers and runs of them joined by commas; a run without a first page begins at 1,
/// one without a last goes to the end. None where the text is no such list.
std::optional<std::vector<PageRange>> readPageRanges(std::string_view text);

/// The pages of the ranges that the file has, ascending, each once.
std::vector<std::size_t> choosePages(const std::vector<PageRange>& ranges, std::size_t pageCount);

} // namespace engine
