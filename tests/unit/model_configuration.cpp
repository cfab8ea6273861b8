// SPDX-License-Identifier: MIT
#include "model_title.h"

#include <model/Configuration.h>
#include <model/ImprinterModel.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using host::NSColor;
using model::Configuration;

TEST(NewConfiguration, HasATitleOfOneFontRunOfItsOwn) {
    const auto first = Configuration::make(false);
    const auto second = Configuration::make(false);
    ASSERT_EQ(platform::count(first->titleTokens()), 1u);
    ASSERT_TRUE(runAt(*first, 0));
    EXPECT_EQ(runAt(*first, 0)->fontNumber(), 0u);
    EXPECT_NE(runAt(*first, 0), runAt(*second, 0));
}

TEST(NewConfiguration, StandsAtTheTopLeftOnEveryPageWithBorderAndFillOff) {
    const auto made = Configuration::make(false);
    EXPECT_EQ(made->name(), u"");
    EXPECT_EQ(made->duplicateRecord(), 0);
    EXPECT_EQ(made->position(), 0);
    EXPECT_EQ(made->offset(), host::NSPoint());
    EXPECT_EQ(made->rotation(), 0);
    EXPECT_EQ(made->occurance(), 0);
    EXPECT_EQ(made->borderStyle(), 1);
    EXPECT_FALSE(made->borderEnabled());
    EXPECT_EQ(made->borderThickness(), 1);
    EXPECT_FALSE(made->borderColour());
    EXPECT_FALSE(made->fillEnabled());
    EXPECT_FALSE(made->fillColour());
    EXPECT_EQ(made->fillOpacity(), 1);
}

TEST(NewConfiguration, HasNoCustomPageListUntilOneIsSet) {
    const auto made = Configuration::make(false);
    EXPECT_EQ(made->customOccurance(), std::nullopt);
    made->setCustomOccurance(u"");
    EXPECT_EQ(made->customOccurance(), u"");
}

TEST(NewConfiguration, HasAnIdentifierNoOtherHas) {
    const auto identifier = Configuration::make(false)->uniqueID();
    EXPECT_EQ(identifier.size(), 36u);
    EXPECT_EQ(identifier[14], u'4') << "a random UUID is of version 4";
    EXPECT_EQ(identifier.find_first_not_of(u"0123456789ABCDEF-"), std::u16string::npos);
    EXPECT_NE(identifier, Configuration::make(false)->uniqueID());
}

TEST(NewCombinedConfiguration, HasNoMembersAndAnEmptyTitle) {
    const auto combined = Configuration::make(true);
    EXPECT_TRUE(combined->combinedConfiguration());
    ASSERT_TRUE(combined->configurations());
    EXPECT_EQ(platform::count(combined->configurations()), 0u);
    ASSERT_TRUE(combined->titleTokens());
    EXPECT_EQ(platform::count(combined->titleTokens()), 0u);
}

TEST(ConfigurationValues, AreAnsweredAsTheyWereSent) {
    const auto made = Configuration::make(false);
    const auto red = NSColor::colorWithSRGB(1, 0, 0, 0.5);
    const auto grey = NSColor::colorWithWhite(0.25, 0.75);
    made->setName(u"Eingang");
    made->setDuplicateRecord(2);
    made->setPosition(8);
    made->setOffset({-3.5, 7.25});
    made->setRotation(-45);
    made->setOccurance(4);
    made->setCustomOccurance(u"1,3");
    made->setBorderEnabled(true);
    made->setBorderStyle(2);
    made->setBorderThickness(0.1);
    made->setBorderColour(red);
    made->setFillEnabled(true);
    made->setFillColour(grey);
    made->setFillOpacity(0.3);
    EXPECT_EQ(made->name(), u"Eingang");
    EXPECT_EQ(made->duplicateRecord(), 2);
    EXPECT_EQ(made->position(), 8);
    EXPECT_EQ(made->offset(), (host::NSPoint{-3.5, 7.25}));
    EXPECT_EQ(made->rotation(), -45);
    EXPECT_EQ(made->occurance(), 4);
    EXPECT_EQ(made->customOccurance(), u"1,3");
    EXPECT_TRUE(made->borderEnabled());
    EXPECT_EQ(made->borderStyle(), 2);
    EXPECT_EQ(made->borderThickness(), 0.1);
    EXPECT_EQ(made->borderColour(), red);
    EXPECT_TRUE(made->fillEnabled());
    EXPECT_EQ(made->fillColour(), grey);
    EXPECT_EQ(made->fillOpacity(), 0.3);
}

TEST(ConfigurationValues, AreKeptWhateverTheNumberMeans) {
    const auto made = Configuration::make(false);
    made->setPosition(-1);
    made->setOccurance(99);
    made->setDuplicateRecord(std::numeric_limits<host::NSInteger>::min());
    made->setFillOpacity(17);
    EXPECT_EQ(made->position(), -1);
    EXPECT_EQ(made->occurance(), 99);
    EXPECT_EQ(made->duplicateRecord(), std::numeric_limits<host::NSInteger>::min());
    EXPECT_EQ(made->fillOpacity(), 17);
}

TEST(ConfigurationValues, TellMinusZeroFromZero) {
    const auto made = Configuration::make(false);
    made->setRotation(-0.0);
    EXPECT_TRUE(std::signbit(made->rotation()));
}

TEST(ConfigurationValues, ColoursCanBeTakenAwayAgain) {
    const auto made = Configuration::make(false);
    made->setBorderColour(NSColor::blackColor());
    made->setFillColour(NSColor::blackColor());
    made->setBorderColour(nullptr);
    made->setFillColour(nullptr);
    EXPECT_FALSE(made->borderColour());
    EXPECT_FALSE(made->fillColour());
}

TEST(ConfigurationTitle, IsHandedOutAsTheVeryArrayThatWasSent) {
    const auto made = Configuration::make(false);
    const auto title = titleOf({runAt(*made, 0), u"Page %", u"%pageNumber%", std::make_shared<platform::NSObject>()});
    made->setTitleTokens(title);
    EXPECT_EQ(made->titleTokens(), title);
}

TEST(ConfigurationTitle, TellsNilFromEmpty) {
    const auto made = Configuration::make(false);
    made->setTitleTokens(nullptr);
    EXPECT_FALSE(made->titleTokens());
    made->setTitleTokens(titleOf({}));
    ASSERT_TRUE(made->titleTokens());
    EXPECT_TRUE(made->titleTokens()->empty());
}

TEST(ConfigurationTitle, DoesNotTakeInANewFontRunByItself) {
    const auto made = Configuration::make(false);
    const auto run = made->createFontToken();
    EXPECT_EQ(run->fontNumber(), 1u) << "one run stands in the title already";
    EXPECT_EQ(run->name(), u"Font 2");
    EXPECT_EQ(platform::count(made->titleTokens()), 1u);
    made->setTitleTokens(nullptr);
    EXPECT_EQ(made->createFontToken()->fontNumber(), 0u);
}

TEST(CombinedConfiguration, AppendsMembersInTheOrderTheyAreSentEvenTwice) {
    const auto combined = Configuration::make(true);
    const auto a = Configuration::make(false);
    const auto b = Configuration::make(false);
    combined->addConfiguration(b);
    combined->addConfiguration(a);
    combined->addConfiguration(b);
    EXPECT_EQ(*combined->configurations(), (std::vector<std::shared_ptr<host::ImprinterConfiguration>>{b, a, b}));
}

TEST(CombinedConfiguration, TakesNeitherNullNorItselfNorAnotherCombinedOne) {
    const auto combined = Configuration::make(true);
    combined->addConfiguration(nullptr);
    combined->addConfiguration(combined);
    combined->addConfiguration(Configuration::make(true));
    EXPECT_EQ(platform::count(combined->configurations()), 0u);
}

TEST(CombinedConfiguration, HasNoTraceOfARemovedMember) {
    const auto combined = Configuration::make(true);
    const auto a = Configuration::make(false);
    const auto b = Configuration::make(false);
    combined->addConfiguration(a);
    combined->addConfiguration(b);
    combined->addConfiguration(a);
    combined->deleteConfiguration(a);
    EXPECT_EQ(*combined->configurations(), (std::vector<std::shared_ptr<host::ImprinterConfiguration>>{b}));
    combined->deleteConfiguration(a);
    combined->deleteConfiguration(nullptr);
    EXPECT_EQ(platform::count(combined->configurations()), 1u);
}

TEST(CombinedConfiguration, LeavesAMemberListAlreadyHandedOutAsItWas) {
    const auto combined = Configuration::make(true);
    const auto before = combined->configurations();
    combined->addConfiguration(Configuration::make(false));
    EXPECT_EQ(before->size(), 0u);
    EXPECT_EQ(platform::count(combined->configurations()), 1u);
}

TEST(CombinedConfiguration, GetsAllMembersAtOnceAsOneChange) {
    model::ImprinterModel model;
    const auto combined = Configuration::make(true);
    model.setConfigurations({combined});
    int changes = 0;
    model.setOnChange([&](const auto&) { ++changes; });
    std::vector<std::shared_ptr<host::ImprinterConfiguration>> members;
    for (int i = 0; i < 100; ++i)
        members.push_back(Configuration::make(false));
    members.push_back(members.front());
    auto sent = members;
    sent.insert(sent.begin() + 1, {nullptr, Configuration::make(true)});
    combined->setMembers(sent);
    EXPECT_EQ(*combined->configurations(), members) << "as appending one by one would have it";
    EXPECT_EQ(changes, 1);
    combined->setMembers(members);
    EXPECT_EQ(changes, 1);
    combined->setMembers({});
    EXPECT_EQ(combined->configurations()->size(), 0u);
    const auto ordinary = Configuration::make(false);
    ordinary->setMembers(members);
    EXPECT_FALSE(ordinary->configurations());
}

TEST(CombinedConfiguration, HoldsInMemoryWhatThePaneSendsWhenItIsLeft) {
    const auto combined = Configuration::make(true);
    const auto title = titleOf({u"of another"});
    combined->setTitleTokens(title);
    combined->setRotation(30);
    combined->setOffset({1, 2});
    EXPECT_EQ(combined->titleTokens(), title);
    EXPECT_EQ(combined->rotation(), 30);
    EXPECT_EQ(combined->offset(), (host::NSPoint{1, 2}));
}

TEST(OrdinaryConfiguration, HasNilForMembersAndTakesNone) {
    const auto ordinary = Configuration::make(false);
    EXPECT_FALSE(ordinary->configurations());
    ordinary->addConfiguration(Configuration::make(false));
    ordinary->deleteConfiguration(ordinary);
    EXPECT_FALSE(ordinary->configurations());
}

TEST(ConfigurationCopy, HasFontRunsOfItsOwnWithTheSameAttributes) {
    const auto original = Configuration::make(false);
    const auto run = runAt(*original, 0);
    run->setFullFontName(u"DejaVuSerif-Bold");
    run->setFontSize(31.5);
    run->setColour(NSColor::colorWithSRGB(0, 1, 0, 0.5));
    run->setStrokeWidth(2.5);
    run->setOutline(true);
    run->setUnderline(true);
    run->setStrikethrough(true);
    const auto foreign = std::make_shared<platform::NSObject>();
    original->setTitleTokens(titleOf({run, u"text", run, foreign}));
    const auto copy = original->copy();
    const auto copied = runAt(*copy, 0);
    ASSERT_TRUE(copied);
    EXPECT_NE(copied, run);
    EXPECT_EQ(copied->className(), u"VelIFontType");
    EXPECT_EQ(copied->fullFontName(), u"DejaVuSerif-Bold");
    EXPECT_EQ(copied->fontSize(), 31.5);
    EXPECT_EQ(*copied->colour(), *run->colour());
    EXPECT_EQ(copied->strokeWidth(), 2.5);
    EXPECT_TRUE(copied->outline());
    EXPECT_TRUE(copied->underline());
    EXPECT_TRUE(copied->strikethrough());
    EXPECT_EQ(*copy->titleTokens(), (std::vector<host::TitleToken>{copied, u"text", copied, foreign}))
        << "a run that stood in the title twice is one run in the copy too";
    copied->setFontSize(5);
    EXPECT_EQ(run->fontSize(), 31.5);
}

TEST(ConfigurationCopy, HasEveryValueButTheIdentifier) {
    const auto original = Configuration::make(false);
    original->setName(u"A");
    original->setDuplicateRecord(1);
    original->setPosition(4);
    original->setOffset({1, 2});
    original->setRotation(3);
    original->setOccurance(4);
    original->setCustomOccurance(u"7");
    original->setBorderEnabled(true);
    original->setBorderStyle(0);
    original->setBorderThickness(4);
    original->setBorderColour(NSColor::whiteColor());
    original->setFillEnabled(true);
    original->setFillColour(NSColor::blackColor());
    original->setFillOpacity(0.5);
    const auto copy = original->copy();
    EXPECT_NE(copy->uniqueID(), original->uniqueID());
    EXPECT_EQ(copy->name(), u"A");
    EXPECT_EQ(copy->duplicateRecord(), 1);
    EXPECT_EQ(copy->position(), 4);
    EXPECT_EQ(copy->offset(), (host::NSPoint{1, 2}));
    EXPECT_EQ(copy->rotation(), 3);
    EXPECT_EQ(copy->occurance(), 4);
    EXPECT_EQ(copy->customOccurance(), u"7");
    EXPECT_TRUE(copy->borderEnabled());
    EXPECT_EQ(copy->borderStyle(), 0);
    EXPECT_EQ(copy->borderThickness(), 4);
    EXPECT_EQ(*copy->borderColour(), *NSColor::whiteColor());
    EXPECT_TRUE(copy->fillEnabled());
    EXPECT_EQ(*copy->fillColour(), *NSColor::blackColor());
    EXPECT_EQ(copy->fillOpacity(), 0.5);
}

TEST(ConfigurationCopy, KeepsANilTitleNil) {
    const auto original = Configuration::make(false);
    original->setTitleTokens(nullptr);
    EXPECT_FALSE(original->copy()->titleTokens());
}

TEST(ConfigurationCopy, OfACombinedOneSharesTheMembersButNotTheList) {
    const auto combined = Configuration::make(true);
    const auto member = Configuration::make(false);
    combined->addConfiguration(member);
    const auto copy = combined->copy();
    EXPECT_TRUE(copy->combinedConfiguration());
    EXPECT_EQ(*copy->configurations(), *combined->configurations());
    copy->deleteConfiguration(member);
    EXPECT_EQ(platform::count(combined->configurations()), 1u);
}

} // namespace
