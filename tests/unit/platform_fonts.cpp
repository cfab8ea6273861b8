// SPDX-License-Identifier: MIT
#include <AppKit/NSAttributedString.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSMenu.h>
#include <Foundation/NSException.h>

#include <gtest/gtest.h>

using namespace platform;

namespace {

std::shared_ptr<NSFont> font(const std::u16string& name, double size) {
    return std::make_shared<NSFont>(std::make_shared<FontNames>(FontNames{name, u"Family", u"Family Face"}), size);
}

std::shared_ptr<NSAttributedString> text(const std::u16string& string, const std::shared_ptr<NSFont>& in) {
    return std::make_shared<NSAttributedString>(string, NSAttributedString::Attributes{{NSFontAttributeName, in}});
}

TEST(NSFont, ControlsHaveThirteenElevenAndNinePoints) {
    EXPECT_EQ(NSFont::systemFontSizeForControlSize(NSControlSize::regular), 13);
    EXPECT_EQ(NSFont::systemFontSizeForControlSize(NSControlSize::small), 11);
    EXPECT_EQ(NSFont::systemFontSizeForControlSize(NSControlSize::mini), 9);
    EXPECT_EQ(NSFont::systemFontSizeForControlSize(static_cast<NSControlSize>(7)), 13);
    EXPECT_EQ(NSControl().controlSize(), NSControlSize::regular);
}

TEST(NSFont, TheMenuFontIsNoFaceOfTheMachine) {
    const auto menu = NSFont::menuFontOfSize(11);
    EXPECT_TRUE(menu->isMenuFont());
    EXPECT_EQ(menu->pointSize(), 11);
    EXPECT_EQ(NSFont::menuFontOfSize(0)->pointSize(), 13);
    EXPECT_EQ(NSFont::fontWithNameSize(menu->fontName(), 11), nullptr);
    EXPECT_FALSE(font(u"A", 11)->isMenuFont());
}

TEST(NSFont, IsEqualToTheSameFaceAtTheSameSize) {
    EXPECT_EQ(*font(u"A", 12), *font(u"A", 12));
    EXPECT_FALSE(*font(u"A", 12) == *font(u"A", 13));
    EXPECT_FALSE(*font(u"A", 12) == *font(u"B", 12));
    EXPECT_EQ(*NSFont::menuFontOfSize(13), *NSFont::menuFontOfSize(0));
}

TEST(NSFont, WithoutNamesRaises) {
    EXPECT_THROW(NSFont(nullptr, 12), NSInvalidArgumentException);
}

TEST(NSAttributedString, HoldsATextInAFont) {
    const auto string = text(u"Optima", font(u"Optima-Bold", 13));
    EXPECT_EQ(string->string(), u"Optima");
    EXPECT_EQ(string->font()->fontName(), u"Optima-Bold");
    EXPECT_EQ(NSAttributedString(u"plain", {}).font(), nullptr);
}

TEST(NSAttributedString, ANilFontRaises) {
    EXPECT_THROW(text(u"Optima", nullptr), NSInvalidArgumentException);
}

TEST(NSAttributedString, IsComparedByTextAndAttributes) {
    EXPECT_EQ(*text(u"A", font(u"F", 13)), *text(u"A", font(u"F", 13)));
    EXPECT_FALSE(*text(u"A", font(u"F", 13)) == *text(u"B", font(u"F", 13)));
    EXPECT_FALSE(*text(u"A", font(u"F", 13)) == *text(u"A", font(u"G", 13)));
    EXPECT_FALSE(*text(u"A", font(u"F", 13)) == NSAttributedString(u"A", {}));
}

TEST(NSMenuItem, AnAttributedTitleGivesItsTextToTheTitle) {
    NSMenuItem item(u"Old");
    item.setAttributedTitle(text(u"New", font(u"F", 13)));
    EXPECT_EQ(item.title(), u"New");
    item.setAttributedTitle(nullptr);
    EXPECT_EQ(item.title(), u"New");
    EXPECT_EQ(item.attributedTitle(), nullptr);
}

TEST(NSMenuItem, AnotherTitleDropsTheAttributedOne) {
    NSMenuItem item;
    const auto title = text(u"Title", font(u"F", 13));
    item.setAttributedTitle(title);
    item.setTitle(u"Title");
    EXPECT_EQ(item.attributedTitle(), title);
    item.setTitle(u"Another");
    EXPECT_EQ(item.attributedTitle(), nullptr);
}

TEST(NSMenuItem, AnAttributedTitleIsToldToWhoeverShowsTheMenu) {
    const auto menu = std::make_shared<NSMenu>();
    const auto item = menu->addItemWithTitleActionKeyEquivalent(u"Title", u"", u"");
    int changes = 0;
    menu->setOnChange([&changes] { ++changes; });
    item->setAttributedTitle(text(u"Title", font(u"F", 13)));
    EXPECT_EQ(changes, 1);
}

} // namespace
