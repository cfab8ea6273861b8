// SPDX-License-Identifier: MIT
// The editor of a combined configuration, on the stand-alone host's model.

#include "PaneTest.h"

#include <Foundation/NSException.h>
#include <VelCombinedViewController.h>
#include <model/HostClasses.h>

#include <QAbstractButton>

using namespace platform;
using namespace testing_support;

namespace {

using Names = std::vector<std::string>;

class CombinedEditor : public PaneTest {
protected:
    /// A host with A to E and the combined configuration "All" of A, B and C, which is shown.
    void open(std::size_t members = 3) {
        for (const char16_t* name : {u"A", u"B", u"C", u"D", u"E"})
            model->createConfiguration(false)->setName(name);
        combined = model->createConfiguration(true);
        combined->setName(u"All");
        for (std::size_t i = 0; i < members; ++i)
            combined->addConfiguration((*model->configurations())[i]);
        classes = std::make_unique<model::HostClasses>(model);
        load();
        show();
        editor = std::static_pointer_cast<pane::VelCombinedViewController>(outlet<NSViewController>(u"combinedVC"));
        EXPECT_FALSE(button("addBtn").isEnabled());
        EXPECT_FALSE(button("removeBtn").isEnabled());
        pane->setCurrentConfiguration(combined);
        QApplication::processEvents();
        candidates = outlet<NSTableView>(u"allConfigsTableView");
        members_ = outlet<NSTableView>(u"combinedTableView");
    }

    QAbstractButton& button(const char* name) { return *window->findChild<QAbstractButton*>(QLatin1String(name)); }
    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }

    static Names rows(const std::shared_ptr<NSTableView>& table) {
        Names names;
        for (NSInteger row = 0; row < table->numberOfRows(); ++row)
            names.push_back(toUtf8(table->viewAtColumnRow(0, row)->textField()->stringValue()));
        return names;
    }
    Names members() const {
        Names names;
        for (const auto& member : *combined->configurations())
            names.push_back(toUtf8(member->name()));
        return names;
    }

    std::shared_ptr<model::ImprinterModel> model = std::make_shared<model::ImprinterModel>();
    std::unique_ptr<model::HostClasses> classes;
    std::shared_ptr<host::ImprinterConfiguration> combined;
    std::shared_ptr<pane::VelCombinedViewController> editor;
    std::shared_ptr<NSTableView> candidates;
    std::shared_ptr<NSTableView> members_;
};

TEST_F(CombinedEditor, ShowsMembersAndTheOrdinaryConfigurationsThatAreNone) {
    open();
    EXPECT_EQ(rows(members_), (Names{"A", "B", "C"}));
    EXPECT_EQ(rows(candidates), (Names{"D", "E"}));
}

TEST_F(CombinedEditor, EachButtonFollowsItsOwnTable) {
    open();
    EXPECT_FALSE(button("addBtn").isEnabled());
    candidates->userSelects(NSIndexSet(0), 0);
    EXPECT_TRUE(button("addBtn").isEnabled());
    EXPECT_FALSE(button("removeBtn").isEnabled());
    members_->userSelects(NSIndexSet(1), 1);
    EXPECT_TRUE(button("removeBtn").isEnabled());
    candidates->userSelects(NSIndexSet(), -1);
    EXPECT_FALSE(button("addBtn").isEnabled());
    EXPECT_TRUE(button("removeBtn").isEnabled());
}

TEST_F(CombinedEditor, AddsTheSelectedCandidatesInTheOrderOfTheirRows) {
    open(0);
    candidates->userSelects(NSIndexSet{2, 0}, 0);
    click("addBtn");
    EXPECT_EQ(members(), (Names{"A", "C"}));
    EXPECT_EQ(rows(members_), (Names{"A", "C"}));
    EXPECT_EQ(rows(candidates), (Names{"B", "D", "E"}));
    EXPECT_NE(candidates->selectedRow(), -1);
    EXPECT_FALSE(button("addBtn").isEnabled()) << "although the reloaded table still shows a selection";
}

TEST_F(CombinedEditor, RemovedMembersGoToTheEndOfTheCandidates) {
    open();
    members_->userSelects(NSIndexSet(1), 1);
    click("removeBtn");
    EXPECT_EQ(members(), (Names{"A", "C"}));
    EXPECT_EQ(rows(candidates), (Names{"D", "E", "B"}));
    EXPECT_FALSE(button("removeBtn").isEnabled());
    editor->updateConfiguation();
    EXPECT_EQ(rows(candidates), (Names{"B", "D", "E"}));
}

TEST_F(CombinedEditor, RemovalCountsInWhatEarlierRemovalsHaveLeft) {
    open();
    members_->userSelects(NSIndexSet{0, 1}, 1);
    click("removeBtn");
    EXPECT_EQ(members(), Names{"B"});
    EXPECT_EQ(rows(candidates), (Names{"D", "E", "A", "C"}));
}

TEST_F(CombinedEditor, AnIndexBeyondTheShrunkenListEndsTheRemovalAtThatPoint) {
    open();
    members_->userSelects(NSIndexSet{1, 2}, 2);
    EXPECT_THROW(editor->onRemove(nullptr), NSRangeException);
    EXPECT_EQ(members(), (Names{"A", "C"}));
    EXPECT_EQ(rows(candidates), (Names{"D", "E"}));
    EXPECT_EQ(members_->numberOfRows(), 3) << "the tables are as they were";
    EXPECT_TRUE(button("removeBtn").isEnabled());
}

TEST_F(CombinedEditor, TheProgramGoesOnAfterAnIndexBeyondTheShrunkenList) {
    open();
    members_->userSelects(NSIndexSet{1, 2}, 2);
    testing::internal::CaptureStderr();
    click("removeBtn");
    const auto said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("index 2 beyond 2"), std::string::npos) << said;
    EXPECT_EQ(members(), (Names{"A", "C"}));
    EXPECT_EQ(mainPage(), u"Imprint Combined");
}

TEST_F(CombinedEditor, AnswersNoConfigurationForIndexesItDoesNotHave) {
    open();
    EXPECT_EQ(editor->configuarationAtIndex(5), combined);
    EXPECT_EQ(editor->configuarationAtIndex(6), nullptr);
    EXPECT_EQ(editor->configuarationAtIndex(-1), nullptr);
    EXPECT_EQ(editor->combindedConfiguarationAtIndex(0), (*model->configurations())[0]);
    EXPECT_EQ(editor->combindedConfiguarationAtIndex(3), nullptr);
    EXPECT_EQ(editor->combindedConfiguarationAtIndex(-1), nullptr);
    editor->setImprinter(nullptr);
    editor->setConfiguration(nullptr);
    EXPECT_EQ(editor->configuarationAtIndex(0), nullptr);
    EXPECT_EQ(editor->combindedConfiguarationAtIndex(0), nullptr);
}

TEST_F(CombinedEditor, ShowsNoMembersOfWhatIsNotCombined) {
    open();
    editor->setConfiguration((*model->configurations())[0]);
    editor->updateConfiguation();
    EXPECT_EQ(members_->numberOfRows(), 0);
    editor->setConfiguration(nullptr);
    editor->updateConfiguation();
    EXPECT_EQ(members_->numberOfRows(), 0);
}

TEST_F(CombinedEditor, TheEditedConfigurationIsDimmedAmongTheCandidates) {
    const auto all = configuration(u"aLL", true);
    imprinter->setList({configuration(u"a"), configuration(u"All"), all});
    start();
    pane->setCurrentConfiguration(all);
    const auto table = outlet<NSTableView>(u"allConfigsTableView");
    table->reloadData();
    ASSERT_EQ(table->numberOfRows(), 3);
    EXPECT_TRUE(table->viewAtColumnRow(0, 0)->textField()->isEnabled());
    EXPECT_FALSE(table->viewAtColumnRow(0, 1)->textField()->isEnabled());
    EXPECT_FALSE(table->viewAtColumnRow(0, 2)->textField()->isEnabled());
    EXPECT_TRUE(table->userSelects(NSIndexSet(2), 2)) << "its row stays selectable";
}

TEST_F(CombinedEditor, AddingAndRemovingStampNothingAndSaveNothing) {
    open();
    int stamped = 0;
    int saved = 0;
    model->setStamper([&](const auto&, const auto&, auto) {
        ++stamped;
        return std::nullopt;
    });
    model->setSaver([&](const auto&) { ++saved; });
    candidates->userSelects(NSIndexSet(0), 0);
    click("addBtn");
    members_->userSelects(NSIndexSet(0), 0);
    click("removeBtn");
    EXPECT_EQ(stamped, 0);
    EXPECT_EQ(saved, 0);
    model->setStamper({});
    model->setSaver({});
}

TEST_F(CombinedEditor, MakesItsCellsByTheirIdentifiers) {
    open();
    EXPECT_EQ(candidates->viewAtColumnRow(0, 0)->identifier(), u"AllConfigCell");
    EXPECT_EQ(members_->viewAtColumnRow(0, 0)->identifier(), u"ConfigCell");
}

TEST_F(CombinedEditor, WithoutAnImprinterHasNoCandidates) {
    open();
    editor->setImprinter(nullptr);
    editor->updateConfiguation();
    EXPECT_EQ(candidates->numberOfRows(), 0);
}

TEST_F(CombinedEditor, IsHandedTheImprinterAndThenTheConfigurationOnceItsPageIsShown) {
    const auto all = configuration(u"all", true);
    imprinter->setList({configuration(u"a"), all});
    start();
    editor = std::static_pointer_cast<pane::VelCombinedViewController>(outlet<NSViewController>(u"combinedVC"));
    ASSERT_NE(mainPage(), u"Imprint Combined");
    // What the editor held before, and nobody else does, tells when something else takes its place.
    const auto tellsOfItsEnd = [this](auto* held, const char* what) {
        return std::shared_ptr<std::remove_pointer_t<decltype(held)>>(held, [this, what](auto* former) {
            log.push_back(std::string(what) + " handed over on " + toUtf8(mainPage()));
            delete former;
        });
    };
    editor->setImprinter(tellsOfItsEnd(new RecordingImprinter(log), "imprinter"));
    editor->setConfiguration(tellsOfItsEnd(new RecordingConfiguration(log, u"former", true), "configuration"));
    taken();
    pane->setCurrentConfiguration(all);
    auto messages = taken();
    std::erase_if(messages, [](const std::string& message) {
        return message.find("handed over") == std::string::npos && message != "imprinter nonCombinedConfigurations";
    });
    EXPECT_EQ(messages,
              (MessageLog{"imprinter handed over on Imprint Combined", "configuration handed over on Imprint Combined",
                          "imprinter nonCombinedConfigurations"}));
    EXPECT_EQ(editor->imprinter(), imprinter);
    EXPECT_EQ(editor->configuration(), all);
}

TEST_F(CombinedEditor, ReloadsTheCandidatesBeforeTheMembers) {
    const auto all = configuration(u"all", true);
    imprinter->setList({all});
    start();
    pane->setCurrentConfiguration(all);
    editor = std::static_pointer_cast<pane::VelCombinedViewController>(outlet<NSViewController>(u"combinedVC"));
    candidates = outlet<NSTableView>(u"allConfigsTableView");
    ASSERT_EQ(candidates->numberOfRows(), 1) << "the recording host lists every one";
    imprinter->setList({configuration(u"a"), configuration(u"b"), all});
    std::vector<NSInteger> rowsWhenMembersAreCounted;
    all->onSwitch = [&] { rowsWhenMembersAreCounted.push_back(candidates->numberOfRows()); };
    editor->updateConfiguation();
    all->onSwitch = nullptr;
    EXPECT_EQ(rowsWhenMembersAreCounted, std::vector<NSInteger>{3});
}

TEST_F(CombinedEditor, AButtonThatAnActionDisabledIsEnabledByTheNextSelection) {
    open(1);
    candidates->userSelects(NSIndexSet{0, 1}, 1);
    click("addBtn");
    ASSERT_FALSE(button("addBtn").isEnabled());
    candidates->userSelects(NSIndexSet(0), 0);
    EXPECT_TRUE(button("addBtn").isEnabled());
    members_->userSelects(NSIndexSet(2), 2);
    click("removeBtn");
    ASSERT_FALSE(button("removeBtn").isEnabled());
    members_->userSelects(NSIndexSet(1), 1);
    EXPECT_TRUE(button("removeBtn").isEnabled());
}

} // namespace
