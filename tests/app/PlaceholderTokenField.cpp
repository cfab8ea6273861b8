// SPDX-License-Identifier: MIT
#include "PlaceholderTokenField.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSMenu.h>
#include <engine/Layout.h>
#include <model/Configuration.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

class Completer final : public NSObject, public host::PlaceholderMenuDelegate {
public:
    void tokenFieldWillPopUpMenuWithPlaceholderMenu(const std::shared_ptr<NSTokenField>&,
                                                    const std::shared_ptr<NSMenu>& menu,
                                                    const std::shared_ptr<NSMenu>& placeholderMenu) override {
        asked.emplace_back(menu, placeholderMenu);
    }
    std::vector<std::pair<std::shared_ptr<NSMenu>, std::shared_ptr<NSMenu>>> asked;
};

class TitleField : public ::testing::Test {
protected:
    TitleField() { field->setMenuDelegate(completer); }
    std::u16string titleOf(const RepresentedObject& object) { return field->displayStringOf(object); }

    /// What every item of the menu, and of its submenus, stands for.
    static std::vector<std::u16string> offered(const NSMenu& menu) {
        std::vector<std::u16string> found;
        for (const auto& item : menu.itemArray()) {
            if (const auto* text = std::get_if<std::u16string>(&item->representedObject()))
                found.push_back(*text);
            if (item->submenu())
                for (const auto& inner : offered(*item->submenu()))
                    found.push_back(inner);
        }
        return found;
    }

    std::shared_ptr<app::PlaceholderTokenField> field = std::make_shared<app::PlaceholderTokenField>();
    std::shared_ptr<Completer> completer = std::make_shared<Completer>();
};

TEST_F(TitleField, ShowsTextAsTextAndPlaceholdersAsTokens) {
    for (const auto* text : {u"a", u"", u"%", u"%a", u"100%"})
        EXPECT_EQ(field->styleOf(text), NSTokenStyle::none) << std::string(text, text + std::u16string(text).size());
    // What the pane counts as one character is one here, however it came into a title.
    for (const auto* text : {u"%pageNumber%", u"%x%", u"%%", u"%d of 100%", u"%a%b%"})
        EXPECT_EQ(field->styleOf(text), NSTokenStyle::rounded);
    EXPECT_EQ(field->styleOf(std::shared_ptr<NSObject>(field)), NSTokenStyle::rounded);
}

TEST_F(TitleField, TitlesPlaceholdersReadably) {
    EXPECT_EQ(titleOf(u"%pageNumber%"), u"Page Number");
    EXPECT_EQ(titleOf(u"%recordPageCount%"), u"Page Count");
    EXPECT_EQ(titleOf(u"%recordName%"), u"Record Name");
    EXPECT_EQ(titleOf(u"%runningNumber%"), u"Running Number");
    EXPECT_EQ(titleOf(u"%unknown%"), u"unknown");
    EXPECT_EQ(titleOf(u"text"), u"text");
}

TEST_F(TitleField, MakesItsMenuAfreshForEachOpening) {
    const auto first = field->insertMenu();
    const auto second = field->insertMenu();
    EXPECT_NE(first, second);
    ASSERT_EQ(completer->asked.size(), 2U);
    EXPECT_EQ(completer->asked[1].second, second);
    EXPECT_GE(first->indexOfItemWithRepresentedObject(u"%recordPageCount%"), 0);
}

TEST_F(TitleField, OffersTheSameInItsContextMenu) {
    const auto menu = field->contextMenu();
    ASSERT_EQ(completer->asked.size(), 1U);
    EXPECT_EQ(completer->asked[0].first, menu);
    EXPECT_EQ(menu->itemArray().back()->submenu(), completer->asked[0].second);
    EXPECT_EQ(offered(*menu), offered(*field->insertMenu()));
    menu->update();
    EXPECT_FALSE(menu->itemWithTitle(u"Cut")->isEnabled()) << "nothing is selected";
}

TEST_F(TitleField, OffersOnlyWhatTheEngineFillsIn) {
    const auto all = offered(*field->insertMenu());
    EXPECT_EQ(all, (std::vector<std::u16string>{u"%recordPageCount%", u"%date%", u"%time%", u"%recordName%", u"%user%",
                                                u"%runningNumber%"}));
    engine::Facts facts;
    facts.recordName = u"letter";
    facts.user = u"Ada";
    facts.day = u"2024-02-29";
    facts.time = u"18:05";
    for (const auto& placeholder : all) {
        engine::Appearance appearance;
        appearance.pieces.push_back({placeholder, true, 0});
        engine::Report report;
        const auto title = engine::resolveTitle(appearance, facts, report);
        EXPECT_TRUE(report.warnings.empty());
        EXPECT_EQ(title.find(u'%'), std::u16string::npos);
        EXPECT_NE(title, std::u16string(1, u'\0'));
    }
}

TEST_F(TitleField, ShowsItsItemsAsPictures) {
    const auto menu = field->insertMenu();
    const auto item = menu->itemAtIndex(menu->indexOfItemWithRepresentedObject(u"%recordPageCount%"));
    ASSERT_TRUE(item->image());
    EXPECT_GT(item->image()->size().width, 20);
    EXPECT_EQ(item->title(), u"");
}

class RunsOfTitle : public TitleField {
protected:
    static TokenText textOf(const std::vector<std::shared_ptr<host::ImprinterFont>>& runs) {
        TokenText text;
        for (const auto& run : runs)
            text.appendToken(std::shared_ptr<NSObject>(run));
        return text;
    }

    std::shared_ptr<model::Configuration> configuration = model::Configuration::make(false);
    std::shared_ptr<host::ImprinterFont> first = configuration->createFontToken();
    std::shared_ptr<host::ImprinterFont> second = configuration->createFontToken();
};

TEST_F(RunsOfTitle, AreNumberedAnewAfterAnUndoThatBringsOneBack) {
    first->setFontNumber(0);
    second->setFontNumber(0); // the repair after the deletion
    field->setAttributedStringValue(textOf({second}));
    field->userUndid(textOf({first, second}));
    EXPECT_EQ(first->fontNumber(), 0U);
    EXPECT_EQ(second->fontNumber(), 1U);
}

TEST_F(RunsOfTitle, AreNumberedAnewAfterAnUndoThatMovesThem) {
    first->setFontNumber(0);
    second->setFontNumber(1);
    field->setAttributedStringValue(textOf({first, second}));
    field->userUndid(textOf({second, first}));
    EXPECT_EQ(second->fontNumber(), 0U);
    EXPECT_EQ(first->fontNumber(), 1U);
}

TEST_F(RunsOfTitle, KeepTheirNumbersAfterAnUndoOfText) {
    first->setFontNumber(7);
    auto typed = textOf({first});
    typed.appendText(u"x");
    field->setAttributedStringValue(typed);
    int told = 0;
    field->setOnRunsChanged([&](const auto&) { ++told; });
    field->userUndid(textOf({first}));
    EXPECT_EQ(first->fontNumber(), 7U);
    EXPECT_EQ(told, 0);
}

} // namespace
