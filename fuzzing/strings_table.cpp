// SPDX-License-Identifier: MIT
// A table of localized texts: it is read, or refused with the line of the fault.

#include "Require.h"

#include <StringsTable.h>

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    std::string problem;
    const auto table = platform::readStringsTable(platform::textOfFile(bytes), problem);
    require(table.has_value() == problem.empty(), "a table is read, or its fault is named");
    return 0;
}
