// SPDX-License-Identifier: MIT
// A picture, PNG, JPEG or TIFF: it is stamped, or refused with a reason.

#include "Stamping.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzedStamping stamping;
    stamping.run(data, size);
    return 0;
}
