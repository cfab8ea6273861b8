// SPDX-License-Identifier: MIT
// The decoded content of a page.

#include "Require.h"

#include <ContentScan.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(data, data + size);
    const auto balance = engine::scanContent(content);
    for (const auto offset : balance.surplusRestores)
        require(offset < content.size() && content[offset] == 'Q', "a surplus restore is one");
    std::size_t from = 0;
    for (const auto& mark : engine::findMarks(content)) {
        require(from <= mark.begin && mark.begin < mark.end && mark.end <= content.size(), "marks follow each other");
        from = mark.end;
    }
    return 0;
}
