// SPDX-License-Identifier: MIT
// Everything is reached and used without a pointer.

#include "Screens.h"

#include <AppKit/NSTableView.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <set>

using namespace platform;
using namespace testing_support;

namespace {

class Keyboard : public Screens {
protected:
    /// What a user can do something with on the page that is shown, parts of other controls left out.
    std::set<QWidget*> controls() {
        std::set<QWidget*> found;
        for (auto* widget : window->findChildren<QWidget*>()) {
            const bool control = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                                 qobject_cast<QComboBox*>(widget) || qobject_cast<QAbstractItemView*>(widget) ||
                                 qobject_cast<QTextEdit*>(widget) || qobject_cast<QTabBar*>(widget);
            const bool part = widget->objectName().isEmpty() && !qobject_cast<QTabBar*>(widget);
            if (control && !part && widget->isVisible() && widget->isEnabled() && widget->window() == window.get() &&
                !qobject_cast<QMenuBar*>(widget->parentWidget()) && !qobject_cast<QTabBar*>(widget->parentWidget()) &&
                !qobject_cast<QHeaderView*>(widget))
                found.insert(widget);
        }
        return found;
    }

    /// Presses tab until it comes around, and the arrow keys at each stop.
    std::set<QWidget*> reached() {
        std::set<QWidget*> stops;
        auto* start = child("tableView");
        start->setFocus(Qt::TabFocusReason);
        settle();
        for (int presses = 0; presses < 200; ++presses) {
            auto* focus = QApplication::focusWidget();
            if (!focus || (presses > 0 && focus == start))
                break;
            stops.insert(focus);
            QTest::keyClick(focus, Qt::Key_Tab);
            settle();
        }
        // Groups are entered at one button; arrows move among the others and choose nothing.
        const auto entered = stops;
        for (auto* stop : entered)
            if (qobject_cast<QAbstractButton*>(stop))
                roam(stop, stops);
        return stops;
    }
    void roam(QWidget* from, std::set<QWidget*>& stops) {
        std::vector<QWidget*> open{from};
        while (!open.empty()) {
            auto* at = open.back();
            open.pop_back();
            for (const auto key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down}) {
                at->setFocus(Qt::TabFocusReason);
                QTest::keyClick(at, key);
                if (auto* focus = QApplication::focusWidget(); focus && stops.insert(focus).second)
                    open.push_back(focus);
                // Choosing the list of pages goes on to its field.
                for (auto* choice : window->findChildren<QRadioButton*>())
                    if (choice->isChecked())
                        stops.insert(choice);
            }
        }
    }
    std::string unreached() {
        const auto stops = reached();
        std::string names;
        for (auto* control : controls())
            if (!stops.contains(control))
                names += " " + control->objectName().toStdString();
        return names;
    }
    /// The menu that `open` opens, if it does; closed again.
    bool opensMenu(const std::function<void()>& open) {
        bool opened = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (auto* popup = QApplication::activePopupWidget()) {
                poll.stop();
                opened = true;
                QTest::keyClick(popup, Qt::Key_Escape);
            }
        });
        poll.start(1);
        open();
        if (!opened)
            opened = QTest::qWaitFor([&] { return opened; });
        if (auto* bar = qobject_cast<QMenuBar*>(QApplication::focusWidget()))
            QTest::keyClick(bar, Qt::Key_Escape);
        settle();
        return opened;
    }
};

TEST_F(Keyboard, ReachesEveryControlOfTheLocationPage) {
    open();
    showEditor(u"Location");
    EXPECT_GE(controls().size(), 22U);
    EXPECT_EQ(unreached(), "");
}

TEST_F(Keyboard, ReachesEveryControlOfTheAppearancePage) {
    open();
    showEditor(u"Appearance");
    EXPECT_GE(controls().size(), 16U);
    EXPECT_EQ(unreached(), "");
}

TEST_F(Keyboard, ReachesEveryControlOfACombinedConfiguration) {
    open();
    auto& model = session->model();
    const auto combined = model.createConfiguration(true);
    combined->addConfiguration(model.configurations()->front());
    window->pane().show(combined, model);
    settle();
    for (const char* table : {"allConfigsTableView", "combinedTableView"}) {
        auto* list = child<QTableView>(table);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
    }
    EXPECT_TRUE(child("addBtn")->isEnabled());
    EXPECT_TRUE(child("removeBtn")->isEnabled());
    EXPECT_EQ(unreached(), "");
}

TEST_F(Keyboard, GoesOnFromTheTabsAfterChoosingOne) {
    open();
    showEditor(u"Location");
    auto* bar = child("tabView")->findChild<QTabBar*>();
    ASSERT_TRUE(bar);
    bar->setFocus();
    QTest::keyClick(bar, language() == "ar" ? Qt::Key_Left : Qt::Key_Right);
    settle();
    EXPECT_EQ(bar->currentIndex(), 1);
    EXPECT_EQ(QApplication::focusWidget(), bar);
    QTest::keyClick(bar, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), child("titleTokenField"));
}

TEST_F(Keyboard, MakesTheFirstConfiguration) {
    open();
    auto& model = session->model();
    while (count(model.configurations()) > 0)
        model.deleteConfigurationAtIndex(0);
    window->pane().show(nullptr, model);
    settle();
    auto* button = child("makeFirst");
    ASSERT_TRUE(button && button->isVisible());
    EXPECT_TRUE(reached().contains(button));
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    settle();
    EXPECT_EQ(count(model.configurations()), 1U);
    EXPECT_FALSE(child("emptyHint")->isVisible());
}

TEST_F(Keyboard, OpensTheMenuOfTheTitleField) {
    open();
    showEditor(u"Appearance");
    auto* title = child("titleTokenField");
    title->setFocus();
    EXPECT_TRUE(opensMenu([&] { QTest::keyClick(title, Qt::Key_Down, Qt::AltModifier); }));
}

TEST_F(Keyboard, InsertsAPlaceholderIntoTheTitle) {
    open();
    showEditor(u"Appearance");
    auto* title = child("titleTokenField");
    title->setFocus();
    QTest::keyClick(title, Qt::Key_End, Qt::ControlModifier);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            poll.stop();
            QTest::keyClick(menu, Qt::Key_Down); // a new font, and behind a line
            QTest::keyClick(menu, Qt::Key_Down); // the number of the page
            QTest::keyClick(menu, Qt::Key_Return);
        }
    });
    poll.start(1);
    QTest::keyClick(title, Qt::Key_Down, Qt::AltModifier);
    settle();
    const auto tokens = *window->pane().currentConfiguration()->titleTokens();
    ASSERT_FALSE(tokens.empty());
    const auto* last = std::get_if<std::u16string>(&tokens.back());
    ASSERT_TRUE(last);
    EXPECT_EQ(*last, u"%pageNumber%");
}

TEST_F(Keyboard, OpensTheListsOfPopUpButtons) {
    open();
    showEditor(u"Appearance");
    for (const char* name :
         {"actionPopupMenu", "fontTokensPopup", "fontPopup", "fontAttributePopup", "borderStylePopup"}) {
        auto* button = child(name);
        ASSERT_TRUE(button) << name;
        button->setFocus();
        EXPECT_TRUE(opensMenu([&] { QTest::keyClick(button, Qt::Key_Space); })) << name;
    }
}

TEST_F(Keyboard, OpensAndClosesThePreview) {
    open();
    auto* button = child("previewBtn");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    settle();
    auto* popover = QApplication::activePopupWidget();
    ASSERT_TRUE(popover);
    EXPECT_TRUE(popover->focusWidget()) << "keys magnify and scroll";
    QTest::keyClick(popover, Qt::Key_Escape);
    settle();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(Keyboard, MovesConfigurationsInTheOrderPalette) {
    open();
    QTest::keyClick(window.get(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    auto* palette = child("orderPalette");
    ASSERT_TRUE(palette && palette->isVisible());
    auto* list = palette->findChild<QListWidget*>();
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->hasFocus());
    const auto first = session->model().configurations()->front();
    QTest::keyClick(list, Qt::Key_Home);
    QTest::keyClick(list, Qt::Key_Tab);
    auto* focus = palette->focusWidget();
    EXPECT_TRUE(qobject_cast<QAbstractButton*>(focus));
    QTest::keyClick(list, Qt::Key_Down, Qt::ControlModifier);
    settle();
    EXPECT_EQ((*session->model().configurations())[1], first);
}

TEST_F(Keyboard, OpensEveryMenuOfTheWindowByItsMarkedLetter) {
    open();
    for (auto* action : window->menuBar()->actions()) {
        // The bar is left as a user leaves it who goes on with something else.
        child("tableView")->setFocus();
        settle();
        const auto text = action->text();
        const auto mark = text.indexOf(u'&');
        ASSERT_GE(mark, 0) << text.toStdString();
        const auto sequence = QKeySequence::mnemonic(text);
        ASSERT_FALSE(sequence.isEmpty()) << text.toStdString();
        const auto combination = sequence[0];
        EXPECT_TRUE(opensMenu([&] {
            for (const bool press : {true, false}) // of a letter in any script
                QTest::simulateEvent(static_cast<QWidget*>(window.get()), press, combination.key(),
                                     combination.keyboardModifiers(), text.mid(mark + 1, 1), false);
        })) << text.toStdString();
    }
}

} // namespace
