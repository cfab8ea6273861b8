// SPDX-License-Identifier: MIT
#include "PaneTest.h"

#include "../support/PlainConfiguration.h"

#include <PageList.h>

#include <AppKit/NSMatrix.h>
#include <AppKit/NSStepper.h>
#include <Foundation/NSException.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QLineEdit>
#include <QLocale>
#include <QTabBar>
#include <QTabWidget>

#include <random>

using namespace platform;
using namespace testing_support;

namespace {

const std::string stamped = "imprinter imprintFileAtURLWithIndex Preview.jpg a 0";

constexpr const char* positionButtons[] = {"topLeftBtn",    "topCenterBtn",    "topRightBtn",
                                           "centerLeftBtn", "centerBtn",       "centerRightBtn",
                                           "bottomLeftBtn", "bottomCenterBtn", "bottomRightBtn"};

std::vector<std::string> operator+(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// The pane on one configuration, "a".
class LocationTest : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        a = configuration(u"a");
        imprinter->setList({a, configuration(u"b")});
    }
    void TearDown() override {
        PaneTest::TearDown();
        QLocale::setDefault(QLocale::c());
    }
    void begin() {
        start();
        taken();
    }
    template <class Widget = QWidget>
    Widget* named(const char* name) {
        auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit* field(const char* name) { return named<QLineEdit>(name); }
    void click(const char* name) { QTest::mouseClick(named(name), Qt::LeftButton, {}, {6, named(name)->height() / 2}); }
    void step(const char* stepper, bool up) {
        auto* arrows = named(stepper);
        QTest::mouseClick(arrows, Qt::LeftButton, {}, {arrows->width() / 2, up ? 3 : arrows->height() - 3});
    }
    void type(const char* name, const char* text) {
        field(name)->setFocus();
        field(name)->selectAll();
        if (*text)
            QTest::keyClicks(field(name), QString::fromUtf8(text));
        else
            QTest::keyClick(field(name), Qt::Key_Delete);
    }
    void press(Qt::Key key) { QTest::keyClick(window->focusWidget(), key); }
    std::string focused() {
        return window->focusWidget() ? window->focusWidget()->objectName().toStdString() : "nothing";
    }
    /// The tag of the one button that is on; -1 for none, -2 for several.
    NSInteger buttonOn() {
        NSInteger on = -1;
        for (const auto* name : positionButtons)
            if (named<QAbstractButton>(name)->isChecked())
                on = on == -1 ? outlet<NSButton>(fromUtf8(name))->tag() : -2;
        return on;
    }
    QAbstractButton* choice(const char* name) { return named<QAbstractButton>(name); }
    std::string page() { return toUtf8(outlet<NSTabView>(u"tabView")->selectedTabViewItem()->identifier()); }
    std::vector<std::string> nineTimes(const std::string& message) { return std::vector<std::string>(9, message); }

    std::shared_ptr<RecordingConfiguration> a;
};

class LocationLoading : public LocationTest {};
class LocationSaving : public LocationTest {};
class LocationLabels : public LocationTest {};
class LocationEnabling : public LocationTest {};
class PositionButtons : public LocationTest {};
class OffsetFields : public LocationTest {};
class RotationField : public LocationTest {};
class NilValues : public LocationTest {};
class FillOpacity : public LocationTest {};
class OccurrenceChoice : public LocationTest {};
class CustomPages : public LocationTest {};
class CustomPagesGuards : public LocationTest {};

// Loading and saving

TEST_F(LocationLoading, AsksForEachValueInOrderAndRefreshesThePreviewOnce) {
    a->values.occurance = 2;
    begin();
    pane->updateLocation();
    EXPECT_EQ(taken(), nineTimes("a position") + (MessageLog{"a rotation", "a offset", "a offset", "a occurance",
                                                             "a setOccurance 2", "a occurance", stamped}));
}

TEST_F(LocationLoading, FieldsAndSteppersShowTheValuesInSinglePrecision) {
    a->values.rotation = 2.7;
    a->values.offset = {0.1, -12345678.9};
    begin();
    EXPECT_EQ(outlet<NSTextField>(u"rotation")->doubleValue(), 2.7000000476837158);
    EXPECT_EQ(outlet<NSStepper>(u"rotationStepper")->doubleValue(), 2.7000000476837158);
    EXPECT_EQ(outlet<NSTextField>(u"xOffset")->doubleValue(), static_cast<double>(0.1F));
    EXPECT_EQ(outlet<NSStepper>(u"xOffsetStepper")->doubleValue(), static_cast<double>(0.1F));
    EXPECT_EQ(outlet<NSTextField>(u"yOffset")->doubleValue(), static_cast<double>(-12345678.9F));
    EXPECT_EQ(outlet<NSStepper>(u"yOffsetStepper")->doubleValue(), static_cast<double>(-12345678.9F));
    EXPECT_EQ(field("rotation")->text(), "2.7");
    EXPECT_EQ(field("xOffset")->text(), "0.1");
    EXPECT_EQ(field("yOffset")->text(), "-12345680");
}

TEST_F(LocationLoading, WritesNoNumberBack) {
    a->values.rotation = 2.7;
    begin();
    pane->updateLocation();
    EXPECT_EQ(a->values.rotation, 2.7);
}

TEST_F(LocationLoading, NoStoredNumberIsClampedByAStepper) {
    begin();
    for (const double stored : {-54321.5, 1e9, -5e12, 3e38}) {
        a->values.rotation = stored;
        a->values.offset = {stored, -stored};
        pane->updateLocation();
        const auto narrowed = static_cast<double>(static_cast<float>(stored));
        EXPECT_EQ(outlet<NSStepper>(u"rotationStepper")->doubleValue(), narrowed);
        EXPECT_EQ(outlet<NSStepper>(u"xOffsetStepper")->doubleValue(), narrowed);
        EXPECT_EQ(outlet<NSStepper>(u"yOffsetStepper")->doubleValue(), -narrowed);
    }
}

TEST_F(LocationLoading, ACodeThatNoCellHasLeavesTheChoiceWhoseTagIsThenWritten) {
    a->values.occurance = 3;
    begin();
    a->values.occurance = 17;
    pane->updateLocation();
    EXPECT_TRUE(choice("occuranceOddPages")->isChecked());
    EXPECT_EQ(a->values.occurance, 3);
}

TEST_F(LocationLoading, ACodeThatNoCellHasIsWrittenAsNoughtWhereNothingWasChosenBefore) {
    a->values.occurance = 17;
    begin();
    EXPECT_EQ(a->values.occurance, 0);
    EXPECT_FALSE(choice("occuranceEveryPage")->isChecked());
}

TEST_F(LocationSaving, StoresTheSinglePrecisionOfTheRotationFieldAndAssertsTheStoredOffsetAgain) {
    a->values.rotation = 2.7;
    a->values.offset = {0.1, 0.2};
    begin();
    outlet<NSTextField>(u"xOffset")->setDoubleValue(99);
    outlet<NSTextField>(u"yOffset")->setDoubleValue(99);
    pane->saveLocation();
    EXPECT_EQ(taken(), (MessageLog{"a setRotation 2.700000047683716", "a offset", "a setOffset 0.1 0.2"}));
    EXPECT_EQ(a->values.rotation, 2.7000000476837158);
}

TEST_F(LocationSaving, DoesNothingWithoutAConfiguration) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    taken();
    pane->saveLocation();
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(LocationSaving, StandsBetweenTheAppearanceAndTheStoring) {
    begin();
    pane->saveConfiguration();
    const auto messages = taken();
    ASSERT_GE(messages.size(), 4U);
    EXPECT_EQ(MessageLog(messages.end() - 4, messages.end()),
              (MessageLog{"a setRotation 0", "a offset", "a setOffset 0 0", "imprinter saveConfigurations"}));
}

TEST_F(LocationSaving, ATextThatIsNoNumberLeavesTheLastGoodOne) {
    a->values.rotation = 30;
    begin();
    type("rotation", "north");
    pane->saveLocation();
    EXPECT_EQ(a->values.rotation, 30);
}

// Labels and enabling

TEST_F(LocationLabels, AreSetFromTheTextsOfTheBundle) {
    begin();
    const std::pair<const char16_t*, const char16_t*> labels[] = {
        {u"positionLabel", u"Position:"},   {u"offsetLabel", u"Offset:"}, {u"rotationLabel", u"Rotation:"},
        {u"occuranceLabel", u"Occurance:"}, {u"pixelsXLabel", u"Pixels"}, {u"pixelsYLabel", u"Pixels"},
        {u"degreesLabel", u"Degrees"}};
    for (const auto& [name, text] : labels)
        outlet<NSTextField>(name)->setStringValue(u"x");
    const auto matrix = outlet<NSMatrix>(u"occuranceMatrix");
    for (const auto& cell : matrix->cells())
        cell->setTitle(u"x");
    outlet<NSTabView>(u"tabView")->tabViewItemAtIndex(0)->setLabel(u"x");

    pane->translateLocationUI();
    EXPECT_EQ(outlet<NSTabView>(u"tabView")->tabViewItemAtIndex(0)->label(), u"Location");
    for (const auto& [name, text] : labels)
        EXPECT_EQ(outlet<NSTextField>(name)->stringValue(), text);
    const char16_t* const titles[] = {u"Every Page", u"First Page Only", u"Even Pages", u"Odd Pages", u"Custom"};
    for (NSInteger tag = 0; tag < 5; ++tag)
        EXPECT_EQ(matrix->cellWithTag(tag)->title(), titles[tag]);
}

TEST_F(LocationEnabling, TouchesExactlyFifteenControlsAndLeavesTheOccurrenceAlone) {
    begin();
    std::vector<std::u16string> controls;
    for (const auto* name : positionButtons)
        controls.push_back(fromUtf8(name));
    for (const auto* name :
         {u"xOffset", u"xOffsetStepper", u"yOffset", u"yOffsetStepper", u"rotation", u"rotationStepper"})
        controls.emplace_back(name);
    ASSERT_EQ(controls.size(), 15U);
    const auto states = [this] {
        std::map<std::u16string, bool> all;
        for (const auto& [name, described] : pane->classTable()->outlets)
            if (const auto control = std::dynamic_pointer_cast<NSControl>(described.object(*pane)))
                all[name] = control->isEnabled();
        return all;
    };
    const auto before = states();
    for (const bool flag : {false, true}) {
        pane->enableLocationControls(flag);
        auto expected = before;
        for (const auto& name : controls)
            expected.at(name) = flag;
        EXPECT_EQ(states(), expected);
    }
    EXPECT_TRUE(before.at(u"occuranceMatrix"));
    EXPECT_TRUE(before.at(u"customOccurance"));
}

// Position

TEST_F(PositionButtons, HaveTheCodesOfTheNineAnchorsInReadingOrder) {
    begin();
    for (NSInteger code = 0; code < 9; ++code)
        EXPECT_EQ(outlet<NSButton>(fromUtf8(positionButtons[code]))->tag(), code);
}

TEST_F(PositionButtons, AClickTurnsItOnAndTheOtherEightOffWhateverTheirStates) {
    begin();
    for (NSInteger code = 0; code < 9; ++code) {
        for (const auto* name : positionButtons)
            outlet<NSButton>(fromUtf8(name))->setState(NSControlStateValueOn);
        taken();
        click(positionButtons[code]);
        EXPECT_EQ(buttonOn(), code);
        EXPECT_EQ(taken(),
                  MessageLog{"a setPosition " + std::to_string(code)} + nineTimes("a position") + MessageLog{stamped});
    }
}

TEST_F(PositionButtons, AClickOnTheOneThatIsOnKeepsItOn) {
    a->values.position = 4;
    begin();
    click("centerBtn");
    EXPECT_EQ(buttonOn(), 4);
    EXPECT_EQ(a->values.position, 4);
}

TEST_F(PositionButtons, AnUnknownCodeTurnsAllOff) {
    a->values.position = 77;
    begin();
    EXPECT_EQ(buttonOn(), -1);
    EXPECT_EQ(a->values.position, 77) << "the code is stored as it stands";
}

TEST_F(PositionButtons, WithoutAConfigurationTheOneTaggedNoughtIsOn) {
    a->values.position = 5;
    begin();
    pane->setCurrentConfiguration(nullptr);
    pane->updatePositionBtnState();
    EXPECT_EQ(buttonOn(), 0);
}

TEST_F(PositionButtons, ArrowKeysMoveAmongTheNineAndSpaceChooses) {
    a->values.position = 0;
    begin();
    named("topLeftBtn")->setFocus();
    const std::pair<Qt::Key, const char*> way[] = {{Qt::Key_Right, "topCenterBtn"},   {Qt::Key_Down, "centerBtn"},
                                                   {Qt::Key_Down, "bottomCenterBtn"}, {Qt::Key_Down, "bottomCenterBtn"},
                                                   {Qt::Key_Right, "bottomRightBtn"}, {Qt::Key_Up, "centerRightBtn"},
                                                   {Qt::Key_Left, "centerBtn"},       {Qt::Key_Left, "centerLeftBtn"}};
    for (const auto& [key, reached] : way) {
        press(key);
        EXPECT_EQ(focused(), reached);
    }
    EXPECT_EQ(a->values.position, 0) << "moving chooses nothing";
    press(Qt::Key_Space);
    EXPECT_EQ(a->values.position, 3);
    EXPECT_EQ(buttonOn(), 3);
}

TEST_F(PositionButtons, AreOneTabStopAtTheOneThatIsOn) {
    a->values.position = 7;
    begin();
    named("bottomCenterBtn")->setFocus();
    press(Qt::Key_Up);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "xOffset");
    press(Qt::Key_Backtab);
    EXPECT_EQ(focused(), "bottomCenterBtn");
}

TEST_F(PositionButtons, NameThemselvesToAssistiveTechnology) {
    begin();
    const char* const names[] = {"Top left",     "Top center",  "Top right",     "Center left", "Center",
                                 "Center right", "Bottom left", "Bottom center", "Bottom right"};
    for (int code = 0; code < 9; ++code)
        EXPECT_EQ(named(positionButtons[code])->accessibleName().toStdString(), names[code]);
}

TEST_F(PositionButtons, StandOnThePictureOfAPageAlsoWhereTextRunsFromTheRight) {
    begin();
    window->setLayoutDirection(Qt::RightToLeft);
    QApplication::processEvents();
    EXPECT_LT(named("topLeftBtn")->x(), named("topRightBtn")->x());
    EXPECT_LT(named("topLeftBtn")->y(), named("bottomLeftBtn")->y());
    EXPECT_EQ(named("topLeftBtn")->parentWidget(), named("page"));
}

// Offset

TEST_F(OffsetFields, AnEditWritesItsOwnCoordinateAndRefreshesThePreview) {
    a->values.offset = {1, 2};
    begin();
    type("xOffset", "12.5");
    EXPECT_EQ(taken(), MessageLog());
    press(Qt::Key_Tab);
    const auto messages = taken();
    EXPECT_EQ(MessageLog(messages.begin(), messages.begin() + 3),
              (MessageLog{"a offset", "a setOffset 12.5 2", stamped}));
    type("yOffset", "-3");
    press(Qt::Key_Return);
    EXPECT_EQ(a->values.offset.x, 12.5);
    EXPECT_EQ(a->values.offset.y, -3);
}

TEST_F(OffsetFields, StoreFractionsInDoublePrecision) {
    begin();
    type("xOffset", "0.1");
    press(Qt::Key_Return);
    EXPECT_EQ(a->values.offset.x, 0.1);
    pane->saveLocation();
    EXPECT_EQ(a->values.offset.x, 0.1);
}

TEST_F(OffsetFields, AFieldAndItsStepperStayInStep) {
    begin();
    type("xOffset", "20");
    press(Qt::Key_Return);
    step("xOffsetStepper", true);
    EXPECT_EQ(a->values.offset.x, 21);
    EXPECT_EQ(field("xOffset")->text(), "21");
    step("yOffsetStepper", false);
    EXPECT_EQ(a->values.offset.y, -1);
    EXPECT_EQ(field("yOffset")->text(), "-1");
}

TEST_F(OffsetFields, AnEmptiedOneStoresNoughtAndLeavesTheOtherCoordinate) {
    a->values.offset = {7, 8};
    begin();
    type("xOffset", "");
    press(Qt::Key_Return);
    EXPECT_EQ(a->values.offset.x, 0);
    EXPECT_EQ(a->values.offset.y, 8);
    EXPECT_EQ(field("xOffset")->text(), "0");
    EXPECT_EQ(outlet<NSStepper>(u"xOffsetStepper")->doubleValue(), 0);
    type("yOffset", "");
    press(Qt::Key_Tab);
    EXPECT_EQ(a->values.offset.y, 0);
    EXPECT_EQ(field("yOffset")->text(), "0");
}

TEST_F(OffsetFields, TakeTheDecimalsOfTheUsersLocale) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    a->values.offset = {1.25, 0};
    begin();
    EXPECT_EQ(field("xOffset")->text(), "1,25");
    type("xOffset", "2,75");
    press(Qt::Key_Return);
    EXPECT_EQ(a->values.offset.x, 2.75);
}

TEST_F(OffsetFields, ATextThatIsNoNumberKeepsTheFocusAndTheStoredValue) {
    a->values.offset = {7, 8};
    begin();
    type("xOffset", "left");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "xOffset");
    EXPECT_EQ(field("xOffset")->text(), "left");
    EXPECT_EQ(a->values.offset.x, 7);
    QTest::mouseClick(named<QTabWidget>("tabView")->tabBar(), Qt::LeftButton, {},
                      named<QTabWidget>("tabView")->tabBar()->tabRect(1).center());
    EXPECT_EQ(page(), "Location") << "the page is kept too";
    press(Qt::Key_Escape);
    EXPECT_EQ(field("xOffset")->text(), "7");
}

TEST_F(OffsetFields, WithoutAConfigurationReadNoughtAndWriteNothing) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    taken();
    for (const auto* key : {u"xOffsetValue", u"yOffsetValue", u"rotationValue"}) {
        setValueForKey(*pane, 5.0, key);
        EXPECT_EQ(doubleValue(valueForKey(*pane, key)), 0);
        EXPECT_NO_THROW(setValueForKey(*pane, std::monostate(), key));
    }
    EXPECT_EQ(taken(), MessageLog());
}

// Rotation

TEST_F(RotationField, TheBindingStoresTheFractionAndTheActionTheWholeDegreesAfterIt) {
    begin();
    type("rotation", "12.7");
    press(Qt::Key_Return);
    EXPECT_EQ(taken(), (MessageLog{"a setRotation 12.7", stamped, "a rotation", "a setRotation 12", stamped}));
    EXPECT_EQ(field("rotation")->text(), "12.7") << "the field still shows what was typed";
    EXPECT_EQ(outlet<NSStepper>(u"rotationStepper")->doubleValue(), 12);
    EXPECT_EQ(a->values.rotation, 12);
}

TEST_F(RotationField, EveryWayOfEndingTheEditSendsTheAction) {
    begin();
    type("rotation", "12.7");
    press(Qt::Key_Tab);
    EXPECT_EQ(a->values.rotation, 12);
    type("rotation", "13.7");
    named("xOffset")->setFocus();
    EXPECT_EQ(a->values.rotation, 13);
}

TEST_F(RotationField, LeavingThePaneStoresWhatTheFieldShowsInSinglePrecision) {
    begin();
    type("rotation", "12.7");
    press(Qt::Key_Return);
    pane->willUnselect();
    EXPECT_EQ(a->values.rotation, static_cast<double>(12.7F));
}

TEST_F(RotationField, AWholeNumberIsCutTowardNoughtForNegativesToo) {
    begin();
    type("rotation", "-12.7");
    press(Qt::Key_Return);
    EXPECT_EQ(a->values.rotation, -12);
    EXPECT_EQ(outlet<NSStepper>(u"rotationStepper")->doubleValue(), -12);
}

TEST_F(RotationField, TheStepperCountsByOneAndHandsWholeDegreesToTheField) {
    a->values.rotation = 44;
    begin();
    step("rotationStepper", true);
    EXPECT_EQ(field("rotation")->text(), "45");
    EXPECT_EQ(a->values.rotation, 45);
    step("rotationStepper", false);
    step("rotationStepper", false);
    EXPECT_EQ(a->values.rotation, 43);
}

TEST_F(RotationField, AStepFromAFractionStoresTheFractionAndThenWholeDegrees) {
    a->values.rotation = -0.5;
    begin();
    taken();
    step("rotationStepper", false);
    EXPECT_EQ(taken(), (MessageLog{"a setRotation -1.5", stamped, "a rotation", "a setRotation -1", stamped}));
    EXPECT_EQ(field("rotation")->text(), "-1");
}

TEST_F(RotationField, TheStepperCountsOnPastAFullTurn) {
    a->values.rotation = 359;
    begin();
    step("rotationStepper", true);
    step("rotationStepper", true);
    EXPECT_EQ(a->values.rotation, 361);
}

TEST_F(RotationField, AHeldArrowRepeats) {
    begin();
    auto* arrows = named("rotationStepper");
    QTest::mousePress(arrows, Qt::LeftButton, {}, {arrows->width() / 2, 3});
    EXPECT_TRUE(QTest::qWaitFor([this] { return a->values.rotation >= 3; }));
    QTest::mouseRelease(arrows, Qt::LeftButton, {}, {arrows->width() / 2, 3});
}

TEST_F(RotationField, AnEmptiedOneStoresNoughtAndRefreshesThePreview) {
    a->values.rotation = 30;
    begin();
    type("rotation", "");
    taken();
    press(Qt::Key_Return);
    const auto messages = taken();
    ASSERT_GE(messages.size(), 2U);
    EXPECT_EQ(messages[0], "a setRotation 0");
    EXPECT_EQ(messages[1], stamped);
    EXPECT_EQ(a->values.rotation, 0);
    EXPECT_EQ(field("rotation")->text(), "0");
}

TEST_F(RotationField, ASenderThatIsNoStepperMeansTheField) {
    begin();
    outlet<NSTextField>(u"rotation")->setDoubleValue(12.7);
    outlet<NSStepper>(u"rotationStepper")->setDoubleValue(50);
    pane->onRotationChanged(outlet<NSTextField>(u"rotation"));
    EXPECT_EQ(a->values.rotation, 12);
    EXPECT_EQ(outlet<NSStepper>(u"rotationStepper")->doubleValue(), 12);
    outlet<NSStepper>(u"rotationStepper")->setDoubleValue(50);
    pane->onRotationChanged(outlet<NSStepper>(u"xOffsetStepper"));
    EXPECT_EQ(a->values.rotation, 50) << "any stepper means the rotation's";
}

// Defaults for nil

TEST_F(NilValues, OnlyTheRotationRefreshesThePreview) {
    a->values.offset = {7, 8};
    begin();
    const auto sent = [this](const char16_t* key) {
        taken();
        pane->setNilValueForKey(key);
        return taken();
    };
    EXPECT_EQ(sent(u"xOffsetValue"), (MessageLog{"a offset", "a setOffset 0 8"}));
    EXPECT_EQ(sent(u"yOffsetValue"), (MessageLog{"a offset", "a setOffset 0 0"}));
    const auto rotated = sent(u"rotationValue");
    ASSERT_GE(rotated.size(), 2U);
    EXPECT_EQ(rotated[0], "a setRotation 0");
    EXPECT_EQ(rotated[1], stamped);
    EXPECT_EQ(sent(u"borderThicknessValue"), MessageLog{"a setBorderThickness 1"});
    EXPECT_EQ(sent(u"fontSizeValue"), MessageLog());
    EXPECT_EQ(sent(u"fontStrokeWidthValue"), MessageLog());
}

TEST_F(NilValues, TheCurrentFontFallsTo12PointsAndAStrokeOfOne) {
    begin();
    const auto font = std::make_shared<support::PlainFont>(u"Face", 40);
    font->stroke = 5;
    pane->setCurrentFont(font);
    pane->setNilValueForKey(u"fontSizeValue");
    EXPECT_EQ(font->size, 12);
    EXPECT_EQ(font->stroke, 5);
    pane->setNilValueForKey(u"fontStrokeWidthValue");
    EXPECT_EQ(font->stroke, 1);
}

TEST_F(NilValues, TheFillOpacityReachesTheInheritedHandlerAndRaises) {
    begin();
    EXPECT_THROW(pane->setNilValueForKey(u"fillOpacityValue"), NSInvalidArgumentException);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(NilValues, AnyOtherKeyRaisesAndCaseMatters) {
    begin();
    for (const auto* key : {u"", u"xoffsetvalue", u"XOffsetValue", u"name"})
        EXPECT_THROW(pane->setNilValueForKey(key), NSInvalidArgumentException);
}

TEST_F(NilValues, WithoutAConfigurationNothingIsWritten) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    taken();
    for (const auto* key : {u"xOffsetValue", u"yOffsetValue", u"rotationValue", u"borderThicknessValue"})
        EXPECT_NO_THROW(pane->setNilValueForKey(key));
    EXPECT_EQ(taken(), MessageLog());
}

// The fill opacity is shown under a key that has no setter.

TEST_F(FillOpacity, CannotBeWrittenUnderItsKey) {
    begin();
    EXPECT_THROW(setValueForKey(*pane, 0.5, u"fillOpacityValue"), NSException);
    EXPECT_THROW(setValueForKey(*pane, std::monostate(), u"fillOpacityValue"), NSException);
    try {
        setValueForKey(*pane, std::monostate(), u"fillOpacityValue");
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), "NSUnknownKeyException");
    }
}

TEST_F(FillOpacity, IsShownAgainWheneverAConfigurationWasMadeCurrent) {
    a->values.fillOpacity = 0.4;
    begin();
    EXPECT_EQ(field("fillOpacityField")->text(), "40%");
    pane->setCurrentConfiguration(nullptr);
    EXPECT_EQ(field("fillOpacityField")->text(), "100%");
    setValueForKey(*pane, std::shared_ptr<NSObject>(a), u"currentConfiguration");
    EXPECT_EQ(field("fillOpacityField")->text(), "40%");
}

TEST_F(FillOpacity, AnEditGoesStraightToItsSetterAndLeavesThePreview) {
    begin();
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
    taken();
    type("fillOpacityField", "55");
    press(Qt::Key_Return);
    const auto messages = taken();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.front(), "a setFillOpacity 0.55");
    EXPECT_EQ(std::count(messages.begin(), messages.end(), stamped), 0);
    step("fillOpacityStepper", true);
    EXPECT_NEAR(a->values.fillOpacity, 0.6, 1e-12);
    EXPECT_EQ(field("fillOpacityField")->text(), "60%");
}

TEST_F(FillOpacity, AnEmptiedFieldShowsTheStoredValueAgain) {
    a->values.fillOpacity = 0.4;
    begin();
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
    taken();
    type("fillOpacityField", "");
    press(Qt::Key_Return);
    EXPECT_EQ(field("fillOpacityField")->text(), "40%");
    EXPECT_EQ(taken(), MessageLog{"a fillOpacity"});
}

// Occurrence

TEST_F(OccurrenceChoice, AClickStoresTheCodeReadsItBackAndRefreshesThePreview) {
    begin();
    const char* const choices[] = {"occuranceEveryPage", "occuranceFirstPage", "occuranceEvenPages",
                                   "occuranceOddPages"};
    for (int code = 3; code >= 0; --code) {
        taken();
        click(choices[code]);
        EXPECT_EQ(taken(), (MessageLog{"a setOccurance " + std::to_string(code), "a occurance", stamped}));
        EXPECT_TRUE(field("customOccurance")->isHidden());
    }
}

TEST_F(OccurrenceChoice, CustomShowsTheStoredListAndTakesTheFocus) {
    a->values.customOccurance = u"1,2,4";
    begin();
    EXPECT_TRUE(field("customOccurance")->isHidden());
    click("occuranceCustom");
    EXPECT_EQ(taken(), (MessageLog{"a setOccurance 4", "a occurance", "a customOccurance", stamped}));
    EXPECT_TRUE(field("customOccurance")->isVisible());
    EXPECT_EQ(field("customOccurance")->text(), "1,2,4");
    EXPECT_EQ(focused(), "customOccurance");
}

TEST_F(OccurrenceChoice, AMissingListIsShownAsNothing) {
    begin();
    click("occuranceCustom");
    EXPECT_EQ(field("customOccurance")->text(), "");
    EXPECT_EQ(a->values.customOccurance, std::nullopt);
}

TEST_F(OccurrenceChoice, ArrowKeysChooseAndReachTheField) {
    a->values.occurance = 2;
    begin();
    choice("occuranceEvenPages")->setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(a->values.occurance, 3);
    press(Qt::Key_Up);
    EXPECT_EQ(a->values.occurance, 2);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(a->values.occurance, 4);
    EXPECT_EQ(focused(), "customOccurance");
}

TEST_F(OccurrenceChoice, HidingTheFieldEmptiesItOnTheScreenAndKeepsTheList) {
    begin();
    click("occuranceCustom");
    QTest::keyClicks(window->focusWidget(), "3,5");
    taken();
    click("occuranceEveryPage");
    EXPECT_EQ(taken(), (MessageLog{"a titleTokens", "a setOccurance 0", "a occurance", stamped}))
        << "the text-change handler runs not";
    EXPECT_TRUE(field("customOccurance")->isHidden());
    EXPECT_EQ(field("customOccurance")->text(), "");
    EXPECT_EQ(a->values.customOccurance, u"3,5");
    click("occuranceCustom");
    EXPECT_EQ(field("customOccurance")->text(), "3,5");
    EXPECT_EQ(focused(), "customOccurance");
}

TEST_F(OccurrenceChoice, SelectingARowWithACustomListMovesTheFocusToTheList) {
    begin();
    a->values.occurance = 4;
    a->values.customOccurance = u"9";
    auto* table = named<QAbstractItemView>("tableView");
    const auto clickRow = [&](int row) {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                          table->visualRect(table->model()->index(row, 0)).center());
    };
    clickRow(1);
    EXPECT_TRUE(field("customOccurance")->isHidden());
    clickRow(0);
    EXPECT_EQ(focused(), "customOccurance");
    EXPECT_EQ(field("customOccurance")->text(), "9");
}

TEST_F(OccurrenceChoice, AListOnAPageThatIsNotShownTakesNoFocus) {
    begin();
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
    named("tableView")->setFocus();
    a->values.occurance = 4;
    pane->updateLocation();
    EXPECT_EQ(focused(), "tableView");
}

TEST_F(OccurrenceChoice, IsMadeBeforeThePaneStandsInAWindow) {
    a->values.occurance = 4;
    a->values.customOccurance = u"1";
    registerHost();
    load();
    EXPECT_FALSE(outlet<NSTextField>(u"customOccurance")->isHidden());
    EXPECT_EQ(outlet<NSTextField>(u"customOccurance")->stringValue(), u"1");
}

TEST_F(OccurrenceChoice, WithoutAConfigurationTheFieldIsHidden) {
    begin();
    click("occuranceCustom");
    pane->setCurrentConfiguration(nullptr);
    taken();
    pane->onOccuranceChanged(outlet<NSMatrix>(u"occuranceMatrix"));
    EXPECT_TRUE(outlet<NSTextField>(u"customOccurance")->isHidden());
    EXPECT_EQ(taken(), MessageLog());
}

// The custom pages

TEST_F(CustomPages, AreNormalisedAndStoredAtEveryKeystroke) {
    begin();
    click("occuranceCustom");
    taken();
    QTest::keyClicks(window->focusWidget(), "0,3a,");
    EXPECT_EQ(taken(), (MessageLog{"a setCustomOccurance ", "a setCustomOccurance ", "a setCustomOccurance 3",
                                   "a setCustomOccurance 3", "a setCustomOccurance 3,"}));
    EXPECT_EQ(field("customOccurance")->text(), "3,");
}

TEST_F(CustomPages, BlanksAloneAreStoredAsNothing) {
    begin();
    click("occuranceCustom");
    QTest::keyClicks(window->focusWidget(), "  ");
    EXPECT_EQ(a->values.customOccurance, u"");
    EXPECT_EQ(field("customOccurance")->text(), "");
}

TEST_F(CustomPages, TypedCharacterByCharacterWithTheCaretAnywhereEndAsTheRulesSay) {
    begin();
    click("occuranceCustom");
    auto* edit = field("customOccurance");
    std::mt19937 numbers(41);
    const auto below = [&](std::size_t count) { return static_cast<qsizetype>(numbers() % count); };
    const QString characters = QStringLiteral("0123456789,,,- a");
    QString text;
    for (int i = 0; i < 600; ++i) {
        const auto caret = below(static_cast<std::size_t>(text.size()) + 1);
        edit->setCursorPosition(static_cast<int>(caret));
        const auto fromEnd = text.size() - caret;
        if (below(8) == 0) {
            QTest::keyClick(edit, Qt::Key_Backspace);
            if (caret > 0)
                text.remove(caret - 1, 1);
        } else {
            const auto character = characters[below(static_cast<std::size_t>(characters.size()))];
            QTest::keyClicks(edit, character);
            text.insert(caret, character);
        }
        text = QString::fromStdU16String(pane::normalizedPageList(text.toStdU16String()));
        ASSERT_EQ(edit->text(), text) << i;
        ASSERT_EQ(a->values.customOccurance, text.toStdU16String());
        ASSERT_EQ(edit->cursorPosition(), std::max<qsizetype>(text.size() - fromEnd, 0)) << i;
        ASSERT_TRUE(edit->hasFocus());
    }
    EXPECT_GT(text.size(), 20) << "too little was typed to show anything";
}

TEST_F(CustomPages, AListTypedPlainlyEndsAsTyped) {
    begin();
    click("occuranceCustom");
    QTest::keyClicks(window->focusWidget(), "12,7,30,7");
    EXPECT_EQ(a->values.customOccurance, u"12,7,30,7");
}

TEST_F(CustomPages, AnEmptiedFieldStoresTheEmptyList) {
    a->values.occurance = 4;
    a->values.customOccurance = u"12";
    begin();
    type("customOccurance", "");
    EXPECT_EQ(a->values.customOccurance, u"");
}

TEST_F(CustomPages, BeyondTheLimitAreRefusedVisiblyAndNeverCut) {
    std::u16string list;
    while (list.size() < 29998)
        list += u"12,";
    list.resize(29998, u'7');
    list.back() = u'7';
    a->values.occurance = 4;
    a->values.customOccurance = list;
    begin();
    auto* edit = field("customOccurance");
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_End);
    QTest::keyClicks(edit, "89");
    EXPECT_EQ(a->values.customOccurance->size(), 30000U);
    QTest::keyClicks(edit, "1");
    EXPECT_EQ(a->values.customOccurance, list + u"89");
    EXPECT_EQ(edit->text().size(), 30000);
    EXPECT_EQ(edit->accessibleDescription(), "No more than 30,000 characters fit in here.");
}

TEST_F(CustomPages, ALongerListThatIsStoredIsShownWholeAndNotCut) {
    std::u16string list;
    while (list.size() < 40000)
        list += u"1,2,";
    a->values.occurance = 4;
    a->values.customOccurance = list;
    begin();
    EXPECT_EQ(field("customOccurance")->text().toStdU16String(), list);
    field("customOccurance")->setFocus();
    QTest::keyClick(field("customOccurance"), Qt::Key_End);
    QTest::keyClick(field("customOccurance"), Qt::Key_Backspace);
    EXPECT_EQ(a->values.customOccurance, list.substr(0, list.size() - 1));
}

TEST_F(CustomPages, AChangeOfAnotherFieldIsNoneOfTheirs) {
    a->values.occurance = 4;
    a->values.customOccurance = u"5";
    begin();
    type("xOffset", "1");
    EXPECT_EQ(taken(), MessageLog());
    EXPECT_EQ(a->values.customOccurance, u"5");
}

// The guards

TEST_F(CustomPagesGuards, RefuseToLeaveThePageForTheKeyboardToo) {
    begin();
    click("occuranceCustom");
    auto* tabs = named<QTabWidget>("tabView");
    const auto refused = [&](const char* how) {
        EXPECT_EQ(page(), "Location") << how;
        EXPECT_EQ(focused(), "customOccurance") << how;
        EXPECT_EQ(alerts.size(), 0U) << how;
        queue->advance(0);
        EXPECT_EQ(alerts, std::vector<std::u16string>{u"Custom occurance requires a value"}) << how;
        alerts.clear();
    };
    QTest::keyClick(field("customOccurance"), Qt::Key_Tab, Qt::ControlModifier);
    refused("Ctrl+Tab in the field");
    tabs->tabBar()->setFocus();
    QTest::keyClick(tabs->tabBar(), Qt::Key_Right);
    refused("the right arrow on the tabs");
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
    refused("the mouse");

    QTest::keyClicks(window->focusWidget(), "1");
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(page(), "Appearance");
}

TEST_F(CustomPagesGuards, AListTypedAndTakenAwayAgainIsBlank) {
    begin();
    click("occuranceCustom");
    QTest::keyClicks(window->focusWidget(), "1");
    press(Qt::Key_Backspace);
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(page(), "Location");
}

TEST_F(CustomPagesGuards, LeavingThePaneWithAListEmptiedFallsBackToEveryPage) {
    a->values.occurance = 4;
    a->values.customOccurance = u"1";
    begin();
    type("customOccurance", "");
    EXPECT_EQ(pane->shouldUnselect(), NSPreferencePaneUnselectReply::now);
    EXPECT_EQ(a->values.occurance, 0);
}

// Read and written under their keys

TEST_F(OffsetFields, AreReadUnderTheirKeys) {
    a->values.offset = {1.5, -2.25};
    a->values.rotation = 0.125;
    begin();
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"xOffsetValue")), 1.5);
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"yOffsetValue")), -2.25);
    EXPECT_EQ(std::get<double>(valueForKey(*pane, u"rotationValue")), 0.125);
}

TEST_F(OffsetFields, TheSecondCoordinateIsWrittenBesideTheStoredFirst) {
    a->values.offset = {7, 8};
    begin();
    setValueForKey(*pane, 5.0, u"yOffsetValue");
    const auto messages = taken();
    ASSERT_GE(messages.size(), 3U);
    EXPECT_EQ((MessageLog(messages.begin(), messages.begin() + 3)),
              (MessageLog{"a offset", "a setOffset 7 5", stamped}));
}

TEST_F(OffsetFields, AnEmptiedOneLeavesThePreview) {
    a->values.offset = {7, 8};
    begin();
    type("xOffset", "");
    taken();
    press(Qt::Key_Return);
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), stamped), 0);
    EXPECT_EQ(a->values.offset.x, 0);
}

TEST_F(RotationField, TakesTheDecimalsOfTheUsersLocale) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    begin();
    type("rotation", "12,7");
    press(Qt::Key_Return);
    EXPECT_EQ(taken(), (MessageLog{"a setRotation 12.7", stamped, "a rotation", "a setRotation 12", stamped}));
    EXPECT_EQ(field("rotation")->text(), "12,7");
    pane->saveLocation();
    EXPECT_EQ(a->values.rotation, static_cast<double>(12.7F));
}

TEST_F(RotationField, ANumberTooLargeForASinglePrecisionIsRefused) {
    begin();
    type("rotation", "1000001");
    taken();
    press(Qt::Key_Return);
    EXPECT_EQ(taken(), MessageLog());
    EXPECT_EQ(focused(), "rotation");
}

TEST_F(RotationField, AStoredNumberBeyondSinglePrecisionIsSavedAsItsLargest) {
    a->values.rotation = 1e300;
    begin();
    outlet<NSTextField>(u"rotation")->setDoubleValue(1e300);
    pane->saveLocation();
    EXPECT_EQ(a->values.rotation, static_cast<double>(std::numeric_limits<float>::max()));
}

TEST_F(LocationLabels, WithoutAPageOfTheLocationNothingCanBeLabelled) {
    begin();
    const auto without = std::make_shared<NSTabView>();
    pane->classTable()->outlet(u"tabView")->connect(*pane, without);
    EXPECT_THROW(pane->translateLocationUI(), NSException);
}

TEST_F(CustomPages, WithoutAConfigurationAreWrittenNowhere) {
    begin();
    pane->setCurrentConfiguration(nullptr);
    taken();
    pane->customOccuranceTextChanged();
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(CustomPages, APastedListKeepsItsNegativeNumbers) {
    begin();
    click("occuranceCustom");
    taken();
    field("customOccurance")->insert(QStringLiteral("1,-2, 5"));
    EXPECT_EQ(taken(), MessageLog{"a setCustomOccurance 1,-2,5"});
    EXPECT_EQ(field("customOccurance")->text(), "1,-2,5");
}

} // namespace
