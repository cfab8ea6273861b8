// SPDX-License-Identifier: MIT
// What the platform makes of fontconfig's listing, shown on fonts of our own making.
#include "MadeFonts.h"

#include <AppKit/NSFont.h>
#include <AppKit/NSFontCollection.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <set>

using namespace platform;

namespace {

NSLocale localeOf(const std::u16string& identifier) {
    NSLocale locale;
    locale.localeIdentifier = identifier;
    return locale;
}

std::multiset<std::string> offeredTo(const std::u16string& identifier) {
    std::multiset<std::string> names;
    for (const auto& name : FontSource::current()->namesForLocale(localeOf(identifier)))
        names.insert(toUtf8(name));
    return names;
}

bool isOffered(const std::string& name, const std::u16string& identifier = u"en_GB") {
    return offeredTo(identifier).count(name) > 0;
}

/// "family | display name".
std::string namesOf(const std::u16string& fontName) {
    const auto font = NSFont::fontWithNameSize(fontName, 12);
    return font ? toUtf8(font->familyName() + u" | " + font->displayName()) : "none";
}

/// "file:index" of each.
std::vector<std::string> filesOf(const std::u16string& fontName) {
    std::vector<std::string> files;
    for (const auto& file : FontSource::current()->filesOf(fontName))
        files.push_back(file.path.substr(file.path.rfind('/') + 1) + ":" + std::to_string(file.index & 0xFFFF) +
                        (file.isInstance() ? "/" + std::to_string(file.index >> 16) : ""));
    return files;
}

using Files = std::vector<std::string>;

TEST(FontListing, AFullNameThatIsTheFamilyIsTheDisplayName) {
    EXPECT_EQ(namesOf(u"MakerSans"), "Maker Sans | Maker Sans");
    EXPECT_EQ(namesOf(u"MakerBook"), "Maker Book | Maker Book");
}

TEST(FontListing, AFullNameThatBeginsWithTheFamilyAndASpaceIsTheDisplayName) {
    EXPECT_EQ(namesOf(u"MakerSans-Bold"), "Maker Sans | Maker Sans Bold");
}

TEST(FontListing, AnyOtherFullNameGivesWayToFamilyAndStyle) {
    EXPECT_EQ(namesOf(u"MakerSerif-Italic"), "Maker Serif | Maker Serif Italic");
    EXPECT_EQ(namesOf(u"MakerMono-Bold"), "Maker Mono | Maker Mono Bold");
}

TEST(FontListing, FamilyAndFullNameAreOfOneLanguage) {
    EXPECT_EQ(namesOf(u"MakerTwo-Bold"), "Maker Two | Maker Two Bold");
    EXPECT_EQ(namesOf(u"MakerJapanese-Bold"), "製作 | 製作 太字");
}

TEST(FontListing, APostScriptNameIsTakenExactly) {
    EXPECT_EQ(NSFont::fontWithNameSize(u"makersans", 12), nullptr);
    EXPECT_EQ(NSFont::fontWithNameSize(u"Maker Sans", 12), nullptr);
    EXPECT_EQ(NSFont::fontWithNameSize(u"", 12), nullptr);
    EXPECT_EQ(NSFont::fontWithNameSize(u"MakerSans", 12)->fontName(), u"MakerSans");
}

TEST(FontListing, TheFacesOfferedCoverTheLocalesLanguage) {
    EXPECT_TRUE(isOffered("MakerSans", u"en_GB"));
    EXPECT_FALSE(isOffered("MakerCyrillic", u"en_GB"));
    EXPECT_TRUE(isOffered("MakerCyrillic", u"ru_RU"));
    EXPECT_FALSE(isOffered("MakerSans", u"ru_RU"));
    for (const auto* identifier : {u"en_GB", u"ru", u"de_AT", u"fr_CH"})
        EXPECT_TRUE(isOffered("MakerBoth", identifier)) << toUtf8(identifier);
}

TEST(FontListing, AnUnsetAPlainAndAnUnknownLanguageCountAsEnglish) {
    const auto english = offeredTo(u"en_US");
    EXPECT_FALSE(english.empty());
    for (const auto* identifier : {u"", u"C", u"C.UTF-8", u"POSIX", u"xx_YY"})
        EXPECT_EQ(offeredTo(identifier), english) << toUtf8(identifier);
}

TEST(FontListing, AHiddenFaceIsNotOfferedButOpened) {
    EXPECT_FALSE(isOffered(".MakerHidden"));
    EXPECT_EQ(namesOf(u".MakerHidden"), "Maker Hidden | Maker Hidden");
}

TEST(FontListing, ACollectionGivesEachOfItsFaces) {
    EXPECT_TRUE(isOffered("MakerFirst"));
    EXPECT_TRUE(isOffered("MakerSecond"));
    EXPECT_EQ(filesOf(u"MakerFirst"), Files{"collection.ttc:0"});
    EXPECT_EQ(filesOf(u"MakerSecond"), Files{"collection.ttc:1"});
}

TEST(FontListing, AVariableFileGivesItsNamedInstancesAndNotItself) {
    EXPECT_TRUE(isOffered("MakerVariable"));
    EXPECT_TRUE(isOffered("MakerVariable_200wdth"));
    EXPECT_EQ(namesOf(u"MakerVariable_200wdth"), "Maker Variable | Maker Variable Wide");
    EXPECT_EQ(filesOf(u"MakerVariable_200wdth"), Files{"variable.ttf:0/1"});
    EXPECT_EQ(filesOf(u"MakerVariable"), Files{"variable.ttf:0"});
    EXPECT_FALSE(isOffered(""));
}

TEST(FontListing, AnInstanceThatAStaticFaceDoublesIsLeftOut) {
    EXPECT_TRUE(isOffered("MakerVariable-Bold"));
    EXPECT_FALSE(isOffered("MakerVariable_150wdth"));
    EXPECT_EQ(namesOf(u"MakerVariable_150wdth"), "Maker Variable | Maker Variable Bold"); // it opens all the same
}

TEST(FontListing, InstancesListedUnderOneNameAreToldApartByTheirStyle) {
    EXPECT_FALSE(isOffered("Maker-Nameless"));
    EXPECT_EQ(namesOf(u"Maker-Nameless-Wide"), "Maker Nameless | Maker Nameless Wide");
    EXPECT_EQ(namesOf(u"Maker-Nameless-ExtraWide"), "Maker Nameless | Maker Nameless Extra Wide");
    EXPECT_EQ(filesOf(u"Maker-Nameless-ExtraWide"), Files{"nameless.ttf:0/2"});
}

TEST(FontListing, OfOneNameTheStaticFaceComesFirstThenTheFirstPath) {
    EXPECT_EQ(filesOf(u"MakerTwice"), (Files{"a-twice.ttf:0", "b-twice.ttf:0"}));
    EXPECT_EQ(filesOf(u"MakerVariable_120wdth"), (Files{"z-static.ttf:0", "variable.ttf:0/3"}));
    EXPECT_EQ(namesOf(u"MakerVariable_120wdth"), "Maker Static | Maker Static");
    EXPECT_EQ(filesOf(u"NoSuchFace"), Files());
}

TEST(FontListing, ASymbolicFaceIsListedAsOne) {
    EXPECT_TRUE(FontSource::current()->filesOf(u"MakerSymbol").at(0).symbolic);
    EXPECT_FALSE(FontSource::current()->filesOf(u"MakerSans").at(0).symbolic);
}

TEST(FontListing, WithoutDejaVuTheDefaultIsOneOfTheFacesThereAre) {
    const auto font = NSFont::userFontOfSize(0);
    ASSERT_TRUE(font);
    EXPECT_TRUE(font->fontName().starts_with(u"Maker")) << toUtf8(font->fontName());
    EXPECT_EQ(font->pointSize(), 12);
}

TEST(FontListing, AFileThatIsGoneIsListedAllTheSame) {
    made_fonts::withoutFile("removed.ttf", [] {
        EXPECT_EQ(namesOf(u"MakerRemoved"), "Maker Removed | Maker Removed");
        EXPECT_EQ(filesOf(u"MakerRemoved"), Files{"removed.ttf:0"});
    });
}

TEST(FontListing, AnotherSourceTakesItsPlace) {
    class Nothing final : public FontSource {
        std::vector<std::u16string> namesForLocale(const NSLocale&) override { return {}; }
        std::shared_ptr<const FontNames> namesOf(const std::u16string&) override { return nullptr; }
        std::vector<FontFile> filesOf(const std::u16string&) override { return {}; }
        std::u16string defaultName() override { return {}; }
    };
    FontSource::setCurrent(std::make_shared<Nothing>());
    EXPECT_EQ(namesOf(u"MakerSans"), "none");
    EXPECT_EQ(NSFont::userFontOfSize(12), nullptr);
    FontSource::setCurrent(nullptr);
    EXPECT_NE(namesOf(u"MakerSans"), "none");
}

} // namespace
