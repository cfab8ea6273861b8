// SPDX-License-Identifier: MIT
#include <engine/WrittenTime.h>

#include <cstdlib>
#include <ctime>
#include <map>
#include <optional>

#include <gtest/gtest.h>

using engine::WrittenTime;

namespace {

/// In the evening of 2024-02-29 at Greenwich, with the variables of a locale.
class WrittenTimes : public ::testing::Test {
protected:
    WrittenTimes() {
        for (const char* name : {"LC_ALL", "LC_TIME", "LANG", "TZ"})
            set(name, nullptr);
        set("TZ", "UTC0");
    }
    ~WrittenTimes() override {
        for (const auto& [name, value] : m_before)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        tzset();
    }
    void set(const std::string& name, const char* value) {
        const char* const before = std::getenv(name.c_str());
        m_before.try_emplace(name, before ? std::optional<std::string>(before) : std::nullopt);
        value ? setenv(name.c_str(), value, 1) : unsetenv(name.c_str());
        tzset();
    }
    static WrittenTime written() {
        constexpr std::time_t evening = 1709229900; // 18:05
        return WrittenTime(std::chrono::system_clock::from_time_t(evening));
    }

private:
    std::map<std::string, std::optional<std::string>> m_before;
};

TEST_F(WrittenTimes, AreOfTheStandardWithoutALocale) {
    EXPECT_EQ(written().day, u"2024-02-29");
    EXPECT_EQ(written().time, u"18:05");
    set("LANG", "C.UTF-8");
    EXPECT_EQ(written().day, u"2024-02-29");
}

TEST_F(WrittenTimes, AreAsTheLocaleWritesThemWithAllDigitsOfTheYear) {
    set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(written().day, u"29.02.2024");
    EXPECT_EQ(written().time, u"18:05");
    set("LANG", "en_US.UTF-8");
    EXPECT_EQ(written().day, u"2/29/2024");
    EXPECT_EQ(written().time, u"6:05 PM");
    set("LANG", "ja_JP.UTF-8");
    EXPECT_EQ(written().day, u"2024/02/29");
}

TEST_F(WrittenTimes, FollowTheVariableThatCountsMost) {
    set("LANG", "en_US.UTF-8");
    set("LC_TIME", "de_DE.UTF-8");
    EXPECT_EQ(written().day, u"29.02.2024");
    set("LC_ALL", "C");
    EXPECT_EQ(written().day, u"2024-02-29");
}

TEST_F(WrittenTimes, AreOfTheLocalTimeZone) {
    set("TZ", "JST-9");
    EXPECT_EQ(written().day, u"2024-03-01");
    EXPECT_EQ(written().time, u"03:05");
}

} // namespace
