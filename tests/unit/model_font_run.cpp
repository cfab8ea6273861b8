// SPDX-License-Identifier: MIT
#include "model_title.h"

#include <model/Configuration.h>

#include <gtest/gtest.h>

namespace {

using model::FontRun;

std::shared_ptr<FontRun> makeRun() {
    return std::make_shared<FontRun>(std::weak_ptr<model::Configuration>(), 0);
}

TEST(FontRun, StartsInTheDefaultFaceAtTwelvePointsWithoutDecoration) {
    const auto run = makeRun();
    EXPECT_EQ(run->fullFontName(), model::defaultFontName());
    EXPECT_EQ(run->fontSize(), 12);
    EXPECT_EQ(run->strokeWidth(), 1);
    EXPECT_FALSE(run->colour());
    EXPECT_FALSE(run->outline());
    EXPECT_FALSE(run->underline());
    EXPECT_FALSE(run->strikethrough());
}

TEST(FontRun, IsNamedByItsNumberCountedFromOne) {
    const auto run = makeRun();
    EXPECT_EQ(run->name(), u"Font 1");
    run->setFontNumber(11);
    EXPECT_EQ(run->fontNumber(), 11u);
    EXPECT_EQ(run->name(), u"Font 12");
}

TEST(FontRun, AnswersTheFaceOfItsNameAtItsSize) {
    const auto run = makeRun();
    run->setFullFontName(u"DejaVuSans-Bold");
    run->setFontSize(31.5);
    const auto font = run->font();
    ASSERT_TRUE(font) << "fonts-dejavu-core is needed for the tests";
    EXPECT_EQ(font->fontName(), u"DejaVuSans-Bold");
    EXPECT_EQ(font->pointSize(), 31.5);
}

TEST(FontRun, LooksAFaceUpOnceUntilNameOrSizeChanges) {
    const auto run = makeRun();
    const auto first = run->font();
    EXPECT_EQ(run->font(), first);
    run->setFontSize(20);
    ASSERT_TRUE(run->font());
    EXPECT_EQ(run->font()->pointSize(), 20);
    run->setFullFontName(u"DejaVuSans-Bold");
    ASSERT_TRUE(run->font());
    EXPECT_EQ(run->font()->fontName(), u"DejaVuSans-Bold");
}

TEST(FontRun, AnswersTheDefaultFaceForOneTheMachineLacksButKeepsTheName) {
    const auto run = makeRun();
    run->setFullFontName(u"NoSuchFace-Anywhere");
    run->setFontSize(9);
    EXPECT_EQ(run->fullFontName(), u"NoSuchFace-Anywhere");
    ASSERT_TRUE(run->font());
    EXPECT_EQ(run->font()->fontName(), model::defaultFontName());
    EXPECT_EQ(run->font()->pointSize(), 9);
    run->setFullFontName(u"");
    ASSERT_TRUE(run->font());
    EXPECT_EQ(run->font()->fontName(), model::defaultFontName());
}

TEST(FontRun, SaysInItsNameThatItsFaceIsMissing) {
    const auto run = makeRun();
    EXPECT_FALSE(run->isMissing());
    run->setFontNumber(2);
    run->setFullFontName(u"NoSuchFace-Anywhere");
    EXPECT_TRUE(run->isMissing());
    EXPECT_EQ(run->name(), u"Font 3 (missing)");
    run->setFullFontName(u"DejaVuSans-Bold");
    EXPECT_FALSE(run->isMissing());
    EXPECT_EQ(run->name(), u"Font 3");
}

TEST(FontRun, AnswersTheAttributesItWasSent) {
    const auto run = makeRun();
    const auto colour = host::NSColor::colorWithSRGB(0.1, 0.2, 0.3, 0.4);
    run->setColour(colour);
    run->setFontSize(0);
    run->setStrokeWidth(-1);
    run->setOutline(true);
    run->setUnderline(true);
    run->setStrikethrough(true);
    EXPECT_EQ(run->colour(), colour);
    EXPECT_EQ(run->fontSize(), 0);
    EXPECT_EQ(run->strokeWidth(), -1);
    EXPECT_TRUE(run->outline());
    EXPECT_TRUE(run->underline());
    EXPECT_TRUE(run->strikethrough());
    run->setColour(nullptr);
    EXPECT_FALSE(run->colour());
}

TEST(FontRun, BelongsToTheTitleThatTookItLast) {
    const auto former = model::Configuration::make(false);
    const auto other = model::Configuration::make(false);
    const auto run = std::get<std::shared_ptr<host::ImprinterFont>>(former->titleTokens()->front());
    run->setFontSize(20);
    int told = 0;
    other->setNotices(std::make_shared<const model::Configuration::Notices>(
        model::Configuration::Notices{{}, [&](const auto&) { ++told; }}));
    other->setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(std::vector<host::TitleToken>{run}));
    const auto left = std::get<std::shared_ptr<host::ImprinterFont>>(former->titleTokens()->front());
    EXPECT_NE(left, run) << "a title of its own for each";
    EXPECT_EQ(left->fontSize(), 20);
    told = 0;
    run->setFontSize(55);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(left->fontSize(), 20);
    EXPECT_EQ(std::get<std::shared_ptr<host::ImprinterFont>>(other->titleTokens()->front()), run);
}

TEST(FontRun, OutlivesTheConfigurationThatMadeIt) {
    const auto run = model::Configuration::make(false)->createFontToken();
    run->setFontSize(40);
    EXPECT_EQ(run->fontSize(), 40);
}

} // namespace
