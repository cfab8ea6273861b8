// SPDX-License-Identifier: MIT
// A PDF document: it is stamped, stamped again, unstamped, updated and written anew, or refused with a reason.

#include "Stamping.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzedStamping stamping;
    stamping.run(data, size);
    return 0;
}
