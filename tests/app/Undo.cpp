// SPDX-License-Identifier: MIT
// Undo and Redo of the Edit menu and their keys, on the real pane.

#include "WindowTest.h"

#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSTokenField.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QTextEdit>

using namespace platform;

namespace {

class Undo : public testing_support::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        window->pane().show(at(0), model());
        settle();
    }
    void showEditor(const char16_t* page) {
        outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(page);
        settle();
    }
    std::u16string page() { return outlet<NSTabView>(u"mainTabView")->selectedTabViewItem()->identifier(); }
    void undoByKey() {
        auto* focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window.get(), Qt::Key_Z, Qt::ControlModifier);
        settle();
    }
    void redoByKey() {
        auto* focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        settle();
    }
    std::u16string title() {
        std::u16string text;
        for (const auto& token : *at(0)->titleTokens())
            if (const auto* piece = std::get_if<std::u16string>(&token))
                text += *piece;
        return text;
    }
};

TEST_F(Undo, BringsADeletedConfigurationBackAndShowsIt) {
    const auto combined = model().createConfiguration(true);
    combined->addConfiguration(at(0));
    combined->addConfiguration(at(1));
    settle();
    const auto gone = at(0);
    deleteCurrent();
    ASSERT_TRUE(QTest::qWaitFor([&] { return current() == at(0); })) << "the next one is shown";
    EXPECT_NE(at(0), gone);
    child("tableView")->setFocus();
    undoByKey();
    EXPECT_EQ(at(0), gone);
    EXPECT_EQ(current(), gone);
    EXPECT_EQ(window->pane().table()->selectedRow(), 0);
    EXPECT_EQ(combined->configurations()->size(), 2U);
    EXPECT_EQ(combined->configurations()->front(), gone);
    EXPECT_EQ(page(), u"Imprint Configuration");
    redoByKey();
    EXPECT_NE(at(0), gone);
    EXPECT_EQ(current(), at(0));
    EXPECT_EQ(combined->configurations()->size(), 1U);
}

TEST_F(Undo, ShowsTheEmptyPageWhereTheFirstConfigurationIsTakenAway) {
    while (count(model().configurations()) > 0) {
        deleteCurrent();
        ASSERT_TRUE(QTest::qWaitFor([&] { return count(model().configurations()) == 0 || current() == at(0); }));
    }
    ASSERT_EQ(page(), u"No Imprint");
    session->history().clear();
    window->pane().perform(u"addConfiguration:");
    ASSERT_TRUE(QTest::qWaitFor([&] { return current() && page() == u"Imprint Configuration"; }));
    choose("Undo");
    EXPECT_EQ(page(), u"No Imprint");
    EXPECT_EQ(window->pane().table()->numberOfRows(), 0);
    EXPECT_FALSE(outlet<NSControl>(u"previewBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSControl>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSView>(u"duplicateRecBtn")->isHidden());
    EXPECT_TRUE(child("emptyHint")->isVisible());
    choose("Redo");
    EXPECT_EQ(page(), u"Imprint Configuration");
    EXPECT_EQ(current(), at(0));
    EXPECT_TRUE(outlet<NSControl>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSView>(u"duplicateRecBtn")->isHidden());
    EXPECT_FALSE(child("emptyHint")->isVisible());
}

TEST_F(Undo, BringsTheLastConfigurationBackFromTheEmptyPage) {
    model().setConfigurations({std::static_pointer_cast<model::Configuration>(at(0))});
    session->history().clear();
    window->pane().show(at(0), model());
    const auto last = at(0);
    deleteCurrent();
    ASSERT_EQ(page(), u"No Imprint");
    choose("Undo");
    EXPECT_EQ(current(), last);
    EXPECT_EQ(page(), u"Imprint Configuration");
    EXPECT_EQ(window->pane().table()->selectedRow(), 0);
}

TEST_F(Undo, PutsTheControlsBackToWhatWasChanged) {
    showEditor(u"Location");
    const auto former = at(0)->position();
    child<QAbstractButton>("bottomLeftBtn")->click();
    settle();
    ASSERT_EQ(at(0)->position(), static_cast<host::NSInteger>(host::Anchor::bottomLeft));
    choose("Undo");
    EXPECT_EQ(at(0)->position(), former);
    EXPECT_FALSE(child<QAbstractButton>("bottomLeftBtn")->isChecked());
    EXPECT_TRUE(child<QAbstractButton>("topRightBtn")->isChecked());
    choose("Redo");
    EXPECT_TRUE(child<QAbstractButton>("bottomLeftBtn")->isChecked());
    // And in another configuration than the one on show, which is shown then.
    window->pane().show(at(1), model());
    choose("Undo");
    EXPECT_EQ(current(), at(0));
}

TEST_F(Undo, LeavesATextThatIsTypedToItsOwnUndoing) {
    showEditor(u"Appearance");
    auto* edit = child<QTextEdit>("titleTokenField");
    ASSERT_TRUE(edit);
    edit->setFocus();
    edit->moveCursor(QTextCursor::End);
    const auto before = title();
    at(1)->setRotation(12); // done before the typing
    settle();
    QTest::keyClicks(edit, "urgent");
    settle();
    EXPECT_EQ(title(), before + u"urgent");
    undoByKey();
    EXPECT_EQ(title(), before);
    EXPECT_EQ(at(1)->rotation(), 12);
    EXPECT_EQ(QApplication::focusWidget(), edit) << "it is still being edited";
    // The text has nothing left to undo, and what it undid does not come back.
    undoByKey();
    EXPECT_EQ(title(), before);
    EXPECT_EQ(at(1)->rotation(), 0);
    EXPECT_EQ(current(), at(1));
}

TEST_F(Undo, OfATypedTitleComesFromTheMenuWhereNobodyEditsIt) {
    showEditor(u"Appearance");
    auto* edit = child<QTextEdit>("titleTokenField");
    edit->setFocus();
    edit->moveCursor(QTextCursor::End);
    const auto before = title();
    QTest::keyClicks(edit, "!");
    settle();
    child("tableView")->setFocus();
    choose("Undo");
    EXPECT_EQ(title(), before);
    EXPECT_FALSE(edit->document()->isUndoAvailable()) << "the field shows the configuration anew";
    EXPECT_FALSE(edit->toPlainText().contains(u'!'));
    choose("Redo");
    EXPECT_EQ(title(), before + u"!");
    EXPECT_TRUE(edit->toPlainText().contains(u'!'));
}

TEST_F(Undo, ARenamedConfigurationHasItsFormerName) {
    const auto former = at(0)->name();
    auto* table = child("tableView");
    table->setFocus();
    at(0)->setName(u"Renamed");
    window->pane().refresh(model());
    settle();
    undoByKey();
    EXPECT_EQ(at(0)->name(), former);
    EXPECT_EQ(dynamic_cast<QAbstractItemView&>(*table).model()->index(0, 0).data().toString(), app::toQt(former));
}

TEST_F(Undo, EnablesInItsMenuWhatCanBeDone) {
    auto* menu = qobject_cast<QMenu*>(command("Undo")->parent());
    ASSERT_TRUE(menu);
    const auto shown = [&] {
        Q_EMIT menu->aboutToShow();
        const auto enabled = std::pair(command("Undo")->isEnabled(), command("Redo")->isEnabled());
        Q_EMIT menu->aboutToHide();
        return enabled;
    };
    child("tableView")->setFocus();
    EXPECT_EQ(shown(), std::pair(false, false));
    at(0)->setRotation(20);
    settle();
    EXPECT_EQ(shown(), std::pair(true, false));
    choose("Undo");
    EXPECT_EQ(shown(), std::pair(false, true));
    undoByKey(); // with nothing to do
    EXPECT_EQ(shown(), std::pair(false, true));
    redoByKey();
    EXPECT_EQ(at(0)->rotation(), 20);
}

TEST_F(Undo, IsStoredLikeAnyOtherChange) {
    deleteCurrent();
    session->saveChanges();
    choose("Undo");
    window->close();
    close();
    open();
    EXPECT_EQ(names(), (std::vector<std::string>{"Received", "Page of Pages", "Confidential"}));
}

TEST_F(Undo, DoesNotReachBehindWhatAnotherProgramBroughtIn) {
    at(1)->setRotation(10);
    session->saveChanges();
    {
        store::Store other(path("store/configurations.json"));
        model::ImprinterModel theirs;
        theirs.setConfigurations(other.load().configurations);
        theirs.configurations()->at(1)->setRotation(50);
        ASSERT_FALSE(other.save(theirs));
    }
    at(0)->setRotation(20);
    session->saveChanges();
    EXPECT_EQ(at(1)->rotation(), 50);
    EXPECT_FALSE(session->history().canUndo());
}

} // namespace
