// SPDX-License-Identifier: MIT
// What the window adds around the pane's own controls.

#include "WindowTest.h"

#include <AppKit/NSMatrix.h>
#include <AppKit/NSTabView.h>
#include <OrderPalette.h>
#include <PageListHelp.h>

#include <QClipboard>
#include <QLineEdit>
#include <QScreen>
#include <QTableView>
#include <QToolTip>

using namespace platform;

namespace {

TEST(PageLists, WriteRangesOutInSinglePages) {
    EXPECT_EQ(app::pageListOf("2-4"), "2,3,4");
    EXPECT_EQ(app::pageListOf("1, 3 - 5, 9"), "1, 3,4,5, 9");
    EXPECT_EQ(app::pageListOf("7\u20139"), "7,8,9");
    EXPECT_EQ(app::pageListOf("4-4"), "4");
    EXPECT_EQ(app::pageListOf("1,2,4"), "1,2,4");
    EXPECT_EQ(app::pageListOf(""), "");
}

TEST(PageLists, TakeDigitsAndCommasOfOtherScripts) {
    EXPECT_EQ(app::pageListOf(QStringLiteral("\u0661\u060C\u0662-\u0664")), "1,2,3,4");
    EXPECT_EQ(app::pageListOf(QStringLiteral("\uFF11\u3001\uFF12")), "1,2");
}

TEST(PageLists, KeepRangesThatAreNoneOrWouldBeTooLong) {
    EXPECT_EQ(app::pageListOf("4-2"), "4-2");
    EXPECT_EQ(app::pageListOf("1-999999999,5"), "1-999999999,5");
    EXPECT_EQ(app::pageListOf("1-3,1-9", 5), "1,2,3,1-9");
    EXPECT_EQ(app::pageListOf("3-"), "3-");
}

class Help : public testing_support::WindowTest {
protected:
    QLineEdit& pages() {
        window->pane().show(at(0), model());
        outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Location");
        const auto occurrence = outlet<NSMatrix>(u"occuranceMatrix");
        occurrence->userSelects(occurrence->cellWithTag(4));
        settle();
        auto* field = child<QLineEdit>("customOccurance");
        field->setFocus();
        return *field;
    }
};

TEST_F(Help, NothingStaysSelectedWhereTheButtonBesideItHasDoneItsWork) {
    const auto combined = model().createConfiguration(true);
    combined->addConfiguration(at(2));
    window->pane().show(combined, model());
    settle();
    for (const auto& [button, rows] :
         {std::pair("addBtn", "allConfigsTableView"), std::pair("removeBtn", "combinedTableView")}) {
        const auto first = [table = child<QTableView>(rows)] {
            const auto place = table->visualRect(table->model()->index(0, 0)).center();
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
            settle();
        };
        auto* table = child<QTableView>(rows);
        auto* act = child<QAbstractButton>(button);
        ASSERT_TRUE(table && act) << button;
        first();
        ASSERT_TRUE(act->isEnabled()) << button;
        QTest::mouseClick(act, Qt::LeftButton);
        settle();
        EXPECT_FALSE(act->isEnabled()) << button;
        EXPECT_GT(table->model()->rowCount(), 0) << rows;
        EXPECT_FALSE(table->selectionModel()->hasSelection()) << rows;
        first();
        EXPECT_TRUE(act->isEnabled()) << button << " is there for the next ones";
    }
}

TEST_F(Help, ADashInTheListOfPagesIsExplainedAndTakenForNothing) {
    auto& field = pages();
    QTest::keyClicks(&field, "2-");
    EXPECT_EQ(field.text(), "2");
    EXPECT_EQ(QToolTip::text(), "Pages are written one by one: 2,3,4");
    QTest::keyClicks(&field, ",5");
    EXPECT_EQ(at(0)->customOccurance(), u"2,5");
}

TEST_F(Help, APastedRangeIsWrittenOut) {
    auto& field = pages();
    QApplication::clipboard()->setText("2-4,7");
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field.text(), "2,3,4,7");
    EXPECT_EQ(at(0)->customOccurance(), u"2,3,4,7");
}

TEST_F(Help, DigitsOfAnotherScriptCount) {
    auto& field = pages();
    QTest::sendKeyEvent(QTest::Click, &field, Qt::Key_unknown, QStringLiteral("\u0663"), Qt::NoModifier);
    EXPECT_EQ(field.text(), "3");
    EXPECT_EQ(at(0)->customOccurance(), u"3");
}

TEST_F(Help, TheDeleteKeyInTheListAsksAndDeletes) {
    window->pane().show(at(1), model());
    auto* list = child("tableView");
    list->setFocus();
    std::u16string asked;
    NSAlert::setAnswerer([&](const NSAlert& alert) {
        asked = alert.messageText();
        return NSAlertFirstButtonReturn;
    });
    QTest::keyClick(list, Qt::Key_Delete);
    NSAlert::setAnswerer({});
    EXPECT_EQ(asked, u"Delete Page of Pages?");
    EXPECT_EQ(names(), (std::vector<std::string>{"Received", "Confidential"}));
}

TEST_F(Help, WhatWasNotSavedIsOfferedWithItsNumberAndTime) {
    const auto file = path("store/configurations.json");
    window->close();
    close();
    {
        store::Store killed(file);
        model::ImprinterModel theirs;
        theirs.setConfigurations(killed.load().configurations);
        theirs.configurations()->at(0)->setRotation(5);
        theirs.configurations()->at(1)->setRotation(5);
        ASSERT_FALSE(killed.keepUnsaved(theirs));
    }
    open();
    QString said;
    answering({press("Later", &said)}, [&] { window->offerUnsaved(); });
    const auto day = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);
    EXPECT_TRUE(said.contains("\n2 configurations were changed, last on " + day)) << said.toStdString();
}

TEST_F(Help, TheOrderStandsBesideTheWindowAndGoesWithEscape) {
    window->move(10, 20);
    settle();
    choose("Order");
    auto* palette = window->findChild<QWidget*>("orderPalette");
    ASSERT_TRUE(palette->isVisible());
    const auto room = window->screen()->availableGeometry();
    EXPECT_TRUE(room.contains(palette->frameGeometry()));
    if (room.width() > window->frameGeometry().right() + palette->width() + 20) {
        EXPECT_FALSE(palette->frameGeometry().intersects(window->frameGeometry()));
    }
    QTest::keyClick(palette->findChild<QListWidget*>(), Qt::Key_Escape);
    EXPECT_FALSE(palette->isVisible());
    // It comes back where the user left it.
    choose("Order");
    palette->move(33, 44);
    palette->close();
    choose("Order");
    EXPECT_EQ(palette->pos(), QPoint(33, 44));
}

} // namespace
