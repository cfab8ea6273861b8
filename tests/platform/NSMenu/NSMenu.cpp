// SPDX-License-Identifier: MIT
#include "Interface.h"
#include "MenuUser.h"

#include <AppKit/NSMenu.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <QPushButton>

using namespace platform;
using namespace testing_support;

namespace {

/// Answers for its items and writes down what they send.
class Commands : public NSObject, public NSUserInterfaceValidations {
public:
    std::u16string_view className() const override { return u"Commands"; }
    static NSClass describe() {
        return ClassTable<Commands>(u"Commands").action(u"act:", &Commands::act).action(u"other:", &Commands::other);
    }
    void act(const std::shared_ptr<NSObject>& sender) {
        log.push_back("act " + toUtf8(std::dynamic_pointer_cast<NSMenuItem>(sender)->title()));
    }
    void other(const std::shared_ptr<NSObject>&) { log.push_back("other"); }
    bool validateUserInterfaceItem(const NSValidatedUserInterfaceItem& item) override {
        ++asked;
        return item.tag() != refusedTag;
    }
    NSInteger refusedTag = 7;
    int asked = 0;
    Log log;
};

class MenuTest : public InterfaceTest {
protected:
    std::shared_ptr<NSMenuItem> add(const std::u16string& title, const std::u16string& action = u"act:",
                                    NSInteger tag = 0) {
        auto item = menu->addItemWithTitleActionKeyEquivalent(title, action, u"");
        item->setTarget(commands);
        item->setTag(tag);
        return item;
    }
    void showButton() {
        show({"button"}, column({widget("QPushButton", "button")}));
        button = shown<QPushButton>("button");
        view<NSView>("button")->setMenu(menu);
    }
    bool open(const std::function<void(QMenu&)>& act) {
        return withMenu([&] { rightClick(*button, {3, 3}); }, act);
    }

    ClassRegistration registration{Commands::describe()};
    std::shared_ptr<Commands> commands = std::make_shared<Commands>();
    std::shared_ptr<NSMenu> menu = std::make_shared<NSMenu>();
    QPushButton* button = nullptr;
};

TEST_F(MenuTest, FindsTheFirstItemOfATitleATagOrARepresentedObject) {
    const auto token = std::make_shared<NSMenu>();
    add(u"a", u"", 3);
    add(u"b", u"", 4)->setRepresentedObject(std::u16string(u"%page%"));
    add(u"b", u"", 4)->setRepresentedObject(std::shared_ptr<NSObject>(token));
    EXPECT_EQ(menu->indexOfItemWithTitle(u"b"), 1);
    EXPECT_EQ(menu->indexOfItemWithTitle(u"c"), -1);
    EXPECT_EQ(menu->indexOfItemWithTag(4), 1);
    EXPECT_EQ(menu->indexOfItemWithTag(5), -1);
    EXPECT_EQ(menu->itemWithTag(3)->title(), u"a");
    EXPECT_EQ(menu->itemWithTag(9), nullptr);
    EXPECT_EQ(menu->itemWithTitle(u"b"), menu->itemAtIndex(1));
    EXPECT_EQ(menu->indexOfItemWithRepresentedObject(std::u16string(u"%page%")), 1);
    EXPECT_EQ(menu->indexOfItemWithRepresentedObject(std::shared_ptr<NSObject>(token)), 2);
    EXPECT_EQ(menu->indexOfItemWithRepresentedObject(std::u16string(u"%pages%")), -1);
}

TEST_F(MenuTest, PlacesOutsideTheItemsRaise) {
    add(u"a");
    const auto item = std::make_shared<NSMenuItem>(u"b");
    EXPECT_THROW(menu->insertItemAtIndex(item, -1), NSRangeException);
    EXPECT_THROW(menu->insertItemAtIndex(item, 2), NSRangeException);
    EXPECT_THROW(menu->removeItemAtIndex(1), NSRangeException);
    EXPECT_THROW(menu->itemAtIndex(-1), NSRangeException);
    menu->insertItemAtIndex(item, 0);
    EXPECT_EQ(menu->itemAtIndex(0), item);
}

TEST_F(MenuTest, AnItemIsInOneMenuAtATime) {
    const auto item = add(u"a");
    const auto second = std::make_shared<NSMenu>();
    EXPECT_THROW(second->addItem(item), NSException);
    menu->removeItemAtIndex(0);
    EXPECT_EQ(item->menu(), nullptr);
    second->addItem(item);
    EXPECT_EQ(item->menu(), second);
    second->removeAllItems();
    EXPECT_EQ(item->menu(), nullptr);
}

TEST_F(MenuTest, ARightClickShowsItsItemsInOrder) {
    add(u"One & Two");
    menu->addItem(NSMenuItem::separatorItem());
    add(u"Three");
    showButton();
    EXPECT_TRUE(open([](QMenu& shown) { EXPECT_EQ(linesOf(shown), QStringList({"One && Two", "-", "Three"})); }));
}

TEST_F(MenuTest, AnEmptyMenuShowsNothing) {
    showButton();
    EXPECT_FALSE(open([](QMenu&) {}));
}

TEST_F(MenuTest, WithoutMenuARightClickShowsNothing) {
    add(u"One");
    showButton();
    view<NSView>("button")->setMenu(nullptr);
    EXPECT_FALSE(open([](QMenu&) {}));
}

TEST_F(MenuTest, AHiddenItemIsLeftOut) {
    add(u"One")->setHidden(true);
    add(u"Two");
    showButton();
    EXPECT_TRUE(open([](QMenu& shown) { EXPECT_EQ(linesOf(shown), QStringList("Two")); }));
}

TEST_F(MenuTest, AnItemThatIsOnHasACheckMark) {
    add(u"One")->setState(1);
    add(u"Two");
    showButton();
    EXPECT_TRUE(open([](QMenu& shown) {
        EXPECT_TRUE(lineOf(shown, "One")->isChecked());
        EXPECT_FALSE(lineOf(shown, "Two")->isCheckable());
    }));
}

TEST_F(MenuTest, ANamedImageIsDrawnAndAnUnknownOneIsNot) {
    add(u"One")->setImageNamed(u"NSActionTemplate");
    add(u"Two")->setImageNamed(u"NoSuchImage");
    showButton();
    EXPECT_TRUE(open([](QMenu& shown) {
        EXPECT_FALSE(lineOf(shown, "One")->icon().isNull());
        EXPECT_TRUE(lineOf(shown, "Two")->icon().isNull());
    }));
}

TEST_F(MenuTest, AChosenItemSendsItsActionWithItselfAsSender) {
    add(u"One");
    add(u"Two");
    showButton();
    open([](QMenu& shown) { click(shown, "Two"); });
    EXPECT_EQ(commands->log, Log{"act Two"});
}

TEST_F(MenuTest, AnItemIsChosenWithTheKeys) {
    add(u"One");
    add(u"Two");
    showButton();
    open([](QMenu& shown) {
        QTest::keyClick(&shown, Qt::Key_Down);
        QTest::keyClick(&shown, Qt::Key_Down);
        QTest::keyClick(&shown, Qt::Key_Return);
    });
    EXPECT_EQ(commands->log, Log{"act Two"});
}

TEST_F(MenuTest, TheMenuKeyShowsItToo) {
    add(u"One");
    showButton();
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {3, 3}, button->mapToGlobal(QPoint(3, 3)));
    EXPECT_TRUE(withMenu([&] { QApplication::sendEvent(button, &key); }, [](QMenu& shown) { click(shown, "One"); }));
    EXPECT_EQ(commands->log, Log{"act One"});
}

TEST_F(MenuTest, ClosingItWithEscapeSendsNothing) {
    add(u"One");
    showButton();
    open([](QMenu& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
    EXPECT_EQ(commands->log, Log());
}

TEST_F(MenuTest, TheTargetIsAskedEachTimeBeforeItShows) {
    const auto item = add(u"One", u"act:", 7);
    showButton();
    EXPECT_TRUE(open([&](QMenu& shown) {
        EXPECT_FALSE(lineOf(shown, "One")->isEnabled());
        commands->refusedTag = 0;
        EXPECT_FALSE(lineOf(shown, "One")->isEnabled()); // not while it is open
        click(shown, "One");
    }));
    EXPECT_EQ(commands->log, Log());
    EXPECT_EQ(commands->asked, 1);
    EXPECT_TRUE(open([](QMenu& shown) { click(shown, "One"); }));
    EXPECT_EQ(commands->log, Log{"act One"});
    EXPECT_TRUE(item->isEnabled());
}

TEST_F(MenuTest, ItemsThatNobodyAnswersAreDisabled) {
    add(u"No action", u"");
    add(u"Unknown action", u"unknown:");
    add(u"No target")->setTarget(nullptr);
    add(u"Target without a say")->setTarget(owner);
    loadFile({"button"}, column({widget("QPushButton", "button")})); // registers the owner's class
    menu->update();
    EXPECT_FALSE(menu->itemAtIndex(0)->isEnabled());
    EXPECT_FALSE(menu->itemAtIndex(1)->isEnabled());
    EXPECT_FALSE(menu->itemAtIndex(2)->isEnabled());
    EXPECT_TRUE(menu->itemAtIndex(3)->isEnabled());
    menu->update(true);
    EXPECT_TRUE(menu->itemAtIndex(0)->isEnabled());
    EXPECT_FALSE(menu->itemAtIndex(1)->isEnabled());
}

TEST_F(MenuTest, AnItemOfASubmenuIsChosen) {
    const auto inner = std::make_shared<NSMenu>();
    const auto item = inner->addItemWithTitleActionKeyEquivalent(u"Deep", u"act:", u"");
    item->setTarget(commands);
    add(u"More", u"")->setSubmenu(inner);
    showButton();
    open([](QMenu& shown) {
        auto* line = lineOf(shown, "More");
        ASSERT_TRUE(line && line->isEnabled() && line->menu());
        shown.setActiveAction(line);
        QTest::keyClick(&shown, Qt::Key_Right);
        QTest::keyClick(line->menu(), Qt::Key_Return);
    });
    EXPECT_EQ(commands->log, Log{"act Deep"});
}

TEST_F(MenuTest, TheWidgetMayGoWhileItIsOpen) {
    add(u"One");
    showButton();
    EXPECT_TRUE(open([&](QMenu&) {
        owner->connected.clear();
        contents = {};
        window.reset();
    }));
    EXPECT_EQ(commands->log, Log());
}

TEST_F(MenuTest, TheTargetMayGoBeforeAnItemIsChosen) {
    add(u"One");
    showButton();
    open([&](QMenu& shown) {
        commands.reset();
        click(shown, "One");
    });
    SUCCEED();
}

} // namespace
