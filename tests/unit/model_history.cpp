// SPDX-License-Identifier: MIT
#include "model_title.h"

#include <model/History.h>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using host::TitleToken;
using model::Configuration;

/// A model with three configurations, "A", "B" and the combined "C" of both, whose history begins there.
class Undoing : public testing::Test {
protected:
    Undoing() {
        for (const auto* name : {u"A", u"B"})
            model.createConfiguration(false)->setName(name);
        const auto combined = model.createConfiguration(true);
        combined->setName(u"C");
        combined->addConfiguration(at(0));
        combined->addConfiguration(at(1));
        model.setBeforeChange([this](const auto& changing) { history.willChange(changing); });
        model.setOnChange([this](const auto& changed) { history.changed(changed); });
        history.clear();
    }
    std::shared_ptr<host::ImprinterConfiguration> at(std::size_t row) { return model.configurations()->at(row); }
    std::u16string names() {
        std::u16string all;
        for (const auto& configuration : *model.configurations())
            all += configuration->name();
        return all;
    }
    /// Ends a step long after the last one.
    void pause() { history.endStep(now += 1min); }
    /// Ends a step right after the last one.
    void goOn() { history.endStep(now += 100ms); }
    static void setText(host::ImprinterConfiguration& configuration, const std::u16string& text) {
        auto title = *configuration.titleTokens();
        title.resize(1);
        if (!text.empty())
            title.emplace_back(text);
        configuration.setTitleTokens(std::make_shared<const std::vector<TitleToken>>(std::move(title)));
    }
    static std::u16string text(const host::ImprinterConfiguration& configuration) {
        const auto title = configuration.titleTokens();
        return title->size() > 1 ? std::get<std::u16string>((*title)[1]) : u"";
    }

    model::ImprinterModel model;
    model::History history{model, std::size_t{1} << 18};
    model::History::Clock::time_point now = model::History::Clock::now();
};

TEST_F(Undoing, HasNothingToDoBeforeAnythingWasChanged) {
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.undo(), std::nullopt);
    EXPECT_EQ(history.redo(), std::nullopt);
    EXPECT_EQ(names(), u"ABC");
}

TEST_F(Undoing, BringsADeletedConfigurationBackToItsPlaceAndIntoThoseThatHadIt) {
    const auto gone = at(0);
    model.deleteConfigurationAtIndex(0);
    pause();
    EXPECT_EQ(at(1)->configurations()->size(), 1U);
    EXPECT_EQ(history.undo(), 0U);
    EXPECT_EQ(at(0), gone) << "the very object";
    EXPECT_EQ(names(), u"ABC");
    EXPECT_EQ(*at(2)->configurations(), (std::vector<std::shared_ptr<host::ImprinterConfiguration>>{at(0), at(1)}));
    // What comes back is told of and undone like before.
    at(0)->setRotation(30);
    EXPECT_TRUE(history.canUndo());
    history.undo();
    EXPECT_EQ(at(0)->rotation(), 0);
}

TEST_F(Undoing, DoesADeletionAgain) {
    model.deleteConfigurationAtIndex(0);
    history.undo();
    EXPECT_TRUE(history.canRedo());
    EXPECT_EQ(history.redo(), 0U) << "the one that comes into its place is shown";
    EXPECT_EQ(names(), u"BC");
    EXPECT_EQ(at(1)->configurations()->size(), 1U);
    EXPECT_FALSE(history.canRedo());
    history.undo();
    EXPECT_EQ(names(), u"ABC");
}

TEST_F(Undoing, TakesANewConfigurationAwayAndBringsItBackAsItWas) {
    const auto made = model.createConfiguration(false);
    made->setName(u"D");
    pause();
    made->setRotation(90);
    pause();
    EXPECT_EQ(history.undo(), 3U);
    EXPECT_EQ(made->rotation(), 0);
    EXPECT_EQ(history.undo(), 2U) << "the last one that is left";
    EXPECT_EQ(names(), u"ABC");
    history.redo();
    EXPECT_EQ(at(3), made);
    EXPECT_EQ(names(), u"ABCD");
    history.redo();
    EXPECT_EQ(made->rotation(), 90);
}

TEST_F(Undoing, LeavesNothingWhereTheFirstOneWasMade) {
    model.setConfigurations({});
    history.clear();
    model.createConfiguration(false);
    EXPECT_EQ(history.undo(), std::nullopt);
    EXPECT_TRUE(model.configurations()->empty());
}

TEST_F(Undoing, PutsTheFormerOrderBack) {
    model.moveConfigurationAtIndexTo(2, 0);
    pause();
    EXPECT_EQ(names(), u"CAB");
    EXPECT_EQ(history.undo(), std::nullopt) << "whatever is shown stays so";
    EXPECT_EQ(names(), u"ABC");
    history.redo();
    EXPECT_EQ(names(), u"CAB");
}

TEST_F(Undoing, ChangesEveryKindOfValueBack) {
    const auto configuration = at(0);
    const std::vector<std::function<void()>> changes{
        [&] { configuration->setName(u"X"); },
        [&] { configuration->setDuplicateRecord(2); },
        [&] { setText(*configuration, u"text"); },
        [&] { configuration->setPosition(8); },
        [&] { configuration->setOffset({1, 2}); },
        [&] { configuration->setRotation(45); },
        [&] { configuration->setOccurance(4); },
        [&] { configuration->setCustomOccurance(u"1,2"); },
        [&] { configuration->setBorderEnabled(true); },
        [&] { configuration->setBorderStyle(3); },
        [&] { configuration->setBorderThickness(4); },
        [&] { configuration->setBorderColour(host::NSColor::blackColor()); },
        [&] { configuration->setFillEnabled(true); },
        [&] { configuration->setFillColour(host::NSColor::blackColor()); },
        [&] { configuration->setFillOpacity(0.5); },
    };
    const auto before = std::static_pointer_cast<Configuration>(configuration)->snapshot();
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i]();
        pause();
        EXPECT_NE(before->differencesFrom(static_cast<const Configuration&>(*configuration)), 0U) << i;
        EXPECT_EQ(history.undo(), 0U) << i;
        EXPECT_EQ(before->differencesFrom(static_cast<const Configuration&>(*configuration)), 0U) << i;
    }
    at(2)->deleteConfiguration(at(0));
    pause();
    EXPECT_EQ(history.undo(), 2U);
    EXPECT_EQ(at(2)->configurations()->size(), 2U);
}

TEST_F(Undoing, ChangesAFontRunBack) {
    const auto run = std::get<std::shared_ptr<host::ImprinterFont>>(at(0)->titleTokens()->front());
    run->setFontSize(20);
    pause();
    run->setColour(host::NSColor::blackColor());
    pause();
    const auto size = [&] {
        return std::get<std::shared_ptr<host::ImprinterFont>>(at(0)->titleTokens()->front())->fontSize();
    };
    history.undo();
    EXPECT_EQ(size(), 20);
    history.undo();
    EXPECT_EQ(size(), 12);
    history.redo();
    history.redo();
    EXPECT_EQ(size(), 20);
    EXPECT_FALSE(history.canRedo());
}

TEST_F(Undoing, TakesTypingAsOneStepAndAPauseAsTheEndOfIt) {
    for (const auto* typed : {u"D", u"DR", u"DRA"}) {
        setText(*at(0), typed);
        goOn();
    }
    now += 1min;
    setText(*at(0), u"DRAFT");
    goOn();
    history.undo();
    EXPECT_EQ(text(*at(0)), u"DRA");
    history.undo();
    EXPECT_EQ(text(*at(0)), u"");
    EXPECT_FALSE(history.canUndo());
}

TEST_F(Undoing, KeepsChangesOfOtherValuesAndConfigurationsApart) {
    at(0)->setRotation(10);
    goOn();
    at(0)->setPosition(4);
    goOn();
    at(1)->setPosition(4);
    goOn();
    EXPECT_EQ(history.undo(), 1U);
    EXPECT_EQ(history.undo(), 0U);
    EXPECT_EQ(at(0)->rotation(), 10);
    history.undo();
    EXPECT_EQ(at(0)->rotation(), 0);
}

TEST_F(Undoing, HasNoStepForWhatIsAsItWas) {
    at(0)->setRotation(10);
    at(0)->setRotation(0);
    pause();
    EXPECT_FALSE(history.canUndo());
    model.moveConfigurationAtIndexTo(0, 2);
    model.moveConfigurationAtIndexTo(1, 0);
    pause();
    EXPECT_FALSE(history.canUndo());
}

TEST_F(Undoing, ForgetsWhatATextHasUndoneItself) {
    setText(*at(0), u"DRA");
    pause();
    setText(*at(0), u"DRAFT");
    pause();
    at(0)->setRotation(10);
    pause();
    history.undo();
    setText(*at(0), u"");
    history.textUndoes();
    pause();
    EXPECT_FALSE(history.canUndo()) << "which would bring back what was just undone";
    // Part of the way.
    setText(*at(0), u"one");
    pause();
    setText(*at(0), u"one two");
    pause();
    setText(*at(0), u"on");
    history.textUndoes();
    pause();
    history.undo();
    EXPECT_EQ(text(*at(0)), u"one");
    history.undo();
    EXPECT_EQ(text(*at(0)), u"");
}

TEST_F(Undoing, HasNothingToDoAgainAfterANewChange) {
    at(0)->setRotation(10);
    pause();
    history.undo();
    at(1)->setRotation(10);
    EXPECT_FALSE(history.canRedo());
    pause();
    EXPECT_FALSE(history.canRedo());
    history.undo();
    EXPECT_EQ(at(1)->rotation(), 0);
}

TEST_F(Undoing, KeepsAHundredSteps) {
    for (int degrees = 1; degrees <= 150; ++degrees) {
        at(0)->setRotation(degrees);
        pause();
    }
    int steps = 0;
    for (; history.canUndo(); ++steps)
        history.undo();
    EXPECT_EQ(steps, 100);
    EXPECT_EQ(at(0)->rotation(), 50);
}

TEST_F(Undoing, KeepsFewerStepsWhereTheyAreLarge) {
    for (int i = 0; i < 20; ++i) {
        setText(*at(0), std::u16string(20'000, u'a' + static_cast<char16_t>(i)));
        pause();
    }
    int steps = 0;
    for (; history.canUndo(); ++steps)
        history.undo();
    EXPECT_GT(steps, 4);
    EXPECT_LE(steps, 8) << "of 40 KB each";
    // However large the last one is, it can be undone.
    setText(*at(0), std::u16string(200'000, u'x'));
    pause();
    setText(*at(0), u"");
    pause();
    history.undo();
    EXPECT_EQ(text(*at(0)).size(), 200'000U);
}

TEST_F(Undoing, EndsWhereItIsToldToForgetEverything) {
    at(0)->setRotation(10);
    pause();
    at(1)->setRotation(10);
    history.clear();
    EXPECT_FALSE(history.canUndo());
    history.undo();
    EXPECT_EQ(at(0)->rotation(), 10);
    EXPECT_EQ(at(1)->rotation(), 10);
}

} // namespace
