// SPDX-License-Identifier: MIT
#include "CompactFont.h"
#include "ContentScan.h"
#include "Spelling.h"

#include <gtest/gtest.h>

#include <string>

using engine::scanContent;

TEST(ContentScan, BalancedContentLeavesNothing) {
    const auto balance = scanContent("q 1 0 0 1 0 0 cm BT /F0 12 Tf (x) Tj ET /A BMC EMC Q");
    EXPECT_EQ(balance.openStates, 0U);
    EXPECT_TRUE(balance.surplusRestores.empty());
    EXPECT_FALSE(balance.openText);
    EXPECT_EQ(balance.openMarks, 0U);
}

TEST(ContentScan, WhatIsLeftOpenIsCounted) {
    const auto balance = scanContent("q q Q q /A<</B[(]>>)]>>BDC/C BMC EMC BT");
    EXPECT_EQ(balance.openStates, 2U);
    EXPECT_EQ(balance.openMarks, 1U);
    EXPECT_TRUE(balance.openText);
}

TEST(ContentScan, SurplusRestoresAreFoundWhereTheyStand) {
    const auto balance = scanContent("Q q Q Q\nq");
    EXPECT_EQ(balance.surplusRestores, (std::vector<std::size_t>{0, 6}));
    EXPECT_EQ(balance.openStates, 1U);
}

TEST(ContentScan, StringsCommentsNamesAndImageDataAreNoOperators) {
    for (const char* content :
         {"(q (q) \\) q) Tj", "<71 q>", "% q q q\n", "% q q\r", "/q /Q gs", "qq QQ q1 [/q]",
          "BI /W 1 /H 1 ID q q\x01 EI \x02 q\nEI ", "(unfinished q", "<71", "% at the end", "(\\"}) {
        SCOPED_TRACE(content);
        const auto balance = scanContent(content);
        EXPECT_EQ(balance.openStates, 0U);
        EXPECT_TRUE(balance.surplusRestores.empty());
    }
}

TEST(ContentScan, DelimitersEndOperators) {
    EXPECT_EQ(scanContent("q[]q/A q(x)q<78>q%").openStates, 5U);
    EXPECT_EQ(scanContent("q<</A/B>>q").openStates, 2U);
}

TEST(ContentScan, OperatorsAfterAnImageCount) {
    EXPECT_EQ(scanContent("q BI /W 1 ID \xff\xfe EI Q Q").surplusRestores.size(), 1U);
    EXPECT_EQ(scanContent("/ID gs q").openStates, 1U);
}

TEST(ContentScan, AnImageEndsWhereItsDataDoes) {
    for (const std::string content :
         {"BI /W 1 /H 1 /BPC 8 /CS /G /F /A85 ID J,~>EI", "BI/W 2/H 1/BPC 8/CS/G/F[/AHx]ID 8040>EI",
          "BI /Width 2 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray ID \x80\x40"
          "EI",
          "BI /W 3 /H 2 /IM true ID \x80\x40"
          "EI",
          "BI /W 1 /H 1 /BPC 8 /CS /RGB ID \r\nabcEI",
          "BI /W 1 /H 1 /BPC 8 /CS [/Indexed /RGB 1 <000000ffffff>] ID aEI",
          "BI /W 8 /H 1 /BPC 8 /CS /G ID q EI Q q\nEI",
          "BI /W 2 /H 1 /BPC 8 /CS /G /F /RL ID \x01 Q\x80"
          "EI",
          "BI /W 4 /H 1 /BPC 8 /CS /Cs1 ID \x81\x82\x83\x84"
          "EI",
          "BI /W 9 /H 9 /BPC 8 /CS /G ID ab\nEI"}) {
        SCOPED_TRACE(content);
        const auto balance = scanContent("q " + content + "\nQ q 0 0 9 9 re f");
        EXPECT_EQ(balance.openStates, 1U);
        EXPECT_EQ(balance.surplusRestores.size(), 0U);
        EXPECT_EQ(balance.closing, "");
    }
}

TEST(ContentScan, WhatTheEndLiesInIsClosed) {
    EXPECT_EQ(scanContent("(a").closing, ")\n");
    EXPECT_EQ(scanContent("(a (b) (c \\)").closing, ")\n)\n");
    EXPECT_EQ(scanContent("[ (a) <41").closing, ">\n]\n");
    EXPECT_EQ(scanContent("/P << /MCID 0 /A [ (b").closing, ")\n]\n>>\n");
    EXPECT_EQ(scanContent("q BI /W 1 ID a").closing, "EI\n");
    EXPECT_EQ(scanContent("BI /W 1 /D [ 1").closing, "]\n() () /IM 0 ID \nEI\n");
    EXPECT_EQ(scanContent("BI /W 1 ID a EI BI /W 1 /H 1 ID b EI q").closing, "");
    EXPECT_EQ(scanContent("[(a)] << /B [<< >>] >> ] >> (c) Tj % (").closing, "");
}

TEST(ContentMarks, AreFoundWithTheirTagPropertiesAndWhatTheyDraw) {
    const std::string content =
        "q 1 0 0 1 2 3 cm /Fm0 Do Q\n/Artifact <</A /B /C (x >> BDC) /D [<< /E 1 >>]>> BDC\nq /S0 Do "
        "/Inner BMC /S1 Do EMC Q\nEMC\n/Name /Resource BDC EMC /T BMC EMC";
    const auto marks = engine::findMarks(content);
    ASSERT_EQ(marks.size(), 3U);
    EXPECT_EQ(marks[0].tag, "/Artifact");
    EXPECT_EQ(marks[0].properties, " <</A /B /C (x >> BDC) /D [<< /E 1 >>]>> ");
    EXPECT_EQ(marks[0].drawn, (std::vector<std::string>{"/S0", "/S1"}));
    EXPECT_EQ(content.substr(marks[0].begin, 9), "/Artifact");
    EXPECT_EQ(content.substr(marks[0].end, 7), "\n/Name ");
    EXPECT_EQ(marks[1].properties, " /Resource ");
    EXPECT_EQ(marks[2].properties, "");
}

TEST(ContentMarks, ThatAreNeverClosedAreNone) {
    EXPECT_TRUE(engine::findMarks("/A <</B 1>> BDC q Q").empty());
    EXPECT_TRUE(engine::findMarks("EMC EMC").empty());
    EXPECT_EQ(engine::findMarks("/A BMC EMC EMC /B BMC EMC").size(), 2U);
}

TEST(Spelling, IsNeededOnlyWhereGlyphsDoNotSayItAll) {
    const auto spelled = [](const std::u16string& text, bool askew = false) {
        engine::Stamp stamp;
        stamp.text = text;
        return engine::spellingOf(stamp, askew);
    };
    for (const char16_t* text : {u"Received", u"Page 3 of 12", u"\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd"})
        EXPECT_FALSE(spelled(text));
    EXPECT_EQ(spelled(u"Received", true), u"Received");
    for (const char16_t* text : {u"two  spaces", u" one before", u"one after ", u"two\nlines", u"no\u00a0break"})
        EXPECT_EQ(spelled(text), text);
    EXPECT_FALSE(spelled(u"", true));
}

TEST(Spelling, TurnsPartsThatRunFromRightToLeftAround) {
    engine::Stamp stamp;
    stamp.text = u"Page \u05d0\u05d1 3";
    EXPECT_EQ(engine::spellingOf(stamp, false), u"Page \u05d1\u05d0\u202a 3");
    // More letters from right to left than others: marks make up for them.
    stamp.text = u"\u05d0\u05d1 3";
    EXPECT_EQ(engine::spellingOf(stamp, false), u"\u202a\u202a\u05d1\u05d0\u202a 3");
}

TEST(CompactFonts, BytesThatAreNoTableAreRefused) {
    const std::string bytes("\x01\x00\x04\x02\x00\x01\x01\x01\x05"
                            "Name\x00\x01\x01\x01\x09",
                            18);
    for (std::size_t length = 0; length <= bytes.size(); ++length)
        EXPECT_FALSE(engine::compactFontIdentifiers(bytes.substr(0, length), 3)) << length;
}

TEST(CompactFonts, TheCharsetOfACidKeyedTableGivesIdentifiers) {
    // Header, one name, a top dictionary of ROS and charset, and a charset of format 2: 7 and 8, then 300.
    std::string bytes("\x01\x00\x04\x02", 4);
    bytes += std::string("\x00\x01\x01\x01\x02"
                         "N",
                         6);
    const std::string dictionary("\x8b\x8b\x8b\x0c\x1e\xab\x0f", 7); // 0 0 0 ROS, 32 charset
    bytes += std::string("\x00\x01\x01\x01", 4) + static_cast<char>(1 + dictionary.size()) + dictionary;
    bytes.resize(32);
    bytes += std::string("\x02\x00\x07\x00\x01\x01\x2c\x00\x00", 9);
    const auto identifiers = engine::compactFontIdentifiers(bytes, 4);
    ASSERT_TRUE(identifiers);
    EXPECT_EQ(*identifiers, (std::vector<unsigned>{0, 7, 8, 300}));
    EXPECT_FALSE(engine::compactFontIdentifiers(bytes, 9));
}
