// SPDX-License-Identifier: MIT
#include "platform_peers.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSColorWell.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSTokenField.h>
#include <Foundation/NSException.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace platform;
using namespace platform_test;

TEST(TextOfANumber, HasSevenOrSixteenDigitsAndNoGrouping) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const struct {
        NSValue value;
        std::u16string expected;
    } table[] = {
        {NSValue(), u""},
        {NSInteger(12), u"12"},
        {NSInteger(-1234567890), u"-1234567890"},
        {std::numeric_limits<NSInteger>::min(), u"-9223372036854775808"},
        {true, u"1"},
        {false, u"0"},
        {12.0f, u"12"},
        {2.7f, u"2.7"},
        {0.1f, u"0.1"},
        {-0.5f, u"-0.5"},
        {0.0f, u"0"},
        {1234567.0f, u"1234567"},
        {12345678.0f, u"1.234568e+07"},
        {1e7f, u"1e+07"},
        {0.0001f, u"0.0001"},
        {0.00001f, u"1e-05"},
        {16777.216f, u"16777.22"},
        {infinity, u"inf"},
        {-infinity, u"-inf"},
        {std::nanf(""), u"nan"},
        {12.0, u"12"},
        {2.7, u"2.7"},
        {0.1, u"0.1"},
        {1.0 / 3, u"0.3333333333333333"},
        {static_cast<double>(2.7f), u"2.700000047683716"},
        {1234567890123456.0, u"1234567890123456"},
        {1e16, u"1e+16"},
        {std::u16string(u"as it is "), u"as it is "},
        {std::shared_ptr<NSObject>(), u""},
    };
    for (const auto& row : table)
        EXPECT_EQ(textOfValue(row.value), row.expected);
}

TEST(ControlValue, IsNothingAtFirst) {
    const auto control = std::make_shared<NSControl>();
    EXPECT_EQ(control->stringValue(), u"");
    EXPECT_EQ(control->integerValue(), 0);
    EXPECT_EQ(control->floatValue(), 0);
    EXPECT_EQ(control->doubleValue(), 0);
}

TEST(ControlValue, OfATextIsReadFromItsStart) {
    const struct {
        std::u16string text;
        NSInteger whole;
        double real;
    } table[] = {
        {u"", 0, 0},          {u"abc", 0, 0},         {u"2.7x", 2, 2.7}, {u"1e3", 1, 1000},
        {u" 12.7", 12, 12.7}, {u"-12.7", -12, -12.7}, {u"1,5", 1, 1},
    };
    const auto control = std::make_shared<NSControl>();
    for (const auto& row : table) {
        control->setStringValue(row.text);
        EXPECT_EQ(control->stringValue(), row.text);
        EXPECT_EQ(control->integerValue(), row.whole);
        EXPECT_EQ(control->doubleValue(), row.real);
        EXPECT_EQ(control->floatValue(), static_cast<float>(row.real));
    }
}

TEST(ControlValue, OfANumberIsTruncatedTowardZeroForAWholeOne) {
    constexpr auto largest = std::numeric_limits<NSInteger>::max();
    constexpr auto smallest = std::numeric_limits<NSInteger>::min();
    const struct {
        double number;
        NSInteger expected;
    } table[] = {
        {12.7, 12},
        {-12.7, -12},
        {0.9, 0},
        {-0.9, 0},
        {1e30, largest},
        {-1e30, smallest},
        {9223372036854775808.0, largest},
        {-9223372036854775808.0, smallest},
        {std::nan(""), 0},
    };
    const auto control = std::make_shared<NSControl>();
    for (const auto& row : table) {
        control->setDoubleValue(row.number);
        EXPECT_EQ(control->integerValue(), row.expected) << row.number;
    }
    control->setFloatValue(-2.5f);
    EXPECT_EQ(control->integerValue(), -2);
}

TEST(ControlValue, SetAsANumberIsReadBackExactlyAndNotThroughItsText) {
    const auto control = std::make_shared<NSControl>();
    for (const float number : {2.7f, 0.1f, 12345678.0f, 1e-30f, 16777.216f, -0.3333333f}) {
        control->setFloatValue(number);
        EXPECT_EQ(control->floatValue(), number);
        EXPECT_EQ(control->doubleValue(), static_cast<double>(number)) << "widened, not read from the text";
    }
    control->setDoubleValue(1.0 / 3);
    EXPECT_EQ(control->doubleValue(), 1.0 / 3);
    EXPECT_EQ(control->floatValue(), 1.0f / 3);
    control->setIntegerValue(9007199254740993);
    EXPECT_EQ(control->integerValue(), 9007199254740993) << "more digits than a real number holds";
}

TEST(ControlValue, ReadAsSinglePrecisionIsNarrowed) {
    const auto control = std::make_shared<NSControl>();
    control->setStringValue(u"2.7");
    EXPECT_EQ(static_cast<double>(control->floatValue()), 2.7000000476837158);
}

TEST(ControlTag, IsNoughtAtFirstAndMinusOneForAPlainView) {
    const auto control = std::make_shared<NSControl>();
    EXPECT_EQ(control->tag(), 0);
    control->setTag(-7);
    EXPECT_EQ(control->tag(), -7);
    EXPECT_EQ(std::make_shared<NSView>()->tag(), -1);
    EXPECT_EQ(control->cell()->tag(), 0);
}

TEST(Setter, SendsNoAction) {
    const auto listener = std::make_shared<Listener>();
    const auto button = controlFor<NSButton>(listener);
    button->setToggles(true);
    button->setState(NSControlStateValueOn);
    button->setTitle(u"Stamp");
    const auto matrix = controlFor<NSMatrix>(listener);
    matrix->addCell(u"All", 1);
    matrix->selectCellWithTag(1);
    const auto segments = controlFor<NSSegmentedControl>(listener);
    segments->setSegmentCount(3);
    segments->setSelectedForSegment(true, 1);
    const auto stepper = controlFor<NSStepper>(listener);
    stepper->setRange(-10, 10);
    const auto well = controlFor<NSColorWell>(listener);
    well->setColor(NSColor::whiteColor());
    const auto tokens = controlFor<NSTokenField>(listener);
    tokens->setObjectValue(
        std::make_shared<const std::vector<RepresentedObject>>(std::vector<RepresentedObject>{u"text"}));
    const std::shared_ptr<NSControl> controls[] = {
        button, matrix, segments, stepper, well, tokens, controlFor<NSTextField>(listener)};
    for (const auto& control : controls) {
        control->setIntegerValue(3);
        control->setFloatValue(2.7f);
        control->setDoubleValue(2.7);
        control->setStringValue(u"4");
        control->setTag(5);
        control->setEnabled(false);
        control->setEnabled(true);
        control->setHidden(true);
        control->setHidden(false);
    }
    EXPECT_TRUE(listener->senders.empty());
}

TEST(Setter, PostsNoNotification) {
    std::vector<std::u16string> posted;
    auto& center = NSNotificationCenter::defaultCenter();
    const auto token = center.addObserverForNameObjectQueueUsingBlock(
        {}, nullptr, nullptr, [&](const NSNotification& notification) { posted.push_back(notification.name); });
    const auto field = std::make_shared<NSTextField>();
    field->setStringValue(u"text");
    field->setFloatValue(2.7f);
    field->setEnabled(false);
    center.removeObserver(token);
    EXPECT_TRUE(posted.empty());
}

TEST(SendingTheAction, GivesTheControlToItsTarget) {
    const auto listener = std::make_shared<Listener>();
    const auto control = controlFor<NSControl>(listener);
    control->sendAction();
    ASSERT_EQ(listener->senders.size(), 1u);
    EXPECT_EQ(listener->senders[0], control);
}

TEST(SendingTheAction, DoesNothingWithoutTargetOrAction) {
    auto listener = std::make_shared<Listener>();
    const auto control = controlFor<NSControl>(listener);
    control->setAction(u"");
    control->sendAction();
    EXPECT_TRUE(listener->senders.empty());
    control->setAction(u"onAction:");
    control->setTarget(nullptr);
    control->sendAction();
    EXPECT_TRUE(listener->senders.empty());
    control->setTarget(listener);
    const std::weak_ptr<Listener> watched = listener;
    listener.reset();
    EXPECT_TRUE(watched.expired()) << "the target is looked on weakly";
    EXPECT_NO_THROW(control->sendAction());
    EXPECT_EQ(control->target(), nullptr);
}

TEST(SendingTheAction, LogsAnActionThatTheTargetDoesNotHave) {
    const auto listener = std::make_shared<Listener>();
    const auto control = controlFor<NSControl>(listener);
    control->setAction(u"onNothing:");
    testing::internal::CaptureStderr();
    EXPECT_NO_THROW(control->sendAction());
    control->setTarget(std::make_shared<NSObject>()); // of no registered class, and gone at once
    EXPECT_NO_THROW(control->sendAction());
    const auto log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("UnitListener has no action onNothing:"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

TEST(SendingTheAction, LetsAnExceptionOut) {
    const auto listener = std::make_shared<Listener>();
    listener->handler = [] { throw NSRangeException("no row 7"); };
    EXPECT_THROW(controlFor<NSControl>(listener)->sendAction(), NSRangeException);
}

TEST(ControlWithAPeer, ShowsWhatWasSetBeforeAndAfterItCame) {
    const auto control = std::make_shared<NSControl>();
    const auto menu = std::make_shared<NSMenu>();
    control->setHidden(true);
    control->setEnabled(false);
    control->setToolTip(u"tip");
    control->setAccessibilityLabel(u"label");
    control->setMenu(menu);
    control->registerForDraggedTypes({u"type"});
    auto& peer = give<FakePeer>(*control);
    EXPECT_TRUE(peer.hidden);
    EXPECT_FALSE(peer.enabled);
    EXPECT_EQ(peer.toolTip, u"tip");
    EXPECT_EQ(peer.accessibilityLabel, u"label");
    EXPECT_EQ(peer.menu, menu);
    EXPECT_EQ(peer.draggedTypes, std::vector<std::u16string>{u"type"});
    control->setHidden(false);
    control->setEnabled(true);
    control->setToolTip(u"");
    control->setAccessibilityLabel(u"");
    control->setMenu(nullptr);
    control->registerForDraggedTypes({});
    EXPECT_FALSE(peer.hidden);
    EXPECT_TRUE(peer.enabled);
    EXPECT_EQ(peer.toolTip, u"");
    EXPECT_EQ(peer.accessibilityLabel, u"");
    EXPECT_EQ(peer.menu, nullptr);
    EXPECT_TRUE(peer.draggedTypes.empty());
}

TEST(ControlWithoutItsPeer, KeepsItsValues) {
    const auto field = std::make_shared<NSTextField>();
    give<FakeTextPeer>(*field);
    field->setStringValue(u"text");
    field->setPeer(nullptr);
    EXPECT_EQ(field->stringValue(), u"text");
    EXPECT_NO_THROW(field->setStringValue(u"other"));
    EXPECT_EQ(field->window(), nullptr);
}

TEST(CellOfAControl, MayOutliveIt) {
    auto field = std::make_shared<NSTokenField>();
    const auto cell = field->cell();
    auto& peer = give<FakeTextPeer>(*field);
    cell->setWraps(true);
    EXPECT_TRUE(peer.wraps);
    field.reset();
    cell->setWraps(false);
    cell->setTitle(u"title");
    EXPECT_EQ(cell->title(), u"title");
}

TEST(CellOfAMatrix, MayOutliveIt) {
    auto matrix = std::make_shared<NSMatrix>();
    const auto cell = matrix->addCell(u"All", 1);
    matrix.reset();
    cell->setTitle(u"Odd");
    EXPECT_EQ(cell->title(), u"Odd");
}

TEST(Button, TurnsItsStateOverBeforeTheActionIsSent) {
    const auto listener = std::make_shared<Listener>();
    const auto button = controlFor<NSButton>(listener);
    auto& peer = give<FakeButtonPeer>(*button);
    button->setToggles(true);
    std::vector<NSInteger> seen;
    listener->handler = [&] { seen.push_back(button->state()); };
    button->performClick();
    EXPECT_TRUE(peer.on);
    button->performClick();
    EXPECT_FALSE(peer.on);
    EXPECT_EQ(seen, (std::vector<NSInteger>{NSControlStateValueOn, NSControlStateValueOff}));
}

TEST(Button, ThatIsPushedKeepsItsState) {
    const auto listener = std::make_shared<Listener>();
    const auto button = controlFor<NSButton>(listener);
    button->performClick();
    EXPECT_EQ(button->state(), NSControlStateValueOff);
    EXPECT_EQ(listener->senders.size(), 1u);
}

TEST(Button, ThatIsDisabledDoesNothing) {
    const auto listener = std::make_shared<Listener>();
    const auto button = controlFor<NSButton>(listener);
    button->setToggles(true);
    button->setEnabled(false);
    button->performClick();
    EXPECT_EQ(button->state(), NSControlStateValueOff);
    EXPECT_TRUE(listener->senders.empty());
}

TEST(Button, MayBeSetBackByItsAction) {
    const auto listener = std::make_shared<Listener>();
    const auto button = controlFor<NSButton>(listener);
    auto& peer = give<FakeButtonPeer>(*button);
    button->setToggles(true);
    button->setState(NSControlStateValueOn);
    listener->handler = [&] { button->setState(NSControlStateValueOn); };
    button->performClick();
    EXPECT_EQ(button->state(), NSControlStateValueOn);
    EXPECT_TRUE(peer.on);
}

TEST(Button, ShowsTitleAndStateInANewPeer) {
    const auto button = std::make_shared<NSButton>();
    button->setTitle(u"Stamp");
    button->setState(NSControlStateValueOn);
    const auto& peer = give<FakeButtonPeer>(*button);
    EXPECT_EQ(peer.title, u"Stamp");
    EXPECT_TRUE(peer.on);
}

TEST(Stepper, CountsFromNoughtToFiftyNineByOneAtFirst) {
    const auto stepper = std::make_shared<NSStepper>();
    EXPECT_EQ(stepper->minValue(), 0);
    EXPECT_EQ(stepper->maxValue(), 59);
    EXPECT_EQ(stepper->increment(), 1);
    EXPECT_EQ(stepper->doubleValue(), 0);
}

TEST(Stepper, ClampsAValueOutsideItsRange) {
    const auto stepper = std::make_shared<NSStepper>();
    stepper->setDoubleValue(60);
    EXPECT_EQ(stepper->doubleValue(), 59);
    stepper->setIntegerValue(-1);
    EXPECT_EQ(stepper->integerValue(), 0);
    stepper->setRange(-1000, 1000);
    stepper->setFloatValue(-1e6f);
    EXPECT_EQ(stepper->doubleValue(), -1000);
    stepper->setRange(-10, 10);
    EXPECT_EQ(stepper->doubleValue(), -10) << "the value set before";
    stepper->setRange(5, 3);
    EXPECT_EQ(stepper->doubleValue(), 5) << "a range the wrong way round is its minimum";
}

TEST(Stepper, ReadsBackExactlyWhatLiesInItsRange) {
    const auto stepper = std::make_shared<NSStepper>();
    stepper->setFloatValue(2.7f);
    EXPECT_EQ(stepper->floatValue(), 2.7f);
    EXPECT_EQ(stepper->stringValue(), u"2.7");
}

TEST(Stepper, StepsByItsIncrementWithinTheRangeThenSends) {
    const auto listener = std::make_shared<Listener>();
    const auto stepper = controlFor<NSStepper>(listener);
    stepper->setRange(-1, 1);
    stepper->setIncrement(0.75);
    std::vector<double> seen;
    listener->handler = [&] { seen.push_back(stepper->doubleValue()); };
    for (const int direction : {1, 1, 1, -1, -1, -1, -1})
        stepper->userSteps(direction);
    EXPECT_EQ(seen, (std::vector<double>{0.75, 1, 1, 0.25, -0.5, -1, -1}));
}

TEST(Stepper, ThatIsDisabledDoesNothing) {
    const auto listener = std::make_shared<Listener>();
    const auto stepper = controlFor<NSStepper>(listener);
    stepper->setEnabled(false);
    stepper->userSteps(1);
    EXPECT_EQ(stepper->doubleValue(), 0);
    EXPECT_TRUE(listener->senders.empty());
}

class FakeMatrixPeer final : public FakePeer, public MatrixPeer {
public:
    void showCells(const NSMatrix& matrix) override {
        selected = matrix.selectedCell() ? matrix.selectedCell()->title() : u"none";
    }
    std::u16string selected;
};

TEST(Matrix, FindsTheLastCellWithATag) {
    const auto matrix = std::make_shared<NSMatrix>();
    const auto first = matrix->addCell(u"first", 2);
    const auto last = matrix->addCell(u"last", 2);
    matrix->addCell(u"other", 3);
    EXPECT_EQ(matrix->cellWithTag(2), last);
    EXPECT_TRUE(matrix->selectCellWithTag(2));
    EXPECT_EQ(matrix->selectedCell(), last);
    last->setTag(9);
    EXPECT_EQ(matrix->cellWithTag(2), first);
}

TEST(Matrix, LeavesTheSelectionForATagThatNoCellHas) {
    const auto matrix = std::make_shared<NSMatrix>();
    EXPECT_EQ(matrix->selectedCell(), nullptr);
    EXPECT_FALSE(matrix->selectCellWithTag(0));
    EXPECT_EQ(matrix->selectedCell(), nullptr);
    EXPECT_EQ(tell(matrix->selectedCell(), &NSCell::tag), 0);
    const auto all = matrix->addCell(u"All", 1);
    matrix->selectCellWithTag(1);
    EXPECT_FALSE(matrix->selectCellWithTag(7));
    EXPECT_EQ(matrix->cellWithTag(7), nullptr);
    EXPECT_EQ(matrix->selectedCell(), all);
}

TEST(Matrix, ShowsTheSelectedCell) {
    const auto matrix = std::make_shared<NSMatrix>();
    matrix->addCell(u"All", 1);
    const auto odd = matrix->addCell(u"Odd", 2);
    auto& peer = give<FakeMatrixPeer>(*matrix);
    EXPECT_EQ(peer.selected, u"none");
    matrix->selectCellWithTag(2);
    EXPECT_EQ(peer.selected, u"Odd");
    odd->setTitle(u"Odd pages");
    EXPECT_EQ(peer.selected, u"Odd pages");
}

TEST(Matrix, SendsForAChoiceOfTheUserAlsoOfTheSelectedCell) {
    const auto listener = std::make_shared<Listener>();
    const auto matrix = controlFor<NSMatrix>(listener);
    matrix->addCell(u"All", 1);
    const auto odd = matrix->addCell(u"Odd", 2);
    std::vector<std::shared_ptr<NSCell>> seen;
    listener->handler = [&] { seen.push_back(matrix->selectedCell()); };
    matrix->userSelects(odd);
    matrix->userSelects(odd);
    EXPECT_EQ(seen, (std::vector<std::shared_ptr<NSCell>>{odd, odd}));
    matrix->setEnabled(false);
    matrix->userSelects(matrix->cells()[0]);
    EXPECT_EQ(matrix->selectedCell(), odd);
    EXPECT_EQ(listener->senders.size(), 2u);
}

class FakeSegmentedPeer final : public FakePeer, public SegmentedPeer {
public:
    void setSelected(NSInteger segment, bool selected) override { shown[segment] = selected; }
    std::map<NSInteger, bool> shown;
};

TEST(SegmentedControl, RaisesForASegmentThatIsNotThere) {
    const auto segments = std::make_shared<NSSegmentedControl>();
    EXPECT_THROW(segments->isSelectedForSegment(0), NSRangeException) << "there are none at first";
    segments->setSegmentCount(3);
    for (const NSInteger segment : {NSInteger(-1), NSInteger(3), std::numeric_limits<NSInteger>::max()}) {
        EXPECT_THROW(segments->isSelectedForSegment(segment), NSRangeException);
        EXPECT_THROW(segments->setSelectedForSegment(true, segment), std::out_of_range);
        EXPECT_THROW(segments->userTogglesSegment(segment), NSRangeException);
    }
    EXPECT_NO_THROW(segments->setSelectedForSegment(true, 2));
    segments->setSegmentCount(-1);
    EXPECT_EQ(segments->segmentCount(), 0);
}

TEST(SegmentedControl, TurnsOverTheSegmentOfTheUserAloneThenSends) {
    const auto listener = std::make_shared<Listener>();
    const auto segments = controlFor<NSSegmentedControl>(listener);
    segments->setSegmentCount(3);
    segments->setSelectedForSegment(true, 0);
    auto& peer = give<FakeSegmentedPeer>(*segments);
    std::vector<bool> seen;
    listener->handler = [&] { seen.push_back(segments->isSelectedForSegment(1)); };
    segments->userTogglesSegment(1);
    EXPECT_EQ(peer.shown, (std::map<NSInteger, bool>{{0, true}, {1, true}, {2, false}}));
    segments->userTogglesSegment(1);
    EXPECT_EQ(seen, (std::vector<bool>{true, false}));
    EXPECT_TRUE(segments->isSelectedForSegment(0));
    segments->setEnabled(false);
    segments->userTogglesSegment(1);
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_FALSE(segments->isSelectedForSegment(1));
}

class FakeColorWellPeer final : public FakePeer, public ColorWellPeer {
public:
    void setColor(const NSColor& color) override { white = color.redComponent(); }
    double white = -1;
};

TEST(ColorWell, RefusesAMissingColourAndKeepsTheOneItHas) {
    const auto well = std::make_shared<NSColorWell>();
    auto& peer = give<FakeColorWellPeer>(*well);
    EXPECT_EQ(*well->color(), *NSColor::blackColor());
    EXPECT_EQ(peer.white, 0);
    well->setColor(NSColor::whiteColor());
    EXPECT_THROW(well->setColor(nullptr), NSInvalidArgumentException);
    EXPECT_THROW(well->setColor(nullptr), std::invalid_argument);
    EXPECT_EQ(*well->color(), *NSColor::whiteColor());
    EXPECT_EQ(peer.white, 1);
}

TEST(Color, IsEqualOnlyInTheSameSpace) {
    EXPECT_EQ(*NSColor::colorWithWhite(0, 1), *NSColor::blackColor());
    EXPECT_EQ(*NSColor::colorWithSRGB(0.1, 0.2, 0.3, 0.4), *NSColor::colorWithSRGB(0.1, 0.2, 0.3, 0.4));
    EXPECT_FALSE(*NSColor::colorWithSRGB(0, 0, 0, 1) == *NSColor::blackColor());
    EXPECT_FALSE(*NSColor::colorWithWhite(1, 0.5) == *NSColor::whiteColor());
}

TEST(Color, KeepsItsComponentsAsTheyAre) {
    const auto color = NSColor::colorWithSRGB(-0.5, 0.25, 1.5, 0.75);
    EXPECT_EQ(color->colorSpace(), NSColor::Space::sRGB);
    EXPECT_EQ(color->redComponent(), -0.5);
    EXPECT_EQ(color->greenComponent(), 0.25);
    EXPECT_EQ(color->blueComponent(), 1.5);
    EXPECT_EQ(color->alphaComponent(), 0.75);
    const auto gray = NSColor::colorWithWhite(0.25, 0.5);
    EXPECT_EQ(gray->colorSpace(), NSColor::Space::gray);
    EXPECT_EQ(gray->redComponent(), 0.25);
    EXPECT_EQ(gray->greenComponent(), 0.25);
    EXPECT_EQ(gray->blueComponent(), 0.25);
    EXPECT_EQ(gray->alphaComponent(), 0.5);
}

TEST(Alert, IsAnsweredAheadAndShowsWhatItWasGiven) {
    NSAlert alert;
    EXPECT_EQ(alert.alertStyle(), NSAlertStyle::warning);
    alert.setMessageText(u"Delete?");
    alert.setInformativeText(u"It cannot be brought back.");
    alert.addButtonWithTitle(u"Delete");
    alert.addButtonWithTitle(u"Cancel");
    NSAlert::setAnswerer([](const NSAlert& shown) -> NSInteger {
        EXPECT_EQ(shown.messageText(), u"Delete?");
        EXPECT_EQ(shown.informativeText(), u"It cannot be brought back.");
        EXPECT_EQ(shown.buttonTitles(), (std::vector<std::u16string>{u"Delete", u"Cancel"}));
        return NSAlertFirstButtonReturn + 1;
    });
    EXPECT_EQ(alert.runModal(), 1001);
    NSAlert::setAnswerer({});
    EXPECT_THROW(alert.runModal(), std::logic_error) << "it is shown again";
}

TEST(Alert, MayBeAnsweredByOneThatLeavesTheNextAnswer) {
    const auto kept = std::make_shared<NSInteger>(NSAlertFirstButtonReturn);
    NSAlert::setAnswerer([kept](const NSAlert&) {
        NSAlert::setAnswerer([](const NSAlert&) { return NSAlertFirstButtonReturn + 2; });
        return *kept;
    });
    NSAlert alert;
    EXPECT_EQ(alert.runModal(), 1000);
    EXPECT_EQ(alert.runModal(), 1002);
    NSAlert::setAnswerer({});
}

} // namespace
