// SPDX-License-Identifier: MIT
#include <Foundation/NSIndexSet.h>

#include <algorithm>

namespace platform {

NSIndexSet::NSIndexSet(NSUInteger index) {
    addIndex(index);
}

NSIndexSet::NSIndexSet(std::initializer_list<NSUInteger> indexes) {
    for (const auto index : indexes)
        addIndex(index);
}

void NSIndexSet::addIndex(NSUInteger index) {
    addRange({index, 1});
}

void NSIndexSet::addRange(Range range) {
    if (range.length == 0 || range.location >= NSNotFound || range.length > NSNotFound - range.location)
        return;
    NSUInteger first = range.location;
    NSUInteger end = range.location + range.length;
    const auto touching = std::partition_point(m_ranges.begin(), m_ranges.end(), [&](const Range& known) {
        return known.location + known.length < range.location;
    });
    auto behind = touching;
    for (; behind != m_ranges.end() && behind->location <= end; ++behind) {
        first = std::min(first, behind->location);
        end = std::max(end, behind->location + behind->length);
    }
    m_ranges.insert(m_ranges.erase(touching, behind), {first, end - first});
}

void NSIndexSet::removeIndex(NSUInteger index) {
    for (auto range = m_ranges.begin(); range != m_ranges.end(); ++range) {
        const NSUInteger end = range->location + range->length;
        if (index < range->location || index >= end)
            continue;
        const Range before{range->location, index - range->location};
        const Range after{index + 1, end - index - 1};
        auto place = m_ranges.erase(range);
        if (after.length)
            place = m_ranges.insert(place, after);
        if (before.length)
            m_ranges.insert(place, before);
        return;
    }
}

void NSIndexSet::removeIndexesFrom(NSUInteger limit) {
    std::erase_if(m_ranges, [limit](const Range& range) { return range.location >= limit; });
    if (!m_ranges.empty())
        m_ranges.back().length = std::min(m_ranges.back().length, limit - m_ranges.back().location);
}

bool NSIndexSet::containsIndex(NSUInteger index) const {
    return std::any_of(m_ranges.begin(), m_ranges.end(), [index](const Range& range) {
        return index >= range.location && index - range.location < range.length;
    });
}

NSUInteger NSIndexSet::count() const {
    NSUInteger total = 0;
    for (const auto& range : m_ranges)
        total += range.length;
    return total;
}

NSUInteger NSIndexSet::firstIndex() const {
    return m_ranges.empty() ? NSNotFound : m_ranges.front().location;
}

NSUInteger NSIndexSet::lastIndex() const {
    return m_ranges.empty() ? NSNotFound : m_ranges.back().location + m_ranges.back().length - 1;
}

void NSIndexSet::enumerateIndexesUsingBlock(const std::function<void(NSUInteger)>& block) const {
    const auto snapshot = m_ranges;
    for (const auto& range : snapshot)
        for (NSUInteger i = 0; i < range.length; ++i)
            block(range.location + i);
}

} // namespace platform
