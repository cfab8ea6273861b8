// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSAlert.h>

#include <Foundation/dispatch.h>

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace platform;

namespace {

class AlertTest : public testing_support::InterfaceTest {
protected:
    void SetUp() override { setMainQueue(nullptr); }
    ~AlertTest() override { NSAlert::setAnswerer({}); }

    static std::shared_ptr<NSAlert> alertWith(const std::vector<std::u16string>& buttons) {
        auto alert = std::make_shared<NSAlert>();
        alert->setMessageText(u"Delete Stamp & Co?");
        alert->setInformativeText(u"Deleted configurations cannot be restored.");
        for (const auto& title : buttons)
            alert->addButtonWithTitle(title);
        return alert;
    }

    /// Runs the alert for real; `act` is called once it stands on the screen.
    NSInteger run(const std::vector<std::u16string>& buttons, std::function<void(QMessageBox&)> act) {
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isActiveWindow())
                return;
            poll.stop();
            ++shownAlerts;
            act(*box);
        });
        poll.start(1);
        return alertWith(buttons)->runModal();
    }
    static QPushButton* button(QMessageBox& box, const QString& text) {
        for (auto* each : box.findChildren<QPushButton*>())
            if (each->text() == text)
                return each;
        return nullptr;
    }

    int shownAlerts = 0;
};

TEST_F(AlertTest, AnAnswererAnswersInPlaceOfTheUser) {
    std::u16string asked;
    NSAlert::setAnswerer([&](const NSAlert& alert) {
        asked = alert.messageText();
        return NSAlertFirstButtonReturn + 1;
    });
    EXPECT_EQ(alertWith({u"Delete", u"Cancel"})->runModal(), 1001);
    EXPECT_EQ(asked, u"Delete Stamp & Co?");
}

TEST_F(AlertTest, ReturnMeansTheFirstButton) {
    EXPECT_EQ(run({u"Delete", u"Cancel"}, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }), 1000);
    EXPECT_EQ(shownAlerts, 1);
}

TEST_F(AlertTest, EscapeMeansTheButtonTitledCancel) {
    EXPECT_EQ(run({u"Delete", u"Keep", u"Cancel"}, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
              1002);
}

TEST_F(AlertTest, EscapeMeansTheButtonTitledWithTheBundlesWordForCancel) {
    QDir(folder.path()).mkdir("en.lproj");
    write("en.lproj/Localizable.strings", "\"Cancel\" = \"Abbrechen\";");
    loadFile({}, "");
    EXPECT_EQ(
        run({u"Löschen", u"Behalten", u"Abbrechen"}, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
        1002);
}

TEST_F(AlertTest, TheCloseBoxMeansTheButtonTitledCancel) {
    EXPECT_EQ(run({u"Delete", u"Cancel"}, [](QMessageBox& box) { box.close(); }), 1001);
}

TEST_F(AlertTest, EscapeMeansNothingWithoutAButtonTitledCancel) {
    const auto answer = run({u"Delete", u"Keep"}, [](QMessageBox& box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        EXPECT_TRUE(box.isVisible());
        QTest::mouseClick(button(box, "Keep"), Qt::LeftButton);
    });
    EXPECT_EQ(answer, 1001);
}

TEST_F(AlertTest, EscapeMeansTheOnlyButton) {
    EXPECT_EQ(run({u"OK:"}, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }), 1000);
}

TEST_F(AlertTest, WithoutButtonsThereIsOneThatSaysOK) {
    EXPECT_EQ(run({}, [](QMessageBox& box) { QTest::mouseClick(button(box, "OK"), Qt::LeftButton); }), 1000);
}

TEST_F(AlertTest, TheFirstButtonStandsRightmost) {
    run({u"First", u"Second", u"Third"}, [](QMessageBox& box) {
        EXPECT_GT(button(box, "First")->x(), button(box, "Second")->x());
        EXPECT_GT(button(box, "Second")->x(), button(box, "Third")->x());
        QTest::keyClick(&box, Qt::Key_Return);
    });
}

TEST_F(AlertTest, ShowsItsTextsAsTheyAreAndAWarningSign) {
    run({u"OK"}, [](QMessageBox& box) {
        EXPECT_EQ(box.text(), "Delete Stamp & Co?");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.informativeText(), "Deleted configurations cannot be restored.");
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        QTest::keyClick(&box, Qt::Key_Return);
    });
}

TEST_F(AlertTest, DeferredBlocksRunWhileAnAlertIsOpen) {
    bool ran = false;
    run({u"OK"}, [&](QMessageBox& box) {
        dispatchAsync([&] { dispatchAfter(0.001, [&] { ran = true; }); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return ran; }));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_TRUE(ran);
}

} // namespace
