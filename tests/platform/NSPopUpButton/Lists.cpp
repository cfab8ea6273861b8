// SPDX-License-Identifier: MIT
#include "Interface.h"
#include "ListUser.h"
#include "MenuUser.h"

#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSString.h>

#include <QApplication>
#include <QComboBox>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>

using namespace platform;
using namespace testing_support;

namespace {

std::shared_ptr<NSAttributedString> attributed(const std::u16string& text, const std::u16string& fontName = {}) {
    const auto font = fontName.empty() ? NSFont::menuFontOfSize(13) : NSFont::fontWithNameSize(fontName, 13);
    return std::make_shared<NSAttributedString>(text, NSAttributedString::Attributes{{NSFontAttributeName, font}});
}

/// A button whose menu has items drawn in fonts, and is therefore shown as a list.
class PopUpListTest : public InterfaceTest {
protected:
    void showPopUp(const std::vector<std::u16string>& titles) {
        show({"popUp"}, column({widget("QComboBox", "popUp",
                                       property("action", "act:") +
                                           setting("sizeAdjustPolicy", "enum",
                                                   "QComboBox::AdjustToMinimumContentsLengthWithIcon"))}));
        popUp = view<NSPopUpButton>("popUp");
        face = shown<QComboBox>("popUp");
        ASSERT_TRUE(popUp && face);
        auto menu = std::make_shared<NSMenu>();
        for (const auto& title : titles)
            menu->addItemWithTitleActionKeyEquivalent(title, u"", u"")->setAttributedTitle(attributed(title));
        popUp->setMenu(menu);
        owner->taken();
    }
    void showMany(int count) {
        std::vector<std::u16string> titles;
        for (int i = 0; i < count; ++i)
            titles.push_back(u"Family " + fromUtf8(std::to_string(i)));
        showPopUp(titles);
    }
    bool open(const std::function<void(QListView&)>& act) {
        return withList([&] { QTest::mouseClick(face, Qt::LeftButton); }, act);
    }
    std::string selected() const { return toUtf8(popUp->titleOfSelectedItem().value_or(u"nil")); }

    std::shared_ptr<NSPopUpButton> popUp;
    QComboBox* face = nullptr;
};

const std::vector<std::u16string> fonts{u"Arial", u"Futura", u"Optima", u"Optima Nova", u"Zapfino"};

TEST_F(PopUpListTest, ItemsDrawnInFontsAreShownAsAList) {
    showPopUp(fonts);
    EXPECT_TRUE(open([](QListView& list) {
        EXPECT_EQ(linesOf(list), QStringList({"Arial", "Futura", "Optima", "Optima Nova", "Zapfino"}));
        EXPECT_EQ(currentLine(list), "Arial");
    }));
}

TEST_F(PopUpListTest, AMenuWithASubmenuIsShownAsAMenu) {
    showPopUp(fonts);
    popUp->menu()->itemAtIndex(1)->setSubmenu(std::make_shared<NSMenu>());
    EXPECT_TRUE(withMenu([&] { QTest::mouseClick(face, Qt::LeftButton); }, [](QMenu&) {}));
}

TEST_F(PopUpListTest, AClickChoosesAndSends) {
    showPopUp(fonts);
    open([](QListView& list) { click(list, "Optima"); });
    EXPECT_EQ(selected(), "Optima");
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(PopUpListTest, ChoosingTheSelectedOneSendsAgain) {
    showPopUp(fonts);
    open([](QListView& list) { click(list, "Arial"); });
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(PopUpListTest, EscapeTabAndAClickBesideItChooseNothing) {
    showPopUp(fonts);
    for (const auto key : {Qt::Key_Escape, Qt::Key_Tab}) {
        EXPECT_TRUE(open([key](QListView& list) {
            QTest::keyClick(&list, Qt::Key_Down);
            QTest::keyClick(&list, key);
            EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        }));
    }
    EXPECT_TRUE(open([](QListView& list) {
        QTest::mouseClick(list.window(), Qt::LeftButton, {}, {-5, -5});
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }));
    EXPECT_EQ(selected(), "Arial");
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(PopUpListTest, KeysMoveAndReturnChooses) {
    showPopUp(fonts);
    EXPECT_TRUE(withList([&] { QTest::keyClick(face, Qt::Key_Space); },
                         [](QListView& list) {
                             QTest::keyClick(&list, Qt::Key_End);
                             QTest::keyClick(&list, Qt::Key_Up);
                             QTest::keyClick(&list, Qt::Key_Return);
                         }));
    EXPECT_EQ(selected(), "Optima Nova");
    EXPECT_EQ(owner->taken(), Log{"act"});
}

TEST_F(PopUpListTest, TypingTheFirstLettersFindsAFamily) {
    showPopUp(fonts);
    open([](QListView& list) {
        QTest::keyClicks(&list, "zap");
        EXPECT_EQ(currentLine(list), "Zapfino");
        QTest::keyClick(&list, Qt::Key_Return);
    });
    EXPECT_EQ(selected(), "Zapfino");
}

TEST_F(PopUpListTest, ASpaceIsALetterLikeAnyOther) {
    showPopUp(fonts);
    open([](QListView& list) {
        QTest::keyClicks(&list, "optima n");
        EXPECT_EQ(currentLine(list), "Optima Nova");
    });
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(PopUpListTest, TypingAtTheClosedButtonChangesNothing) {
    showPopUp(fonts);
    QTest::keyClicks(face, "zap");
    QTest::keyClick(face, Qt::Key_End);
    QWheelEvent wheel({5, 5}, face->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(face, &wheel);
    EXPECT_EQ(selected(), "Arial");
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(PopUpListTest, ADisabledLineCannotBeChosen) {
    showPopUp(fonts);
    popUp->menu()->itemAtIndex(1)->setAction(u"noSuchAction:");
    open([](QListView& list) {
        click(list, "Futura");
        EXPECT_NE(QApplication::activePopupWidget(), nullptr);
    });
    EXPECT_EQ(selected(), "Arial");
}

TEST_F(PopUpListTest, LettingGoOfThePressThatOpenedItChoosesNothing) {
    showPopUp(fonts);
    open([](QListView& list) {
        const auto at = list.visualRect(list.model()->index(2, 0)).center();
        QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
        EXPECT_NE(QApplication::activePopupWidget(), nullptr);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
    });
    EXPECT_EQ(selected(), "Optima");
}

TEST_F(PopUpListTest, PressingDraggingAndLettingGoChooses) {
    showPopUp(fonts);
    open([](QListView& list) {
        const auto at = list.visualRect(list.model()->index(3, 0)).center();
        QTest::mouseMove(list.viewport(), at);
        QMouseEvent move(QEvent::MouseMove, at, list.viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(list.viewport(), &move);
        EXPECT_EQ(currentLine(list), "Optima Nova");
        QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    });
    EXPECT_EQ(selected(), "Optima Nova");
}

TEST_F(PopUpListTest, ALongListIsNoHigherThanTheScreenAndShowsTheSelectedLine) {
    showMany(1500);
    popUp->selectItemAtIndex(700);
    EXPECT_TRUE(open([](QListView& list) {
        EXPECT_TRUE(list.screen()->availableGeometry().contains(list.window()->frameGeometry()));
        EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex())));
        EXPECT_EQ(currentLine(list), "Family 700");
        EXPECT_GT(list.verticalScrollBar()->maximum(), 0);
        QTest::keyClick(&list, Qt::Key_PageDown);
        EXPECT_GT(list.currentIndex().row(), 710);
        QTest::keyClick(&list, Qt::Key_End);
        EXPECT_EQ(currentLine(list), "Family 1499");
        QTest::keyClick(&list, Qt::Key_Return);
    }));
    EXPECT_EQ(selected(), "Family 1499");
}

TEST_F(PopUpListTest, TheWheelScrollsAnOpenList) {
    showMany(1500);
    open([](QListView& list) {
        const auto before = list.verticalScrollBar()->value();
        QWheelEvent wheel({20, 20}, list.viewport()->mapToGlobal(QPointF(20, 20)), {}, {0, -240}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(list.viewport(), &wheel);
        EXPECT_GT(list.verticalScrollBar()->value(), before);
        EXPECT_EQ(currentLine(list), "Family 0");
    });
}

/// Answers every question about a font and notes which were asked about.
class NotingFonts final : public FontSource {
public:
    std::vector<std::u16string> namesForLocale(const NSLocale&) override { return {}; }
    std::shared_ptr<const FontNames> namesOf(const std::u16string& name) override {
        return std::make_shared<FontNames>(FontNames{name, name, name});
    }
    std::vector<FontFile> filesOf(const std::u16string& name) override {
        asked.insert(name);
        return {};
    }
    std::u16string defaultName() override { return {}; }
    std::set<std::u16string> asked;
};

TEST_F(PopUpListTest, OnlyLinesThatComeIntoViewAskForTheirFonts) {
    const auto source = std::make_shared<NotingFonts>();
    FontSource::setCurrent(source);
    showMany(1500);
    for (const auto& item : popUp->menu()->itemArray())
        item->setAttributedTitle(attributed(item->title(), item->title()));
    source->asked.clear();
    open([&](QListView& list) {
        list.viewport()->grab();
        EXPECT_TRUE(source->asked.count(u"Family 0"));
        EXPECT_LT(source->asked.size(), 40u);
        QTest::keyClick(&list, Qt::Key_End);
        list.viewport()->grab();
        EXPECT_TRUE(source->asked.count(u"Family 1499"));
        EXPECT_LT(source->asked.size(), 80u);
    });
    FontSource::setCurrent(nullptr);
}

TEST_F(PopUpListTest, TheButtonMayGoWhileItsListIsOpen) {
    showPopUp(fonts);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    EXPECT_TRUE(withList([&] { QApplication::sendEvent(face, &press); },
                         [&](QListView&) {
                             owner->connected.clear();
                             popUp.reset();
                             contents = {};
                             window.reset();
                         }));
}

TEST_F(PopUpListTest, TheMenuMayChangeWhileItsListIsOpen) {
    showPopUp(fonts);
    open([&](QListView& list) {
        const auto former = popUp->menu();
        popUp->setMenu(std::make_shared<NSMenu>());
        former->removeAllItems();
        click(list, "Optima");
    });
    EXPECT_EQ(selected(), "nil");
}

TEST_F(PopUpListTest, TheListIsCalledAsTheButton) {
    showPopUp(fonts);
    popUp->setAccessibilityLabel(u"Font family");
    open([](QListView& list) { EXPECT_EQ(list.accessibleName(), "Font family"); });
}

TEST_F(PopUpListTest, TheFaceShowsTheTitleInItsFont) {
    showPopUp(fonts);
    face->resize(220, face->height());
    const auto plain = face->grab().toImage();
    popUp->menu()->itemAtIndex(0)->setAttributedTitle(attributed(u"Arial", u"DejaVuSerif-Bold"));
    EXPECT_NE(face->grab().toImage(), plain);
    popUp->menu()->itemAtIndex(0)->setAttributedTitle(attributed(u"Arial"));
    EXPECT_EQ(face->grab().toImage(), plain);
}

} // namespace
