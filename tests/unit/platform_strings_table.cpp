// SPDX-License-Identifier: MIT
#include "StringsTable.h"

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;

TextMap read(const std::u16string& text) {
    std::string problem;
    const auto table = readStringsTable(text, problem);
    EXPECT_TRUE(table) << problem;
    return table.value_or(TextMap{{u"no", u"table"}});
}

TEST(StringsTable, HoldsWhatItsEntriesSay) {
    const struct {
        const char* row;
        std::u16string text;
        TextMap expected;
    } table[] = {
        {"empty file", u"", {}},
        {"white space alone", u" \n\t", {}},
        {"comments alone", u"/* a */ // b", {}},
        {"one entry", u"\"key\" = \"value\";", {{u"key", u"value"}}},
        {"no space", u"\"a\"=\"b\";\"c\"=\"d\";", {{u"a", u"b"}, {u"c", u"d"}}},
        {"single quotes", u"'a' = 'b';", {{u"a", u"b"}}},
        {"the other quote inside", u"'a\"' = \"b'\";", {{u"a\"", u"b'"}}},
        {"empty key and value", u"\"\" = \"\";", {{u"", u""}}},
        {"words without quotes", u"a_1$/:.-Z = x.y-z;", {{u"a_1$/:.-Z", u"x.y-z"}}},
        {"key alone", u"\"key\";", {{u"key", u"key"}}},
        {"word alone", u"word;", {{u"word", u"word"}}},
        {"text over two lines", u"\"a\nb\" = \"c\nd\";", {{u"a\nb", u"c\nd"}}},
        {"entry over many lines", u"\"a\"\n=\n\"b\"\n;\n", {{u"a", u"b"}}},
        {"comments anywhere", u"/* 1 */\"a\"/* 2 */=// 3\n\"b\"/* 4 */;// 5", {{u"a", u"b"}}},
        {"comment ended by a carriage return", u"// a\r\"a\" = \"b\";", {{u"a", u"b"}}},
        {"comment marks in a text", u"\"/* a */\" = \"// b\";", {{u"/* a */", u"// b"}}},
        {"stars in a comment", u"/** a * / **/ a = b;", {{u"a", u"b"}}},
        {"semicolon in a text", u"\"a;\" = \"b;\";", {{u"a;", u"b;"}}},
        {"the last of equal keys", u"a = 1; b = 2; a = 3;", {{u"a", u"3"}, {u"b", u"2"}}},
        {"case makes keys differ", u"a = 1; A = 2;", {{u"a", u"1"}, {u"A", u"2"}}},
        {"any script", u"\"\u540D\u524D\" = \"\U0001F5A8\";", {{u"\u540D\u524D", u"\U0001F5A8"}}},
        {"percent signs stay", u"\"%\" = \"%%%@\";", {{u"%", u"%%%@"}}},
    };
    for (const auto& row : table)
        EXPECT_EQ(read(row.text), row.expected) << row.row;
}

TEST(StringsTable, ReadsEscapes) {
    const struct {
        std::u16string escaped;
        std::u16string expected;
    } table[] = {
        {u"\\n", u"\n"},
        {u"\\r", u"\r"},
        {u"\\t", u"\t"},
        {u"\\a", u"\a"},
        {u"\\b", u"\b"},
        {u"\\f", u"\f"},
        {u"\\v", u"\v"},
        {u"\\\"", u"\""},
        {u"\\'", u"'"},
        {u"\\\\", u"\\"},
        {u"\\\\n", u"\\n"},
        {u"\\q", u"q"},
        {u"\\u00E4", u"u00E4"},
        {u"\\9", u"9"},
        {u"\\101", u"A"},
        {u"\\1018", u"A8"},
        {u"\\1011", u"A1"},
        {u"\\60z", u"0z"},
        {u"\\7", u"\a"},
        {u"\\U00E4", u"\u00E4"},
        {u"\\U00e4", u"\u00E4"},
        {u"\\U00E41", u"\u00E41"},
        {u"\\UE4 ", u"\u00E4 "},
        {u"\\U3042\\U3044", u"\u3042\u3044"},
        {u"\\UD83D\\UDDA8", u"\U0001F5A8"},
        {u"\\\n", u"\n"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(read(u"k = \"" + row.escaped + u"\";"), (TextMap{{u"k", row.expected}})) << toUtf8(row.escaped);
        EXPECT_EQ(read(u"'" + row.escaped + u"' = v;"), (TextMap{{row.expected, u"v"}})) << toUtf8(row.escaped);
    }
}

TEST(StringsTable, WithAFaultIsNoneAndNamesTheLine) {
    const struct {
        const char* row;
        std::u16string text;
        std::string line;
    } table[] = {
        {"semicolon missing at the end", u"a = b", "line 1:"},
        {"semicolon missing before the next entry", u"a = b;\nc = d\ne = f;", "line 3:"},
        {"value missing", u"a = b;\nc = ;", "line 2:"},
        {"value missing at the end", u"a =", "line 1:"},
        {"key missing", u"a = b;\n\n= c;", "line 3:"},
        {"semicolon alone", u"a = b;\n;", "line 2:"},
        {"two values", u"a = b c;", "line 1:"},
        {"quote of a key not closed", u"a = b;\n\"c = d;\ne = f;\n", "line 2:"},
        {"quote of a value not closed", u"a = b;\nc =\n'd;\ne = \"f\";\n", "line 3:"},
        {"quote closed by an escape", u"a = \"b\\\";", "line 1:"},
        {"backslash at the end", u"a = \"b\\", "line 1:"},
        {"comment not closed", u"a = b;\n/* c\n\n", "line 2:"},
        {"comment not closed before the semicolon", u"a = b /* ;", "line 1:"},
        {"word with another character", u"a+b = c;", "line 1:"},
        {"braces", u"{ a = b; }", "line 1:"},
    };
    for (const auto& row : table) {
        std::string problem;
        EXPECT_FALSE(readStringsTable(row.text, problem)) << row.row;
        EXPECT_EQ(problem.substr(0, row.line.size()), row.line) << row.row << ": " << problem;
    }
}

TEST(StringsTable, SaysWhatDoesNotEnd) {
    std::string problem;
    readStringsTable(u"a = \"b;", problem);
    EXPECT_EQ(problem, "line 1: a quoted text does not end");
    readStringsTable(u"a /* b;", problem);
    EXPECT_EQ(problem, "line 1: a comment does not end");
}

TEST(StringsFile, IsUtf8OrUtf16WithAMark) {
    const struct {
        const char* row;
        std::string bytes;
        std::u16string expected;
    } table[] = {
        {"empty", "", u""},
        {"plain", "a\xC3\xA4", u"a\u00E4"},
        {"UTF-8 with a mark", "\xEF\xBB\xBF\xC3\xA4", u"\u00E4"},
        {"big-endian", std::string("\xFE\xFF\0a\0\xE4", 6), u"a\u00E4"},
        {"little-endian",
         std::string("\xFF\xFE"
                     "a\0\xE4\0",
                     6),
         u"a\u00E4"},
        {"pair of surrogates", std::string("\xFE\xFF\xD8\x3D\xDD\xA8", 6), u"\U0001F5A8"},
        {"mark alone", "\xFE\xFF", u""},
        {"half a unit at the end", std::string("\xFE\xFF\0a\0", 5), u"a"},
        {"one byte of a mark", "\xFE", u"\uFFFD"},
    };
    for (const auto& row : table)
        EXPECT_EQ(textOfFile(row.bytes), row.expected) << row.row;
}

std::string list(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\"><dict>" +
           content + "</dict></plist>";
}

TEST(InformationList, HoldsTheTextsOfItsDictionary) {
    const struct {
        const char* row;
        std::string content;
        TextMap expected;
    } table[] = {
        {"empty", "", {}},
        {"text", "<key>a</key><string>b</string>", {{u"a", u"b"}}},
        {"empty text", "<key>a</key><string/>", {{u"a", u""}}},
        {"white space is kept", "<key>a</key> <string> b\n</string>", {{u"a", u" b\n"}}},
        {"characters by number and name", "<key>a</key><string>&lt;&#228;&amp;</string>", {{u"a", u"<\u00E4&"}}},
        {"character data", "<key>a</key><string><![CDATA[<b>]]></string>", {{u"a", u"<b>"}}},
        {"other types are left out",
         "<key>a</key><true/><key>b</key><integer>1</integer><key>c</key><string>d</string>",
         {{u"c", u"d"}}},
        {"inner dictionaries are left out",
         "<key>a</key><dict><key>b</key><string>c</string></dict><key>d</key><string>e</string>",
         {{u"d", u"e"}}},
        {"lists are left out", "<key>a</key><array><string>b</string></array>", {}},
        {"the last of equal keys", "<key>a</key><string>1</string><key>a</key><string>2</string>", {{u"a", u"2"}}},
        {"text without key", "<string>a</string><key>b</key><string>c</string>", {{u"b", u"c"}}},
    };
    for (const auto& row : table)
        EXPECT_EQ(textsOfPropertyList(list(row.content)), std::optional(row.expected)) << row.row;
}

TEST(InformationList, IsNoneForWhatIsNone) {
    const struct {
        const char* row;
        std::string xml;
    } table[] = {
        {"empty", ""},
        {"no markup", "a = b;"},
        {"another root", "<html></html>"},
        {"no dictionary", "<plist version=\"1.0\"></plist>"},
        {"list at the root", "<plist version=\"1.0\"><array/></plist>"},
        {"cut off", list("<key>a</key>").substr(0, 180)},
        {"text behind the end", list("") + "x"},
        {"mismatched ends", list("<key>a</string>")},
    };
    for (const auto& row : table)
        EXPECT_FALSE(textsOfPropertyList(row.xml)) << row.row;
}

TEST(InformationList, RefusesEntitiesOfItsOwn) {
    const auto with = [](const std::string& declarations) {
        return "<!DOCTYPE plist [" + declarations +
               "]><plist version=\"1.0\"><dict><key>a</key><string>b</string></dict></plist>";
    };
    EXPECT_TRUE(textsOfPropertyList(with("")));
    EXPECT_FALSE(textsOfPropertyList(with("<!ENTITY a \"b\">")));
    EXPECT_FALSE(textsOfPropertyList(with("<!ENTITY % a \"b\">")));
    EXPECT_FALSE(textsOfPropertyList(with("<!ENTITY a SYSTEM \"file:///etc/hostname\">")));
}

TEST(InformationList, MayBeNestedThirtyTwoLevelsDeepAndNoDeeper) {
    const auto nested = [](int levels) {
        std::string content = "<key>a</key>";
        for (int level = 2; level < levels; ++level) // the list and its dictionary are the first two
            content += "<array>";
        for (int level = 2; level < levels; ++level)
            content += "</array>";
        return list(content + "<key>b</key><string>c</string>");
    };
    EXPECT_EQ(textsOfPropertyList(nested(32)), std::optional(TextMap{{u"b", u"c"}}));
    EXPECT_FALSE(textsOfPropertyList(nested(33)));
    EXPECT_FALSE(textsOfPropertyList(nested(100000)));
}

} // namespace
