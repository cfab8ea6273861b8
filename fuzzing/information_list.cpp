// SPDX-License-Identifier: MIT
// A bundle's Info.plist, and the property list of a keyed archive in XML.

#include "Require.h"

#include <InformationList.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::textsOfPropertyList(std::string(data, data + size));
    return 0;
}
