// SPDX-License-Identifier: MIT
#include <RowArchive.h>

#include <Foundation/NSKeyedUnarchiver.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

std::optional<NSIndexSet> readBack(const NSIndexSet& rows) {
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(app::archiveOfRows(rows));
    return archive ? archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey) : std::nullopt;
}

TEST(RowArchive, IsReadBackAsTheSameRows) {
    NSIndexSet many;
    for (NSUInteger i = 0; i < 1000; ++i)
        many.addIndex(i * 7);
    NSIndexSet far;
    far.addRange({0, 1});
    far.addRange({NSNotFound - 5, 5});
    for (const auto& rows : {NSIndexSet(), NSIndexSet(0), NSIndexSet(300), NSIndexSet{1, 2, 3}, NSIndexSet{1, 4, 5},
                             NSIndexSet{0, 2, 200, 16384}, many, far})
        EXPECT_EQ(readBack(rows), rows);
}

} // namespace
