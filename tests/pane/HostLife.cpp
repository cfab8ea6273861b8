// SPDX-License-Identifier: MIT
// The stand-alone host around the real pane: what opening, selecting, closing and failing to save do.

#include "../support/MemoryDefaults.h"

#include "HostBundle.h"
#include "MainWindow.h"
#include "SettingsDialog.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSString.h>

#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <fstream>
#include <gtest/gtest.h>

using namespace platform;
namespace fs = std::filesystem;

namespace {

class HostLife : public ::testing::Test {
protected:
    void SetUp() override {
        NSUserDefaults::setStandardUserDefaults(defaults);
        std::string name = (fs::temp_directory_path() / "imprinter-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    void TearDown() override {
        window.reset();
        session.reset();
        NSUserDefaults::setStandardUserDefaults(nullptr);
        fs::remove_all(folder);
    }

    void open(const fs::path& store) {
        session = std::make_unique<app::Session>(store);
        std::string error;
        auto pane = app::PaneHost::load(app::bundleFolder() / "ImprinterPrefPane.prefPane", error);
        ASSERT_TRUE(pane) << error;
        window = std::make_unique<app::MainWindow>(*session, std::move(pane));
        window->show();
        QApplication::processEvents();
    }

    /// Closes the next message box and keeps what it said.
    void answerMessages() {
        QTimer::singleShot(0, qApp, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                messages.push_back(box->text());
                box->accept();
            } else {
                answerMessages();
            }
        });
    }

    static std::string contents(const fs::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::shared_ptr<testing_support::MemoryDefaults> defaults = std::make_shared<testing_support::MemoryDefaults>();
    fs::path folder;
    std::unique_ptr<app::Session> session;
    std::unique_ptr<app::MainWindow> window;
    std::vector<QString> messages;
};

TEST_F(HostLife, ClosingTheWindowStoresWhatWasChanged) {
    open(folder / "configurations.json");
    session->model().configurations()->front()->setName(u"Changed in memory");
    EXPECT_EQ(contents(folder / "configurations.json").find("Changed in memory"), std::string::npos);
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_NE(contents(folder / "configurations.json").find("Changed in memory"), std::string::npos);
}

TEST_F(HostLife, AFailedSaveKeepsTheWindowOpenOnce) {
    std::ofstream(folder / "file") << "in the way";
    open(folder / "file" / "configurations.json");
    session->model().configurations()->front()->setName(u"Unsaved");
    answerMessages();
    window->close();
    ASSERT_TRUE(window->isVisible());
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages.front().contains(QStringLiteral("configurations.json"))) << messages.front().toStdString();
    EXPECT_TRUE(window->pane().pane().isSelected());
    EXPECT_NE(window->centralWidget(), nullptr);

    answerMessages();
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(contents(folder / "file"), "in the way");
}

TEST_F(HostLife, PreviewsWaitUntilTheWindowWasPainted) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    auto& model = session->model();
    const auto sample = NSURL::fileURLWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg");
    const auto configuration = model.configurations()->front();
    EXPECT_EQ(model.imprintFileAtURLWithIndex(sample, configuration, 0), std::nullopt);
    session->allowPreviews();
    const auto stamped = model.imprintFileAtURLWithIndex(sample, configuration, 0);
    ASSERT_TRUE(stamped);
    EXPECT_GT(fs::file_size(stamped->path()), 1000U);
}

TEST_F(HostLife, AMissingSampleGivesNoPreview) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    session->allowPreviews();
    auto& model = session->model();
    EXPECT_EQ(model.imprintFileAtURLWithIndex(std::nullopt, model.configurations()->front(), 0), std::nullopt);
    EXPECT_EQ(model.imprintFileAtURLWithIndex(NSURL::fileURLWithPath(folder / "none.jpg"),
                                              model.configurations()->front(), 0),
              std::nullopt);
}

TEST_F(HostLife, RemembersTheConfigurationThatTheUserChose) {
    open(folder / "configurations.json");
    window->pane().table()->userSelects(NSIndexSet(1), 1);
    EXPECT_EQ(defaults->stringForKey(u"ImprinterPrefLastSelected"),
              (*session->model().configurations())[1]->uniqueID());
}

TEST_F(HostLife, RemembersTheConfigurationThatTookTheRowOfADeletedOne) {
    NSAlert::setAnswerer([](const NSAlert&) { return NSAlertFirstButtonReturn; });
    open(folder / "configurations.json");
    window->pane().table()->userSelects(NSIndexSet(1), 1);
    const auto next = (*session->model().configurations())[2];
    const auto* pressed = window->pane().pane().classTable()->action(u"deleteConfiguration:");
    ASSERT_TRUE(pressed);
    (*pressed)(window->pane().pane(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->pane().currentConfiguration() == next; }));
    window->close();
    EXPECT_EQ(defaults->stringForKey(u"ImprinterPrefLastSelected"), next->uniqueID());
    NSAlert::setAnswerer({});
}

TEST_F(HostLife, DuplicatesByDefaultUnlessSomebodyChoseOtherwise) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    EXPECT_TRUE(defaults->boolForKey(u"ImprinterDuplicateRecord"));
    defaults->setBoolForKey(false, u"ImprinterDuplicateRecord");
    session = std::make_unique<app::Session>(folder / "configurations.json");
    EXPECT_FALSE(defaults->boolForKey(u"ImprinterDuplicateRecord"));
}

TEST_F(HostLife, TheSettingsOfferTheDefaultOfTheDuplicateOption) {
    defaults->setBoolForKey(true, u"ImprinterDuplicateRecord");
    app::SettingsDialog dialog(nullptr);
    auto* box = dialog.findChild<QCheckBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isChecked());
    box->click();
    dialog.reject();
    EXPECT_TRUE(defaults->boolForKey(u"ImprinterDuplicateRecord"));
    dialog.accept();
    EXPECT_FALSE(defaults->boolForKey(u"ImprinterDuplicateRecord"));
}

TEST_F(HostLife, RefreshingShowsTheNewOrderAndKeepsTheCurrentConfigurationSelected) {
    open(folder / "configurations.json");
    auto& model = session->model();
    const auto first = window->pane().currentConfiguration();
    model.moveConfigurationAtIndexTo(0, 3);
    window->pane().refresh(model);
    const auto table = window->pane().table();
    EXPECT_EQ(window->pane().currentConfiguration(), first);
    EXPECT_EQ(table->selectedRow(), 2);
    EXPECT_EQ(table->viewAtColumnRow(0, 2)->textField()->stringValue(), first->name());
}

} // namespace
