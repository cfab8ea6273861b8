// SPDX-License-Identifier: MIT
#include "CommandsTest.h"

#include <QComboBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <dlfcn.h>

using namespace platform;
using namespace testing_support;

namespace {

using Names = std::vector<QString>;

class ActionMenu : public CommandsTest {};
class Creating : public CommandsTest {};
class Duplicating : public CommandsTest {};
class Deleting : public CommandsTest {};
class Renaming : public CommandsTest {};
class Reordering : public CommandsTest {};

// The menu

TEST_F(ActionMenu, HasItsItemsInOrder) {
    startWith({u"a"});
    const auto menu = pane->buildActionMenu();
    struct Line {
        std::u16string title;
        std::u16string action;
        NSInteger tag;
        bool separator;
    };
    const Line wanted[] = {{u"", u"", 0, false},
                           {u"New Configuration", u"addConfiguration:", 0, false},
                           {u"New Combined Configuration", u"createCombinedConfiguration:", 0, false},
                           {u"", u"", 0, true},
                           {u"Duplicate Configuration", u"duplicateConfiguration:", 1, false},
                           {u"", u"", 0, true},
                           {u"Delete Configuration", u"deleteConfiguration:", 2, false}};
    EXPECT_EQ(menu->title(), u"");
    EXPECT_EQ(menu->delegate(), std::static_pointer_cast<NSMenuDelegate>(pane));
    ASSERT_EQ(menu->numberOfItems(), 7);
    for (NSInteger i = 0; i < 7; ++i) {
        const auto item = menu->itemAtIndex(i);
        EXPECT_EQ(item->title(), wanted[i].title);
        EXPECT_EQ(item->action(), wanted[i].action);
        EXPECT_EQ(item->tag(), wanted[i].tag);
        EXPECT_EQ(item->isSeparatorItem(), wanted[i].separator);
        EXPECT_EQ(item->keyEquivalent(), u"");
        EXPECT_EQ(item->target(), pane);
        EXPECT_EQ(item->imageName(), i == 0 ? u"NSActionTemplate" : u"");
    }
    EXPECT_NE(pane->buildActionMenu(), menu);
}

TEST_F(ActionMenu, IsOneAndTheSameInBothPlaces) {
    startWith({u"a"});
    EXPECT_NE(table()->menu(), nullptr);
    EXPECT_EQ(outlet<NSPopUpButton>(u"actionPopupMenu")->menu(), table()->menu());
}

TEST_F(ActionMenu, LeavesItsFaceOutInBothPlaces) {
    startWith({u"a"});
    const QStringList lines{"New Configuration",   "New Combined Configuration", "-", "Duplicate Configuration", "-",
                            "Delete Configuration"};
    EXPECT_TRUE(withActions([&](QMenu& menu) { EXPECT_EQ(linesOf(menu), lines); }));
    EXPECT_TRUE(withTableMenu(rowRect(0).center(), [&](QMenu& menu) { EXPECT_EQ(linesOf(menu), lines); }));
}

TEST_F(ActionMenu, TheButtonShowsTheImageAndNoText) {
    startWith({u"a"});
    const auto& face = dynamic_cast<QComboBox&>(widget(u"actionPopupMenu"));
    EXPECT_EQ(face.currentText(), "");
    EXPECT_FALSE(face.itemIcon(face.currentIndex()).isNull());
}

TEST_F(ActionMenu, DuplicateAndDeleteNeedASelectedRowAndTheNewItemsDoNot) {
    startWith({u"a", u"b"});
    const auto enabled = [this] {
        std::vector<bool> answers;
        withActions([&](QMenu& menu) {
            for (const char* title :
                 {"New Configuration", "New Combined Configuration", "Duplicate Configuration", "Delete Configuration"})
                answers.push_back(lineOf(menu, title)->isEnabled());
        });
        return answers;
    };
    EXPECT_EQ(enabled(), (std::vector<bool>{true, true, true, true}));
    selectNothing();
    EXPECT_EQ(enabled(), (std::vector<bool>{true, true, false, false}));
    clickRow(1);
    EXPECT_EQ(enabled(), (std::vector<bool>{true, true, true, true}));
}

TEST_F(ActionMenu, ARightClickOnAnotherRowLeavesTheSelection) {
    startWith({u"a", u"b"});
    EXPECT_TRUE(withTableMenu(rowRect(1).center(), [](QMenu& menu) { click(menu, "Duplicate Configuration"); }));
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(takenCommands(), MessageLog{"imprinter duplicateConfigurationAtIndex 0"});
}

TEST_F(ActionMenu, OpensOverTheEmptyAreaToo) {
    startWith({u"a"});
    EXPECT_TRUE(
        withTableMenu({10, grid().viewport()->height() - 5}, [](QMenu& menu) { click(menu, "New Configuration"); }));
    EXPECT_EQ(rows(), (Names{"a", "New Imprinter"}));
}

TEST_F(ActionMenu, IsWorkedWithTheKeys) {
    startWith({u"a"});
    auto& button = widget(u"actionPopupMenu");
    button.setFocus();
    EXPECT_TRUE(withMenu([&] { QTest::keyClick(&button, Qt::Key_Space); },
                         [](QMenu& menu) {
                             QTest::keyClick(&menu, Qt::Key_Down); // from the first, which is marked
                             QTest::keyClick(&menu, Qt::Key_Return);
                         }));
    EXPECT_EQ(rows(), (Names{"a", "New Combined Imprint"}));
}

// Creating

TEST_F(Creating, NamesTheNewConfigurationShowsItInTheListAndWaits) {
    startWith({u"a"});
    choose("New Configuration");
    EXPECT_EQ(takenCommands(), (MessageLog{"imprinter createConfiguration NO", "new 1 setName New Imprinter"}));
    EXPECT_EQ(rows(), (Names{"a", "New Imprinter"}));
    queue->advance(0.19);
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[0]);
    EXPECT_EQ(takenCommands(), MessageLog());
}

TEST_F(Creating, TwoTenthsOfASecondLaterItsRowIsSelectedFirstAndThenItIsShown) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    bool switched = false;
    imprinter->made->onSwitch = [&] {
        // The table asks the same question when it draws the row.
        if (pane->currentConfiguration() != imprinter->made || switched)
            return;
        switched = true;
        EXPECT_EQ(table()->selectedRow(), 2);
    };
    queue->advance(0.2);
    imprinter->made->onSwitch = {};
    EXPECT_TRUE(switched);
    EXPECT_EQ(table()->selectedRowIndexes(), NSIndexSet(2));
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
    EXPECT_EQ(mainPage(), u"Imprint Configuration");
}

TEST_F(Creating, ItsIndexIsAskedOnlyWhenItIsSelected) {
    startWith({u"a", u"b"});
    choose("New Configuration");
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter indexOfConfiguration"), 0);
    imprinter->setList({imprinter->made, configurations[0], configurations[1]});
    queue->advance(0.2);
    EXPECT_EQ(takenCommands().front(), "imprinter indexOfConfiguration");
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), imprinter->made);
}

TEST_F(Creating, ACombinedOneIsNamedAndShownLikewise) {
    startWith({u"a"});
    choose("New Combined Configuration");
    const auto messages = takenCommands();
    ASSERT_GE(messages.size(), 2U);
    EXPECT_EQ(messages[0], "imprinter createConfiguration YES");
    EXPECT_EQ(messages[1], "new 1 setName New Combined Imprint");
    waitForSelection();
    EXPECT_EQ(table()->selectedRow(), 1);
    EXPECT_EQ(mainPage(), u"Imprint Combined");
}

TEST_F(Creating, TheFirstOfAnEmptyListIsShown) {
    startWith({});
    choose("New Configuration");
    waitForSelection();
    EXPECT_EQ(mainPage(), u"Imprint Configuration");
    EXPECT_TRUE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
}

TEST_F(Creating, SavesNothing) {
    startWith({u"a"});
    choose("New Configuration");
    waitForSelection();
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter saveConfigurations"), 0);
}

TEST_F(Creating, WithoutAHostDoesNothing) {
    load();
    show();
    choose("New Configuration");
    choose("New Combined Configuration");
    EXPECT_EQ(queue->waiting(), 0U);
    EXPECT_EQ(log, MessageLog());
}

// Duplicating

TEST_F(Duplicating, TakesTheSelectedRowWhateverIsBeingEdited) {
    startWith({u"a", u"b"});
    selectRow(1);
    taken();
    choose("Duplicate Configuration");
    EXPECT_EQ(takenCommands().front(), "imprinter duplicateConfigurationAtIndex 1");
    EXPECT_EQ(rows(), (Names{"a", "b", "new 1"}));
}

TEST_F(Duplicating, LeavesSelectionAndEditorsAsTheyWere) {
    startWith({u"a", u"b"});
    choose("Duplicate Configuration");
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"a", "new 1", "b"}));
    EXPECT_EQ(table()->selectedRow(), 0);
    EXPECT_EQ(pane->currentConfiguration(), configurations[0]);
    EXPECT_EQ(queue->waiting(), 0U);
}

TEST_F(Duplicating, WithoutAHostDoesNothing) {
    load();
    show();
    pane->duplicateConfiguration(nullptr);
    EXPECT_EQ(log, MessageLog());
    EXPECT_EQ(table()->numberOfRows(), 0);
}

// Deleting

TEST_F(Deleting, AsksFirst) {
    startWith({u"a", u"b"});
    pressDelete();
    EXPECT_EQ(alerts, std::vector<std::u16string>{u"Delete a?"});
    EXPECT_EQ(informativeTexts, std::vector<std::u16string>{u"Deleted configurations cannot be restored."});
    EXPECT_EQ(buttonTitles, (std::vector<std::vector<std::u16string>>{{u"Delete", u"Cancel"}}));
    EXPECT_EQ(alertStyles, std::vector{NSAlertStyle::warning});
}

TEST_F(Deleting, IsDoneByTheButtonAndByTheMenuAlike) {
    startWith({u"a", u"b", u"c"});
    choose("Delete Configuration");
    waitForSelection();
    pressDelete();
    EXPECT_EQ(rows(), Names{"c"});
    EXPECT_EQ(alerts, (std::vector<std::u16string>{u"Delete a?", u"Delete b?"}));
}

TEST_F(Deleting, TheButtonAnswersTheKeys) {
    startWith({u"a", u"b"});
    auto& button = widget(u"deleteConfigurationBtn");
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(rows(), Names{"b"});
}

TEST_F(Deleting, CancelAndEveryOtherAnswerDeleteNothing) {
    startWith({u"a", u"b"});
    for (const NSInteger answer : {1001, 1002, 0, -1}) {
        alertAnswer = answer;
        pressDelete();
        const auto messages = taken();
        EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                                [](const auto& message) { return message.find("delete") != std::string::npos; }),
                  0);
    }
    EXPECT_EQ(alerts.size(), 4U);
    EXPECT_EQ(queue->waiting(), 0U);
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

TEST_F(Deleting, TakesTheConfigurationBeingEditedWhateverRowIsSelected) {
    startWith({u"a", u"b"});
    selectRow(1);
    pressDelete();
    EXPECT_EQ(alerts.back(), u"Delete a?");
    EXPECT_EQ(rows(), Names{"b"});
}

TEST_F(Deleting, TakesTheIndexItHadBeforeTheAlert) {
    startWith({u"a", u"b", u"c"});
    clickRow(1);
    taken();
    onAlert = [this] {
        EXPECT_EQ(takenCommands(), MessageLog{"imprinter indexOfConfiguration"});
        imprinter->setList({configurations[1], configurations[0], configurations[2]});
    };
    pressDelete();
    EXPECT_EQ(takenCommands().front(), "imprinter deleteConfigurationAtIndex 1");
}

TEST_F(Deleting, TheLastRowOfThreeSelectsTheNewLastRow) {
    startWith({u"a", u"b", u"c"});
    clickRow(2);
    pressDelete();
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"a", "b"}));
    EXPECT_EQ(table()->selectedRowIndexes(), NSIndexSet(1));
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(Deleting, TheFirstRowSelectsTheNewFirstRow) {
    startWith({u"a", u"b", u"c"});
    pressDelete();
    waitForSelection();
    EXPECT_EQ(table()->selectedRowIndexes(), NSIndexSet(0));
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(Deleting, ARowInTheMiddleSelectsTheOneThatTakesItsPlace) {
    startWith({u"a", u"b", u"c"});
    clickRow(1);
    pressDelete();
    waitForSelection();
    EXPECT_EQ(table()->selectedRowIndexes(), NSIndexSet(1));
    EXPECT_EQ(pane->currentConfiguration(), configurations[2]);
}

TEST_F(Deleting, TheNextRowIsSelectedTwoTenthsLaterFirstAndThenShown) {
    startWith({u"a", u"b", u"c"});
    clickRow(2);
    pressDelete();
    taken();
    queue->advance(0.19);
    EXPECT_EQ(pane->currentConfiguration(), configurations[2]);
    EXPECT_EQ(takenCommands(), MessageLog());
    bool switched = false;
    configurations[1]->onSwitch = [&] {
        if (pane->currentConfiguration() != configurations[1] || switched)
            return;
        switched = true;
        EXPECT_EQ(table()->selectedRow(), 1);
    };
    queue->advance(0.01);
    configurations[1]->onSwitch = {};
    EXPECT_TRUE(switched);
}

TEST_F(Deleting, TheOnlyConfigurationShowsTheEmptyPageAndStaysCurrent) {
    startWith({u"a"});
    pressDelete();
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
    EXPECT_EQ(pane->currentConfiguration(), configurations[0]);
    EXPECT_EQ(table()->selectedRow(), -1);
}

TEST_F(Deleting, TheOnlyConfigurationSendsNoSwitch) {
    startWith({u"a"});
    pressDelete();
    EXPECT_EQ(queue->waiting(), 0U);
    EXPECT_EQ(takenCommands(),
              (MessageLog{"imprinter indexOfConfiguration", "imprinter deleteConfigurationAtIndex 0"}));
    queue->advance(1);
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_EQ(mainPage(), u"No Imprint");
}

TEST_F(Deleting, WithoutACurrentConfigurationStillAsksWithAnEmptyNameAndTheHostIgnoresTheIndex) {
    startWith({u"a", u"b"});
    pane->setCurrentConfiguration(nullptr);
    taken();
    pressDelete();
    EXPECT_EQ(alerts, std::vector<std::u16string>{u"Delete ?"});
    const auto messages = takenCommands();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter deleteConfigurationAtIndex NSNotFound"), 1);
    waitForSelection();
    EXPECT_EQ(rows(), (Names{"a", "b"}));
    EXPECT_EQ(pane->currentConfiguration(), nullptr);
    EXPECT_EQ(mainPage(), u"No Imprint");
}

TEST_F(Deleting, WithoutAHostReachesNobody) {
    load();
    show();
    pane->deleteConfiguration(nullptr);
    EXPECT_EQ(alerts, std::vector<std::u16string>{u"Delete ?"});
    EXPECT_EQ(log, MessageLog());
    EXPECT_EQ(queue->waiting(), 0U);
}

/// The alert as it is shown.
class DeleteAlert : public CommandsTest {
protected:
    void SetUp() override {
        CommandsTest::SetUp();
        NSAlert::setAnswerer({});
        startWith({u"a", u"b"});
    }
    bool deleteWhile(const std::function<void(QMessageBox&)>& act) {
        bool shown = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isActiveWindow())
                return;
            poll.stop();
            shown = true;
            act(*box);
        });
        poll.start(1);
        pressDelete();
        return shown;
    }
    static void press(QMessageBox& box, const QString& title) {
        for (auto* button : box.findChildren<QPushButton*>())
            if (button->text() == title)
                return QTest::mouseClick(button, Qt::LeftButton);
        FAIL() << title.toStdString();
    }
};

TEST_F(DeleteAlert, ReturnDeletes) {
    EXPECT_TRUE(deleteWhile([](QMessageBox& box) {
        EXPECT_EQ(box.text(), "Delete a?");
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        QTest::keyClick(&box, Qt::Key_Return);
    }));
    EXPECT_EQ(rows(), Names{"b"});
}

TEST_F(DeleteAlert, EscapeCancels) {
    EXPECT_TRUE(deleteWhile([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }));
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

TEST_F(DeleteAlert, ItsCloseBoxCancels) {
    EXPECT_TRUE(deleteWhile([](QMessageBox& box) { box.close(); }));
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

TEST_F(DeleteAlert, AClickOnDeleteDeletes) {
    EXPECT_TRUE(deleteWhile([](QMessageBox& box) { press(box, "Delete"); }));
    EXPECT_EQ(rows(), Names{"b"});
}

TEST_F(DeleteAlert, AClickOnCancelCancels) {
    EXPECT_TRUE(deleteWhile([](QMessageBox& box) { press(box, "Cancel"); }));
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

// Renaming

TEST_F(Renaming, InTheRowSetsTheName) {
    startWith({u"a", u"b"});
    rename("Received");
    EXPECT_EQ(takenCommands(), MessageLog{"a setName Received"});
    EXPECT_EQ(rows(), (Names{"Received", "b"}));
}

TEST_F(Renaming, TakesTheSelectedRowWhateverIsBeingEdited) {
    startWith({u"a", u"b"});
    selectRow(1);
    taken();
    rename("Paid");
    EXPECT_EQ(takenCommands(), MessageLog{"b setName Paid"});
}

TEST_F(Renaming, ToAnEmptyTextLeavesTheName) {
    startWith({u"a", u"b"});
    rename({});
    EXPECT_EQ(takenCommands(), MessageLog());
    table()->reloadData();
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

TEST_F(Renaming, EscapeLeavesTheName) {
    startWith({u"a", u"b"});
    rename("Other", Qt::Key_Escape);
    EXPECT_EQ(takenCommands(), MessageLog());
    EXPECT_EQ(rows(), (Names{"a", "b"}));
}

TEST_F(Renaming, IsCommittedWhenAnotherRowIsClicked) {
    startWith({u"a", u"b"});
    QTest::keyClick(&grid(), Qt::Key_F2);
    auto* editor = grid().viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, "x");
    clickRow(1);
    EXPECT_EQ(rows(), (Names{"x", "b"}));
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(Renaming, SavesNothing) {
    startWith({u"a"});
    rename("b");
    const auto messages = taken();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "imprinter saveConfigurations"), 0);
}

TEST_F(Renaming, WithoutASelectedRowDoesNothing) {
    startWith({u"a"});
    selectNothing();
    taken();
    const auto field = std::make_shared<NSTextField>();
    field->setStringValue(u"x");
    pane->onConfigurationNameChanged(field);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(Renaming, WithoutAListDoesNothing) {
    startWith({u"a"});
    imprinter->setNilList();
    const auto field = std::make_shared<NSTextField>();
    field->setStringValue(u"x");
    pane->onConfigurationNameChanged(field);
    EXPECT_EQ(taken(), MessageLog{"imprinter configurations"});
}

TEST_F(Renaming, WithoutASenderDoesNothing) {
    startWith({u"a"});
    pane->onConfigurationNameChanged(nullptr);
    EXPECT_EQ(takenCommands(), MessageLog());
}

// Reordering

TEST_F(Reordering, ADropMovesTheDraggedRowAboveTheRow) {
    startWith({u"a", u"b", u"c"});
    EXPECT_TRUE(dropAbove(3, rowsFrom("row_0.binary")));
    EXPECT_EQ(takenCommands().front(), "imprinter moveConfigurationAtIndexTo 0 3");
    EXPECT_EQ(rows(), (Names{"b", "c", "a"}));
}

TEST_F(Reordering, ReadsArchivesInXmlAndOfMutableSets) {
    startWith({u"a", u"b", u"c", u"d", u"e", u"f", u"g", u"h", u"i"});
    dropAbove(0, rowsFrom("row_5.xml"));
    dropAbove(0, rowsFrom("mutable_set.binary"));
    EXPECT_EQ(rows(), (Names{"h", "f", "a", "b", "c", "d", "e", "g", "i"}));
}

TEST_F(Reordering, OnlyTheFirstIndexMoves) {
    startWith({u"a", u"b", u"c", u"d", u"e", u"f"});
    EXPECT_TRUE(dropAbove(0, rowsFrom("several_ranges.binary")));
    EXPECT_EQ(takenCommands().front(), "imprinter moveConfigurationAtIndexTo 1 0");
    EXPECT_EQ(rows(), (Names{"b", "a", "c", "d", "e", "f"}));
}

TEST_F(Reordering, TheDropRowIsNeverAdjusted) {
    startWith({u"a", u"b", u"c"});
    EXPECT_TRUE(dropAbove(1, rowsFrom("row_0.binary")));
    EXPECT_EQ(takenCommands().front(), "imprinter moveConfigurationAtIndexTo 0 1");
    EXPECT_EQ(rows(), (Names{"a", "b", "c"}));
}

TEST_F(Reordering, OntoItsOwnRowOnlyReloads) {
    startWith({u"a", u"b", u"c"});
    configurations[1]->setName(u"changed");
    taken();
    EXPECT_TRUE(dropAbove(0, rowsFrom("row_0.binary")));
    const auto messages = takenCommands();
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                            [](const auto& message) { return message.find("move") != std::string::npos; }),
              0);
    EXPECT_EQ(rows(), (Names{"a", "changed", "c"}));
}

TEST_F(Reordering, DataThatCannotBeReadMovesRowNought) {
    startWith({u"a", u"b", u"c"});
    for (const char* archive : {"", "nonsense", "bplist00"}) {
        EXPECT_TRUE(dropAbove(3, rowsOf(archive)));
        EXPECT_EQ(takenCommands().front(), "imprinter moveConfigurationAtIndexTo 0 3");
    }
    EXPECT_EQ(rows(), (Names{"a", "b", "c"}));
}

TEST_F(Reordering, DataThatCannotBeReadOntoRowNoughtIsTakenAndMovesNothing) {
    startWith({u"a", u"b", u"c"});
    EXPECT_TRUE(dropAbove(0, rowsOf("nonsense")));
    const auto messages = takenCommands();
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                            [](const auto& message) { return message.find("move") != std::string::npos; }),
              0);
}

TEST_F(Reordering, AnEmptySetSendsTheIndexOfNothingAndTheHostIgnoresIt) {
    startWith({u"a", u"b", u"c"});
    EXPECT_TRUE(dropAbove(1, rowsFrom("empty_set.binary")));
    EXPECT_EQ(takenCommands().front(), "imprinter moveConfigurationAtIndexTo NSNotFound 1");
    EXPECT_EQ(rows(), (Names{"a", "b", "c"}));
}

TEST_F(Reordering, LeavesSelectionAndCurrentConfigurationToTheHost) {
    startWith({u"a", u"b", u"c"});
    clickRow(1);
    dropAbove(0, rowsFrom("rows_2_to_4.binary"));
    EXPECT_EQ(rows(), (Names{"c", "a", "b"}));
    EXPECT_EQ(table()->selectedRow(), 1);
    EXPECT_EQ(pane->currentConfiguration(), configurations[1]);
}

TEST_F(Reordering, ADropFromAnotherProgramIsRefused) {
    startWith({u"a", u"b", u"c"});
    DragUser user(*grid().viewport(), *rowsFrom("row_0.binary"));
    EXPECT_FALSE(user.dropsAt(above(2)));
    EXPECT_EQ(takenCommands(), MessageLog());
}

TEST_F(Reordering, ADropOntoARowIsRefused) {
    startWith({u"a", u"b", u"c"});
    const auto pasteboard = rowsFrom("row_0.binary");
    const RunningDrag running(imprinter, pasteboard);
    EXPECT_FALSE(DragUser(*grid().viewport(), *pasteboard).dropsAt(rowRect(2).center()));
    EXPECT_EQ(takenCommands(), MessageLog());
}

TEST_F(Reordering, AnAcceptedDropIsCheckedAgain) {
    startWith({u"a", u"b", u"c"});
    const auto pasteboard = rowsFrom("row_0.binary");
    const auto foreign = std::make_shared<NSDraggingInfo>(nullptr, pasteboard);
    const auto own = std::make_shared<NSDraggingInfo>(imprinter, pasteboard);
    using Drop = NSTableViewDropOperation;
    EXPECT_FALSE(pane->tableViewAcceptDropRowDropOperation(table(), foreign, 2, Drop::above));
    EXPECT_FALSE(pane->tableViewAcceptDropRowDropOperation(table(), own, 2, Drop::on));
    EXPECT_EQ(takenCommands(), MessageLog());
    EXPECT_EQ(pane->tableViewValidateDropProposedRowProposedDropOperation(table(), own, 2, Drop::above),
              NSDragOperationMove);
    EXPECT_EQ(NSDragOperationMove, 16U);
}

TEST_F(Reordering, OtherTypesAreNotAskedAbout) {
    startWith({u"a", u"b"});
    const auto pasteboard = std::make_shared<NSPasteboard>();
    pasteboard->setDataForType(std::make_shared<const std::vector<std::uint8_t>>(3, 'x'), u"text/plain");
    EXPECT_FALSE(dropAbove(2, pasteboard));
    EXPECT_EQ(takenCommands(), MessageLog());
}

TEST_F(Reordering, WithoutAHostADropIsTakenAndChangesNothing) {
    load();
    show();
    const auto pasteboard = rowsOf("nonsense");
    const RunningDrag running(std::make_shared<NSPasteboard>(), pasteboard);
    EXPECT_TRUE(DragUser(*grid().viewport(), *pasteboard).dropsAt({5, 5}));
    EXPECT_EQ(table()->numberOfRows(), 0);
}

TEST_F(Reordering, TheTableItselfStartsNoDrag) {
    startWith({u"a", u"b", u"c"});
    EXPECT_FALSE(pane->canDragRowsWithIndexesAtPoint(NSIndexSet(0), {5, 5}));
    EXPECT_FALSE(grid().dragEnabled());
    EXPECT_EQ(grid().dragDropMode(), QAbstractItemView::DropOnly);
}

TEST(Exports, TheBundleOffersThePasteboardTypeByItsName) {
    void* library = dlopen(PANE_BUNDLE "/ImprinterPrefPane.so", RTLD_NOW);
    ASSERT_TRUE(library) << dlerror();
    const auto* type = static_cast<const char16_t* const*>(dlsym(library, "VelImprintPasteboardType"));
    ASSERT_TRUE(type);
    EXPECT_EQ(std::u16string(*type), u"VelImprintPasteboardType");
    dlclose(library);
}

// What is not obvious of the commands

TEST_F(ActionMenu, EveryItemButDuplicateAndDeleteIsAlwaysEnabled) {
    startWith({u"a"});
    selectNothing();
    for (const NSInteger tag : {3, 0, -1, 12345}) {
        NSMenuItem item(u"", u"", u"");
        item.setTag(tag);
        EXPECT_TRUE(pane->validateUserInterfaceItem(item)) << tag;
    }
}

TEST_F(Creating, EnablesTheControlsOfTheEditorsAtOnce) {
    startWith({u"a"});
    pane->enableControls(false);
    EXPECT_FALSE(outlet<NSControl>(u"rotation")->isEnabled());
    choose("New Configuration");
    for (const auto* name : {u"topLeftBtn", u"xOffset", u"yOffsetStepper", u"rotation", u"rotationStepper"})
        EXPECT_TRUE(outlet<NSControl>(name)->isEnabled()) << toUtf8(name);
    EXPECT_EQ(queue->waiting(), 1U);
}

TEST_F(Duplicating, WithoutASelectedRowSendsMinusOne) {
    startWith({u"a"});
    selectNothing();
    taken();
    pane->duplicateConfiguration(nullptr);
    EXPECT_EQ(takenCommands(), MessageLog{"imprinter duplicateConfigurationAtIndex -1"});
    EXPECT_EQ(rows(), (Names{"a"}));
}

TEST_F(Deleting, TheNewCountIsReadAfterTheMessageAndBeforeTheListIsShown) {
    startWith({u"a", u"b"});
    pane->deleteConfigurationAtIndex(1);
    const auto messages = taken();
    ASSERT_GE(messages.size(), 3U);
    EXPECT_EQ(messages[0], "imprinter deleteConfigurationAtIndex 1");
    EXPECT_EQ(messages[1], "imprinter configurations") << "the count";
    EXPECT_EQ(messages[2], "imprinter configurations") << "the rows";
}

TEST_F(Deleting, ANameWithPercentSignsIsShownAsItIs) {
    startWith({u"a"});
    pane->currentConfiguration()->setName(u"50 %@ of %d %%");
    pressDelete();
    EXPECT_EQ(alerts, std::vector<std::u16string>{u"Delete 50 %@ of %d %%?"});
}

TEST_F(Deleting, WithoutAHostShowsTheEmptyPage) {
    load();
    show();
    pane->deleteConfigurationAtIndex(0);
    EXPECT_EQ(mainPage(), u"No Imprint");
    EXPECT_FALSE(outlet<NSButton>(u"previewBtn")->isEnabled());
    EXPECT_FALSE(outlet<NSButton>(u"deleteConfigurationBtn")->isEnabled());
    EXPECT_TRUE(outlet<NSButton>(u"duplicateRecBtn")->isHidden());
}

TEST_F(Renaming, ToAnEmptyTextShowsTheNameAgainAtOnce) {
    startWith({u"a"});
    rename("");
    EXPECT_EQ(rows(), (Names{"a"}));
}

} // namespace
