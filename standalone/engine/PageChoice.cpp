// SPDX-License-Identifier: MIT
#include <engine/PageChoice.h>

#include <Foundation/NSString.h>

#include <algorithm>

namespace engine {

namespace {

/// The page an entry of a custom list names; 0 where it names none of the `pageCount` pages.
std::size_t pageOfEntry(std::u16string_view entry, std::size_t pageCount) {
    std::size_t page = 0;
    for (const char16_t digit : platform::stringByTrimmingWhitespaceAndNewlines(entry)) {
        if (digit < u'0' || digit > u'9')
            return 0;
        page = page * 10 + static_cast<std::size_t>(digit - u'0');
        if (page > pageCount)
            return 0;
    }
    return page;
}

} // namespace

std::vector<std::size_t> choosePages(host::NSInteger occurrence, const std::optional<std::u16string>& customPages,
                                     std::size_t pageCount) {
    std::vector<std::size_t> pages;
    const auto every = [&](std::size_t first, std::size_t step) {
        for (auto page = first; page <= pageCount; page += step)
            pages.push_back(page);
    };
    switch (host::Occurrence(occurrence)) {
    case host::Occurrence::everyPage:
        every(1, 1);
        break;
    case host::Occurrence::firstPageOnly:
        if (pageCount > 0)
            pages.push_back(1);
        break;
    case host::Occurrence::evenPages:
        every(2, 2);
        break;
    case host::Occurrence::oddPages:
        every(1, 2);
        break;
    case host::Occurrence::custom:
        if (!customPages)
            break;
        for (const auto& entry : platform::componentsSeparatedByString(*customPages, u","))
            if (const auto page = pageOfEntry(entry, pageCount))
                pages.push_back(page);
        std::sort(pages.begin(), pages.end());
        pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
        break;
    }
    return pages;
}

} // namespace engine
