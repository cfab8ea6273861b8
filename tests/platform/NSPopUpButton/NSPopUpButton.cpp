// SPDX-License-Identifier: MIT
#include "Interface.h"
#include "MenuUser.h"

#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSException.h>

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QWheelEvent>

using namespace platform;
using namespace testing_support;

namespace {

Log* dismissals = nullptr;

class CountingCell final : public NSPopUpButtonCell {
public:
    std::u16string_view className() const override { return u"CountingCell"; }
    void dismissPopUp() override {
        const auto button = std::static_pointer_cast<NSPopUpButton>(controlView());
        dismissals->push_back("dismiss " + std::to_string(button->indexOfSelectedItem()));
    }
};

/// Notes which selection messages reach a subclass.
class NosyButton final : public NSPopUpButton {
public:
    std::u16string_view className() const override { return u"NosyButton"; }
    void selectItem(const std::shared_ptr<NSMenuItem>& item) override {
        calls.push_back("item");
        NSPopUpButton::selectItem(item);
    }
    void selectItemAtIndex(NSInteger index) override {
        calls.push_back("index");
        NSPopUpButton::selectItemAtIndex(index);
    }
    bool selectItemWithTag(NSInteger tag) override {
        calls.push_back("tag");
        return NSPopUpButton::selectItemWithTag(tag);
    }
    void selectItemWithTitle(const std::u16string& title) override {
        calls.push_back("title");
        NSPopUpButton::selectItemWithTitle(title);
    }
    Log calls;
};

class PopUpTest : public InterfaceTest {
protected:
    PopUpTest() { dismissals = &owner->log; }
    ~PopUpTest() override { dismissals = nullptr; }

    static std::string items(const std::vector<std::string>& titles) {
        std::string text;
        for (const auto& title : titles)
            text += "<item><property name='text'><string>" + title + "</string></property></item>";
        return text;
    }
    void showPopUp(const std::string& settings = {}, const std::string& className = "QComboBox") {
        const auto extra = className == "QComboBox" ? std::string() : customClass(className, "QComboBox");
        show({"popUp"},
             column({widget(className, "popUp",
                            property("action", "act:") + property("tags", std::vector<std::string>{"5", "6", "5"}) +
                                property("cellClass", "CountingCell") + settings + items({"One", "Two", "Three"}))}),
             extra);
        popUp = view<NSPopUpButton>("popUp");
        face = shown<QComboBox>("popUp");
        ASSERT_TRUE(popUp && face);
    }
    void showPullDown() { showPopUp("<property name='pullsDown' stdset='0'><bool>true</bool></property>"); }
    bool open(const std::function<void(QMenu&)>& act) {
        return withMenu([&] { QTest::mouseClick(face, Qt::LeftButton); }, act);
    }
    static std::shared_ptr<NSMenu> menuOf(const std::vector<std::u16string>& titles) {
        auto menu = std::make_shared<NSMenu>();
        for (const auto& title : titles)
            menu->addItemWithTitleActionKeyEquivalent(title, u"", u"");
        return menu;
    }

    ClassRegistration cell{ClassTable<CountingCell>(u"CountingCell", u"NSPopUpButtonCell")};
    ClassRegistration nosy{ClassTable<NosyButton>(u"NosyButton", u"NSPopUpButton")};
    std::shared_ptr<NSPopUpButton> popUp;
    QComboBox* face = nullptr;
};

// What the file says

TEST_F(PopUpTest, HasTheItemsAndTagsOfTheFile) {
    showPopUp();
    ASSERT_EQ(popUp->numberOfItems(), 3);
    EXPECT_EQ(popUp->itemAtIndex(1)->title(), u"Two");
    EXPECT_EQ(popUp->itemAtIndex(1)->tag(), 6);
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
    EXPECT_EQ(face->currentText(), "One");
    EXPECT_EQ(popUp->cell()->className(), u"CountingCell");
    EXPECT_EQ(popUp->cell()->controlView(), popUp);
}

TEST_F(PopUpTest, ReportsTagsThatDoNotFitTheItems) {
    loadFile({"popUp"}, column({widget("QComboBox", "popUp",
                                       property("tags", std::vector<std::string>{"1"}) + items({"One", "Two"}))}));
    EXPECT_TRUE(hasProblem("popUp: there are not as many tags as items"));
}

TEST_F(PopUpTest, ReportsACellClassOfAnotherKind) {
    loadFile({"popUp"}, column({widget("QComboBox", "popUp", property("cellClass", "NSMatrix"))}));
    EXPECT_TRUE(hasProblem("popUp: NSMatrix cannot be its cell"));
}

// Selecting by program

TEST_F(PopUpTest, SelectionMessagesSendNothing) {
    showPopUp();
    popUp->selectItemAtIndex(1);
    popUp->selectItemWithTag(6);
    popUp->selectItemWithTitle(u"Three");
    popUp->selectItem(popUp->itemAtIndex(0));
    popUp->setMenu(menuOf({u"A"}));
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(PopUpTest, AnUnknownTagLeavesTheSelection) {
    showPopUp();
    EXPECT_TRUE(popUp->selectItemWithTag(6));
    EXPECT_FALSE(popUp->selectItemWithTag(99));
    EXPECT_EQ(popUp->indexOfSelectedItem(), 1);
    EXPECT_TRUE(popUp->selectItemWithTag(5));
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
}

TEST_F(PopUpTest, AnUnknownOrEmptyTitleDeselects) {
    showPopUp();
    for (const auto* title : {u"Four", u""}) {
        popUp->selectItemAtIndex(2);
        popUp->selectItemWithTitle(title);
        EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
        EXPECT_EQ(popUp->selectedItem(), nullptr);
        EXPECT_EQ(popUp->titleOfSelectedItem(), std::nullopt);
        EXPECT_EQ(popUp->selectedTag(), -1);
        EXPECT_EQ(face->currentText(), "");
    }
}

TEST_F(PopUpTest, NoItemAndAnItemOfAnotherMenuDeselect) {
    showPopUp();
    popUp->selectItem(nullptr);
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
    popUp->selectItemAtIndex(1);
    popUp->selectItem(menuOf({u"Two"})->itemAtIndex(0));
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
}

TEST_F(PopUpTest, AnIndexOfMinusOneDeselectsAndOneBeyondTheItemsRaises) {
    showPopUp();
    popUp->selectItemAtIndex(-1);
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
    EXPECT_THROW(popUp->selectItemAtIndex(3), NSRangeException);
    EXPECT_THROW(popUp->selectItemAtIndex(-2), NSRangeException);
}

TEST_F(PopUpTest, TheSelectedItemIsOnAndTheFormerOneOff) {
    showPopUp();
    popUp->itemAtIndex(2)->setState(1); // by hand, so it stays
    popUp->selectItemAtIndex(1);
    EXPECT_EQ(popUp->itemAtIndex(0)->state(), 0);
    EXPECT_EQ(popUp->itemAtIndex(1)->state(), 1);
    EXPECT_EQ(popUp->itemAtIndex(2)->state(), 1);
}

TEST_F(PopUpTest, NoSelectionMessageCallsAnotherOneOfASubclass) {
    showPopUp({}, "NosyButton");
    const auto button = std::static_pointer_cast<NosyButton>(popUp);
    button->calls.clear();
    button->selectItemWithTitle(u"Two");
    button->selectItemWithTag(5);
    button->selectItemAtIndex(1);
    button->selectItem(button->itemAtIndex(2));
    EXPECT_EQ(button->calls, (Log{"title", "tag", "index", "item"}));
    button->calls.clear();
    button->setMenu(menuOf({u"A", u"B"}));
    open([](QMenu& shown) { click(shown, "B"); });
    EXPECT_EQ(button->indexOfSelectedItem(), 1);
    EXPECT_EQ(button->calls, Log());
}

// Items and menus

TEST_F(PopUpTest, AnItemAddedUnderAKnownTitleReplacesThatOne) {
    showPopUp();
    popUp->addItemWithTitle(u"Two");
    EXPECT_EQ(popUp->numberOfItems(), 3);
    EXPECT_EQ(popUp->itemAtIndex(2)->title(), u"Two");
    EXPECT_EQ(popUp->itemAtIndex(2)->tag(), 0);
}

TEST_F(PopUpTest, TheFirstItemAddedIsSelected) {
    showPopUp();
    popUp->removeAllItems();
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
    EXPECT_EQ(face->currentText(), "");
    popUp->addItemWithTitle(u"A");
    popUp->addItemWithTitle(u"B");
    EXPECT_EQ(popUp->titleOfSelectedItem(), u"A");
    EXPECT_EQ(face->currentText(), "A");
}

TEST_F(PopUpTest, AnotherMenuSelectsItsFirstItem) {
    showPopUp();
    popUp->selectItemAtIndex(2);
    const auto menu = menuOf({u"A", u"B"});
    popUp->setMenu(menu);
    EXPECT_EQ(popUp->menu(), menu);
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
    EXPECT_EQ(face->currentText(), "A");
}

TEST_F(PopUpTest, AnotherMenuSelectsTheItemThatIsOn) {
    showPopUp();
    const auto menu = menuOf({u"A", u"B"});
    menu->itemAtIndex(1)->setState(1);
    popUp->setMenu(menu);
    EXPECT_EQ(popUp->indexOfSelectedItem(), 1);
    EXPECT_EQ(menu->itemAtIndex(0)->state(), 0);
}

TEST_F(PopUpTest, AnEmptyMenuSelectsNothing) {
    showPopUp();
    popUp->setMenu(std::make_shared<NSMenu>());
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
    EXPECT_EQ(face->currentText(), "");
}

TEST_F(PopUpTest, TheSameMenuAgainChangesNothing) {
    showPopUp();
    popUp->selectItemAtIndex(2);
    popUp->setMenu(popUp->menu());
    EXPECT_EQ(popUp->indexOfSelectedItem(), 2);
}

TEST_F(PopUpTest, TheFaceFollowsTheTitleOfItsItem) {
    showPopUp();
    popUp->itemAtIndex(0)->setTitle(u"Uno");
    EXPECT_EQ(face->currentText(), "Uno");
}

TEST_F(PopUpTest, ANewCellTakesOverMenuAndSelection) {
    showPopUp();
    popUp->selectItemAtIndex(2);
    popUp->setCell(std::make_shared<NSPopUpButtonCell>());
    EXPECT_EQ(popUp->titleOfSelectedItem(), u"Three");
    EXPECT_THROW(popUp->setCell(std::make_shared<NSCell>()), NSInvalidArgumentException);
}

// The user

TEST_F(PopUpTest, AChoiceIsSelectedThenDismissedThenSent) {
    showPopUp();
    owner->onAction = [&] { owner->log.push_back("now " + std::to_string(popUp->indexOfSelectedItem())); };
    EXPECT_TRUE(open([](QMenu& shown) {
        EXPECT_EQ(linesOf(shown), QStringList({"One", "Two", "Three"}));
        EXPECT_TRUE(lineOf(shown, "One")->isChecked());
        click(shown, "Three");
    }));
    EXPECT_EQ(owner->taken(), (Log{"dismiss 2", "act", "now 2"}));
    EXPECT_EQ(face->currentText(), "Three");
}

TEST_F(PopUpTest, ChoosingTheSelectedItemSendsAgain) {
    showPopUp();
    open([](QMenu& shown) { click(shown, "One"); });
    EXPECT_EQ(owner->taken(), (Log{"dismiss 0", "act"}));
}

TEST_F(PopUpTest, CancellingDismissesOnly) {
    showPopUp();
    open([](QMenu& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
    EXPECT_EQ(owner->taken(), Log{"dismiss 0"});
}

TEST_F(PopUpTest, AnItemWithAnActionOfItsOwnSendsThatOne) {
    showPopUp();
    popUp->itemAtIndex(1)->setAction(u"act:");
    popUp->itemAtIndex(1)->setTarget(owner);
    popUp->setAction(u"rename:");
    open([](QMenu& shown) { click(shown, "Two"); });
    EXPECT_EQ(owner->taken(), (Log{"dismiss 1", "act"}));
}

TEST_F(PopUpTest, KeysOpenTheMenuAndChooseInIt) {
    for (const auto key : {Qt::Key_Space, Qt::Key_Up, Qt::Key_Down}) {
        showPopUp();
        const auto choose = [](QMenu& shown) {
            QTest::keyClick(&shown, Qt::Key_Down);
            QTest::keyClick(&shown, Qt::Key_Return);
        };
        EXPECT_TRUE(withMenu([&] { QTest::keyClick(face, key); }, choose));
        EXPECT_EQ(owner->taken(), (Log{"dismiss 1", "act"}));
        owner->connected.clear();
        contents = {};
        window.reset();
    }
}

TEST_F(PopUpTest, AKeyOpensAPullDownMenuAtItsFirstItemThatIsShown) {
    for (const auto key : {Qt::Key_Space, Qt::Key_Up, Qt::Key_Down}) {
        showPullDown(); // its first item is its face
        popUp->itemAtIndex(1)->setHidden(true);
        QString marked;
        EXPECT_TRUE(withMenu([&] { QTest::keyClick(face, key); },
                             [&](QMenu& shown) {
                                 marked = shown.activeAction() ? shown.activeAction()->text() : QString();
                                 QTest::keyClick(&shown, Qt::Key_Return);
                             }));
        EXPECT_EQ(marked, "Three");
        EXPECT_EQ(owner->taken(), (Log{"dismiss 2", "act"}));
        owner->connected.clear();
        contents = {};
        window.reset();
    }
}

TEST_F(PopUpTest, AClickOpensAPullDownMenuWithoutAMark) {
    showPullDown();
    open([](QMenu& shown) {
        EXPECT_EQ(shown.activeAction(), nullptr);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
}

TEST_F(PopUpTest, OtherKeysChangeNothingSilently) {
    showPopUp();
    QTest::keyClick(face, Qt::Key_End);
    QTest::keyClicks(face, "T");
    EXPECT_EQ(face->currentText(), "One");
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
}

TEST_F(PopUpTest, TheWheelChangesNothingSilently) {
    showPopUp();
    QWheelEvent wheel({5, 5}, face->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(face, &wheel);
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
}

TEST_F(PopUpTest, TheCellAndThenTheButtonSayThatTheMenuWillOpen) {
    showPopUp();
    auto& center = NSNotificationCenter::defaultCenter();
    std::vector<NSNotificationCenter::Token> tokens;
    for (const auto& [name, object] :
         {std::pair(NSPopUpButtonWillPopUpNotification, std::shared_ptr<NSObject>(popUp)),
          std::pair(NSPopUpButtonCellWillPopUpNotification, std::shared_ptr<NSObject>(popUp->cell()))})
        tokens.push_back(
            center.addObserverForNameObjectQueueUsingBlock(name, object, nullptr, [&](const NSNotification& posted) {
                owner->log.push_back(posted.object == popUp ? "button" : "cell");
                EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
            }));
    open([](QMenu& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
    EXPECT_EQ(owner->taken(), (Log{"cell", "button", "dismiss 0"}));
    for (const auto& token : tokens)
        center.removeObserver(token);
}

TEST_F(PopUpTest, TheMenuShownIsTheOneThereAfterThePosts) {
    showPopUp();
    const auto token = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
        NSPopUpButtonWillPopUpNotification, popUp, nullptr, [&](const NSNotification&) {
            popUp->setMenu(menuOf({u"New", u"Newer"}));
        });
    open([](QMenu& shown) {
        EXPECT_EQ(linesOf(shown), QStringList({"New", "Newer"}));
        click(shown, "Newer");
    });
    EXPECT_EQ(popUp->titleOfSelectedItem(), u"Newer");
    NSNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(PopUpTest, AnEmptyMenuIsFilledByWhoeverHearsThatItWillOpen) {
    showPopUp();
    popUp->removeAllItems();
    const auto token = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
        NSPopUpButtonWillPopUpNotification, popUp, nullptr,
        [&](const NSNotification&) { popUp->addItemWithTitle(u"Filled"); });
    EXPECT_TRUE(open([](QMenu& shown) { EXPECT_EQ(linesOf(shown), QStringList("Filled")); }));
    NSNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(PopUpTest, AnEmptyMenuShowsNothing) {
    showPopUp();
    popUp->removeAllItems();
    EXPECT_FALSE(open([](QMenu&) {}));
}

TEST_F(PopUpTest, ADisabledButtonPostsAndShowsNothing) {
    showPopUp();
    bool posted = false;
    const auto token = NSNotificationCenter::defaultCenter().addObserverForNameObjectQueueUsingBlock(
        NSPopUpButtonWillPopUpNotification, popUp, nullptr, [&](const NSNotification&) { posted = true; });
    popUp->setEnabled(false);
    EXPECT_FALSE(open([](QMenu&) {}));
    EXPECT_EQ(popUp->userOpens(), nullptr);
    EXPECT_FALSE(posted);
    NSNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(PopUpTest, TheButtonMayGoWhileItsMenuIsOpen) {
    showPopUp();
    const auto goes = [&](QMenu&) {
        owner->connected.clear();
        popUp.reset();
        contents = {};
        window.reset();
    };
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    EXPECT_TRUE(withMenu([&] { QApplication::sendEvent(face, &press); }, goes));
}

TEST_F(PopUpTest, ARightClickShowsNoMenu) {
    showPopUp();
    EXPECT_FALSE(withMenu([&] { rightClick(*face, {3, 3}); }, [](QMenu&) {}));
}

// Pulling down

TEST_F(PopUpTest, APullDownShowsItsFirstItemAlwaysAndLeavesItOut) {
    showPullDown();
    popUp->itemAtIndex(0)->setImageNamed(u"NSActionTemplate");
    EXPECT_EQ(face->currentText(), "One");
    EXPECT_FALSE(face->itemIcon(0).isNull());
    open([](QMenu& shown) {
        EXPECT_EQ(linesOf(shown), QStringList({"Two", "Three"}));
        EXPECT_FALSE(lineOf(shown, "Two")->isCheckable());
        click(shown, "Three");
    });
    EXPECT_EQ(face->currentText(), "One");
    EXPECT_EQ(owner->taken(), (Log{"dismiss 2", "act"}));
}

TEST_F(PopUpTest, ThePullDownsFaceIsHiddenInAContextMenuToo) {
    showPullDown();
    const auto menu = menuOf({u"Face", u"Command"});
    popUp->cell()->setMenu(menu);
    EXPECT_EQ(face->currentText(), "Face");
    EXPECT_TRUE(menu->itemAtIndex(0)->isHidden());
    popUp->cell()->setMenu(menuOf({u"Other"}));
    EXPECT_FALSE(menu->itemAtIndex(0)->isHidden());
}

TEST_F(PopUpTest, APullDownsSelectionSetsNoStates) {
    showPullDown();
    popUp->selectItemAtIndex(1);
    popUp->selectItemAtIndex(2);
    EXPECT_EQ(popUp->itemAtIndex(2)->state(), 0);
}

} // namespace
