// SPDX-License-Identifier: MIT
#include "platform_peers.h"

#include <AppKit/NSTextField.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform_test;

using Ending = NSTextField::Ending;

class Delegate final : public NSControlTextEditingDelegate {
public:
    explicit Delegate(Log& log) : m_log(log) {}
    bool controlTextShouldBeginEditing(const std::shared_ptr<NSControl>& control) override {
        m_log.push_back("should begin");
        control->window(); // the very control that is edited
        return begins;
    }
    bool controlTextShouldEndEditing(const std::shared_ptr<NSControl>& control) override {
        m_log.push_back("should end");
        if (onEnd)
            onEnd(*control);
        return ends;
    }
    void controlTextDidChange(const NSNotification& notification) override {
        m_log.push_back("delegate: did change");
        if (onChange)
            onChange(*std::dynamic_pointer_cast<NSControl>(notification.object));
    }

    bool begins = true;
    bool ends = true;
    std::function<void(NSControl&)> onChange;
    std::function<void(NSControl&)> onEnd;

private:
    Log& m_log;
};

class Editing : public testing::Test {
protected:
    Editing() {
        field->setDelegate(delegate);
        const std::pair<std::u16string, std::string> names[] = {
            {NSControlTextDidBeginEditingNotification, "did begin"},
            {NSControlTextDidChangeNotification, "did change"},
            {NSControlTextDidEndEditingNotification, "did end"},
        };
        for (const auto& [name, heard] : names)
            m_tokens.push_back(NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
                name, field, nullptr, [this, text = heard](const NSNotification&) {
                    log.push_back(text);
                    if (const auto handler = handlers.find(text); handler != handlers.end())
                        handler->second();
                }));
        listener->handler = [this] { log.push_back("action"); };
        field->setStringValue(u"old");
    }
    ~Editing() override {
        for (const auto& token : m_tokens)
            NSNotificationCenter::defaultCenter().removeObserver(token);
    }

    /// The user types, and the toolkit's widget shows it before the field hears of it.
    bool type(const std::u16string& text) {
        peer.text = text;
        return field->userChangedText(text);
    }

    Log log;
    std::map<std::string, std::function<void()>> handlers;
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>(log);
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    std::shared_ptr<NSTextField> field = controlFor<NSTextField>(listener);
    FakeTextPeer& peer = give<FakeTextPeer>(*field);

private:
    std::vector<NSNotificationCenter::Token> m_tokens;
};

TEST_F(Editing, BeginsAtTheFirstChange) {
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_TRUE(type(u"n"));
    EXPECT_TRUE(field->isBeingEdited());
    EXPECT_EQ(log, (Log{"should begin", "did begin", "delegate: did change", "did change"}));
    log.clear();
    type(u"ne");
    EXPECT_EQ(log, (Log{"delegate: did change", "did change"}));
}

TEST_F(Editing, BeginsBeforeTheTextHasChanged) {
    std::u16string atBegin;
    std::u16string atChange;
    handlers["did begin"] = [&] { atBegin = field->stringValue(); };
    handlers["did change"] = [&] { atChange = field->stringValue(); };
    type(u"new");
    EXPECT_EQ(atBegin, u"old");
    EXPECT_EQ(atChange, u"new");
    EXPECT_EQ(peer.text, u"new");
}

TEST_F(Editing, ThatIsRefusedLeavesTheOldText) {
    delegate->begins = false;
    EXPECT_FALSE(type(u"new"));
    EXPECT_EQ(log, Log{"should begin"});
    EXPECT_EQ(peer.text, u"old");
    EXPECT_EQ(field->stringValue(), u"old");
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_FALSE(type(u"newer"));
    EXPECT_EQ(log, (Log{"should begin", "should begin"})) << "it is asked at each try";
    EXPECT_TRUE(field->userEndsEditing(Ending::focusLost));
    EXPECT_EQ(log.size(), 2u) << "nothing has begun that could end";
}

TEST_F(Editing, IsRefusedByALabelAndByADisabledField) {
    field->setEditable(false);
    EXPECT_FALSE(type(u"new"));
    field->setEditable(true);
    field->setEnabled(false);
    EXPECT_FALSE(type(u"new"));
    EXPECT_EQ(peer.text, u"old");
    EXPECT_EQ(log, Log{}) << "nobody is asked";
}

TEST_F(Editing, EndsByReturnWithTheActionLast) {
    type(u"new");
    log.clear();
    EXPECT_TRUE(field->userEndsEditing(Ending::returnKey));
    EXPECT_EQ(log, (Log{"should end", "did end", "action"}));
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(field->stringValue(), u"new");
}

TEST_F(Editing, EndsOtherwiseWithoutAction) {
    for (const auto ending : {Ending::tabKey, Ending::focusLost}) {
        type(u"new");
        log.clear();
        EXPECT_TRUE(field->userEndsEditing(ending));
        EXPECT_EQ(log, (Log{"should end", "did end"}));
    }
}

TEST_F(Editing, EndsWithTheActionWhereTheFieldIsToldSo) {
    field->setSendsActionOnEndEditing(true);
    for (const auto ending : {Ending::tabKey, Ending::focusLost, Ending::returnKey}) {
        type(u"new");
        log.clear();
        EXPECT_TRUE(field->userEndsEditing(ending));
        EXPECT_EQ(log, (Log{"should end", "did end", "action"}));
        log.clear();
    }
}

TEST_F(Editing, ThatNeverBeganSendsTheActionForReturnAlone) {
    field->setSendsActionOnEndEditing(true);
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    EXPECT_TRUE(field->userEndsEditing(Ending::focusLost));
    EXPECT_EQ(log, Log{});
    EXPECT_TRUE(field->userEndsEditing(Ending::returnKey));
    EXPECT_EQ(log, Log{"action"});
}

TEST_F(Editing, TakesTheTextOverBeforeTheEndIsTold) {
    std::vector<std::u16string> seen;
    handlers["did end"] = [&] { seen.push_back(field->stringValue()); };
    listener->handler = [&] { seen.push_back(field->stringValue()); };
    type(u"new");
    field->userEndsEditing(Ending::returnKey);
    EXPECT_EQ(seen, (std::vector<std::u16string>{u"new", u"new"}));
}

TEST_F(Editing, ThatHasEndedCannotBeAbandonedAnyMore) {
    type(u"new");
    field->userEndsEditing(Ending::tabKey);
    field->setEnabled(false);
    EXPECT_EQ(field->stringValue(), u"new");
}

TEST_F(Editing, HasEndedWhenTheEndIsTold) {
    bool edited = true;
    handlers["did end"] = [&] { edited = field->isBeingEdited(); };
    type(u"new");
    field->userEndsEditing(Ending::tabKey);
    EXPECT_FALSE(edited);
}

TEST_F(Editing, GoesOnWhereTheEndIsRefused) {
    delegate->ends = false;
    type(u"new");
    log.clear();
    for (const auto ending : {Ending::returnKey, Ending::tabKey, Ending::focusLost}) {
        EXPECT_FALSE(field->userEndsEditing(ending));
        EXPECT_TRUE(field->isBeingEdited());
    }
    EXPECT_EQ(log, (Log{"should end", "should end", "should end"}));
    EXPECT_EQ(peer.text, u"new");
    type(u"newer");
    EXPECT_EQ(log.back(), "did change") << "it does not begin again";
    EXPECT_EQ(std::count(log.begin(), log.end(), "should begin"), 0);
    delegate->ends = true;
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    EXPECT_EQ(field->stringValue(), u"newer");
}

TEST_F(Editing, IsUndoneByEscape) {
    type(u"new");
    log.clear();
    field->userCancelsEditing();
    EXPECT_EQ(peer.text, u"old");
    EXPECT_EQ(field->stringValue(), u"old");
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(log, Log{}) << "nothing is told or sent";
    EXPECT_TRUE(field->userEndsEditing(Ending::focusLost));
    EXPECT_EQ(log, Log{}) << "nothing is left to end";
    type(u"again");
    EXPECT_EQ(log.front(), "should begin");
}

TEST_F(Editing, IsUndoneByEscapeAfterAGetterTookItOver) {
    type(u"new");
    EXPECT_EQ(field->stringValue(), u"new");
    type(u"newer");
    field->validateEditing();
    field->userCancelsEditing();
    EXPECT_EQ(peer.text, u"old");
    EXPECT_EQ(field->stringValue(), u"old");
}

TEST_F(Editing, EscapeLeavesWhatWasSetMeanwhile) {
    type(u"new");
    field->validateEditing();
    field->setStringValue(u"set");
    type(u"more");
    field->userCancelsEditing();
    EXPECT_EQ(field->stringValue(), u"set");
    EXPECT_EQ(peer.text, u"set");
}

TEST_F(Editing, EscapeGoesBackToTheLastEditThatEnded) {
    type(u"first");
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    type(u"second");
    field->validateEditing();
    field->userCancelsEditing();
    EXPECT_EQ(field->stringValue(), u"first");
}

TEST_F(Editing, IsTakenOverByEachGetter) {
    type(u"12.5");
    EXPECT_EQ(field->stringValue(), u"12.5");
    type(u"12.75");
    EXPECT_EQ(field->doubleValue(), 12.75);
    type(u"13.5");
    EXPECT_EQ(field->floatValue(), 13.5f);
    type(u"14.5");
    EXPECT_EQ(field->integerValue(), 14);
    type(u"15.5");
    field->validateEditing();
    EXPECT_EQ(peer.text, u"15.5");
    EXPECT_TRUE(field->isBeingEdited()) << "reading ends nothing";
}

TEST_F(Editing, MakesTheTextCountAndNotTheNumberSetBefore) {
    field->setFloatValue(0.1f);
    EXPECT_EQ(peer.text, u"0.1");
    type(u"0.1");
    EXPECT_EQ(field->doubleValue(), 0.1) << "read from the text";
}

TEST_F(Editing, GoesOnAfterAValueWasSet) {
    type(u"new");
    log.clear();
    field->setStringValue(u"set");
    EXPECT_EQ(field->stringValue(), u"set") << "what was typed is abandoned";
    EXPECT_EQ(peer.text, u"set");
    EXPECT_TRUE(field->isBeingEdited());
    EXPECT_EQ(log, Log{});
    type(u"set too");
    EXPECT_EQ(log, (Log{"delegate: did change", "did change"}));
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    EXPECT_EQ(field->stringValue(), u"set too");
}

TEST_F(Editing, ShowsWhatIsSetDuringTheChange) {
    delegate->onChange = [](NSControl& control) { control.setStringValue(control.stringValue() + u"!"); };
    type(u"n");
    EXPECT_EQ(peer.text, u"n!");
    EXPECT_EQ(log, (Log{"should begin", "did begin", "delegate: did change", "did change"})) << "told once";
    EXPECT_TRUE(field->userEndsEditing(Ending::returnKey));
    EXPECT_EQ(field->stringValue(), u"n!");
}

TEST_F(Editing, ShowsWhatIsSetWhenTheEndIsAskedFor) {
    delegate->onEnd = [](NSControl& control) { control.setStringValue(u"restored"); };
    type(u"new");
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    EXPECT_EQ(field->stringValue(), u"restored");
    EXPECT_EQ(peer.text, u"restored");
}

TEST_F(Editing, IsAbandonedWhenTheFieldIsDisabled) {
    type(u"new");
    log.clear();
    field->setEnabled(false);
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(field->stringValue(), u"old");
    EXPECT_EQ(peer.text, u"old") << "the field shows its value and not what was typed";
    EXPECT_EQ(log, Log{});
}

TEST_F(Editing, ThatIsEmptyGivesTheEmptyText) {
    EXPECT_TRUE(type(u""));
    EXPECT_TRUE(field->userEndsEditing(Ending::returnKey));
    EXPECT_EQ(field->stringValue(), u"");
    EXPECT_EQ(field->integerValue(), 0);
}

TEST_F(Editing, TellsTheDelegateInItsPlaceAmongTheObservers) {
    field->setDelegate(delegate); // set again, so behind the others now
    type(u"n");
    EXPECT_EQ(log, (Log{"should begin", "did begin", "did change", "delegate: did change"}));
}

TEST_F(Editing, AsksAndTellsNoDelegateThatWasTakenAway) {
    field->setDelegate(nullptr);
    EXPECT_EQ(field->delegate(), nullptr);
    EXPECT_TRUE(type(u"n"));
    EXPECT_TRUE(field->userEndsEditing(Ending::returnKey));
    EXPECT_EQ(log, (Log{"did begin", "did change", "did end", "action"}));
}

TEST_F(Editing, LooksOnItsDelegateWeakly) {
    const std::weak_ptr<Delegate> watched = delegate;
    delegate.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(type(u"n"));
    EXPECT_TRUE(field->userEndsEditing(Ending::tabKey));
    EXPECT_EQ(log, (Log{"did begin", "did change", "did end"}));
}

TEST_F(Editing, OfAnotherFieldIsNotToldToTheDelegate) {
    const auto other = std::make_shared<NSTextField>();
    other->userChangedText(u"other");
    EXPECT_EQ(log, Log{});
}

TEST_F(Editing, MayEndInsideTheChangeItself) {
    delegate->onChange = [this](NSControl&) { field->userEndsEditing(Ending::focusLost); };
    EXPECT_TRUE(type(u"new"));
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(field->stringValue(), u"new");
}

TEST(TextField, TakesTheFocusWhenItIsEditableEnabledAndNotHidden) {
    const auto field = std::make_shared<NSTextField>();
    EXPECT_TRUE(field->acceptsFirstResponder());
    field->setEditable(false);
    EXPECT_FALSE(field->acceptsFirstResponder());
    field->setEditable(true);
    field->setEnabled(false);
    EXPECT_FALSE(field->acceptsFirstResponder());
    field->setEnabled(true);
    field->setHidden(true);
    EXPECT_FALSE(field->acceptsFirstResponder());
    field->setHidden(false);
    EXPECT_TRUE(field->acceptsFirstResponder());
}

TEST(TextField, StopsListeningWhenItIsGone) {
    Log log;
    const auto delegate = std::make_shared<Delegate>(log);
    auto field = std::make_shared<NSTextField>();
    field->setDelegate(delegate);
    const std::weak_ptr<NSTextField> watched = field;
    field.reset();
    EXPECT_TRUE(watched.expired());
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, nullptr);
    EXPECT_EQ(log, Log{});
}

} // namespace
