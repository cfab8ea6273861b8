// SPDX-License-Identifier: MIT
#include "model_title.h"
#include "store_support.h"

namespace {

std::string titleText(const host::ImprinterConfiguration& configuration) {
    std::string text;
    for (const auto& token : *configuration.titleTokens())
        if (const auto* part = std::get_if<std::u16string>(&token))
            text += std::string(part->begin(), part->end()) + "|";
    return text;
}

TEST(DefaultPath, LiesInTheDataFolderThatTheEnvironmentNames) {
    const support::Environment data("XDG_DATA_HOME", "/data/of/somebody");
    EXPECT_EQ(store::Store::defaultPath(), "/data/of/somebody/imprinter/configurations.json");
}

TEST(DefaultPath, LiesInTheHomeFolderWhereNoAbsoluteDataFolderIsNamed) {
    const support::Environment home("HOME", "/home/of/somebody");
    for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                              std::optional<std::string>("relative/folder")}) {
        const support::Environment data("XDG_DATA_HOME", value);
        EXPECT_EQ(store::Store::defaultPath(), "/home/of/somebody/.local/share/imprinter/configurations.json");
    }
}

using FirstStart = StoreTest;

TEST_F(FirstStart, AnswersTheSuppliedConfigurationsAndWritesNothing) {
    store::Store store(file);
    const auto result = store.load();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_TRUE(result.messages.empty());
    EXPECT_FALSE(result.readOnly);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(FirstStart, DoesNotSupplyAgainWhatWasDeletedAndSaved) {
    store::Store store(file);
    store.load();
    model::ImprinterModel empty;
    ASSERT_EQ(sentenceOf(store.save(empty)), "");
    EXPECT_TRUE(store::Store(file).load().configurations.empty());
}

TEST(SuppliedConfigurations, KeepTheirIdentifiersFromLaunchToLaunch) {
    const auto first = store::suppliedConfigurations();
    const auto second = store::suppliedConfigurations();
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_NE(first[i], second[i]);
        EXPECT_EQ(first[i]->uniqueID(), second[i]->uniqueID());
    }
}

TEST(SuppliedConfigurations, BeginTheirTitlesWithAFontRunOfAnInstalledFace) {
    for (const auto& configuration : store::suppliedConfigurations()) {
        const auto run = runAt(*configuration, 0);
        ASSERT_TRUE(run);
        ASSERT_TRUE(run->font());
        EXPECT_EQ(run->font()->fontName(), run->fullFontName());
    }
}

TEST(SuppliedConfigurations, StampReceivedInRedWithABorderAtTheTopRightOfTheFirstPage) {
    const auto received = store::suppliedConfigurations().at(0);
    EXPECT_EQ(titleText(*received), "RECEIVED |%date%|");
    EXPECT_EQ(received->position(), static_cast<host::NSInteger>(host::Anchor::topRight));
    EXPECT_EQ(received->occurance(), static_cast<host::NSInteger>(host::Occurrence::firstPageOnly));
    EXPECT_TRUE(received->borderEnabled());
    EXPECT_NE(received->borderStyle(), 0);
    ASSERT_TRUE(received->borderColour());
    EXPECT_GT(received->borderColour()->redComponent(), 2 * received->borderColour()->greenComponent());
    EXPECT_EQ(runAt(*received, 0)->colour(), received->borderColour());
}

TEST(SuppliedConfigurations, StampPageNumbersAtTheBottomOfEveryPage) {
    const auto pages = store::suppliedConfigurations().at(1);
    EXPECT_EQ(titleText(*pages), "Page |%pageNumber%| of |%recordPageCount%|");
    EXPECT_EQ(pages->position(), static_cast<host::NSInteger>(host::Anchor::bottomCenter));
    EXPECT_EQ(pages->occurance(), static_cast<host::NSInteger>(host::Occurrence::everyPage));
}

TEST(SuppliedConfigurations, StampConfidentialLargeOutlinedTranslucentAndAslant) {
    const auto confidential = store::suppliedConfigurations().at(2);
    const auto run = runAt(*confidential, 0);
    EXPECT_EQ(titleText(*confidential), "CONFIDENTIAL|");
    EXPECT_GE(run->fontSize(), 48);
    EXPECT_TRUE(run->outline());
    EXPECT_LT(run->colour()->alphaComponent(), 1);
    EXPECT_EQ(confidential->rotation(), 45);
    EXPECT_EQ(confidential->position(), static_cast<host::NSInteger>(host::Anchor::center));
    EXPECT_EQ(confidential->occurance(), static_cast<host::NSInteger>(host::Occurrence::everyPage));
}

} // namespace
