// SPDX-License-Identifier: MIT
#include "model_title.h"

#include <Foundation/NSException.h>
#include <model/ImprinterModel.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using host::ImprinterConfiguration;
using model::Configuration;
using model::ImprinterModel;
using Names = std::vector<std::u16string>;

/// A model with ordinary configurations of these names.
std::shared_ptr<ImprinterModel> modelOf(const Names& names) {
    auto model = std::make_shared<ImprinterModel>();
    for (const auto& name : names)
        model->createConfiguration(false)->setName(name);
    return model;
}

std::shared_ptr<ImprinterConfiguration> at(const ImprinterModel& model, std::size_t row) {
    return model.configurations()->at(row);
}

Names namesOf(const host::ConfigurationArray& list) {
    Names names;
    for (const auto& configuration : *list)
        names.push_back(configuration->name());
    return names;
}

Names namesOf(const ImprinterModel& model) {
    return namesOf(model.configurations());
}

TEST(ConfigurationList, IsEmptyAndNotNilAtFirst) {
    const ImprinterModel model;
    ASSERT_TRUE(model.configurations());
    EXPECT_TRUE(model.configurations()->empty());
    ASSERT_TRUE(model.nonCombinedConfigurations());
    EXPECT_TRUE(model.nonCombinedConfigurations()->empty());
}

TEST(ConfigurationList, IsTheSameArrayUntilItChanges) {
    const auto model = modelOf({u"A", u"B"});
    const auto before = model->configurations();
    at(*model, 0)->setName(u"renamed");
    EXPECT_EQ(model->configurations(), before);
    model->createConfiguration(false);
    EXPECT_NE(model->configurations(), before);
    EXPECT_EQ(before->size(), 2u) << "an array that was handed out stays as it was";
}

TEST(ConfigurationList, HasANewConfigurationAtItsEndAtOnce) {
    const auto model = modelOf({u"A"});
    const auto ordinary = model->createConfiguration(false);
    const auto combined = model->createConfiguration(true);
    EXPECT_FALSE(ordinary->combinedConfiguration());
    EXPECT_TRUE(combined->combinedConfiguration());
    EXPECT_EQ(at(*model, 1), ordinary);
    EXPECT_EQ(at(*model, 2), combined);
    EXPECT_EQ(model->indexOfConfiguration(combined), 2u);
}

TEST(ConfigurationList, FindsAConfigurationByItsIdentifier) {
    const auto model = modelOf({u"A", u"B"});
    EXPECT_EQ(model->configurationForID(at(*model, 1)->uniqueID()), at(*model, 1));
    EXPECT_FALSE(model->configurationForID(u"unknown"));
    EXPECT_FALSE(model->configurationForID(u""));
}

TEST(ConfigurationList, ForgetsTheIdentifierOfADeletedConfiguration) {
    const auto model = modelOf({u"A"});
    const auto identifier = at(*model, 0)->uniqueID();
    model->deleteConfigurationAtIndex(0);
    EXPECT_FALSE(model->configurationForID(identifier));
}

TEST(ConfigurationList, AnswersNotFoundForAConfigurationItDoesNotHave) {
    const auto model = modelOf({u"A"});
    EXPECT_EQ(model->indexOfConfiguration(Configuration::make(false)), platform::NSNotFound);
    EXPECT_EQ(model->indexOfConfiguration(nullptr), platform::NSNotFound);
}

TEST(ConfigurationList, KnowsEveryRowAfterEachChange) {
    const auto model = modelOf({u"A", u"B", u"C", u"D"});
    const auto rowsAreRight = [&model] {
        for (std::size_t row = 0; row < model->configurations()->size(); ++row)
            if (model->indexOfConfiguration(at(*model, row)) != row)
                return false;
        return true;
    };
    EXPECT_TRUE(rowsAreRight());
    model->moveConfigurationAtIndexTo(0, 3);
    EXPECT_TRUE(rowsAreRight());
    model->deleteConfigurationAtIndex(1);
    EXPECT_TRUE(rowsAreRight());
    model->duplicateConfigurationAtIndex(0);
    EXPECT_TRUE(rowsAreRight());
}

TEST(ConfigurationList, OffersTheOrdinaryConfigurationsInOrder) {
    const auto model = modelOf({u"A"});
    model->createConfiguration(true)->setName(u"both");
    model->createConfiguration(false)->setName(u"B");
    EXPECT_EQ(namesOf(model->nonCombinedConfigurations()), (Names{u"A", u"B"}));
}

TEST(ConfigurationList, IgnoresIndexesItDoesNotHave) {
    const auto model = modelOf({u"A", u"B"});
    const auto before = model->configurations();
    model->deleteConfigurationAtIndex(2);
    model->deleteConfigurationAtIndex(platform::NSNotFound);
    EXPECT_FALSE(model->duplicateConfigurationAtIndex(-1));
    EXPECT_FALSE(model->duplicateConfigurationAtIndex(2));
    model->moveConfigurationAtIndexTo(2, 0);
    model->moveConfigurationAtIndexTo(0, 3);
    model->moveConfigurationAtIndexTo(platform::NSNotFound, platform::NSNotFound);
    EXPECT_EQ(model->configurations(), before);
}

TEST(ConfigurationList, IsReplacedAsAWhole) {
    const auto model = modelOf({u"A"});
    const auto old = at(*model, 0);
    const auto loaded = Configuration::makeWithID(u"id-1", false);
    model->setConfigurations({loaded});
    EXPECT_EQ(at(*model, 0), loaded);
    EXPECT_EQ(model->configurationForID(u"id-1"), loaded);
    EXPECT_FALSE(model->configurationForID(old->uniqueID()));
    EXPECT_EQ(model->indexOfConfiguration(old), platform::NSNotFound);
}

TEST(ConfigurationList, RefusesNullAndRepeatedIdentifiersAsAWhole) {
    const auto model = modelOf({u"A"});
    EXPECT_THROW(model->setConfigurations({nullptr}), platform::NSInvalidArgumentException);
    EXPECT_THROW(
        model->setConfigurations({Configuration::makeWithID(u"id", false), Configuration::makeWithID(u"id", true)}),
        platform::NSInvalidArgumentException);
    EXPECT_EQ(namesOf(*model), (Names{u"A"}));
}

TEST(ConfigurationList, KnowsTheRowOfEachOfTwoThousand) {
    const auto model = std::make_shared<ImprinterModel>();
    std::vector<std::shared_ptr<Configuration>> many;
    many.reserve(2000);
    for (int i = 0; i < 2000; ++i)
        many.push_back(Configuration::make(false));
    model->setConfigurations(many);
    host::NSUInteger sum = 0;
    for (const auto& configuration : many)
        sum += model->indexOfConfiguration(configuration) + model->configurations()->size();
    EXPECT_EQ(sum, 2000u * 1999u / 2 + 2000u * 2000u);
}

TEST(ConfigurationList, StaysInStepWithAPlainListThroughAnyCommands) {
    std::mt19937 random{20240301};
    const auto below = [&random](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    ImprinterModel model;
    std::vector<std::shared_ptr<ImprinterConfiguration>> plain;
    for (int step = 0; step < 2000; ++step) {
        // Now and then an index or a row that is not there.
        const auto index = below(plain.size() + 2);
        const auto row = below(plain.size() + 3);
        switch (below(plain.size() > 20 ? 6 : 4)) {
        case 0:
            plain.push_back(model.createConfiguration(step % 3 == 0));
            break;
        case 1:
            if (const auto copy = model.duplicateConfigurationAtIndex(static_cast<host::NSInteger>(index)))
                plain.insert(plain.begin() + static_cast<std::ptrdiff_t>(index) + 1, copy);
            break;
        case 2:
            model.moveConfigurationAtIndexTo(index, row);
            if (index < plain.size() && row <= plain.size()) {
                const auto moved = plain[index];
                plain.insert(plain.begin() + static_cast<std::ptrdiff_t>(row), moved);
                plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(index + (row <= index ? 1 : 0)));
            }
            break;
        case 3:
            if (index < plain.size() && row < plain.size())
                plain[index]->addConfiguration(plain[row]);
            break;
        default:
            model.deleteConfigurationAtIndex(index);
            if (index < plain.size())
                plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(index));
        }
        ASSERT_EQ(*model.configurations(), plain) << step;
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(model.indexOfConfiguration(plain[i]), i) << step;
            ASSERT_EQ(model.configurationForID(plain[i]->uniqueID()), plain[i]) << step;
            if (!plain[i]->combinedConfiguration())
                continue;
            for (const auto& member : *plain[i]->configurations())
                ASSERT_NE(model.indexOfConfiguration(member), platform::NSNotFound) << step;
        }
    }
}

TEST(MovingAConfiguration, PutsItAboveTheTargetRowCountedBeforeTheMove) {
    struct Case {
        host::NSUInteger index;
        host::NSUInteger row;
        Names expected;
    };
    for (const auto& [index, row, expected] : std::vector<Case>{
             {0, 0, {u"A", u"B", u"C", u"D"}},
             {0, 1, {u"A", u"B", u"C", u"D"}},
             {0, 2, {u"B", u"A", u"C", u"D"}},
             {0, 4, {u"B", u"C", u"D", u"A"}},
             {1, 3, {u"A", u"C", u"B", u"D"}},
             {2, 0, {u"C", u"A", u"B", u"D"}},
             {3, 0, {u"D", u"A", u"B", u"C"}},
             {3, 2, {u"A", u"B", u"D", u"C"}},
             {3, 3, {u"A", u"B", u"C", u"D"}},
             {3, 4, {u"A", u"B", u"C", u"D"}},
         }) {
        const auto model = modelOf({u"A", u"B", u"C", u"D"});
        model->moveConfigurationAtIndexTo(index, row);
        EXPECT_EQ(namesOf(*model), expected) << index << " to " << row;
    }
}

TEST(DeletingAConfiguration, TakesItOutOfTheListAndOutOfEveryCombinedOne) {
    const auto model = modelOf({u"A", u"B"});
    const auto a = at(*model, 0);
    const auto b = at(*model, 1);
    for (int i = 0; i < 2; ++i) {
        const auto combined = model->createConfiguration(true);
        combined->addConfiguration(a);
        combined->addConfiguration(b);
        combined->addConfiguration(a);
    }
    model->deleteConfigurationAtIndex(0);
    EXPECT_EQ(at(*model, 0), b);
    for (std::size_t row : {1u, 2u})
        EXPECT_EQ(namesOf(at(*model, row)->configurations()), (Names{u"B"}));
}

TEST(DeletingAConfiguration, LeavesTheMembersOfACombinedOne) {
    const auto model = modelOf({u"A"});
    model->createConfiguration(true)->addConfiguration(at(*model, 0));
    model->deleteConfigurationAtIndex(1);
    EXPECT_EQ(namesOf(*model), (Names{u"A"}));
}

TEST(DeletingAConfiguration, LeavesTheObjectItselfUsable) {
    const auto model = modelOf({u"A"});
    const auto gone = at(*model, 0);
    model->deleteConfigurationAtIndex(0);
    gone->setName(u"still here");
    EXPECT_EQ(gone->name(), u"still here");
    EXPECT_TRUE(runAt(*gone, 0));
}

TEST(DuplicatingAConfiguration, PutsADeepCopyRightAfterTheOriginal) {
    const auto model = modelOf({u"A", u"B"});
    at(*model, 0)->setRotation(45);
    const auto copy = model->duplicateConfigurationAtIndex(0);
    ASSERT_EQ(namesOf(*model), (Names{u"A", u"A copy", u"B"}));
    EXPECT_EQ(at(*model, 1), copy);
    EXPECT_EQ(copy->rotation(), 45);
    EXPECT_NE(copy->uniqueID(), at(*model, 0)->uniqueID());
    EXPECT_NE(runAt(*copy, 0), runAt(*at(*model, 0), 0));
    EXPECT_EQ(model->configurationForID(copy->uniqueID()), copy);
}

TEST(DuplicatingAConfiguration, CountsTheCopiesInTheirNames) {
    const auto model = modelOf({u"A"});
    model->duplicateConfigurationAtIndex(0);
    model->duplicateConfigurationAtIndex(0);
    EXPECT_EQ(namesOf(*model), (Names{u"A", u"A copy 2", u"A copy"}));
    model->duplicateConfigurationAtIndex(1);
    EXPECT_EQ(at(*model, 2)->name(), u"A copy 3") << "a copy of a copy is a copy of the same";
}

TEST(DuplicatingAConfiguration, TakesOnlyItsOwnSuffixForOne) {
    for (const auto& [name, expected] : std::vector<std::pair<std::u16string, std::u16string>>{
             {u"", u" copy"},
             {u" copy", u" copy copy"},
             {u"42", u"42 copy"},
             {u"Draft 2", u"Draft 2 copy"},
             {u"Photocopy", u"Photocopy copy"},
             {u"Draft copy2", u"Draft copy2 copy"},
             {u"Draft copy 10", u"Draft copy"},
         }) {
        const auto model = modelOf({name});
        EXPECT_EQ(model->duplicateConfigurationAtIndex(0)->name(), expected);
    }
}

TEST(DuplicatingAConfiguration, SharesTheMembersOfACombinedOne) {
    const auto model = modelOf({u"A"});
    const auto combined = model->createConfiguration(true);
    combined->addConfiguration(at(*model, 0));
    const auto copy = model->duplicateConfigurationAtIndex(1);
    EXPECT_EQ(*copy->configurations(), *combined->configurations());
    model->deleteConfigurationAtIndex(0);
    EXPECT_EQ(platform::count(copy->configurations()), 0u);
}

TEST(SavingConfigurations, IsLeftToTheSaver) {
    const auto model = modelOf({u"A"});
    model->saveConfigurations();
    std::vector<const ImprinterModel*> saved;
    model->setSaver([&saved](const ImprinterModel& asked) { saved.push_back(&asked); });
    model->saveConfigurations();
    EXPECT_EQ(saved, std::vector<const ImprinterModel*>{model.get()});
}

TEST(Stamping, IsLeftToTheStamperAndAnswersNothingWithoutOne) {
    const auto model = modelOf({u"A"});
    const auto url = host::NSURL::fileURLWithPath("/sample.jpg");
    EXPECT_FALSE(model->imprintFileAtURLWithIndex(url, at(*model, 0), 0));
    model->setStamper([&](const std::optional<host::NSURL>& asked, const auto& configuration, host::NSInteger index) {
        EXPECT_EQ(asked, url);
        EXPECT_EQ(configuration, at(*model, 0));
        EXPECT_EQ(index, 0);
        return std::optional(host::NSURL::fileURLWithPath("/stamped.png"));
    });
    EXPECT_EQ(model->imprintFileAtURLWithIndex(url, at(*model, 0), 0), host::NSURL::fileURLWithPath("/stamped.png"));
    model->setStamper([](const auto&, const auto&, auto) { return std::nullopt; });
    EXPECT_FALSE(model->imprintFileAtURLWithIndex(std::nullopt, nullptr, 0));
}

class ChangeNotices : public testing::Test {
protected:
    ChangeNotices() {
        model->setOnChange([this](const auto& configuration) { told.push_back(configuration); });
    }

    const std::shared_ptr<ImprinterModel> model = modelOf({u"A", u"B"});
    std::vector<std::shared_ptr<ImprinterConfiguration>> told;
};

TEST_F(ChangeNotices, NameTheConfigurationOfWhichAValueChanged) {
    at(*model, 1)->setRotation(90);
    runAt(*at(*model, 0), 0)->setFontSize(30);
    EXPECT_EQ(told, (std::vector{at(*model, 1), at(*model, 0)}));
}

TEST_F(ChangeNotices, AreNotSentForAValueThatStaysAsItWas) {
    const auto configuration = at(*model, 0);
    configuration->setRotation(0);
    configuration->setTitleTokens(titleOf({runAt(*configuration, 0)}));
    configuration->setFillColour(nullptr);
    runAt(*configuration, 0)->setUnderline(false);
    configuration->deleteConfiguration(at(*model, 1));
    model->moveConfigurationAtIndexTo(0, 1);
    EXPECT_TRUE(told.empty());
}

TEST_F(ChangeNotices, NameNoConfigurationWhenTheListChanges) {
    model->createConfiguration(false);
    model->duplicateConfigurationAtIndex(0);
    model->moveConfigurationAtIndexTo(0, 3);
    model->deleteConfigurationAtIndex(0);
    model->setConfigurations({});
    EXPECT_EQ(told, std::vector<std::shared_ptr<ImprinterConfiguration>>(5));
}

TEST_F(ChangeNotices, AreSentWhenAMemberIsDeleted) {
    const auto combined = model->createConfiguration(true);
    combined->addConfiguration(at(*model, 0));
    told.clear();
    model->deleteConfigurationAtIndex(0);
    EXPECT_EQ(told, (std::vector<std::shared_ptr<ImprinterConfiguration>>{combined, nullptr}));
}

TEST_F(ChangeNotices, AreNotSentByADeletedConfigurationOrForADeadModel) {
    const auto gone = at(*model, 0);
    const auto replaced = at(*model, 1);
    model->deleteConfigurationAtIndex(0);
    model->setConfigurations({});
    told.clear();
    gone->setName(u"x");
    replaced->setName(u"y");
    EXPECT_TRUE(told.empty());

    auto other = modelOf({u"C"});
    other->setOnChange([this](const auto& configuration) { told.push_back(configuration); });
    const auto survivor = at(*other, 0);
    other.reset();
    survivor->setName(u"z");
    EXPECT_TRUE(told.empty());
}

TEST_F(ChangeNotices, MayBeTakenAwayByTheOneWhoIsTold) {
    int count = 0;
    model->setOnChange([&](const auto&) {
        ++count;
        model->setOnChange({});
    });
    at(*model, 0)->setName(u"x");
    at(*model, 0)->setName(u"y");
    model->createConfiguration(false);
    EXPECT_EQ(count, 1);
}

} // namespace
