// SPDX-License-Identifier: MIT
#include <Foundation/NSKeyedUnarchiver.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

using namespace platform;

namespace {

NSData dataOf(const std::string& text) {
    return std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end());
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// "none", "empty", or the ranges as "location+length".
std::string decoded(const NSData& data) {
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(data);
    const auto set =
        archive ? archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey) : std::nullopt;
    if (!set)
        return "none";
    std::string text;
    for (const auto& [location, length] : set->ranges())
        text += (text.empty() ? "" : " ") + std::to_string(location) + "+" + std::to_string(length);
    return text.empty() ? "empty" : text;
}

/// The lines of the list of fixtures: a file, and what it decodes to.
std::vector<std::pair<std::string, std::string>> fixtures() {
    std::vector<std::pair<std::string, std::string>> all;
    std::ifstream list(ARCHIVES "/expected.txt");
    for (std::string line; std::getline(list, line);)
        all.emplace_back(line.substr(0, line.find('\t')), line.substr(line.find('\t') + 1));
    return all;
}

TEST(KeyedArchive, DecodesToWhatWasArchived) {
    for (const auto& [file, result] : fixtures())
        EXPECT_EQ(decoded(dataOf(contentOf(std::filesystem::path(result == "none" ? CORPUS : ARCHIVES) / file))),
                  result)
            << file;
}

TEST(KeyedArchive, AllFixturesAreThere) {
    EXPECT_GT(fixtures().size(), 120U);
}

TEST(KeyedArchive, NilIsNoArchive) {
    std::string error;
    EXPECT_EQ(NSKeyedUnarchiver::initForReadingFromData(nullptr, &error), nullptr);
    EXPECT_EQ(error, "there is no data");
    EXPECT_EQ(NSKeyedUnarchiver::initForReadingFromData(dataOf(""), &error), nullptr);
}

TEST(KeyedArchive, TellsWhyNothingWasDecoded) {
    std::string error;
    const auto reason = [&](const char* file) {
        const auto archive =
            NSKeyedUnarchiver::initForReadingFromData(dataOf(contentOf(std::filesystem::path(CORPUS) / file)), &error);
        if (archive) {
            EXPECT_EQ(archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey, &error),
                      std::nullopt);
        }
        return error;
    };
    EXPECT_EQ(reason("another_archiver.xml"), "the property list is no keyed archive");
    EXPECT_EQ(reason("endless_objects.binary"), "the binary property list is damaged");
    EXPECT_EQ(reason("cut_off.xml"), "it is no property list");
    EXPECT_EQ(reason("no_root.binary"), "the archive has no object root");
    EXPECT_EQ(reason("a_string_as_root.binary"), "root is no index set");
    EXPECT_EQ(reason("negative_length.xml"), "the ranges of the index set are damaged");
}

TEST(KeyedArchive, SecureCodingIsOnUntilItIsSwitchedOff) {
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(dataOf(contentOf(ARCHIVES "/mutable_set.binary")));
    ASSERT_TRUE(archive);
    EXPECT_TRUE(archive->requiresSecureCoding());
    archive->setRequiresSecureCoding(false);
    EXPECT_FALSE(archive->requiresSecureCoding());
    EXPECT_TRUE(archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey));
}

TEST(KeyedArchive, FindsAnObjectUnderAnotherKey) {
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(dataOf(contentOf(ARCHIVES "/row_5.binary")));
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(u"rows"), std::nullopt);
    EXPECT_EQ(archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(u"root"), NSIndexSet(5));
}

TEST(KeyedArchive, AnyPartOfAnArchiveIsReadWithoutHarm) {
    for (const char* file : {"/several_ranges.binary", "/several_ranges.xml"}) {
        const auto whole = contentOf(std::string(ARCHIVES) + file);
        const auto needed = whole.find_last_not_of('\n');
        for (std::size_t length = 0; length < needed; ++length)
            EXPECT_EQ(decoded(dataOf(whole.substr(0, length))), "none") << file << " cut to " << length;
    }
}

TEST(KeyedArchive, AnyByteOfABinaryArchiveMayBeWrong) {
    const auto whole = contentOf(ARCHIVES "/several_ranges.binary");
    int decodedAnyway = 0;
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (int value = 0; value < 256; ++value) {
            auto wrong = whole;
            wrong[at] = static_cast<char>(value);
            decodedAnyway += decoded(dataOf(wrong)) != "none";
        }
    // What is not read, such as the names of superclasses, may well be wrong.
    EXPECT_GT(decodedAnyway, static_cast<int>(whole.size()));
}

TEST(KeyedArchive, ManyRangesTakeTimeInStepWithTheirNumber) {
    // Half a million ranges, (0,1) (2,1) (4,1) ...: adding each by looking at all before would not end.
    std::string packed;
    const auto put = [&packed](NSUInteger number) {
        for (; number >= 0x80; number >>= 7)
            packed.push_back(static_cast<char>(number | 0x80));
        packed.push_back(static_cast<char>(number));
    };
    constexpr NSUInteger ranges = 500'000;
    for (NSUInteger i = 0; i < ranges; ++i) {
        put(2 * i);
        put(1);
    }
    const auto big = [](std::uint64_t number, int bytes) {
        std::string text;
        for (int i = bytes - 1; i >= 0; --i)
            text.push_back(static_cast<char>(number >> (8 * i)));
        return text;
    };
    const auto string = [](const std::string& text) {
        return std::string("\x5F\x10") + static_cast<char>(text.size()) + text;
    };
    const auto uid = [](int number) { return std::string("\x80") + static_cast<char>(number); };
    const std::vector<std::string> objects{std::string("\xD4\x01\x02\x03\x04\x05\x06\x07\x08", 9), // 0 the whole
                                           string("$archiver"),
                                           string("$version"),
                                           string("$top"),
                                           string("$objects"),
                                           string("NSKeyedArchiver"), // 5
                                           "\x12" + big(100000, 4),
                                           std::string("\xD1\x09\x0A", 3),
                                           std::string("\xA4\x0B\x0C\x0D\x0E", 5),
                                           string("root"),
                                           uid(1),                                         // 9, 10
                                           string("$null"),                                // 11
                                           std::string("\xD3\x0F\x10\x11\x12\x13\x14", 7), // 12 the set
                                           std::string("\xD1\x15\x16", 3),                 // 13 its class
                                           "\x4F\x13" + big(packed.size(), 8) + packed,    // 14 the ranges
                                           string("$class"),
                                           string("NSRangeCount"),
                                           string("NSRangeData"), // 15
                                           uid(2),
                                           "\x13" + big(ranges, 8),
                                           uid(3), // 18
                                           string("$classname"),
                                           string("NSIndexSet")}; // 21
    std::string file = "bplist00";
    std::string table;
    for (const auto& object : objects) {
        table += big(file.size(), 4);
        file += object;
    }
    const auto place = file.size();
    file += table + std::string(6, '\0') + "\x04\x01" + big(objects.size(), 8) + big(0, 8) + big(place, 8);
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(dataOf(file));
    ASSERT_TRUE(archive);
    const auto set = archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey);
    ASSERT_TRUE(set);
    EXPECT_EQ(set->ranges().size(), ranges);
    EXPECT_EQ(set->lastIndex(), 2 * (ranges - 1));
}

TEST(KeyedArchive, MoreThanSixteenMegabytesAreNotRead) {
    std::string error;
    EXPECT_EQ(NSKeyedUnarchiver::initForReadingFromData(dataOf("bplist00" + std::string(17 << 20, '\0')), &error),
              nullptr);
    EXPECT_EQ(error, "the property list is too large");
}

} // namespace
