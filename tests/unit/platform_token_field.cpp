// SPDX-License-Identifier: MIT
#include "../support/FakeQueue.h"
#include "token_editor.h"

#include <AppKit/NSTokenFieldCell.h>
#include <Foundation/NSException.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <set>

using namespace platform;
using namespace platform_test;

namespace {

using Elements = std::vector<RepresentedObject>;

class Stone final : public NSObject {};

NSArray<RepresentedObject> listOf(Elements objects) {
    return std::make_shared<const Elements>(std::move(objects));
}

/// Notes what it is asked; what begins with "#" is a token, every other text plain.
class NotingDelegate : public NSObject, public NSTokenFieldDelegate {
public:
    NSTokenStyle tokenFieldStyleForRepresentedObject(const Field&, const RepresentedObject& object) override {
        const auto* text = std::get_if<std::u16string>(&object);
        return text && !text->starts_with(u"#") ? NSTokenStyle::none : NSTokenStyle::rounded;
    }
    std::optional<RepresentedObject> tokenFieldRepresentedObjectForEditingString(const Field&,
                                                                                 const std::u16string& text) override {
        return editing ? editing(text) : std::nullopt;
    }
    NSArray<RepresentedObject> tokenFieldShouldAddObjectsAtIndex(const Field& field,
                                                                 const NSArray<RepresentedObject>& objects,
                                                                 NSUInteger index) override {
        log.push_back("add at " + std::to_string(index));
        before = field->objectValue() ? *field->objectValue() : Elements();
        return add ? add(objects) : objects;
    }
    bool tokenFieldWriteRepresentedObjectsToPasteboard(const Field&, const NSArray<RepresentedObject>& objects,
                                                       const std::shared_ptr<NSPasteboard>& pasteboard) override {
        written = *objects;
        return writes && pasteboard->writeObjects({u"key"});
    }
    NSArray<RepresentedObject> tokenFieldReadFromPasteboard(const Field&,
                                                            const std::shared_ptr<NSPasteboard>&) override {
        ++reads;
        return reading;
    }
    bool controlTextShouldBeginEditing(const std::shared_ptr<NSControl>&) override {
        log.emplace_back("should begin");
        return begins;
    }
    bool controlTextShouldEndEditing(const std::shared_ptr<NSControl>& field) override {
        log.emplace_back("should end");
        if (onEnd)
            onEnd(dynamic_cast<NSTokenField&>(*field));
        return ends;
    }
    void controlTextDidChange(const NSNotification& notification) override {
        log.emplace_back("changed");
        auto& field = dynamic_cast<NSTokenField&>(*notification.object);
        duringChange = field.objectValue() ? *field.objectValue() : Elements();
        if (onChange)
            onChange(field);
    }

    Log log;
    Elements before;
    Elements written;
    Elements duringChange;
    NSArray<RepresentedObject> reading;
    std::function<std::optional<RepresentedObject>(const std::u16string&)> editing;
    std::function<NSArray<RepresentedObject>(const NSArray<RepresentedObject>&)> add;
    std::function<void(NSTokenField&)> onChange;
    std::function<void(NSTokenField&)> onEnd;
    bool begins = true;
    bool ends = true;
    bool writes = true;
    int reads = 0;
};

class TokenField : public ::testing::Test {
protected:
    TokenField() {
        setMainQueue(queue);
        field->setDelegate(delegate);
        auto peer = std::make_unique<FakeEditor>(*field);
        editor = peer.get();
        field->setPeer(std::move(peer));
    }
    ~TokenField() override { setMainQueue(former); }
    void set(Elements objects) { field->setObjectValue(listOf(std::move(objects))); }
    Elements value() { return field->objectValue() ? *field->objectValue() : Elements(); }
    void caretAt(NSUInteger position, NSUInteger length = 0) { editor->selected = {position, length}; }

    std::shared_ptr<testing_support::FakeQueue> queue = std::make_shared<testing_support::FakeQueue>();
    std::shared_ptr<MainQueue> former = setMainQueue(nullptr);
    std::shared_ptr<NSTokenField> field = std::make_shared<NSTokenField>();
    std::shared_ptr<NotingDelegate> delegate = std::make_shared<NotingDelegate>();
    FakeEditor* editor = nullptr;
    const RepresentedObject stone = std::shared_ptr<NSObject>(std::make_shared<Stone>());
};

class TokenFieldValue : public TokenField {};
class TokenFieldMessages : public TokenField {};
class TokenFieldRuns : public TokenField {};
class TokenFieldPasteboard : public TokenField {};
class TokenFieldUndo : public TokenField {};

// Value

TEST_F(TokenFieldValue, IsTheVeryListLastSet) {
    const auto list = listOf({u"a", u"b", u"", stone});
    field->setObjectValue(list);
    EXPECT_EQ(field->objectValue(), list);
    EXPECT_EQ(field->attributedStringValue().string(), u"ab\uFFFC");
    field->setObjectValue(nullptr);
    EXPECT_EQ(field->objectValue(), nullptr);
    EXPECT_EQ(field->attributedStringValue().length(), 0U);
}

TEST_F(TokenFieldValue, IsMadeAnewFromTheTextWhileTheUserEdits) {
    set({u"a", u"b", u"", stone});
    caretAt(3);
    editor->type(u"c");
    EXPECT_EQ(value(), (Elements{u"ab", stone, u"c"}));
}

TEST_F(TokenFieldValue, TakesWhatTheDelegateMakesOfARun) {
    delegate->editing = [](const std::u16string& text) { return RepresentedObject(text + u"!"); };
    set({u"a", stone});
    EXPECT_EQ(value(), (Elements{u"a", stone}));
    caretAt(0);
    editor->type(u"b");
    EXPECT_EQ(value(), (Elements{u"ba!", stone}));
}

TEST_F(TokenFieldValue, DuringTheNotificationIsTheOneFromBeforeUntilItIsTakenOver) {
    set({u"a", stone});
    Elements takenOver;
    delegate->onChange = [&](NSTokenField& changed) {
        changed.validateEditing();
        takenOver = *changed.objectValue();
    };
    caretAt(1, 1);
    editor->deleteSelection();
    EXPECT_EQ(delegate->duringChange, (Elements{u"a", stone}));
    EXPECT_EQ(takenOver, Elements{u"a"});
}

TEST_F(TokenFieldValue, IsTakenOverBeforeLaterObserversHear) {
    set({u"a"});
    Elements heard;
    const auto token = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
        NSControlTextDidChangeNotification, field, nullptr, [&](const NSNotification&) { heard = value(); });
    caretAt(1);
    editor->type(u"b");
    NSNotificationCenter::defaultCenter().removeObserver(token);
    EXPECT_EQ(heard, Elements{u"ab"});
}

TEST_F(TokenFieldValue, SetDuringTheNotificationStandsAndTheCaretKeepsItsDistanceFromTheEnd) {
    set({u"abc"});
    delegate->onChange = [](NSTokenField& changed) { changed.setObjectValue(listOf({u"<", u"abxc"})); };
    caretAt(2);
    editor->type(u"x");
    EXPECT_EQ(value(), (Elements{u"<", u"abxc"}));
    EXPECT_EQ(editor->text.string(), u"<abxc");
    EXPECT_EQ(editor->selected, (NSRange{4, 0}));
}

TEST_F(TokenFieldValue, OfWhatIsShownAlreadyLeavesTheCaretAlone) {
    set({u"abc"});
    caretAt(1, 1);
    set({u"a", u"bc"});
    EXPECT_EQ(editor->selected, (NSRange{1, 1}));
}

TEST_F(TokenFieldValue, SetAsTextGivesTokensTheirObjectsBack) {
    editor->focused = false;
    set({u"a%b", stone, u"%"});
    auto text = field->attributedStringValue();
    EXPECT_TRUE(text.removeCharacters([](char16_t unit) { return unit == u'%'; }));
    field->setAttributedStringValue(text);
    EXPECT_EQ(value(), (Elements{u"ab", stone}));
    EXPECT_EQ(delegate->log, Log());
}

TEST_F(TokenFieldValue, SetAsTextDuringAnEditIsToldWithTheNextChange) {
    set({u"a"});
    caretAt(1);
    editor->type(u"%");
    delegate->log.clear();
    TokenText text;
    text.appendText(u"b");
    field->setAttributedStringValue(text);
    EXPECT_EQ(delegate->log, Log());
    editor->type(u"c");
    EXPECT_EQ(delegate->log, Log{"changed"});
    EXPECT_EQ(delegate->duringChange, Elements{u"a%"}) << "nobody had asked for the value since";
}

TEST_F(TokenFieldValue, AsAPlainTextLeavesObjectsOut) {
    set({u"a", stone, u"#t"});
    EXPECT_EQ(field->stringValue(), u"a#t");
    field->setStringValue(u"plain");
    EXPECT_EQ(value(), Elements{u"plain"});
}

TEST_F(TokenFieldValue, OfAFieldWithoutEditorIsKept) {
    field->setPeer(nullptr);
    set({u"a", stone});
    EXPECT_EQ(value(), (Elements{u"a", stone}));
    EXPECT_EQ(field->currentEditor(), nullptr);
    EXPECT_FALSE(field->userSelectsTokenToDelete(false));
    EXPECT_NO_THROW(field->paste(nullptr));
}

TEST_F(TokenFieldValue, IsShownByAnEditorGivenLater) {
    set({u"a", stone});
    field->setPeer(std::make_unique<FakeEditor>(*field));
    EXPECT_EQ(dynamic_cast<FakeEditor&>(*field->peer()).text.string(), u"a\uFFFC");
}

// Messages

TEST_F(TokenFieldMessages, ComeInOrder) {
    caretAt(0);
    editor->type(u"a");
    editor->type(u"b");
    EXPECT_TRUE(field->userEndsEditing(NSTextField::Ending::focusLost));
    EXPECT_EQ(delegate->log, (Log{"should begin", "changed", "changed", "should end"}));
    EXPECT_FALSE(field->isBeingEdited());
}

TEST_F(TokenFieldMessages, WithoutAChangeAreNone) {
    set({u"a"});
    EXPECT_TRUE(field->userEndsEditing(NSTextField::Ending::returnKey));
    EXPECT_EQ(delegate->log, Log());
}

TEST_F(TokenFieldMessages, ThatRefuseTheBeginningBringTheTextBack) {
    set({u"a", stone});
    delegate->begins = false;
    caretAt(1);
    editor->type(u"x");
    EXPECT_EQ(editor->text.string(), u"a\uFFFC");
    EXPECT_EQ(value(), (Elements{u"a", stone}));
    EXPECT_EQ(delegate->log, Log{"should begin"});
}

TEST_F(TokenFieldMessages, ThatRefuseTheEndKeepTheEdit) {
    caretAt(0);
    editor->type(u"a");
    delegate->ends = false;
    EXPECT_FALSE(field->userEndsEditing(NSTextField::Ending::tabKey));
    EXPECT_TRUE(field->isBeingEdited());
}

TEST_F(TokenFieldMessages, TellWhatIsUntoldBeforeTheEndIsAsked) {
    caretAt(0);
    editor->type(u"a%b");
    delegate->log.clear();
    TokenText clean;
    clean.appendText(u"ab");
    field->setAttributedStringValue(clean);
    Elements atTheEnd;
    delegate->onEnd = [&](NSTokenField& ending) { atTheEnd = *ending.objectValue(); };
    EXPECT_TRUE(field->userEndsEditing(NSTextField::Ending::focusLost));
    EXPECT_EQ(delegate->log, (Log{"changed", "should end"}));
    EXPECT_EQ(atTheEnd, Elements{u"ab"});
}

TEST_F(TokenFieldMessages, AtTheEndMaySetTheValueThatIsThenShown) {
    caretAt(0);
    editor->type(u"typed");
    delegate->onEnd = [&](NSTokenField& ending) { ending.setObjectValue(listOf({u"stored", stone})); };
    EXPECT_TRUE(field->userEndsEditing(NSTextField::Ending::focusLost));
    EXPECT_EQ(value(), (Elements{u"stored", stone}));
    EXPECT_EQ(editor->text.string(), u"stored\uFFFC");
}

TEST_F(TokenFieldMessages, SurviveAHandlerThatRaises) {
    delegate->onChange = [](NSTokenField&) { throw NSRangeException("raised by the test"); };
    caretAt(0);
    EXPECT_THROW(editor->type(u"a"), NSRangeException);
    EXPECT_EQ(value(), Elements{u"a"});
    delegate->onChange = nullptr;
    editor->type(u"b");
    EXPECT_EQ(value(), Elements{u"ab"});
}

// Runs

TEST_F(TokenFieldRuns, EndAtACharacterOfTheSetWhichIsConsumed) {
    delegate->editing = [](const std::u16string& text) { return RepresentedObject(u"#" + text); };
    caretAt(0);
    editor->type(u"one,");
    EXPECT_EQ(value(), Elements{u"#one"});
    EXPECT_EQ(editor->text.string(), u"\uFFFC");
    EXPECT_EQ(editor->selected, (NSRange{1, 0}));
    EXPECT_EQ(delegate->log, (Log{"should begin", "changed", "add at 0", "changed"}));
}

TEST_F(TokenFieldRuns, EachOfACommitBecomeATokenOfTheirOwn) {
    delegate->editing = [](const std::u16string& text) { return RepresentedObject(u"#" + text); };
    set({stone});
    caretAt(1);
    editor->type(u"a,b,c");
    EXPECT_EQ(editor->text.string(), u"\uFFFC\uFFFC\uFFFCc");
    EXPECT_EQ(delegate->log, (Log{"should begin", "changed", "add at 1", "changed", "add at 2", "changed"}));
}

TEST_F(TokenFieldRuns, AreNotYetReplacedWhenTheDelegateIsAsked) {
    delegate->editing = nullptr;
    delegate->add = [](const auto&) { return listOf({u"#token"}); };
    caretAt(0);
    editor->type(u"ab,");
    EXPECT_EQ(delegate->before, Elements{u"ab"});
    EXPECT_EQ(value(), Elements{u"#token"});
}

TEST_F(TokenFieldRuns, AreDroppedForAnEmptyAnswerAndNilIsAnError) {
    delegate->add = [](const auto&) { return listOf({}); };
    caretAt(0);
    editor->type(u"ab,");
    EXPECT_EQ(value(), Elements());
    delegate->add = [](const auto&) { return nullptr; };
    EXPECT_THROW(editor->type(u"ab,"), NSInvalidArgumentException);
}

TEST_F(TokenFieldRuns, EndWithReturnAndTabButNotWithTheFocus) {
    for (const auto ending : {NSTextField::Ending::returnKey, NSTextField::Ending::tabKey}) {
        caretAt(0);
        editor->type(u"a");
        delegate->log.clear();
        field->userEndsEditing(ending);
        EXPECT_EQ(delegate->log, (Log{"add at 0", "should end"}));
    }
    editor->type(u"a");
    delegate->log.clear();
    field->userEndsEditing(NSTextField::Ending::focusLost);
    EXPECT_EQ(delegate->log, Log{"should end"});
}

TEST_F(TokenFieldRuns, ThatStayTextTellOfNoChange) {
    set({u"ab"});
    caretAt(1);
    editor->type(u",");
    EXPECT_EQ(value(), Elements{u"ab"});
    EXPECT_EQ(editor->selected, (NSRange{1, 0}));
    EXPECT_EQ(delegate->log, (Log{"should begin", "add at 0"}));
}

TEST_F(TokenFieldRuns, OfAFieldWithoutDelegateBecomeTokens) {
    field->setDelegate(nullptr);
    caretAt(0);
    editor->type(u"one,two");
    EXPECT_EQ(editor->text.string(), u"\uFFFCtwo");
    EXPECT_EQ(value(), (Elements{u"one", u"two"}));
}

TEST_F(TokenFieldRuns, BesideTheCaretDoNotSelectATokenToDelete) {
    set({u"a", stone, u"b"});
    caretAt(1);
    EXPECT_FALSE(field->userSelectsTokenToDelete(false));
    EXPECT_TRUE(field->userSelectsTokenToDelete(true));
    EXPECT_EQ(editor->selected, (NSRange{1, 1}));
    EXPECT_FALSE(field->userSelectsTokenToDelete(true)) << "a selection is deleted by the editor";
    caretAt(0);
    EXPECT_FALSE(field->userSelectsTokenToDelete(false));
    caretAt(3);
    EXPECT_FALSE(field->userSelectsTokenToDelete(true));
}

// Pasteboard

TEST_F(TokenFieldPasteboard, GetsTheObjectsOfTheSelectionAndThePiecesOfItsTexts) {
    set({u"abc", stone, u"def"});
    caretAt(2, 3);
    field->userCopies();
    EXPECT_EQ(delegate->written, (Elements{u"c", stone, u"d"}));
    EXPECT_EQ(*editor->copied->readObjects(), std::vector<std::u16string>{u"key"});
    EXPECT_EQ(editor->copiedText, u"cd");
}

TEST_F(TokenFieldPasteboard, GetsPlainTextWhereTheDelegateDoesNotWrite) {
    delegate->writes = false;
    set({u"abc", u"#t"});
    caretAt(1, 3);
    field->userCopies();
    EXPECT_EQ(*editor->copied->readObjects(), std::vector<std::u16string>{u"bc#t"});
}

TEST_F(TokenFieldPasteboard, IsLeftAloneByAnEmptySelection) {
    set({u"abc"});
    editor->copied->writeObjects({u"kept"});
    caretAt(1);
    field->userCopies();
    field->userCuts();
    EXPECT_EQ(*editor->copied->readObjects(), std::vector<std::u16string>{u"kept"});
    EXPECT_EQ(delegate->log, Log());
}

TEST_F(TokenFieldPasteboard, OffersTheTextsOfASelectionThatNobodyCopied) {
    set({u"abc", stone, u"#t", u"d"});
    caretAt(1, 4);
    std::u16string plain;
    const auto offered = field->selectedTexts(plain);
    EXPECT_EQ(*offered->readObjects(), (std::vector<std::u16string>{u"bc", u"#t"}));
    EXPECT_EQ(plain, u"bc#t");
    EXPECT_EQ(delegate->log, Log());
    field->userPastes(offered);
    EXPECT_EQ(value(), (Elements{u"abc", u"#t", u"d"})) << "a token stays one";
}

TEST_F(TokenFieldPasteboard, BringsNothingThatCannotBeShown) {
    set({u"ab"});
    caretAt(1);
    editor->copied->writeObjects({u"1\uFFFC2\u00073\t4\u00855\x7F"});
    field->userPastes(editor->copied);
    EXPECT_EQ(value(), Elements{u"a123\t4\n5b"});
    editor->copied->clearContents();
    editor->copied->writeObjects({u"\uFFFC\u0001"});
    field->userPastes(editor->copied);
    EXPECT_EQ(value(), Elements{u"a123\t4\n5b"});
}

TEST_F(TokenFieldPasteboard, IsPastedInThePlaceOfTheSelectionAsOneChange) {
    delegate->reading = listOf({u"x", stone, u"y"});
    set({u"abcd"});
    caretAt(1, 2);
    editor->copied->writeObjects({u"anything"});
    field->userPastes(editor->copied);
    EXPECT_EQ(value(), (Elements{u"ax", stone, u"yd"}));
    EXPECT_EQ(editor->selected, (NSRange{4, 0}));
    EXPECT_EQ(delegate->log, (Log{"should begin", "add at 1", "changed"}));
    EXPECT_EQ(delegate->before, Elements{u"abcd"});
}

TEST_F(TokenFieldPasteboard, IsReadByTheFieldWhereTheDelegateDoesNot) {
    set({u"ab"});
    caretAt(1);
    editor->copied->writeObjects({u"x,", u"#t"});
    field->userPastes(editor->copied);
    EXPECT_EQ(value(), (Elements{u"ax,", u"#t", u"b"})) << "what is pasted is not cut into runs";
}

TEST_F(TokenFieldPasteboard, WithoutTextIsNotPasted) {
    set({u"ab"});
    field->userPastes(editor->copied);
    field->userPastes(nullptr);
    EXPECT_EQ(delegate->log, Log());
}

TEST_F(TokenFieldPasteboard, ThatIsTooLongIsRefusedAsAWhole) {
    field->setMaximumLength(5);
    set({u"abc"});
    caretAt(1);
    editor->copied->writeObjects({u"123"});
    field->userPastes(editor->copied);
    EXPECT_EQ(value(), Elements{u"abc"});
    EXPECT_EQ(editor->refused, Refusal::tooLong);
    editor->type(u"12");
    EXPECT_EQ(value(), Elements{u"a12bc"});
    EXPECT_EQ(editor->refused, Refusal::none);
    editor->type(u"3");
    EXPECT_EQ(editor->text.string(), u"a12bc");
    EXPECT_EQ(editor->refused, Refusal::tooLong);
}

TEST_F(TokenFieldPasteboard, ThatIsTooLongIsNotReadAtAll) {
    field->setMaximumLength(5);
    delegate->reading = listOf({stone});
    set({u"abc", stone});
    caretAt(3, 1);
    field->userCopies();
    caretAt(0);
    field->userPastes(editor->copied);
    EXPECT_EQ(delegate->reads, 1) << "its key is longer, but it is one token";
    EXPECT_EQ(value(), (Elements{stone, u"abc", stone}));
    field->userPastes(editor->copied);
    EXPECT_EQ(delegate->reads, 1);
    EXPECT_EQ(editor->refused, Refusal::tooLong);
}

TEST_F(TokenFieldPasteboard, OfADragHereTakesTextsFromTheirOldPlaceAndLeavesObjects) {
    delegate->reading = listOf({u"b", stone, u"c"});
    set({u"ab", stone, u"cd"});
    caretAt(1, 3);
    std::u16string plain;
    const auto dragged = field->userDrags(plain);
    EXPECT_EQ(plain, u"bc");
    EXPECT_TRUE(field->userDrops(dragged, 5));
    EXPECT_EQ(value(), (Elements{u"a", stone, u"db", stone, u"c"}));
    EXPECT_EQ(delegate->log.back(), "changed");
}

TEST_F(TokenFieldPasteboard, OfADragFromElsewhereTakesNothingAway) {
    set({u"abc"});
    caretAt(0, 2);
    const auto foreign = std::make_shared<NSPasteboard>();
    foreign->writeObjects({u"x"});
    EXPECT_TRUE(field->userDrops(foreign, 3));
    EXPECT_EQ(value(), Elements{u"abcx"});
}

TEST_F(TokenFieldPasteboard, TypesAreThoseOfTheFieldAndOfItsEditor) {
    EXPECT_FALSE(field->takesDraggedTypes({NSPasteboardTypeString}));
    field->currentEditor()->registerForDraggedTypes({NSStringPboardType});
    EXPECT_TRUE(field->takesDraggedTypes({u"other", NSPasteboardTypeString}));
    EXPECT_FALSE(field->takesDraggedTypes({u"other"}));
    field->setEnabled(false);
    EXPECT_FALSE(field->takesDraggedTypes({NSPasteboardTypeString}));
}

TEST(Pasteboard, IsAppendedToAndReadInOrder) {
    NSPasteboard pasteboard;
    EXPECT_EQ(pasteboard.readObjects(), nullptr);
    EXPECT_TRUE(pasteboard.writeObjects({}));
    EXPECT_TRUE(pasteboard.writeObjects({u"a", u""}));
    EXPECT_TRUE(pasteboard.writeObjects({u"\xD800"}));
    EXPECT_EQ(*pasteboard.readObjects(), (std::vector<std::u16string>{u"a", u"", u"\xD800"}));
    pasteboard.clearContents();
    EXPECT_EQ(pasteboard.readObjects(), nullptr);
}

TEST(GloballyUniqueString, IsAnotherAtEachCallAndHasNoPercentSign) {
    std::set<std::u16string> all;
    for (int i = 0; i < 1000; ++i)
        all.insert(globallyUniqueString());
    EXPECT_EQ(all.size(), 1000U);
    for (const auto& one : all) {
        EXPECT_FALSE(one.empty());
        EXPECT_EQ(one.find(u'%'), std::u16string::npos);
    }
}

// Undo

TEST_F(TokenFieldUndo, EndsWithAValueSetByProgram) {
    caretAt(0);
    editor->type(u"a");
    set({u"other"});
    EXPECT_FALSE(editor->canUndo(false));
    editor->type(u"b");
    set({u"otherb"});
    EXPECT_FALSE(editor->canUndo(false)) << "though the same text is shown";
}

TEST_F(TokenFieldUndo, JoinsWhatTheDelegateSetsToTheChangeItHeardOf) {
    delegate->onChange = [](NSTokenField& changed) { changed.setObjectValue(listOf({u"clean"})); };
    caretAt(0);
    editor->replaced.clear();
    editor->type(u"x");
    EXPECT_EQ(editor->replaced, std::vector<Undoing>{Undoing::sameStep});
}

TEST_F(TokenFieldUndo, MakesOneStepOfAMenusChange) {
    editor->replaced.clear();
    const auto menu = std::make_shared<NSMenu>();
    const auto item = menu->addItemWithTitleActionKeyEquivalent(u"", u"onAction:", u"");
    const auto listener = std::make_shared<Listener>();
    item->setTarget(listener);
    menu->update();
    listener->handler = [&] {
        set({u"one"});
        set({u"one", u"two"});
    };
    field->userChoosesMenuItem(item);
    EXPECT_EQ(editor->replaced, (std::vector<Undoing>{Undoing::newStep, Undoing::sameStep}));
}

TEST_F(TokenFieldUndo, JoinsWhatFollowsAPasteLaterUnlessTheUserWentOn) {
    delegate->onChange = [this](NSTokenField&) {
        performAfterDelay(0.01, [this] {
            auto text = field->attributedStringValue();
            text.appendText(u"!");
            field->setAttributedStringValue(text);
        });
    };
    editor->copied->writeObjects({u"x"});
    editor->replaced.clear();
    field->userPastes(editor->copied);
    delegate->onChange = nullptr;
    queue->advance(0.02);
    EXPECT_EQ(editor->replaced, (std::vector<Undoing>{Undoing::newStep, Undoing::sameStep}));
}

TEST_F(TokenFieldUndo, IsAChangeByTheUser) {
    set({u"a", stone});
    caretAt(1, 1);
    editor->deleteSelection();
    delegate->log.clear();
    field->undo(nullptr);
    EXPECT_EQ(value(), (Elements{u"a", stone}));
    EXPECT_EQ(delegate->log, Log{"changed"});
    EXPECT_EQ(delegate->duringChange, Elements{u"a"});
}

TEST(RunLoop, HoldsWhatFallsDueWhileAMenuIsOpen) {
    const auto queue = std::make_shared<testing_support::FakeQueue>();
    const auto former = setMainQueue(queue);
    Log log;
    performAfterDelay(0.01, [&] { log.emplace_back("first"); });
    performAfterDelay(0.02, [&] { log.emplace_back("second"); });
    dispatchAfter(0.03, [&] { log.emplace_back("queued"); });
    {
        const TrackingLoop menu;
        {
            const TrackingLoop submenu;
            queue->advance(1);
        }
        queue->advance(1);
        EXPECT_EQ(log, Log{"queued"});
    }
    EXPECT_EQ(log, Log{"queued"});
    queue->advance(0);
    EXPECT_EQ(log, (Log{"queued", "first", "second"}));
    setMainQueue(former);
}

} // namespace
