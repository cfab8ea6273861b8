// SPDX-License-Identifier: MIT
#include "../support/MemoryDefaults.h"

#include <Foundation/NSException.h>
#include <Foundation/NSURL.h>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using namespace platform;

TEST(UserDefaults, TakeATextForYesOrNo) {
    const struct {
        std::u16string text;
        bool expected;
    } table[] = {
        {u"YES", true}, {u"yes", true},  {u"Y", true},    {u"true", true},    {u"True", true},   {u"1", true},
        {u"9", true},   {u"12", true},   {u"007", true},  {u"+1", true},      {u"-1", true},     {u" 1", true},
        {u"\t1", true}, {u"-01", true},  {u"NO", false},  {u"no", false},     {u"false", false}, {u"0", false},
        {u"", false},   {u"00", false},  {u"-0", false},  {u"+", false},      {u" ", false},     {u"n1", false},
        {u"on", false}, {u"- 1", false}, {u"--1", false}, {u"\u0661", false},
    };
    testing_support::MemoryDefaults defaults;
    for (const auto& row : table) {
        defaults.setObjectForKey(row.text, u"key");
        EXPECT_EQ(defaults.boolForKey(u"key"), row.expected) << testing::PrintToString(row.text);
    }
}

TEST(UserDefaults, AnswerNoWhereNothingIsSet) {
    testing_support::MemoryDefaults defaults;
    EXPECT_FALSE(defaults.boolForKey(u"key"));
    defaults.setBoolForKey(true, u"key");
    defaults.removeObjectForKey(u"key");
    EXPECT_FALSE(defaults.boolForKey(u"key"));
}

TEST(UserDefaults, ReadBackAFlag) {
    testing_support::MemoryDefaults defaults;
    defaults.setBoolForKey(true, u"key");
    EXPECT_TRUE(defaults.boolForKey(u"key"));
    defaults.setBoolForKey(false, u"key");
    EXPECT_FALSE(defaults.boolForKey(u"key"));
    EXPECT_EQ(defaults.stringForKey(u"key"), u"NO");
}

TEST(Exception, IsDescribedByItsReasonElseByItsName) {
    EXPECT_EQ(NSException("Name", "reason").description(), "reason");
    EXPECT_EQ(NSException("Name", "").description(), "Name");
}

TEST(Exception, OfARangeIsAlsoTheStandardLibrarys) {
    const auto raise = [] { throw NSRangeException("no row 7"); };
    EXPECT_THROW(raise(), std::out_of_range);
    try {
        raise();
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), "NSRangeException");
        EXPECT_EQ(exception.description(), "no row 7");
    }
    try {
        raise();
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "no row 7");
    }
}

TEST(Exception, OfAnArgumentIsAlsoTheStandardLibrarys) {
    const auto raise = [] { throw NSInvalidArgumentException("nil"); };
    EXPECT_THROW(raise(), std::invalid_argument);
    try {
        raise();
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), "NSInvalidArgumentException");
        EXPECT_EQ(exception.description(), "nil");
    }
}

/// What `handler` leaves in the log when it is run at the outer edge.
std::string logOf(const std::function<void()>& handler) {
    testing::internal::CaptureStderr();
    runGuarded(handler);
    return testing::internal::GetCapturedStderr();
}

TEST(OuterEdge, LogsWhatLeavesAHandlerInOneLineAndGoesOn) {
    const struct {
        const char* row;
        std::function<void()> handler;
        std::string expected;
    } table[] = {
        {"range", [] { throw NSRangeException("no row 7"); }, "NSRangeException: no row 7\n"},
        {"argument", [] { throw NSInvalidArgumentException("nil"); }, "NSInvalidArgumentException: nil\n"},
        {"name alone", [] { throw NSException("NSUnknownKeyException", ""); }, "NSUnknownKeyException\n"},
        {"the library's", [] { throw std::runtime_error("out of ink"); }, "exception: out of ink\n"},
        {"anything", [] { throw 7; }, "exception of unknown type\n"},
    };
    for (const auto& row : table) {
        const auto log = logOf(row.handler);
        ASSERT_GE(log.size(), row.expected.size()) << row.row;
        EXPECT_EQ(log.substr(log.size() - row.expected.size()), row.expected) << row.row;
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << row.row;
    }
}

TEST(OuterEdge, RunsAHandlerToItsEndAndLogsNothing) {
    bool ran = false;
    EXPECT_EQ(logOf([&] { ran = true; }), "");
    EXPECT_TRUE(ran);
}

TEST(OuterEdge, LeavesUndoneWhatAHandlerHadNotYetDone) {
    int done = 0;
    logOf([&] {
        ++done;
        throw NSRangeException("no row 7");
        ++done;
    });
    EXPECT_EQ(done, 1);
}

TEST(Log, PrefixesDateProgramAndProcess) {
    testing::internal::CaptureStderr();
    NSLog("100 % of ink");
    const auto line = testing::internal::GetCapturedStderr();
    constexpr std::string_view date = "0000-00-00 00:00:00";
    ASSERT_GT(line.size(), date.size());
    for (std::size_t i = 0; i < date.size(); ++i)
        EXPECT_EQ(line[i] >= '0' && line[i] <= '9' ? '0' : line[i], date[i]) << line;
    EXPECT_EQ(line.substr(date.size()), " imprinter[" + std::to_string(getpid()) + "] 100 % of ink\n");
}

TEST(Url, IsEqualByItsPath) {
    EXPECT_EQ(NSURL::fileURLWithPath("/a/b"), NSURL::fileURLWithPath("/a/b"));
    EXPECT_FALSE(NSURL::fileURLWithPath("/a/b") == NSURL::fileURLWithPath("/a/c"));
    EXPECT_EQ(NSURL::fileURLWithPath("/a/b").path(), "/a/b");
}

} // namespace
