// SPDX-License-Identifier: MIT
#include <MainWindow.h>
#include <OrderPalette.h>
#include <RowArchive.h>

#include <HostBundle.h>

#include "../support/DragUser.h"
#include "../support/MemoryDefaults.h"

#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSString.h>

#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace platform;

namespace {

using Names = std::vector<std::string>;

/// The program's window on a store of its own, with three configurations of which the second is being edited.
class OrderPaletteTest : public ::testing::Test {
protected:
    void SetUp() override {
        NSUserDefaults::setStandardUserDefaults(std::make_shared<testing_support::MemoryDefaults>());
        session = std::make_unique<app::Session>(store());
        session->model().setConfigurations({});
        for (const auto* name : {u"Alpha", u"Beta", u"Gamma"})
            session->model().createConfiguration(false)->setName(name);
        edited = (*session->model().configurations())[1];
        NSUserDefaults::standardUserDefaults().setObjectForKey(edited->uniqueID(), u"ImprinterPrefLastSelected");
        std::string error;
        auto pane = app::PaneHost::load(app::bundleFolder() / "ImprinterPrefPane.prefPane", error);
        ASSERT_TRUE(pane) << error;
        window = std::make_unique<app::MainWindow>(*session, std::move(pane));
        window->show();
        for (auto* action : window->menuBar()->actions())
            if (action->text() == "&Window")
                action->menu()->actions().front()->trigger();
        palette = window->findChild<QWidget*>("orderPalette");
        ASSERT_TRUE(palette && palette->isVisible());
        list = palette->findChild<QListWidget*>();
        ASSERT_TRUE(QTest::qWaitForWindowActive(palette));
    }
    void TearDown() override {
        window.reset();
        session.reset();
        NSUserDefaults::setStandardUserDefaults(nullptr);
    }

    std::filesystem::path store() const { return folder.filePath("configurations.json").toStdString(); }
    QPushButton& button(const char* name) { return *palette->findChild<QPushButton*>(name); }
    void press(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }

    static Names namesOf(const host::ConfigurationArray& configurations) {
        Names names;
        for (const auto& each : *configurations)
            names.push_back(toUtf8(each->name()));
        return names;
    }
    Names order() { return namesOf(session->model().configurations()); }
    QTableView& table() { return dynamic_cast<QTableView&>(*widgetOf(*window->pane().table())); }
    Names inPane() {
        Names names;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            names.push_back(table().model()->index(row, 0).data().toString().toStdString());
        return names;
    }
    Names inPalette() {
        Names names;
        for (int row = 0; row < list->count(); ++row)
            names.push_back(list->item(row)->text().toStdString());
        return names;
    }
    /// The new order is everywhere, and what was being edited still is, and is selected.
    void expect(const Names& names) {
        EXPECT_EQ(order(), names);
        EXPECT_EQ(inPane(), names);
        EXPECT_EQ(inPalette(), names);
        EXPECT_EQ(window->pane().currentConfiguration(), edited);
        EXPECT_EQ(window->pane().table()->selectedRow(),
                  static_cast<NSInteger>(session->model().indexOfConfiguration(edited)));
    }

    QTemporaryDir folder;
    std::unique_ptr<app::Session> session;
    std::shared_ptr<host::ImprinterConfiguration> edited;
    std::unique_ptr<app::MainWindow> window;
    QWidget* palette = nullptr;
    QListWidget* list = nullptr;
};

TEST_F(OrderPaletteTest, ListsTheConfigurationsAndStartsOnTheOneBeingEdited) {
    expect({"Alpha", "Beta", "Gamma"});
    EXPECT_EQ(list->currentRow(), 1);
}

TEST_F(OrderPaletteTest, MovesARowDownAndUpWithTheButtons) {
    press("moveDown");
    expect({"Alpha", "Gamma", "Beta"});
    EXPECT_EQ(list->currentRow(), 2);
    press("moveUp");
    press("moveUp");
    expect({"Beta", "Alpha", "Gamma"});
    EXPECT_EQ(list->currentRow(), 0);
}

TEST_F(OrderPaletteTest, MovesAnotherRowThanTheOneBeingEdited) {
    list->setCurrentRow(2);
    press("moveUp");
    expect({"Alpha", "Gamma", "Beta"});
    press("moveUp");
    expect({"Gamma", "Alpha", "Beta"});
}

TEST_F(OrderPaletteTest, MovesWithTheKeysAlone) {
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    expect({"Alpha", "Gamma", "Beta"});
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    expect({"Gamma", "Alpha", "Beta"});
    QTest::keyClick(list, Qt::Key_Down, Qt::ControlModifier);
    expect({"Alpha", "Gamma", "Beta"});
}

TEST_F(OrderPaletteTest, TheEndsOfTheListDisableTheirButton) {
    list->setCurrentRow(0);
    EXPECT_FALSE(button("moveUp").isEnabled());
    EXPECT_TRUE(button("moveDown").isEnabled());
    list->setCurrentRow(2);
    EXPECT_TRUE(button("moveUp").isEnabled());
    EXPECT_FALSE(button("moveDown").isEnabled());
    QTest::keyClick(list, Qt::Key_Down, Qt::ControlModifier);
    expect({"Alpha", "Beta", "Gamma"});
}

TEST_F(OrderPaletteTest, ADraggedRowCarriesItsArchiveAndNothingElse) {
    const auto pasteboard = app::OrderList::pasteboardOf(NSIndexSet(2));
    EXPECT_EQ(pasteboard->types(), std::vector<std::u16string>{u"VelImprintPasteboardType"});
    const auto archive =
        NSKeyedUnarchiver::initForReadingFromData(pasteboard->dataForType(u"VelImprintPasteboardType"));
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(u"root"), NSIndexSet(2));
}

TEST_F(OrderPaletteTest, ARowDroppedIntoThePaneMovesThere) {
    const auto pasteboard = app::OrderList::pasteboardOf(NSIndexSet(2));
    const RunningDrag running(session->model().shared_from_this(), pasteboard);
    const auto first = table().visualRect(table().model()->index(0, 0));
    EXPECT_TRUE(testing_support::DragUser(*table().viewport(), *pasteboard).dropsAt({first.x() + 5, first.y() + 2}));
    EXPECT_EQ(order(), (Names{"Gamma", "Alpha", "Beta"}));
    EXPECT_EQ(inPane(), order());
    EXPECT_EQ(inPalette(), order());
}

TEST_F(OrderPaletteTest, FollowsNewNamesAndNewConfigurations) {
    edited->setName(u"Delta");
    EXPECT_EQ(inPalette(), (Names{"Alpha", "Delta", "Gamma"}));
    session->model().deleteConfigurationAtIndex(0);
    EXPECT_EQ(inPalette(), (Names{"Delta", "Gamma"}));
    session->model().createConfiguration(true)->setName(u"Both");
    EXPECT_EQ(inPalette(), (Names{"Delta", "Gamma", "Both"}));
}

TEST_F(OrderPaletteTest, ARenameInProgressIsCommittedBeforeAMove) {
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_F2);
    auto* editor = table().viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, "Epsilon");
    press("moveDown");
    expect({"Alpha", "Gamma", "Epsilon"});
}

TEST_F(OrderPaletteTest, TheOrderIsStoredWhenTheWindowIsClosed) {
    press("moveDown");
    window->close();
    EXPECT_FALSE(palette->isVisible());
    app::Session again(store());
    EXPECT_EQ(namesOf(again.model().configurations()), (Names{"Alpha", "Gamma", "Beta"}));
}

TEST_F(OrderPaletteTest, TheOrderIsStoredThoughNothingIsBeingEdited) {
    setValueForKey(window->pane().pane(), std::monostate(), u"currentConfiguration");
    list->setCurrentRow(0);
    press("moveDown");
    EXPECT_EQ(window->pane().currentConfiguration(), nullptr);
    window->close();
    app::Session again(store());
    EXPECT_EQ(namesOf(again.model().configurations()), (Names{"Beta", "Alpha", "Gamma"}));
}

TEST_F(OrderPaletteTest, TheSelectionFollowsTheConfigurationThatWasMovedFromOutside) {
    list->setCurrentRow(2);
    session->model().moveConfigurationAtIndexTo(2, 0);
    EXPECT_EQ(list->currentRow(), 0);
    press("moveDown");
    expect({"Alpha", "Gamma", "Beta"});
}

TEST_F(OrderPaletteTest, WithATextThatIsNoNumberNothingMoves) {
    auto* field = window->findChild<QLineEdit*>("xOffset");
    ASSERT_TRUE(field);
    window->activateWindow();
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "rubbish");
    press("moveDown");
    expect({"Alpha", "Beta", "Gamma"});
    EXPECT_EQ(field->text(), "rubbish");
}

TEST_F(OrderPaletteTest, AMoveKeepsTheFocusOfThePane) {
    edited->setOccurance(4);
    window->activateWindow();
    auto* field = window->findChild<QLineEdit*>("xOffset");
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    field->setFocus();
    press("moveDown");
    EXPECT_EQ(window->focusWidget(), field);
}

} // namespace
