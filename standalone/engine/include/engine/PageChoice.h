// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterConfiguration.h>

#include <cstddef>

namespace engine {

/// The pages that are stamped, ascending, each once; positions in the file from 1.
///
/// `occurrence` is a number of `host::Occurrence`; a number that is none selects nothing, so that no page is stamped
/// which nobody asked for. `customPages` counts for a custom occurrence only: decimal whole numbers joined by commas,
/// white space around them allowed; entries that are no page of the file are ignored. None or a blank list selects
/// nothing.
std::vector<std::size_t> choosePages(host::NSInteger occurrence, const std::optional<std::u16string>& customPages,
                                     std::size_t pageCount);

} // namespace engine
