// SPDX-License-Identifier: MIT
// Any text becomes a list of page numbers that keeps the rules of such lists. The input is UTF-16 as it lies in memory.

#include <PageList.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", rule);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string text(size / 2, u'\0');
    if (!text.empty())
        std::memcpy(text.data(), data, text.size() * 2);
    const auto list = pane::normalizedPageList(text);

    require(pane::normalizedPageList(list) == list, "a normalised list stays as it is");
    require(list.find_first_not_of(u"0123456789-,") == std::u16string::npos, "only digits, signs and commas");
    require(list.empty() || list.front() != u',', "no comma in front");
    for (std::size_t at = 0; at < list.size();) {
        auto end = list.find(u',', at);
        if (end == std::u16string::npos)
            end = list.size();
        const auto entry = list.substr(at, end - at);
        require(entry.empty() || (entry != u"-" && entry.find(u'-', 1) == std::u16string::npos),
                "a sign stands in front");
        require(entry.empty() || (entry[0] != u'0' && entry.substr(0, 2) != u"-0"), "no nought and no leading one");
        at = end + 1;
    }
    if (!list.empty())
        require(pane::normalizedPageList(list + u',') == list + u',', "a comma just typed survives");
    return 0;
}
