// SPDX-License-Identifier: MIT
#include "../support/MadeUpFonts.h"

#include <VelIFonts.h>

#include <AppKit/NSFontCollection.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <thread>

using namespace platform;
using namespace testing_support;
using pane::VelIFonts;

namespace {

using Names = std::vector<std::u16string>;
using Faces = VelIFonts::FaceTable;
using Tags = std::vector<NSInteger>;

Names titlesOf(const NSMenu& menu) {
    Names titles;
    for (const auto& item : menu.itemArray())
        titles.push_back(item->title());
    return titles;
}

Tags tagsOf(const NSMenu& menu) {
    Tags tags;
    for (const auto& item : menu.itemArray())
        tags.push_back(item->tag());
    return tags;
}

/// The full font name an item is drawn in; empty for a plain one.
std::u16string fontOf(const NSMenuItem& item) {
    return item.attributedTitle() ? item.attributedTitle()->font()->fontName() : std::u16string();
}

class FontCatalog : public ::testing::Test {
protected:
    std::shared_ptr<VelIFonts> catalogOf(const std::vector<MadeUpFonts::Row>& rows) {
        for (const auto& row : rows)
            fonts->add(row);
        return std::make_shared<VelIFonts>()->init();
    }
    /// The one family of a catalog of one font.
    Faces facesWith(const std::u16string& family, const std::u16string& display) {
        fonts->offered.clear();
        const auto catalog = catalogOf({{u"PS", family, display}});
        EXPECT_EQ(catalog->fontInfoLookup()->size(), 1u);
        return catalog->fontInfoLookup()->at(family);
    }

    std::shared_ptr<MadeUpFonts> fonts = std::make_shared<MadeUpFonts>();
    WithFonts with{fonts};
};

// The list of names

TEST_F(FontCatalog, NamesAreSortedWithoutRegardToCase) {
    fonts->offered = {u"beta", u"Gamma", u"alpha", u"Ångström", u"Delta"};
    EXPECT_EQ(VelIFonts().buildFontList(), (Names{u"alpha", u"beta", u"Delta", u"Gamma", u"Ångström"}));
}

TEST_F(FontCatalog, NamesThatDifferOnlyInCaseBothStay) {
    fonts->offered = {u"Arial", u"ARIAL"};
    const auto list = VelIFonts().buildFontList();
    EXPECT_EQ(std::set<std::u16string>(list.begin(), list.end()), (std::set<std::u16string>{u"Arial", u"ARIAL"}));
}

TEST_F(FontCatalog, TheSameNameIsListedOnceEvenWithAnotherCaseInBetween) {
    fonts->offered = {u"Arial", u"ARIAL", u"Arial", u"Arial", u"ARIAL", u"Zapfino"};
    EXPECT_EQ(VelIFonts().buildFontList(), (Names{u"Arial", u"ARIAL", u"Zapfino"}));
}

TEST_F(FontCatalog, ADescriptorWithoutANameIsSkipped) {
    fonts->offered = {u"", u"Arial"};
    const auto collection = NSFontCollection::fontCollectionWithLocale({});
    ASSERT_EQ(collection->matchingDescriptors()->size(), 2u);
    EXPECT_TRUE(collection->matchingDescriptors()->front()->fontAttributes().empty());
    EXPECT_EQ(VelIFonts().buildFontList(), Names{u"Arial"});
}

TEST_F(FontCatalog, AsksForTheFontsOfTheCurrentLocale) {
    VelIFonts().buildFontList();
    EXPECT_EQ(fonts->askedFor.localeIdentifier, NSLocale::currentLocale().localeIdentifier);
    EXPECT_EQ(fonts->listings, 1);
}

// The rule for attributes

TEST_F(FontCatalog, ADisplayNameEqualToTheFamilyApartFromCaseIsRegular) {
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"Helvetica Neue"), (Faces{{u"Regular", u"PS"}}));
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"HELVETICA neue"), (Faces{{u"Regular", u"PS"}}));
    EXPECT_EQ(facesWith(u"ÄRIAL", u"ärial"), (Faces{{u"Regular", u"PS"}}));
}

TEST_F(FontCatalog, ALongerDisplayNameIsCutByTheLengthOfTheFamily) {
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"Helvetica Neue Bold"), (Faces{{u"Bold", u"PS"}}));
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"Helvetica Neue  Condensed Light \n"),
              (Faces{{u"Condensed Light", u"PS"}}));
}

TEST_F(FontCatalog, TheCutDoesNotAskWhatItCuts) {
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"Xelvetica Neue Bold"), (Faces{{u"Bold", u"PS"}}));
    EXPECT_EQ(facesWith(u"Mono", u"DejaVu Sans"), (Faces{{u"Vu Sans", u"PS"}}));
}

TEST_F(FontCatalog, TheCutCountsUtf16Units) {
    EXPECT_EQ(facesWith(u"\U0001F600", u"\U0001F600Bold"), (Faces{{u"Bold", u"PS"}}));
    EXPECT_EQ(facesWith(u"\U0001F600", u"ABold"), (Faces{{u"old", u"PS"}}));
    // Half a character may be left over.
    EXPECT_EQ(facesWith(u"A", u"\U0001F600"), (Faces{{std::u16string(1, char16_t(0xDE00)), u"PS"}}));
}

TEST_F(FontCatalog, ARestOfWhiteSpaceIsTheEmptyAttributeAndIsKept) {
    EXPECT_EQ(facesWith(u"Optima", u"Optima \t\u200B\u3000\n"), (Faces{{u"", u"PS"}}));
}

TEST_F(FontCatalog, AShorterDisplayNameGivesNoEntryButTheFamilyStays) {
    EXPECT_EQ(facesWith(u"Helvetica Neue", u"Helvetica"), Faces());
}

TEST_F(FontCatalog, ADifferentDisplayNameOfTheSameLengthGivesNoEntryButTheFamilyStays) {
    EXPECT_EQ(facesWith(u"Optima", u"Futura"), Faces());
}

TEST_F(FontCatalog, AnEmptyDisplayNameGivesNoEntryButTheFamilyStays) {
    EXPECT_EQ(facesWith(u"Optima", u""), Faces());
}

TEST_F(FontCatalog, OfTwoFontsWithOneAttributeTheLaterInTheListStays) {
    const auto catalog = catalogOf({{u"b-Second", u"Optima", u"Optima Bold"},
                                    {u"A-First", u"Optima", u"Optima Bold"},
                                    {u"C-Third", u"Optima", u"OPTIMA  Bold "}});
    EXPECT_EQ(catalog->fontInfoLookup()->at(u"Optima"), (Faces{{u"Bold", u"C-Third"}}));
}

TEST_F(FontCatalog, AFontWithoutFamilyNameIsSkipped) {
    EXPECT_TRUE(catalogOf({{u"PS", u"", u"Something"}})->fontInfoLookup()->empty());
}

TEST_F(FontCatalog, AFontThatCannotBeOpenedIsSkippedWithoutAWord) {
    fonts->offered = {u"NoSuchFont"};
    ::testing::internal::CaptureStderr();
    const auto catalog = catalogOf({{u"PS", u"Optima", u"Optima"}});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(catalog->fontInfoLookup()->size(), 1u);
}

TEST_F(FontCatalog, FamiliesAreToldApartByCase) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"Optima"}, {u"B", u"OPTIMA", u"OPTIMA"}});
    EXPECT_EQ(catalog->fontInfoLookup()->size(), 2u);
}

TEST_F(FontCatalog, ARaisingFontIsLoggedAndTheOthersAreEntered) {
    fonts->raising = {u"Broken"};
    ::testing::internal::CaptureStderr();
    const auto catalog = catalogOf(
        {{u"A", u"Optima", u"Optima"}, {u"Broken", u"Optima", u"Optima Bold"}, {u"C", u"Optima", u"Optima Italic"}});
    const auto log = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("Exception: VelIFonts initialiseFonts. the font is broken\n"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(catalog->fontInfoLookup()->at(u"Optima"), (Faces{{u"Regular", u"A"}, {u"Italic", u"C"}}));
}

TEST_F(FontCatalog, ASecondFillingOfTheCatalogKeepsWhatItHolds) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"Optima"}});
    fonts->offered = {};
    catalog->initialiseFonts();
    EXPECT_EQ(catalog->fontInfoLookup()->size(), 1u);
    EXPECT_TRUE(catalog->init()->fontInfoLookup()->empty());
}

TEST_F(FontCatalog, TheSharedOneIsMadeOnceByConcurrentFirstCalls) {
    std::vector<std::shared_ptr<VelIFonts>> answers(8);
    std::vector<std::thread> threads;
    for (auto& answer : answers)
        threads.emplace_back([&answer] { answer = VelIFonts::sharedVelIFonts(); });
    for (auto& thread : threads)
        thread.join();
    ASSERT_TRUE(answers.front());
    for (const auto& answer : answers)
        EXPECT_EQ(answer, answers.front());
    EXPECT_LE(fonts->listings, 1); // none where another test was first
}

// The menu of families

TEST_F(FontCatalog, FamiliesAreSortedAndTheirTagsAreTheirPlaces) {
    const auto menu =
        catalogOf({{u"1", u"cherry", u"cherry"}, {u"2", u"apple", u"apple"}, {u"3", u"Banana", u"Banana"}})
            ->fontMenu(true);
    EXPECT_EQ(menu->title(), u"");
    EXPECT_EQ(titlesOf(*menu), (Names{u"apple", u"Banana", u"cherry"}));
    EXPECT_EQ(tagsOf(*menu), (Tags{0, 1, 2}));
    for (const auto& item : menu->itemArray()) {
        EXPECT_EQ(item->action(), u"");
        EXPECT_EQ(item->target(), nullptr);
        EXPECT_EQ(item->keyEquivalent(), u"");
        EXPECT_TRUE(isNil(item->representedObject()));
    }
}

TEST_F(FontCatalog, AFamilyIsDrawnInItsRegularFaceAtThirteenPoints) {
    const auto menu = catalogOf({{u"A-Bold", u"Optima", u"Optima Bold"},
                                 {u"Z-Regular", u"Optima", u"Optima"},
                                 {u"B-Italic", u"Optima", u"Optima Italic"}})
                          ->fontMenu(true);
    const auto title = menu->itemAtIndex(0)->attributedTitle();
    ASSERT_TRUE(title);
    EXPECT_EQ(title->string(), u"Optima");
    EXPECT_EQ(title->attributes().size(), 1u);
    EXPECT_EQ(title->font()->fontName(), u"Z-Regular");
    EXPECT_EQ(title->font()->pointSize(), 13);
}

TEST_F(FontCatalog, OnlyTheExactAttributeRegularStandsForAFamily) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"Optima regular"}, {u"B", u"Optima", u"Optima Bold"}});
    // No face is "Regular", so any one does.
    EXPECT_NE(fontOf(*catalog->fontMenu(true)->itemAtIndex(0)), u"");
}

TEST_F(FontCatalog, WhereNoFaceIsRegularAPlainOneStandsForTheFamily) {
    const auto catalog = catalogOf(
        {{u"A", u"Bodoni", u"Bodoni Bold"}, {u"B", u"Bodoni", u"Bodoni Roman"}, {u"C", u"Bodoni", u"Bodoni Italic"}});
    EXPECT_EQ(fontOf(*catalog->fontMenu(true)->itemAtIndex(0)), u"B");
}

TEST_F(FontCatalog, AFamilyWithoutFacesIsListedWithAPlainTitle) {
    const auto menu = catalogOf({{u"A", u"Optima", u"O"}, {u"B", u"Arial", u"Arial"}})->fontMenu(true);
    EXPECT_EQ(titlesOf(*menu), (Names{u"Arial", u"Optima"}));
    EXPECT_EQ(menu->itemAtIndex(1)->attributedTitle(), nullptr);
    EXPECT_EQ(menu->itemAtIndex(1)->tag(), 1);
}

TEST_F(FontCatalog, WithoutFontsFamiliesHavePlainTitles) {
    const auto menu = catalogOf({{u"A", u"Optima", u"Optima"}})->fontMenu(false);
    EXPECT_EQ(titlesOf(*menu), Names{u"Optima"});
    EXPECT_EQ(menu->itemAtIndex(0)->attributedTitle(), nullptr);
}

TEST_F(FontCatalog, EveryMenuIsANewOne) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"Optima"}});
    EXPECT_NE(catalog->fontMenu(true), catalog->fontMenu(true));
    EXPECT_NE(catalog->fontAttributeMenuForFontUseFont(u"Optima", true),
              catalog->fontAttributeMenuForFontUseFont(u"Optima", true));
}

TEST_F(FontCatalog, AFontThatDisappearedRaisesWhenAMenuIsMade) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"Optima"}});
    fonts->known.clear();
    EXPECT_THROW(catalog->fontMenu(true), NSInvalidArgumentException);
    EXPECT_THROW(catalog->fontAttributeMenuForFontUseFont(u"Optima", true), NSInvalidArgumentException);
    EXPECT_THROW(catalog->attributedStringInFontForFontFamily(u"Optima"), NSInvalidArgumentException);
}

// The menu of a family's attributes

std::vector<MadeUpFonts::Row> optima() {
    return {{u"O-Regular", u"Optima", u"Optima"},
            {u"O-Italic", u"Optima", u"Optima Italic"},
            {u"O-Bold", u"Optima", u"Optima Bold"}};
}

TEST_F(FontCatalog, RegularHeadsTheAttributesAndTagsAreTheSortedPositions) {
    const auto menu = catalogOf(optima())->fontAttributeMenuForFontUseFont(u"Optima", true);
    EXPECT_EQ(menu->title(), u"");
    EXPECT_EQ(titlesOf(*menu), (Names{u"Regular", u"Bold", u"Italic"}));
    EXPECT_EQ(tagsOf(*menu), (Tags{2, 0, 1}));
}

TEST_F(FontCatalog, AttributesAreDrawnEachInItsFaceAtThirteenPoints) {
    const auto menu = catalogOf(optima())->fontAttributeMenuForFontUseFont(u"Optima", true);
    EXPECT_EQ(fontOf(*menu->itemAtIndex(0)), u"O-Regular");
    EXPECT_EQ(fontOf(*menu->itemAtIndex(1)), u"O-Bold");
    EXPECT_EQ(fontOf(*menu->itemAtIndex(2)), u"O-Italic");
    EXPECT_EQ(menu->itemAtIndex(2)->attributedTitle()->font()->pointSize(), 13);
}

TEST_F(FontCatalog, OfSeveralRegularsTheLaterStandsAboveTheEarlier) {
    const auto menu =
        catalogOf(
            {{u"A", u"Optima", u"Optima"}, {u"B", u"Optima", u"Optima REGULAR"}, {u"C", u"Optima", u"Optima Zebra"}})
            ->fontAttributeMenuForFontUseFont(u"Optima", true);
    ASSERT_EQ(menu->numberOfItems(), 3);
    EXPECT_EQ(tagsOf(*menu), (Tags{1, 0, 2}));
    EXPECT_EQ(menu->itemAtIndex(2)->title(), u"Zebra");
}

TEST_F(FontCatalog, WithoutFontsEveryAttributeReadsAsTheFamilyAskedFor) {
    const auto catalog = catalogOf(optima());
    const auto menu = catalog->fontAttributeMenuForFontUseFont(u"Optima", false);
    EXPECT_EQ(titlesOf(*menu), (Names{u"Optima", u"Optima", u"Optima"}));
    EXPECT_EQ(tagsOf(*menu), (Tags{2, 0, 1}));
    EXPECT_EQ(menu->itemAtIndex(0)->attributedTitle(), nullptr);
    EXPECT_EQ(titlesOf(*catalog->fontAttributeMenuForFontUseFont(u"tim", false)), (Names{u"tim", u"tim", u"tim"}));
}

TEST_F(FontCatalog, TheEmptyAttributeIsAnItemLikeAnyOther) {
    const auto menu = catalogOf({{u"A", u"Optima", u"Optima  "}, {u"B", u"Optima", u"Optima Bold"}})
                          ->fontAttributeMenuForFontUseFont(u"Optima", true);
    EXPECT_EQ(titlesOf(*menu), (Names{u"", u"Bold"}));
}

TEST_F(FontCatalog, APieceOfAFamilysNameGivesThatFamilysAttributes) {
    const auto catalog = catalogOf({{u"A", u"Helvetica Neue", u"Helvetica Neue Bold"}});
    EXPECT_EQ(titlesOf(*catalog->fontAttributeMenuForFontUseFont(u"Neue", true)), Names{u"Bold"});
}

TEST_F(FontCatalog, ThePieceOfANameIsFoundCaseSensitively) {
    const auto catalog = catalogOf({{u"A", u"Helvetica Neue", u"Helvetica Neue Bold"}});
    EXPECT_EQ(catalog->fontAttributeMenuForFontUseFont(u"neue", true)->numberOfItems(), 0);
    EXPECT_EQ(catalog->fontAttributeMenuForFontUseFont(u"Futura", true)->numberOfItems(), 0);
}

TEST_F(FontCatalog, TheEmptyNameIsContainedInNothing) {
    EXPECT_EQ(catalogOf(optima())->fontAttributeMenuForFontUseFont(u"", true)->numberOfItems(), 0);
}

TEST_F(FontCatalog, AFamilyOfThatNameComesBeforeOneThatContainsIt) {
    const auto catalog = catalogOf({{u"A", u"A Neue", u"A Neue Bold"}, {u"B", u"Neue", u"Neue Light"}});
    EXPECT_EQ(titlesOf(*catalog->fontAttributeMenuForFontUseFont(u"Neue", true)), Names{u"Light"});
}

TEST_F(FontCatalog, AFamilyWithoutFacesHasAnEmptyMenuAndNotAnothersOne) {
    const auto catalog = catalogOf({{u"A", u"Neue", u"N"}, {u"B", u"Neue Helvetica", u"Neue Helvetica"}});
    EXPECT_EQ(catalog->fontAttributeMenuForFontUseFont(u"Neue", true)->numberOfItems(), 0);
}

TEST_F(FontCatalog, EveryOtherLookUpTakesWholeNamesOnly) {
    const auto catalog = catalogOf({{u"HN-Bold", u"Helvetica Neue", u"Helvetica Neue Bold"}});
    EXPECT_EQ(catalog->attributedStringInFontForFontFamily(u"Neue"), nullptr);
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"Neue", u"Bold"), std::nullopt);
    EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(u"HN-Bold", u"Neue"), std::nullopt);
}

// Texts in a family's font

TEST_F(FontCatalog, OneNameServesForTheFamilysNameAndForAnyText) {
    const auto catalog = catalogOf(optima());
    const auto name = catalog->attributedStringInFontForFontFamily(u"Optima");
    const auto text = catalog->attributedStringInFontForFontFamily(u"Any text", u"Optima");
    ASSERT_TRUE(name && text);
    EXPECT_EQ(name->string(), u"Optima");
    EXPECT_EQ(text->string(), u"Any text");
    for (const auto& drawn : {name, text}) {
        EXPECT_EQ(drawn->font()->fontName(), u"O-Regular");
        EXPECT_EQ(drawn->font()->pointSize(), 13);
        EXPECT_EQ(drawn->attributes().size(), 1u);
    }
}

TEST_F(FontCatalog, AnUnknownFamilyAndOneWithoutFacesAreDrawnInNoFont) {
    const auto catalog = catalogOf({{u"A", u"Optima", u"O"}});
    EXPECT_EQ(catalog->attributedStringInFontForFontFamily(u"Optima"), nullptr);
    EXPECT_EQ(catalog->attributedStringInFontForFontFamily(u"optima"), nullptr);
    EXPECT_EQ(catalog->attributedStringInFontForFontFamily(u"x", u"Futura"), nullptr);
}

// Names and back

TEST_F(FontCatalog, AFullFontNameIsFoundByFamilyAndAttribute) {
    const auto catalog = catalogOf(optima());
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"Optima", u"Bold"), u"O-Bold");
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"optima", u"Bold"), std::nullopt);
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"Optima", u"bold"), std::nullopt);
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(std::nullopt, u"Bold"), std::nullopt);
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"Optima", std::nullopt), std::nullopt);
}

TEST_F(FontCatalog, AFullFontNameInAnotherCaseHasNoAttribute) {
    const auto catalog = catalogOf(optima());
    EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(u"O-Bold", u"Optima"), u"Bold");
    EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(u"o-bold", u"Optima"), std::nullopt);
    EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(u"O-Bold", u"Futura"), std::nullopt);
}

TEST_F(FontCatalog, EveryNameItHoldsLeadsToItsAttributeAndBack) {
    const auto catalog = catalogOf(optima());
    for (const auto& [family, faces] : *catalog->fontInfoLookup())
        for (const auto& [attribute, name] : faces) {
            EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(name, family), attribute);
            EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(family, attribute), name);
        }
}

TEST_F(FontCatalog, WithoutATableItKnowsNothing) {
    const auto catalog = catalogOf(optima());
    catalog->setFontInfoLookup(nullptr);
    EXPECT_EQ(catalog->fontMenu(true)->numberOfItems(), 0);
    EXPECT_EQ(catalog->fontAttributeMenuForFontUseFont(u"Optima", true)->numberOfItems(), 0);
    EXPECT_EQ(catalog->fullFontNameForFamilyAttibute(u"Optima", u"Bold"), std::nullopt);
    EXPECT_EQ(catalog->attributeNameForFullFontNameFamilyName(u"O-Bold", u"Optima"), std::nullopt);
    EXPECT_EQ(catalog->attributedStringInFontForFontFamily(u"Optima"), nullptr);
    catalog->initialiseFonts();
    EXPECT_EQ(catalog->fontInfoLookup(), nullptr);
}

} // namespace
