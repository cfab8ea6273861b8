// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Ends the program, so that the input counts as a finding, where a rule does not hold.
inline void require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", rule);
    std::abort();
}
