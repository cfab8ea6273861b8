// SPDX-License-Identifier: MIT
// How lists are joined, and how much work that is.

#include <Format.h>
#include <Merge.h>
#include <Order.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

namespace {

using store::Code;
using Order = std::vector<int>;

Order joined(const Order& base, const Order& mine, const Order& theirs) {
    std::set<int> staying(mine.begin(), mine.end());
    staying.insert(theirs.begin(), theirs.end());
    return store::joinedOrder(base, mine, theirs, staying, {});
}

TEST(Orders, WhatEitherAddedStandsBehindWhatItStoodBehind) {
    EXPECT_EQ(joined({1, 2}, {1, 7, 2}, {1, 2, 8}), (Order{1, 7, 2, 8}));
    EXPECT_EQ(joined({1, 2}, {7, 1, 2}, {8, 1, 2}), (Order{8, 7, 1, 2}));
    EXPECT_EQ(joined({}, {7, 6}, {8, 9}), (Order{8, 9, 7, 6}));
    EXPECT_EQ(joined({1, 2, 3}, {3, 1, 2}, {1, 9, 2, 3}), (Order{3, 1, 9, 2}));
}

/// Puts one identifier after the other into a list, which anybody understands and takes long.
Order joinedSlowly(const Order& base, const Order& mine, const Order& theirs) {
    const auto has = [](const Order& list, int entry) {
        return std::find(list.begin(), list.end(), entry) != list.end();
    };
    const auto common = [&](const Order& list) {
        Order result;
        for (const int entry : list)
            if (has(base, entry) && has(mine, entry) && has(theirs, entry))
                result.push_back(entry);
        return result;
    };
    const bool moved = common(mine) != common(base);
    auto list = moved ? mine : theirs;
    const auto rest = moved ? theirs : mine;
    auto place = list.begin();
    const auto listed = list;
    for (const int entry : rest) {
        if (has(listed, entry)) {
            place = std::find(list.begin(), list.end(), entry) + 1;
            continue;
        }
        while (place != list.end() && !has(rest, *place))
            ++place;
        place = list.insert(place, entry) + 1;
    }
    return list;
}

TEST(Orders, AreJoinedAsIfOneAfterTheOtherWasPutIn) {
    std::mt19937 random(7);
    int moved = 0;
    for (int round = 0; round < 2000; ++round) {
        Order base(random() % 6);
        std::iota(base.begin(), base.end(), 0);
        const auto changed = [&](int fresh) {
            auto list = base;
            if (random() % 3 == 0 && !list.empty())
                std::rotate(list.begin(), list.begin() + static_cast<int>(random() % list.size()), list.end());
            if (random() % 3 == 0 && !list.empty())
                list.erase(list.begin() + static_cast<int>(random() % list.size()));
            for (auto count = random() % 4; count > 0; --count)
                list.insert(list.begin() + static_cast<int>(random() % (list.size() + 1)), fresh++);
            return list;
        };
        const auto mine = changed(10);
        const auto theirs = changed(20);
        const auto slowly = joinedSlowly(base, mine, theirs);
        moved += slowly.size() > theirs.size() ? 1 : 0;
        ASSERT_EQ(joined(base, mine, theirs), slowly)
            << testing::PrintToString(base) << testing::PrintToString(mine) << testing::PrintToString(theirs);
    }
    EXPECT_GT(moved, 500);
}

/// An identifier that counts how often one is compared with another.
struct Counted {
    int value = 0;
    static std::uint64_t comparisons;
    bool operator<(const Counted& other) const {
        ++comparisons;
        return value < other.value;
    }
    bool operator==(const Counted& other) const {
        ++comparisons;
        return value == other.value;
    }
};
std::uint64_t Counted::comparisons = 0;

TEST(Orders, OfManyConfigurationsTakeNotMuchMoreWorkForEach) {
    const auto comparisonsForEach = [](int size) {
        std::vector<Counted> base;
        for (int i = 0; i < size; ++i)
            base.push_back({i});
        // Half is deleted, half is new, and all is turned round: whatever is searched for is far away.
        std::vector<Counted> mine(base.rbegin(), base.rend() - size / 2);
        auto theirs = base;
        for (int i = 0; i < size / 2; ++i) {
            mine.insert(mine.begin() + i, {size + i});
            theirs.push_back({2 * size + i});
        }
        std::set<Counted> staying(mine.begin(), mine.end());
        staying.insert(theirs.begin(), theirs.end());
        Counted::comparisons = 0;
        store::joinedOrder(base, mine, theirs, staying, {});
        return static_cast<double>(Counted::comparisons) / size;
    };
    const auto few = comparisonsForEach(1000);
    const auto many = comparisonsForEach(16000);
    EXPECT_GT(few, 1) << "they are counted";
    EXPECT_LT(many, few * 1.6) << "four doublings add four steps to each search of ten or more";
}

TEST(Orders, ThatBecomeLongerThanAFileMayHaveAreRefused) {
    store::Forms joined;
    for (int i = 0; i < store::mostConfigurations + 1; ++i)
        joined.order.push_back(QString::number(i));
    try {
        store::bytesOf(joined, qsizetype{1} << 26);
        FAIL() << "a file that nobody could read";
    } catch (const store::Problem& problem) {
        EXPECT_EQ(problem.code, Code::tooLarge);
        EXPECT_EQ(problem.text.toStdString(),
                  "The list of configurations would have 100001 entries, of which 100000 are "
                  "the most, and nothing was saved.");
    }
}

} // namespace
