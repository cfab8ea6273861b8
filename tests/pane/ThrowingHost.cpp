// SPDX-License-Identifier: MIT
// A host that throws from any message: the pane stays, and works again when the host does.

#include "../support/RecordingFont.h"
#include "CommandsTest.h"

#include <AppKit/NSTabView.h>
#include <Foundation/NSException.h>

#include <QAbstractButton>
#include <QLineEdit>

#include <map>

using namespace platform;
using namespace testing_support;

namespace {

/// What a message is called, without who got it and with what.
std::string kindOf(const std::string& message) {
    // What a command has made is called "new 1" and so on.
    const auto begin = message.find(' ', message.starts_with("new ") ? 4 : 0);
    return message.substr(begin + 1, message.find(' ', begin + 1) - begin - 1);
}

class ThrowingHost : public CommandsTest {
protected:
    void SetUp() override {
        CommandsTest::SetUp();
        fill();
    }
    void TearDown() override {
        onMessage() = {};
        CommandsTest::TearDown();
    }

    void fill() {
        Configurations list{configuration(u"a"), configuration(u"b"), configuration(u"c", true)};
        const auto font = std::make_shared<RecordingFont>(log, u"Font");
        for (const auto& made : list) {
            made->values.titleTokens = std::make_shared<const std::vector<host::TitleToken>>(
                std::vector<host::TitleToken>{std::shared_ptr<host::ImprinterFont>(font), u"Page ", u"%pageNumber%"});
            made->values.occurance = 4;
            made->values.customOccurance = u"1, 2";
            made->makeFont = [this] { return std::make_shared<RecordingFont>(log, u"Font"); };
        }
        imprinter->setList(list);
    }

    /// What a person may do, from opening the pane to leaving it. A host guards the messages of a pane's life.
    void story() {
        runGuarded([this] { open(); });
        ASSERT_TRUE(pane && pane->mainView());
        for (const char16_t* page : {u"Location", u"Appearance"}) {
            runGuarded([&] { outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(page); });
            useEverythingThatShows();
        }
        for (int row = 0; row < 3; ++row) {
            QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, rowRect(row).center());
            letTimePass();
            useEverythingThatShows();
        }
        for (const char16_t* action :
             {u"addConfiguration:", u"createCombinedConfiguration:", u"duplicateConfiguration:", u"onPreview:",
              u"addTokenItem:", u"deleteConfiguration:", u"onAdd:"}) {
            if (const auto* command = pane->classTable()->action(action))
                runGuarded([&] { (*command)(*pane, nullptr); });
            letTimePass();
        }
        runGuarded([this] { dropAbove(0, rowsFrom("row_5.binary")); });
        letTimePass();
        runGuarded([this] { pane->shouldUnselect(); });
        runGuarded([this] { pane->willUnselect(); });
    }

    /// The event loop logs what leaves a block, and goes on.
    void letTimePass() {
        for (int i = 0; i < 10; ++i)
            runGuarded([this] { queue->advance(0.1); });
        QApplication::processEvents();
    }

    /// The window's part of a host.
    void open() {
        registerHost();
        const auto bundle = NSBundle::bundleWithPath(PANE_BUNDLE);
        std::string error;
        ASSERT_TRUE(bundle->load(error)) << error;
        pane = std::static_pointer_cast<pane::VelImprinterPrefPane>(bundle->principalClass()->make());
        pane->setBundle(bundle);
        runGuarded([this] { pane->loadMainView(); });
        window = std::make_unique<QMainWindow>();
        runGuarded([this] { pane->willSelect(); });
        window->setCentralWidget(widgetOf(*pane->mainView()));
        window->show();
        runGuarded([this] { pane->didSelect(); });
        QApplication::processEvents();
    }

    void useEverythingThatShows() {
        for (auto* button : window->findChildren<QAbstractButton*>())
            // What opens a menu or a panel waits for an answer.
            if (button->isVisible() && button->isEnabled() && button->isCheckable())
                QTest::mouseClick(button, Qt::LeftButton);
        for (auto* field : window->findChildren<QLineEdit*>())
            if (field->isVisible() && field->isEnabled() && !field->isReadOnly()) {
                field->setFocus();
                QTest::keyClicks(field, "7");
                QTest::keyClick(field, Qt::Key_Return);
            }
        letTimePass();
    }

    void close() {
        window->takeCentralWidget();
        window.reset();
        pane.reset();
        registration.reset();
    }
};

TEST_F(ThrowingHost, DoesNotTakeThePaneWithItWhicheverMessageThrows) {
    std::map<std::string, int> kinds;
    onMessage() = [&](const std::string& message) { ++kinds[kindOf(message)]; };
    story();
    close();
    EXPECT_GT(kinds.size(), 45U) << "the story has most messages of the contract";
    for (const auto& [kind, count] : kinds) {
        SCOPED_TRACE(kind);
        for (const bool onceOnly : {false, true}) {
            fill();
            int thrown = 0;
            onMessage() = [&, kind = kind](const std::string& message) {
                if (kindOf(message) == kind && (!onceOnly || thrown == 0)) {
                    ++thrown;
                    throw std::runtime_error("the host threw from " + kind);
                }
            };
            story();
            EXPECT_GT(thrown, 0);
            // The host has come to its senses: what is chosen is shown.
            onMessage() = {};
            fill();
            table()->reloadData();
            // The host is asked for once in the pane's life; without an answer there are no rows.
            EXPECT_EQ(table()->numberOfRows(), kind == "imprinter" ? 0 : 3);
            pane->setCurrentConfiguration(nullptr);
            pane->setCurrentConfiguration((*imprinter->configurations())[1]);
            EXPECT_EQ(mainPage(), u"Imprint Configuration");
            taken();
            pane->saveConfiguration();
            EXPECT_EQ(taken().back(), kind == "imprinter" ? "b setOffset 0 0" : "imprinter saveConfigurations");
            close();
        }
    }
}

} // namespace
