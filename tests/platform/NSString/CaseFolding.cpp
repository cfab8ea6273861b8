// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(CaseInsensitiveCompare, FoldsCaseByUnicode) {
    EXPECT_EQ(caseInsensitiveCompare(u"ÄPFEL", u"äpfel"), 0);
    EXPECT_EQ(caseInsensitiveCompare(u"ΣΑΣ", u"σας"), 0);
    EXPECT_EQ(caseInsensitiveCompare(u"\U00010400", u"\U00010428"), 0); // beyond the basic plane
}

TEST(CaseInsensitiveCompare, AnswersMinusOneOrOneForDifferentTexts) {
    EXPECT_EQ(caseInsensitiveCompare(u"Avenir", u"BASKERVILLE"), -1);
    EXPECT_EQ(caseInsensitiveCompare(u"b", u"A"), 1);
    EXPECT_EQ(caseInsensitiveCompare(u"", u"a"), -1);
}

TEST(CaseInsensitiveCompare, DoesNotFollowTheLocale) {
    EXPECT_EQ(caseInsensitiveCompare(u"I", u"i"), 0);
}

TEST(CaseInsensitiveCompare, AMissingReceiverEqualsAnything) {
    EXPECT_EQ(caseInsensitiveCompare(std::nullopt, u"%changeFont%"), 0);
}

} // namespace
