// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <functional>
#include <initializer_list>
#include <vector>

namespace platform {

/// An ordered set of row numbers, kept as ranges.
class NSIndexSet {
public:
    struct Range {
        NSUInteger location = 0;
        NSUInteger length = 0;
        bool operator==(const Range&) const = default;
    };

    NSIndexSet() = default;
    /// The index NSNotFound gives the empty set, so that asking for the row of what is not listed selects nothing.
    explicit NSIndexSet(NSUInteger index);
    NSIndexSet(std::initializer_list<NSUInteger> indexes);

    void addIndex(NSUInteger index);
    /// A range without length, or one that reaches NSNotFound, is not added.
    void addRange(Range range);
    void removeIndex(NSUInteger index);
    /// Keeps what lies below `limit`.
    void removeIndexesFrom(NSUInteger limit);

    bool containsIndex(NSUInteger index) const;
    NSUInteger count() const;
    /// NSNotFound for the empty set.
    NSUInteger firstIndex() const;
    NSUInteger lastIndex() const;
    /// In ascending order.
    void enumerateIndexesUsingBlock(const std::function<void(NSUInteger)>& block) const;
    const std::vector<Range>& ranges() const { return m_ranges; }

    bool operator==(const NSIndexSet&) const = default;

private:
    std::vector<Range> m_ranges; // ascending, disjoint, never touching
};

} // namespace platform
