// SPDX-License-Identifier: MIT
// What is brought in from a file, and what becomes of that which is there already.

#include <store/Exchange.h>

#include <gtest/gtest.h>

namespace {

using model::Configuration;
using store::Configurations;
using store::Present;
using Names = std::vector<std::u16string>;

std::shared_ptr<Configuration> make(std::u16string identifier, const std::u16string& name, bool combined = false) {
    auto made = Configuration::makeWithID(std::move(identifier), combined);
    made->setName(name);
    return made;
}

std::shared_ptr<Configuration> combinedOf(std::u16string identifier, const std::u16string& name,
                                          const Configurations& members) {
    auto made = make(std::move(identifier), name, true);
    for (const auto& member : members)
        made->addConfiguration(member);
    return made;
}

Names namesOf(const Configurations& list) {
    Names names;
    for (const auto& configuration : list)
        names.push_back(configuration->name());
    return names;
}

Names membersOf(const Configuration& combined) {
    Names names;
    for (const auto& member : *combined.configurations())
        names.push_back(member->name());
    return names;
}

TEST(BringingIn, NewConfigurationsGoToTheEnd) {
    Configurations list{make(u"1", u"One")};
    const auto result = store::importInto(list, {make(u"2", u"Two"), make(u"3", u"Three")}, Present::leave);
    EXPECT_EQ(namesOf(list), (Names{u"One", u"Two", u"Three"}));
    EXPECT_EQ(namesOf(result.imported), (Names{u"Two", u"Three"}));
    EXPECT_TRUE(result.left.empty());
}

TEST(BringingIn, IdentifiersAreTheSameWhateverTheirCase) {
    const auto one = make(u"AB", u"One");
    Configurations list{one};
    EXPECT_EQ(store::differingNames(list, {make(u"ab", u"Other")}), Names{u"Other"});
    store::importInto(list, {make(u"ab", u"Other")}, Present::replace);
    EXPECT_EQ(list, Configurations{one});
    EXPECT_EQ(one->name(), u"Other");
    EXPECT_EQ(one->uniqueID(), u"AB");
}

TEST(BringingIn, WhatIsLeftIsNamedAsTheFileCallsItAndIsTheMemberOfWhatComes) {
    const auto one = make(u"1", u"One");
    Configurations list{one};
    const auto other = make(u"1", u"Other");
    const auto result = store::importInto(list, {other, combinedOf(u"2", u"Both", {other})}, Present::leave);
    EXPECT_EQ(result.left, Names{u"Other"});
    EXPECT_EQ(namesOf(list), (Names{u"One", u"Both"}));
    EXPECT_EQ(membersOf(*list[1]), Names{u"One"});
    EXPECT_EQ(list[1]->configurations()->front(), one);
}

TEST(BringingIn, AReplacedOneStaysTheObjectThatOthersHave) {
    const auto one = make(u"1", u"One");
    const auto both = combinedOf(u"2", u"Both", {one});
    Configurations list{one, both};
    const auto other = make(u"1", u"Other");
    other->setRotation(30);
    store::importInto(list, {other, combinedOf(u"2", u"Twice", {other, other})}, Present::replace);
    EXPECT_EQ(list, (Configurations{one, both}));
    EXPECT_EQ(one->rotation(), 30);
    EXPECT_EQ(membersOf(*both), (Names{u"Other", u"Other"}));
    EXPECT_EQ(both->configurations()->front(), one);
}

TEST(BringingIn, WhatIsKeptBesideGetsANameAnIdentifierAndMembersOfItsOwn) {
    const auto one = make(u"1", u"One");
    const auto both = combinedOf(u"2", u"Both", {one});
    Configurations list{one, both};
    const auto other = make(u"1", u"One");
    store::importInto(list, {other, combinedOf(u"2", u"Both", {other})}, Present::keepBoth);
    EXPECT_EQ(namesOf(list), (Names{u"One", u"Both", u"One copy", u"Both copy"}));
    EXPECT_NE(list[2]->uniqueID(), u"1");
    EXPECT_EQ(list[3]->configurations()->front(), list[2]);
    EXPECT_EQ(both->configurations()->front(), one);
}

TEST(BringingIn, OneOfAnotherKindComesIntoThePlaceOfTheFormer) {
    const auto one = make(u"1", u"One");
    Configurations list{one, make(u"9", u"Nine")};
    const auto nine = make(u"9", u"Nine");
    const auto several = combinedOf(u"1", u"Several", {nine});
    store::importInto(list, {nine, several}, Present::replace);
    EXPECT_EQ(list.front(), several);
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(several->configurations()->front(), list[1]);
}

TEST(BringingIn, NothingChangesWhereACombinedOneWouldContainAnother) {
    const auto one = make(u"1", u"One");
    const auto both = combinedOf(u"2", u"Both", {one});
    Configurations list{one, both};
    const auto nine = make(u"9", u"Nine");
    auto result = store::importInto(list, {nine, combinedOf(u"1", u"Several", {nine})}, Present::replace);
    ASSERT_TRUE(result.nested);
    EXPECT_EQ(result.nested->outer, u"Both");
    EXPECT_EQ(result.nested->inner, u"Several");
    EXPECT_EQ(list, (Configurations{one, both}));
    const auto plain = make(u"2", u"Plain");
    result = store::importInto(list, {plain, combinedOf(u"3", u"Three", {plain})}, Present::leave);
    ASSERT_TRUE(result.nested);
    EXPECT_EQ(result.nested->outer, u"Three");
    EXPECT_EQ(result.nested->inner, u"Both");
    EXPECT_EQ(list, (Configurations{one, both}));
    EXPECT_EQ(membersOf(*both), Names{u"One"});
}

TEST(BringingIn, WhatSaysTheSameDoesNotDiffer) {
    const auto one = make(u"1", u"One");
    const auto same = make(u"1", u"One");
    EXPECT_TRUE(store::differingNames({one}, {same}).empty()) << "whichever objects the font runs are";
    const auto both = combinedOf(u"2", u"Both", {one});
    EXPECT_TRUE(store::differingNames({one, both}, {combinedOf(u"2", u"Both", {same})}).empty());
    EXPECT_EQ(store::differingNames({one, both}, {combinedOf(u"2", u"Both", {})}), Names{u"Both"});
    same->setRotation(1);
    EXPECT_EQ(store::differingNames({one}, {same}), Names{u"One"});
}

TEST(GivingAway, MembersGoBeforeWhatNeedsThemAndEachOnce) {
    const auto one = make(u"1", u"One");
    const auto both = combinedOf(u"2", u"Both", {one, one});
    EXPECT_EQ(namesOf(store::withMembers({both, one})), (Names{u"One", u"Both"}));
}

} // namespace
