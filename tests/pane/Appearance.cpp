// SPDX-License-Identifier: MIT
// Font, border and fill: what is shown of a configuration and its font runs, and what each control changes.

#include "PaneTest.h"

#include "../support/MenuUser.h"
#include "../support/RecordingFont.h"

#include <VelIFontPopupButton.h>

#include <AppKit/NSColorWell.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>
#include <Foundation/NSException.h>

#include <QColorDialog>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QToolButton>

using namespace platform;
using namespace testing_support;

namespace {

const std::string stamped = "imprinter imprintFileAtURLWithIndex Preview.jpg a 0";

/// The pane on the configurations "a" and "b", at the Appearance page.
class AppearanceTest : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        a = configuration(u"a");
        b = configuration(u"b");
        first = std::make_shared<RecordingFont>(log, u"first");
        second = std::make_shared<RecordingFont>(log, u"second");
        imprinter->setList({a, b});
    }
    static host::NSArray<host::TitleToken> title(std::vector<host::TitleToken> tokens) {
        return std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens));
    }
    static host::TitleToken run(const std::shared_ptr<RecordingFont>& font) {
        return std::shared_ptr<host::ImprinterFont>(font);
    }
    /// With "a" shown, whose title has both font runs, unless it was given another.
    void begin() {
        if (!a->titleTokens())
            a->setTitleTokens(title({run(first), std::u16string(u"One "), run(second), std::u16string(u"Two")}));
        start();
        outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
        QApplication::processEvents();
        taken();
    }
    /// What was set and stamped, without the questions.
    MessageLog changes() {
        auto messages = taken();
        std::erase_if(messages, [](const std::string& message) {
            return message.find(" set") == std::string::npos && message.find(" imprintFile") == std::string::npos;
        });
        return messages;
    }
    /// The bundle's own class, whose messages are virtual.
    std::shared_ptr<pane::VelIFontPopupButton> fonts() {
        return std::static_pointer_cast<pane::VelIFontPopupButton>(outlet<NSPopUpButton>(u"fontPopup"));
    }
    std::shared_ptr<NSControl> control(std::u16string_view name) { return outlet<NSControl>(name); }
    QWidget& widget(std::u16string_view name) { return *widgetOf(*control(name)); }
    bool isEnabled(std::u16string_view name) { return control(name)->isEnabled(); }
    NSInteger stateOf(std::u16string_view name) { return outlet<NSButton>(name)->state(); }
    const NSColor& colourOf(std::u16string_view name) { return *outlet<NSColorWell>(name)->color(); }
    void click(std::u16string_view name) {
        QTest::mouseClick(&widget(name), Qt::LeftButton, {}, {6, widget(name).height() / 2});
    }
    void clickSegment(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    void pick(std::u16string_view well, const QColor& colour) {
        QTest::mouseClick(&widget(well), Qt::LeftButton);
        auto* panel = window->findChild<QColorDialog*>();
        ASSERT_TRUE(panel);
        panel->setCurrentColor(colour);
        panel->close();
        QApplication::processEvents();
    }
    void step(std::u16string_view stepper) { QTest::mouseClick(&widget(stepper), Qt::LeftButton, {}, {7, 3}); }
    void type(std::u16string_view field, const char* text) {
        auto& edit = dynamic_cast<QLineEdit&>(widget(field));
        edit.setFocus();
        edit.selectAll();
        QTest::keyClick(&edit, Qt::Key_Delete);
        QTest::keyClicks(&edit, QString::fromUtf8(text));
        QTest::keyClick(&edit, Qt::Key_Return);
    }
    QString textOf(std::u16string_view field) { return dynamic_cast<QLineEdit&>(widget(field)).text(); }
    void chooseStyle(const QString& style) {
        EXPECT_TRUE(withMenu([this] { QTest::mouseClick(&widget(u"borderStylePopup"), Qt::LeftButton); },
                             [&](QMenu& menu) { testing_support::click(menu, style); }));
    }
    void chooseRun(const QString& name) {
        EXPECT_TRUE(withMenu([this] { QTest::mouseClick(&widget(u"fontTokensPopup"), Qt::LeftButton); },
                             [&](QMenu& menu) { testing_support::click(menu, name); }));
    }

    std::shared_ptr<RecordingConfiguration> a;
    std::shared_ptr<RecordingConfiguration> b;
    std::shared_ptr<RecordingFont> first;
    std::shared_ptr<RecordingFont> second;
};

class AppearanceSetUp : public AppearanceTest {};
class AppearanceLabels : public AppearanceTest {};
class AppearanceEnabling : public AppearanceTest {};
class AppearanceLoading : public AppearanceTest {};
class AppearanceSaving : public AppearanceTest {};
class FontRunControls : public AppearanceTest {};
class BorderControls : public AppearanceTest {};
class FillControls : public AppearanceTest {};

const char16_t* const borderControls[] = {u"borderColourWell", u"borderThickness", u"borderThicknessStepper"};

// Set-up

TEST_F(AppearanceSetUp, ThePaneIsTheDelegateOfTheFontsAndTheirBlock) {
    load();
    const auto families = fonts();
    EXPECT_EQ(families->delegate().get(), static_cast<pane::VelIFontPopupDelegate*>(pane.get()));
    EXPECT_TRUE(families->onFontChanged());
}

TEST_F(AppearanceSetUp, AChosenFontSetsTheNameTwiceAndRefreshesThePreviewOnce) {
    begin();
    const auto families = fonts();
    families->onFontAttributeChanged(families);
    const auto name = families->currentSelectedFullFontName();
    const auto messages = changes();
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0], "first setFullFontName " + toUtf8(name.value_or(u"")));
    EXPECT_EQ(messages[1], messages[0]);
    EXPECT_EQ(messages[2], stamped);
}

TEST_F(AppearanceSetUp, TheBlockOfTheFontsHoldsNoPane) {
    load();
    const auto families = fonts();
    const auto block = families->onFontChanged();
    const std::weak_ptr<pane::VelImprinterPrefPane> watched = pane;
    pane.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_NO_THROW(block(u"DejaVuSans"));
}

// Labels

TEST_F(AppearanceLabels, AreSetFromTheTextsOfTheBundle) {
    load();
    const std::pair<const char16_t*, const char16_t*> labels[] = {{u"titleLabel", u"Title:"},
                                                                  {u"styleLabel", u"Style:"},
                                                                  {u"borderLabel", u"Border:"},
                                                                  {u"fillLabel", u"Fill:"},
                                                                  {u"borderThicknessLabel", u"Thickness"},
                                                                  {u"borderColourLabel", u"Color"},
                                                                  {u"fillColourLabel", u"Color"},
                                                                  {u"thicknessLabel", u"Thickness"},
                                                                  {u"fontSizeLabel", u"Size"},
                                                                  {u"fontColourLabel", u"Color"}};
    for (const auto& [label, text] : labels)
        outlet<NSTextField>(label)->setStringValue(u"?");
    const auto tabs = outlet<NSTabView>(u"tabView");
    const auto page =
        tabs->tabViewItemAtIndex(static_cast<NSInteger>(tabs->indexOfTabViewItemWithIdentifier(u"Appearance")));
    page->setLabel(u"?");
    pane->translateAppearanceUI();
    for (const auto& [label, text] : labels)
        EXPECT_EQ(outlet<NSTextField>(label)->stringValue(), text) << toUtf8(label);
    EXPECT_EQ(page->label(), u"Appearance");
}

// Enabling

TEST_F(AppearanceEnabling, TouchesExactlyNineControls) {
    begin();
    const std::set<std::u16string> nine{
        u"titleTokenField",  u"previewBtn",      u"outlineTextThickness",   u"outlineTextThicknessStepper",
        u"borderColourWell", u"borderThickness", u"borderThicknessStepper", u"fillColourWell",
        u"borderStylePopup"};
    std::vector<std::u16string> all;
    for (const auto& [name, described] : pane->classTable()->outlets)
        if (control(name))
            all.push_back(name);
    for (const bool enable : {false, true}) {
        for (const auto& name : all)
            control(name)->setEnabled(!enable);
        pane->enableAppearenceControls(enable);
        for (const auto& name : all)
            EXPECT_EQ(isEnabled(name), (nine.count(name) != 0) == enable) << toUtf8(name) << enable;
    }
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(AppearanceEnabling, GoesInItsOrderAndBeforeTheLocation) {
    begin();
    const std::vector<std::string> appearance{
        "titleTokenField",  "previewBtn",      "outlineTextThickness",   "outlineTextThicknessStepper",
        "borderColourWell", "borderThickness", "borderThicknessStepper", "fillColourWell",
        "borderStylePopup"};
    const std::vector<std::string> location{"topLeftBtn",     "topCenterBtn",   "topRightBtn",    "centerLeftBtn",
                                            "centerBtn",      "centerRightBtn", "bottomLeftBtn",  "bottomCenterBtn",
                                            "bottomRightBtn", "xOffset",        "xOffsetStepper", "yOffset",
                                            "yOffsetStepper", "rotation",       "rotationStepper"};
    pane->enableControls(false);
    pane->enableAppearenceControls(true);
    {
        EnablingLog enabled;
        pane->enableAppearenceControls(false);
        EXPECT_EQ(enabled.names, appearance);
    }
    EnablingLog enabled;
    pane->enableControls(true);
    auto both = appearance;
    both.insert(both.end(), location.begin(), location.end());
    EXPECT_EQ(enabled.names, both);
}

// Loading

TEST_F(AppearanceLoading, ShowsBorderAndFillOfAStyleAsTheyAre) {
    a->values.borderStyle = 2;
    a->values.borderEnabled = true;
    a->values.borderThickness = 2.7;
    a->values.borderColour = NSColor::colorWithSRGB(1, 0, 0, 0.5);
    a->values.fillEnabled = false;
    a->values.fillColour = NSColor::colorWithSRGB(0, 0, 1, 1);
    begin();
    EXPECT_EQ(outlet<NSPopUpButton>(u"borderStylePopup")->selectedTag(), 2);
    EXPECT_EQ(stateOf(u"borderEnableBtn"), NSControlStateValueOn);
    for (const auto* name : borderControls)
        EXPECT_TRUE(isEnabled(name)) << toUtf8(name);
    EXPECT_EQ(outlet<NSTextField>(u"borderThickness")->doubleValue(), static_cast<double>(2.7F));
    EXPECT_EQ(outlet<NSStepper>(u"borderThicknessStepper")->doubleValue(), static_cast<double>(2.7F));
    EXPECT_EQ(stateOf(u"fillEnableBtn"), NSControlStateValueOff);
    EXPECT_FALSE(isEnabled(u"fillColourWell"));
    EXPECT_EQ(colourOf(u"borderColourWell"), *a->values.borderColour);
    EXPECT_EQ(colourOf(u"fillColourWell"), *a->values.fillColour);
}

TEST_F(AppearanceLoading, WithoutAStyleBothBoxesAreOffAndTheThicknessStaysAsItWas) {
    a->values.borderEnabled = a->values.fillEnabled = true;
    a->values.borderThickness = 4;
    b->values.borderStyle = 0;
    b->values.borderEnabled = b->values.fillEnabled = true;
    b->values.borderThickness = 9;
    begin();
    pane->setCurrentConfiguration(b);
    EXPECT_EQ(stateOf(u"borderEnableBtn"), NSControlStateValueOff);
    EXPECT_EQ(stateOf(u"fillEnableBtn"), NSControlStateValueOff);
    for (const auto* name : borderControls)
        EXPECT_FALSE(isEnabled(name)) << toUtf8(name);
    EXPECT_FALSE(isEnabled(u"fillColourWell"));
    EXPECT_TRUE(isEnabled(u"borderEnableBtn"));
    EXPECT_TRUE(isEnabled(u"fillEnableBtn"));
    EXPECT_EQ(outlet<NSTextField>(u"borderThickness")->doubleValue(), 4);
    EXPECT_EQ(outlet<NSStepper>(u"borderThicknessStepper")->doubleValue(), 4);
    EXPECT_TRUE(b->values.borderEnabled);
    EXPECT_TRUE(b->values.fillEnabled);
}

TEST_F(AppearanceLoading, MissingColoursAreShownBlackAndWhiteAndNotWrittenBack) {
    begin();
    EXPECT_EQ(colourOf(u"borderColourWell"), *NSColor::blackColor());
    EXPECT_EQ(colourOf(u"fillColourWell"), *NSColor::whiteColor());
    EXPECT_EQ(colourOf(u"fontColour"), *NSColor::blackColor());
    EXPECT_EQ(a->values.borderColour, nullptr);
    EXPECT_EQ(a->values.fillColour, nullptr);
    EXPECT_EQ(first->values.colour, nullptr);
}

TEST_F(AppearanceLoading, NumbersTheRunsAndShowsTheFirst) {
    begin();
    EXPECT_EQ(first->values.fontNumber, 0U);
    EXPECT_EQ(second->values.fontNumber, 1U);
    EXPECT_EQ(pane->currentFont(), first);
    const auto runs = outlet<NSPopUpButton>(u"fontTokensPopup");
    EXPECT_EQ(runs->numberOfItems(), 2);
    EXPECT_EQ(runs->selectedItem()->title(), u"first");
}

TEST_F(AppearanceLoading, AsksAndSetsInOrder) {
    begin();
    pane->updateAppearance();
    EXPECT_EQ(taken(), (MessageLog{"a titleTokens", "a borderStyle", "a borderStyle", "a borderEnabled",
                                   "a borderThickness", "a fillEnabled", "a borderColour", "a fillColour",
                                   "first setFontNumber 0", "second setFontNumber 1", "a titleTokens", stamped}));
}

TEST_F(AppearanceLoading, ATitleWithoutRunsLeavesTheFormerRunAndItsControls) {
    first->values.fontSize = 31;
    first->values.colour = NSColor::colorWithSRGB(0, 1, 0, 1);
    first->values.underline = true;
    b->setTitleTokens(title({std::u16string(u"plain")}));
    begin();
    pane->setCurrentConfiguration(b);
    EXPECT_EQ(pane->currentFont(), first);
    EXPECT_EQ(outlet<NSPopUpButton>(u"fontTokensPopup")->numberOfItems(), 0);
    EXPECT_EQ(textOf(u"fontSizeField"), "31");
    EXPECT_EQ(colourOf(u"fontColour"), *first->values.colour);
    EXPECT_TRUE(outlet<NSSegmentedControl>(u"fontAttributesSegCtrl")->isSelectedForSegment(0));
}

TEST_F(AppearanceSaving, HandsTheFieldsTitleToTheConfiguration) {
    begin();
    pane->saveAppearance();
    EXPECT_EQ(changes(), MessageLog{"a setTitleTokens"});
    ASSERT_EQ(count(a->titleTokens()), 4U);
    EXPECT_EQ(std::get<std::shared_ptr<host::ImprinterFont>>((*a->titleTokens())[2]), second);
    EXPECT_EQ(std::get<std::u16string>((*a->titleTokens())[3]), u"Two");
}

TEST_F(AppearanceSaving, ComesBeforeTheLocationAndTheStoring) {
    begin();
    pane->saveConfiguration();
    EXPECT_EQ(changes(), (MessageLog{"a setTitleTokens", "a setRotation 0", "a setOffset 0 0"}));
    taken();
    pane->saveConfiguration();
    EXPECT_EQ(taken().back(), "imprinter saveConfigurations");
}

// The font run

TEST_F(FontRunControls, ShowTheRunThatIsChosen) {
    second->values.colour = NSColor::colorWithSRGB(1, 0, 1, 0.25);
    second->values.fontSize = 20.5;
    second->values.strikethrough = second->values.outline = true;
    second->values.strokeWidth = 2.5;
    begin();
    EXPECT_TRUE(control(u"outlineTextThickness")->isHidden());
    chooseRun("second");
    EXPECT_EQ(changes(), MessageLog{stamped});
    EXPECT_EQ(pane->currentFont(), second);
    EXPECT_EQ(colourOf(u"fontColour"), *second->values.colour);
    EXPECT_EQ(textOf(u"fontSizeField"), "20.5");
    EXPECT_EQ(outlet<NSStepper>(u"fontSizeStepper")->doubleValue(), 20.5);
    const auto segments = outlet<NSSegmentedControl>(u"fontAttributesSegCtrl");
    EXPECT_FALSE(segments->isSelectedForSegment(0));
    EXPECT_TRUE(segments->isSelectedForSegment(1));
    EXPECT_TRUE(segments->isSelectedForSegment(2));
    for (const auto* name : {u"outlineTextThickness", u"outlineTextThicknessStepper", u"thicknessLabel"})
        EXPECT_FALSE(control(name)->isHidden()) << toUtf8(name);
    EXPECT_EQ(textOf(u"outlineTextThickness"), "2.5");
    EXPECT_EQ(outlet<NSStepper>(u"outlineTextThicknessStepper")->doubleValue(), 2.5);
}

TEST_F(FontRunControls, AnItemWithoutRunChoosesNothing) {
    begin();
    pane->onSelectFont(std::make_shared<NSMenuItem>(u"", u"", u""));
    pane->onSelectFont(nullptr);
    EXPECT_EQ(pane->currentFont(), first);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(FontRunControls, ARunWithoutOutlineKeepsTheThicknessOnShowBehindIt) {
    first->values.outline = true;
    first->values.strokeWidth = 7;
    second->values.strokeWidth = 3;
    begin();
    chooseRun("second");
    EXPECT_TRUE(control(u"outlineTextThickness")->isHidden());
    EXPECT_TRUE(control(u"outlineTextThicknessStepper")->isHidden());
    EXPECT_TRUE(control(u"thicknessLabel")->isHidden());
    EXPECT_EQ(outlet<NSTextField>(u"outlineTextThickness")->doubleValue(), 7);
}

TEST_F(FontRunControls, TheSegmentsSetUnderlineStrikethroughAndOutlineInThatOrder) {
    begin();
    clickSegment("strikethroughSegment");
    EXPECT_EQ(changes(),
              (MessageLog{"first setUnderline NO", "first setStrikethrough YES", "first setOutline NO", stamped}));
    clickSegment("underlineSegment");
    clickSegment("outlineSegment");
    EXPECT_TRUE(first->values.underline && first->values.strikethrough && first->values.outline);
    EXPECT_FALSE(control(u"outlineTextThickness")->isHidden());
    EXPECT_FALSE(second->values.underline);
}

TEST_F(FontRunControls, TurningOutlineOffHidesTheThicknessAndStillLoadsIt) {
    first->values.outline = true;
    first->values.strokeWidth = 3;
    begin();
    first->values.strokeWidth = 5;
    clickSegment("outlineSegment");
    EXPECT_FALSE(first->values.outline);
    for (const auto* name : {u"outlineTextThickness", u"outlineTextThicknessStepper", u"thicknessLabel"})
        EXPECT_TRUE(control(name)->isHidden()) << toUtf8(name);
    EXPECT_EQ(outlet<NSTextField>(u"outlineTextThickness")->doubleValue(), 5);
    EXPECT_EQ(outlet<NSStepper>(u"outlineTextThicknessStepper")->doubleValue(), 5);
}

TEST_F(FontRunControls, AColourIsTakenAsItIsPickedAlphaIncluded) {
    begin();
    pick(u"fontColour", QColor(255, 0, 51));
    EXPECT_EQ(changes(), (MessageLog{"first setColour", stamped}));
    EXPECT_EQ(*first->values.colour, *NSColor::colorWithSRGB(1, 0, 0.2, 1));
    pick(u"fontColour", QColor(255, 0, 51, 102));
    EXPECT_EQ(*first->values.colour, *NSColor::colorWithSRGB(1, 0, 0.2, 0.4));
}

TEST_F(FontRunControls, SizeAndOutlineThicknessEditTheCurrentRun) {
    first->values.outline = true;
    begin();
    type(u"fontSizeField", "18.5");
    EXPECT_EQ(changes(), (MessageLog{"first setFontSize 18.5", stamped}));
    step(u"fontSizeStepper");
    EXPECT_EQ(first->values.fontSize, 19.5);
    EXPECT_EQ(textOf(u"fontSizeField"), "19.5");
    changes();
    type(u"outlineTextThickness", "2");
    EXPECT_EQ(changes(), (MessageLog{"first setStrokeWidth 2", stamped}));
    step(u"outlineTextThicknessStepper");
    EXPECT_EQ(textOf(u"outlineTextThickness").toDouble(), first->values.strokeWidth);
    EXPECT_EQ(second->values.fontSize, 12);
}

TEST_F(FontRunControls, EmptiedNumbersFallToTheirDefaults) {
    first->values.outline = true;
    first->values.fontSize = 40;
    first->values.strokeWidth = 4;
    begin();
    type(u"fontSizeField", "");
    EXPECT_EQ(first->values.fontSize, 12);
    EXPECT_EQ(textOf(u"fontSizeField"), "12");
    type(u"outlineTextThickness", "");
    EXPECT_EQ(first->values.strokeWidth, 1);
    EXPECT_EQ(textOf(u"outlineTextThickness"), "1");
}

TEST_F(FontRunControls, WithoutARunAnswerNoughtAndWriteNowhere) {
    a->setTitleTokens(title({std::u16string(u"plain")}));
    begin();
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"fontSizeValue")), 0);
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"fontStrokeWidthValue")), 0);
    clickSegment("underlineSegment");
    pick(u"fontColour", Qt::red);
    type(u"fontSizeField", "3");
    const auto messages = changes();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), stamped), static_cast<std::ptrdiff_t>(messages.size()));
}

// The border

TEST_F(BorderControls, TheStyleIsTheTagOfTheItem) {
    a->values.borderEnabled = true;
    begin();
    const auto styles = outlet<NSPopUpButton>(u"borderStylePopup");
    ASSERT_GE(styles->numberOfItems(), 8);
    for (NSInteger style = styles->numberOfItems() - 1; style >= 0; --style) {
        chooseStyle(QString::fromStdU16String(styles->itemAtIndex(style)->title()));
        EXPECT_EQ(changes(),
                  (MessageLog{"a setBorderStyle " + std::to_string(styles->itemAtIndex(style)->tag()), stamped}));
    }
}

TEST_F(BorderControls, NoStyleTurnsTheControlsOffAndNothingInTheModel) {
    a->values.borderEnabled = a->values.fillEnabled = true;
    begin();
    chooseStyle("None");
    EXPECT_EQ(changes(), (MessageLog{"a setBorderStyle 0", stamped}));
    EXPECT_EQ(stateOf(u"borderEnableBtn"), NSControlStateValueOff);
    EXPECT_FALSE(isEnabled(u"borderThickness"));
    EXPECT_TRUE(a->values.borderEnabled);
    EXPECT_TRUE(a->values.fillEnabled);
    chooseStyle("Rectangle");
    EXPECT_EQ(stateOf(u"borderEnableBtn"), NSControlStateValueOn);
    EXPECT_EQ(stateOf(u"fillEnableBtn"), NSControlStateValueOn);
    EXPECT_TRUE(isEnabled(u"borderThickness"));
}

TEST_F(BorderControls, TickingTheBoxWithoutAStyleSetsTheFlagAndEnablesTheControls) {
    a->values.borderStyle = 0;
    a->values.borderEnabled = true;
    begin();
    EXPECT_EQ(stateOf(u"borderEnableBtn"), NSControlStateValueOff);
    click(u"borderEnableBtn");
    EXPECT_EQ(changes(), (MessageLog{"a setBorderEnabled YES", stamped}));
    for (const auto* name : borderControls)
        EXPECT_TRUE(isEnabled(name)) << toUtf8(name);
    click(u"borderEnableBtn");
    EXPECT_EQ(changes(), (MessageLog{"a setBorderEnabled NO", stamped}));
    for (const auto* name : borderControls)
        EXPECT_FALSE(isEnabled(name)) << toUtf8(name);
}

TEST_F(BorderControls, AStateThatIsNeitherOnNorOffIsOff) {
    begin();
    const auto box = outlet<NSButton>(u"borderEnableBtn");
    box->setState(-1);
    pane->onBorderChanged(box);
    EXPECT_EQ(changes(), (MessageLog{"a setBorderEnabled NO", stamped}));
}

TEST_F(BorderControls, AColourIsTakenAsItIsPicked) {
    a->values.borderEnabled = true;
    begin();
    pick(u"borderColourWell", QColor(0, 255, 0));
    EXPECT_EQ(changes(), (MessageLog{"a setBorderColour", stamped}));
    EXPECT_EQ(*a->values.borderColour, *NSColor::colorWithSRGB(0, 1, 0, 1));
}

TEST_F(BorderControls, TheThicknessIsStoredInSinglePrecision) {
    a->values.borderEnabled = true;
    begin();
    type(u"borderThickness", "2.7");
    EXPECT_EQ(a->values.borderThickness, static_cast<double>(2.7F));
    EXPECT_EQ(changes(),
              (MessageLog{"a setBorderThickness 2.7", stamped, "a setBorderThickness 2.700000047683716", stamped}))
        << "the binding writes first";
    EXPECT_EQ(outlet<NSStepper>(u"borderThicknessStepper")->doubleValue(), static_cast<double>(2.7F));
    step(u"borderThicknessStepper");
    EXPECT_EQ(a->values.borderThickness, static_cast<double>(3.7F));
    EXPECT_EQ(textOf(u"borderThickness"), "3.7");
}

TEST_F(BorderControls, AnEmptiedThicknessFallsToOne) {
    a->values.borderEnabled = true;
    a->values.borderThickness = 6;
    begin();
    type(u"borderThickness", "");
    EXPECT_EQ(a->values.borderThickness, 1);
    EXPECT_EQ(textOf(u"borderThickness"), "1");
}

// The fill

TEST_F(FillControls, TheBoxSetsTheFlagAndEnablesTheWellAlone) {
    begin();
    click(u"fillEnableBtn");
    EXPECT_EQ(changes(), (MessageLog{"a setFillEnabled YES", stamped}));
    EXPECT_TRUE(isEnabled(u"fillColourWell"));
    EXPECT_FALSE(isEnabled(u"borderColourWell"));
    click(u"fillEnableBtn");
    EXPECT_EQ(changes(), (MessageLog{"a setFillEnabled NO", stamped}));
    EXPECT_FALSE(isEnabled(u"fillColourWell"));
}

TEST_F(FillControls, AColourIsTakenAsItIsPicked) {
    a->values.fillEnabled = true;
    begin();
    pick(u"fillColourWell", QColor(255, 255, 0));
    EXPECT_EQ(changes(), (MessageLog{"a setFillColour", stamped}));
    EXPECT_EQ(*a->values.fillColour, *NSColor::colorWithSRGB(1, 1, 0, 1));
}

TEST_F(FillControls, WithoutAConfigurationNothingIsWritten) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    pane->setCurrentFont(nullptr);
    changes();
    pane->onFillChanged(outlet<NSButton>(u"fillEnableBtn"));
    pane->onFillColourChanged(outlet<NSColorWell>(u"fillColourWell"));
    pane->onBorderChanged(outlet<NSButton>(u"borderEnableBtn"));
    pane->onBorderColourChanged(outlet<NSColorWell>(u"borderColourWell"));
    pane->onBorderStyleChanged(outlet<NSPopUpButton>(u"borderStylePopup"));
    pane->onBorderThicknessChanged(outlet<NSStepper>(u"borderThicknessStepper"));
    pane->onFontColourChanged(outlet<NSColorWell>(u"fontColour"));
    pane->onFontAttributeSegChanged(outlet<NSSegmentedControl>(u"fontAttributesSegCtrl"));
    pane->saveAppearance();
    EXPECT_EQ(changes(), MessageLog());
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"borderThicknessValue")), 0);
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"fillOpacityValue")), 1);
}

TEST_F(FillControls, TickingTheBoxWithoutAStyleSetsTheFlagAndEnablesTheWell) {
    a->values.borderStyle = 0;
    a->values.fillEnabled = true;
    begin();
    EXPECT_EQ(stateOf(u"fillEnableBtn"), NSControlStateValueOff);
    click(u"fillEnableBtn");
    EXPECT_EQ(changes(), (MessageLog{"a setFillEnabled YES", stamped}));
    EXPECT_TRUE(isEnabled(u"fillColourWell"));
    const auto box = outlet<NSButton>(u"fillEnableBtn");
    box->setState(-1);
    pane->onFillChanged(box);
    EXPECT_EQ(changes(), (MessageLog{"a setFillEnabled NO", stamped})) << "neither on nor off";
}

TEST_F(FillControls, EachConfigurationShowsItsOwnOpacity) {
    a->values.fillOpacity = 0.4;
    b->values.fillOpacity = 0.7;
    begin();
    const auto* opacity = window->findChild<QLineEdit*>("fillOpacityField");
    ASSERT_TRUE(opacity);
    EXPECT_EQ(opacity->text(), "40%");
    pane->setCurrentConfiguration(b);
    EXPECT_EQ(opacity->text(), "70%");
    pane->setCurrentConfiguration(a);
    EXPECT_EQ(opacity->text(), "40%");
}

TEST_F(FillControls, WithoutAConfigurationTheKeysWriteNothingAndStampNothing) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    taken();
    setValueForKey(*pane, 3.0, u"borderThicknessValue");
    const auto& setter = *pane->classTable()->action(u"setfillOpacityValue:");
    const auto stepper = outlet<NSStepper>(u"borderThicknessStepper");
    stepper->setDoubleValue(0.3);
    setter(*pane, stepper);
    EXPECT_EQ(changes(), MessageLog());
}

TEST_F(FontRunControls, ChoosingARunShowsItsFaceInTheTwoFontButtons) {
    first->values.font = NSFont::fontWithNameSize(u"DejaVuSans", 12);
    second->values.font = NSFont::fontWithNameSize(u"DejaVuSans-Bold", 12);
    ASSERT_TRUE(second->values.font);
    begin();
    EXPECT_EQ(fonts()->currentSelectedFullFontName(), u"DejaVuSans");
    changes();
    chooseRun("second");
    EXPECT_EQ(fonts()->currentSelectedFullFontName(), u"DejaVuSans-Bold");
    EXPECT_EQ(changes(), MessageLog{stamped}) << "showing reports nothing";
}

TEST_F(BorderControls, EveryEndOfTheEditStoresTheThicknessInSinglePrecision) {
    a->values.borderEnabled = true;
    begin();
    auto& edit = dynamic_cast<QLineEdit&>(widget(u"borderThickness"));
    for (const bool tab : {true, false}) {
        edit.setFocus();
        edit.selectAll();
        QTest::keyClicks(&edit, tab ? "2.7" : "3.3");
        if (tab)
            QTest::keyClick(&edit, Qt::Key_Tab);
        else
            widget(u"borderStylePopup").setFocus();
        EXPECT_EQ(a->values.borderThickness, static_cast<double>(tab ? 2.7F : 3.3F));
    }
}

TEST_F(BorderControls, EachStyleHasAPictureOfItsOwn) {
    begin();
    const auto styles = outlet<NSPopUpButton>(u"borderStylePopup");
    std::vector<QImage> pictures;
    EXPECT_TRUE(withMenu([this] { QTest::mouseClick(&widget(u"borderStylePopup"), Qt::LeftButton); },
                         [&](QMenu& menu) {
                             const auto lines = menu.actions();
                             for (int i = 0; i < lines.size(); ++i) {
                                 const bool none = styles->itemAtIndex(i)->tag() == 0;
                                 EXPECT_EQ(lines[i]->icon().isNull(), none) << i;
                                 if (!none)
                                     pictures.push_back(lines[i]->icon().pixmap(48, 48).toImage());
                             }
                             QTest::keyClick(&menu, Qt::Key_Escape);
                         }));
    const auto& button = dynamic_cast<QComboBox&>(widget(u"borderStylePopup"));
    EXPECT_FALSE(button.itemIcon(button.currentIndex()).isNull()) << "on the button too";
    ASSERT_EQ(pictures.size(), 7U);
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_NE(pictures[i], pictures[j]) << i << ' ' << j;
}

TEST_F(FontRunControls, ThePanelOfColoursGoesWithThePage) {
    begin();
    QTest::mouseClick(&widget(u"fontColour"), Qt::LeftButton);
    const QPointer<QColorDialog> panel = window->findChild<QColorDialog*>();
    ASSERT_TRUE(panel && panel->isVisible());
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Location");
    EXPECT_TRUE(!panel || !panel->isVisible());
    changes();
    if (panel)
        panel->setCurrentColor(Qt::red);
    EXPECT_EQ(changes(), MessageLog());
}

} // namespace
