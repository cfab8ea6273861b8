// SPDX-License-Identifier: MIT
#include "../support/Environment.h"

#include <engine/WrittenTime.h>

#include <gtest/gtest.h>

using engine::WrittenTime;

namespace {

/// In the evening of 2024-02-29 at Greenwich, with the variables of a locale.
class WrittenTimes : public ::testing::Test {
protected:
    WrittenTimes() {
        for (const char* name : {"LC_ALL", "LC_TIME", "LANG"})
            environment.set(name, std::nullopt);
        environment.set("TZ", "UTC0");
    }
    static WrittenTime written() {
        constexpr std::time_t evening = 1709229900; // 18:05
        return WrittenTime(std::chrono::system_clock::from_time_t(evening));
    }

    support::Environment environment;
};

TEST_F(WrittenTimes, AreOfTheStandardWithoutALocale) {
    EXPECT_EQ(written().day, u"2024-02-29");
    EXPECT_EQ(written().time, u"18:05");
    environment.set("LANG", "C.UTF-8");
    EXPECT_EQ(written().day, u"2024-02-29");
}

TEST_F(WrittenTimes, AreAsTheLocaleWritesThemWithAllDigitsOfTheYear) {
    environment.set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(written().day, u"29.02.2024");
    EXPECT_EQ(written().time, u"18:05");
    environment.set("LANG", "en_US.UTF-8");
    EXPECT_EQ(written().day, u"2/29/2024");
    EXPECT_EQ(written().time, u"6:05 PM");
    environment.set("LANG", "ja_JP.UTF-8");
    EXPECT_EQ(written().day, u"2024/02/29");
}

TEST_F(WrittenTimes, FollowTheVariableThatCountsMost) {
    environment.set("LANG", "en_US.UTF-8");
    environment.set("LC_TIME", "de_DE.UTF-8");
    EXPECT_EQ(written().day, u"29.02.2024");
    environment.set("LC_ALL", "C");
    EXPECT_EQ(written().day, u"2024-02-29");
}

TEST_F(WrittenTimes, AreOfTheLocalTimeZone) {
    environment.set("TZ", "JST-9");
    EXPECT_EQ(written().day, u"2024-03-01");
    EXPECT_EQ(written().time, u"03:05");
}

} // namespace
