// SPDX-License-Identifier: MIT
// Documents that the program was opened with.

#include <HostBundle.h>
#include <MainWindow.h>

#include "../support/MemoryDefaults.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <fstream>

namespace fs = std::filesystem;
using namespace platform;

namespace {

/// The window on a store of its own with one configuration, which is shown; two pictures beside it.
class WaitingDocumentsTest : public ::testing::Test {
protected:
    void SetUp() override {
        defaults = std::make_shared<testing_support::MemoryDefaults>();
        NSUserDefaults::setStandardUserDefaults(defaults);
        defaults->setBoolForKey(true, u"ImprinterDuplicateRecord");
        session = std::make_unique<app::Session>(path("configurations.json"));
        const auto shown = (*session->model().configurations())[0];
        defaults->setObjectForKey(shown->uniqueID(), u"ImprinterPrefLastSelected");
        std::string error;
        auto pane = app::PaneHost::load(app::bundleFolder() / "ImprinterPrefPane.prefPane", error);
        ASSERT_TRUE(pane) << error;
        window = std::make_unique<app::MainWindow>(*session, std::move(pane));
        for (const auto* name : {"a & b.png", "c.png"}) {
            QImage picture(300, 200, QImage::Format_RGB32);
            picture.fill(Qt::white);
            ASSERT_TRUE(picture.save(folder.filePath(QLatin1String(name))));
        }
    }
    void TearDown() override {
        window.reset();
        session.reset();
        NSUserDefaults::setStandardUserDefaults(nullptr);
    }
    fs::path path(const char* name) const { return folder.filePath(QLatin1String(name)).toStdString(); }
    QPushButton* button() const { return window->findChild<QPushButton*>("waitingDocuments"); }
    void press() {
        QTest::mouseClick(button(), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QTemporaryDir folder;
    std::shared_ptr<testing_support::MemoryDefaults> defaults;
    std::unique_ptr<app::Session> session;
    std::unique_ptr<app::MainWindow> window;
};

} // namespace

TEST_F(WaitingDocumentsTest, AButtonNamesTheDocumentStampsItAndGoes) {
    window->offerDocuments({path("a & b.png")});
    window->show();
    ASSERT_TRUE(button());
    EXPECT_TRUE(button()->isVisible());
    EXPECT_EQ(button()->text(), QStringLiteral("Stamp “a && b.png”")); // no letter of the name is a shortcut
    press();
    EXPECT_FALSE(button());
    EXPECT_TRUE(fs::exists(path("a & b-stamped.png")));
    EXPECT_FALSE(fs::exists(path("c-stamped.png")));
}

TEST_F(WaitingDocumentsTest, SeveralDocumentsAreCountedAndStampedTogether) {
    window->offerDocuments({path("a & b.png"), path("c.png")});
    window->show();
    EXPECT_EQ(button()->text(), QStringLiteral("Stamp 2 Documents"));
    press();
    EXPECT_TRUE(fs::exists(path("a & b-stamped.png")));
    EXPECT_TRUE(fs::exists(path("c-stamped.png")));
}

TEST_F(WaitingDocumentsTest, TheButtonStaysWhereTheUserDoesNotWantTheOriginalsReplaced) {
    defaults->setBoolForKey(false, u"ImprinterDuplicateRecord");
    window->offerDocuments({path("c.png")});
    window->show();
    bool asked = false;
    QTimer::singleShot(0, [&] {
        auto* box = dynamic_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        asked = true;
        box->button(QMessageBox::No)->click();
    });
    press();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(button());
}

TEST_F(WaitingDocumentsTest, WithoutDocumentsThereIsNoButton) {
    window->offerDocuments({});
    window->show();
    EXPECT_FALSE(button());
}
