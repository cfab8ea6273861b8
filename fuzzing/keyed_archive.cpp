// SPDX-License-Identifier: MIT

// Whatever a drag carries under the type of the configuration rows goes through this reader.

#include <Foundation/NSKeyedUnarchiver.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace platform;
    const auto archive =
        NSKeyedUnarchiver::initForReadingFromData(std::make_shared<const std::vector<std::uint8_t>>(data, data + size));
    if (!archive)
        return 0;
    archive->setRequiresSecureCoding(false);
    const auto rows = archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey);
    if (!rows)
        return 0;
    // Ranges are ascending, apart from each other, and end before the index that means none.
    NSUInteger free = 0;
    for (const auto& [location, length] : rows->ranges()) {
        if (location < free || length == 0 || location >= NSNotFound || length > NSNotFound - location)
            std::abort();
        free = location + length + 1;
    }
    if (rows->firstIndex() > NSNotFound)
        std::abort();
    return 0;
}
