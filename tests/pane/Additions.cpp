// SPDX-License-Identifier: MIT
// What the host adds to classes of the platform.

#include <host/Additions.h>

#include <AppKit/NSButton.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSBundle.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>

using namespace platform;

namespace {

/// A bundle with a table of its own.
class Additions : public ::testing::Test {
protected:
    void SetUp() override {
        const auto path = std::filesystem::path(folder.path().toStdString()) / "Texts.prefPane";
        std::filesystem::create_directories(path / "en.lproj");
        std::ofstream(path / "Info.plist") << R"(<plist version="1.0"><dict></dict></plist>)";
        std::ofstream(path / "en.lproj" / "Shown.strings")
            << R"("One" = "Eins"; "Two" = "Zwei"; "Three" = "Drei"; "Tip" = "Hinweis"; "Name" = "Bezeichnung";)";
        bundle = NSBundle::bundleWithPath(path);
        ASSERT_TRUE(bundle);
    }

    QTemporaryDir folder;
    std::shared_ptr<NSBundle> bundle;
};

TEST_F(Additions, LocalizeTheTitlesOfAViewAndOfEverythingInIt) {
    const auto view = std::make_shared<NSView>();
    const auto inner = std::make_shared<NSView>();
    const auto button = std::make_shared<NSButton>();
    const auto label = std::make_shared<NSTextField>();
    const auto field = std::make_shared<NSTextField>();
    const auto matrix = std::make_shared<NSMatrix>();
    const auto table = std::make_shared<NSTableView>();
    const auto tabs = std::make_shared<NSTabView>();
    button->setTitle(u"One");
    button->setToolTip(u"Tip");
    button->setAccessibilityLabel(u"Name");
    label->setEditable(false);
    label->setStringValue(u"Two");
    field->setStringValue(u"Two");
    matrix->addCell(u"Three", 1);
    const auto column = std::make_shared<NSTableColumn>(u"column");
    column->setTitle(u"One");
    table->addTableColumn(column);
    const auto page = std::make_shared<NSTabViewItem>(u"page", nullptr);
    page->setLabel(u"unknown");
    tabs->addTabViewItem(page);
    view->addSubview(inner);
    const std::shared_ptr<NSView> parts[] = {button, label, field, matrix, table, tabs};
    for (const auto& part : parts)
        inner->addSubview(part);

    host::localizeUsingTableBundle(*view, u"Shown", *bundle);
    EXPECT_EQ(button->title(), u"Eins");
    EXPECT_EQ(button->toolTip(), u"Hinweis");
    EXPECT_EQ(button->accessibilityLabel(), u"Bezeichnung");
    EXPECT_EQ(label->stringValue(), u"Zwei");
    EXPECT_EQ(field->stringValue(), u"Two") << "what people type is no title";
    EXPECT_EQ(matrix->cells().front()->title(), u"Drei");
    EXPECT_EQ(column->title(), u"Eins");
    EXPECT_EQ(page->label(), u"unknown") << "a text without entry stays";
}

TEST_F(Additions, TakeThePrefixCharactersOffAText) {
    using host::stringByTrimmingPrefixCharacter;
    EXPECT_EQ(stringByTrimmingPrefixCharacter(u",,1,2,", u','), u"1,2,");
    EXPECT_EQ(stringByTrimmingPrefixCharacter(u"1,2", u','), u"1,2");
    EXPECT_EQ(stringByTrimmingPrefixCharacter(u",,,", u','), u"");
    EXPECT_EQ(stringByTrimmingPrefixCharacter(u"", u','), u"");
    EXPECT_EQ(stringByTrimmingPrefixCharacter(u" ,1", u','), u" ,1");
}

TEST_F(Additions, GiveATableAHeaderWithALineBelow) {
    const auto table = std::make_shared<NSTableView>();
    host::installBottomBorderedHeaderView(*table);
    ASSERT_TRUE(table->headerView());
    EXPECT_TRUE(table->headerView()->hasBottomBorder);
}

} // namespace
