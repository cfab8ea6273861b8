// SPDX-License-Identifier: MIT
#include <Foundation/NSIndexSet.h>

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using namespace platform;

std::vector<NSUInteger> enumerated(const NSIndexSet& indexes) {
    std::vector<NSUInteger> found;
    indexes.enumerateIndexesUsingBlock([&](NSUInteger index) { found.push_back(index); });
    return found;
}

/// Every question answers as a plain set of the same numbers would.
void expectSame(const NSIndexSet& indexes, const std::set<NSUInteger>& model, NSUInteger limit) {
    ASSERT_EQ(enumerated(indexes), std::vector<NSUInteger>(model.begin(), model.end()));
    ASSERT_EQ(indexes.count(), model.size());
    ASSERT_EQ(indexes.firstIndex(), model.empty() ? NSNotFound : *model.begin());
    ASSERT_EQ(indexes.lastIndex(), model.empty() ? NSNotFound : *model.rbegin());
    for (NSUInteger index = 0; index < limit; ++index)
        ASSERT_EQ(indexes.containsIndex(index), model.count(index) == 1) << index;
    const auto& ranges = indexes.ranges();
    for (const auto& range : ranges)
        ASSERT_GT(range.length, 0u);
    for (std::size_t i = 1; i < ranges.size(); ++i)
        ASSERT_GT(ranges[i].location, ranges[i - 1].location + ranges[i - 1].length) << "ranges touch";
}

TEST(IndexSet, AnswersAsAPlainSetWould) {
    constexpr NSUInteger limit = 40;
    std::mt19937 random(20140601);
    const auto below = [&](NSUInteger bound) { return static_cast<NSUInteger>(random()) % bound; };
    NSIndexSet indexes;
    std::set<NSUInteger> model;
    for (int step = 0; step < 3000; ++step) {
        const auto index = below(limit);
        switch (below(8)) {
        case 0:
        case 1:
            indexes.addIndex(index);
            model.insert(index);
            break;
        case 2: {
            const auto length = below(limit - index);
            indexes.addRange({index, length});
            for (NSUInteger i = 0; i < length; ++i)
                model.insert(index + i);
            break;
        }
        case 3:
            if (below(10) == 0) {
                indexes.removeIndexesFrom(index);
                model.erase(model.lower_bound(index), model.end());
            }
            break;
        default:
            indexes.removeIndex(index);
            model.erase(index);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(indexes, model, limit)) << "at step " << step;
    }
}

TEST(IndexSet, MadeOfAnIndexThatWasNotFoundIsEmpty) {
    EXPECT_EQ(NSIndexSet(NSNotFound), NSIndexSet());
    EXPECT_EQ(NSIndexSet(NSNotFound).firstIndex(), NSNotFound);
    EXPECT_EQ((NSIndexSet{3, NSNotFound}), NSIndexSet(3));
}

TEST(IndexSet, LeavesOutRangesThatReachTheNumberForNotFound) {
    NSIndexSet indexes;
    indexes.addRange({5, 0});
    indexes.addRange({NSNotFound - 1, 2});
    indexes.addRange({1, NSNotFound});
    indexes.addRange({1, ~NSUInteger(0)});
    indexes.addRange({~NSUInteger(0), 1});
    EXPECT_EQ(indexes, NSIndexSet());
    indexes.addRange({NSNotFound - 1, 1});
    EXPECT_EQ(indexes.lastIndex(), NSNotFound - 1);
    EXPECT_EQ(indexes.count(), 1u);
}

TEST(IndexSet, IsEqualToOneWithTheSameNumbersHoweverItWasMade) {
    NSIndexSet ranges;
    ranges.addRange({1, 3});
    ranges.addRange({4, 2});
    EXPECT_EQ((NSIndexSet{5, 3, 1, 4, 2, 3}), ranges);
    EXPECT_EQ(ranges.ranges(), (std::vector<NSIndexSet::Range>{{1, 5}}));
    EXPECT_FALSE(ranges == (NSIndexSet{1, 2, 3, 4}));
}

TEST(IndexSet, IsEnumeratedAsItWasWhenTheEnumerationBegan) {
    NSIndexSet indexes{1, 2, 5};
    std::vector<NSUInteger> seen;
    indexes.enumerateIndexesUsingBlock([&](NSUInteger index) {
        seen.push_back(index);
        indexes = NSIndexSet(index + 1);
    });
    EXPECT_EQ(seen, (std::vector<NSUInteger>{1, 2, 5}));
}

} // namespace
