// SPDX-License-Identifier: MIT
#include <engine/PageChoice.h>

#include <Foundation/NSString.h>

#include <algorithm>
#include <charconv>

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

std::optional<std::vector<PageRange>> readPageRanges(std::string_view text) {
    std::vector<PageRange> ranges;
    const auto number = [](std::string_view digits, std::size_t missing) -> std::optional<std::size_t> {
        if (digits.empty())
            return missing;
        std::size_t value = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return read.ec == std::errc() && read.ptr == digits.data() + digits.size() && value > 0 ? std::optional(value)
                                                                                                : std::nullopt;
    };
    for (;;) {
        const auto comma = std::min(text.find(','), text.size());
        auto entry = text.substr(0, comma);
        while (entry.starts_with(' '))
            entry.remove_prefix(1);
        while (entry.ends_with(' '))
            entry.remove_suffix(1);
        const auto dash = entry.find('-');
        if (entry.empty() || entry == "-")
            return std::nullopt;
        const auto first = number(entry.substr(0, dash), 1);
        const auto last = dash == std::string_view::npos
                              ? first
                              : number(entry.substr(dash + 1), std::numeric_limits<std::size_t>::max());
        if (!first || !last || *last < *first)
            return std::nullopt;
        ranges.push_back({*first, *last});
        if (comma == text.size())
            return ranges;
        text.remove_prefix(comma + 1);
    }
}

std::vector<std::size_t> choosePages(const std::vector<PageRange>& ranges, std::size_t pageCount) {
    std::vector<bool> chosen(pageCount);
    for (const auto& range : ranges)
        for (auto page = range.first; page <= range.last && page <= pageCount; ++page)
            chosen[page - 1] = true;
    std::vector<std::size_t> pages;
    for (std::size_t page = 1; page <= pageCount; ++page)
        if (chosen[page - 1])
            pages.push_back(page);
    return pages;
}

} // namespace engine
