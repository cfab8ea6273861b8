// SPDX-License-Identifier: MIT
// The stand-alone host around the real pane: what opening, selecting, closing and failing to save do.

#include "../support/Environment.h"
#include "../support/MemoryDefaults.h"

#include "../support/ProgramWindow.h"
#include "HostBundle.h"
#include "SettingsDialog.h"
#include "Signals.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSString.h>
#include <files/Calls.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <fstream>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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
        window = testing_support::makeWindow(*session);
        ASSERT_TRUE(window);
        window->show();
        QApplication::processEvents();
    }

    /// Goes on where the check before stamping has something to say.
    void goOnAfterCheck() {
        QTimer::singleShot(0, qApp, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog && dialog->objectName() == QLatin1String("preflight"))
                dialog->accept();
            else
                goOnAfterCheck();
        });
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

    /// Presses the button with this text in each message box that comes while it is left to work.
    class Presser {
    public:
        explicit Presser(QString text) : m_button(std::move(text)) {
            QObject::connect(&m_poll, &QTimer::timeout, [this] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!box)
                    return;
                seen.push_back(box->text());
                for (auto* button : box->buttons())
                    if (button->text().remove(u'&') == m_button)
                        return button->click();
                box->reject();
            });
            m_poll.start(1);
        }
        QList<QString> seen;

    private:
        QString m_button;
        QTimer m_poll;
    };

    std::vector<fs::path> journals() const {
        std::vector<fs::path> found;
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.path().filename().string().starts_with(".configurations.json.unsaved-"))
                found.push_back(entry.path());
        return found;
    }
    /// The program ends as when it is killed: nobody closes the window.
    void end() {
        window.reset();
        session.reset();
    }

    /// Closes messages until one asks, and presses its button of this role.
    void answerQuestion(QMessageBox::ButtonRole role) {
        QTimer::singleShot(0, qApp, [this, role] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            bool answered = false;
            if (box && box->buttons().size() > 1) {
                for (auto* button : box->buttons())
                    if (box->buttonRole(button) == role && !std::exchange(answered, true))
                        button->click();
            } else if (box) {
                box->accept();
            }
            if (!answered)
                answerQuestion(role);
        });
    }

    void press(std::u16string_view action) {
        NSAlert::setAnswerer([](const NSAlert&) { return NSAlertFirstButtonReturn; });
        auto& pane = window->pane().pane();
        const auto* pressed = pane.classTable()->action(action);
        ASSERT_TRUE(pressed);
        (*pressed)(pane, nullptr);
        NSAlert::setAnswerer({});
    }
    void drop(QMimeData& mime) {
        QDragEnterEvent enters({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(window.get(), &enters);
        EXPECT_TRUE(enters.isAccepted());
        QDropEvent drops({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(window.get(), &drops);
    }
    std::shared_ptr<host::ImprinterConfiguration> current() { return window->pane().currentConfiguration(); }
    std::u16string page() {
        auto& pane = window->pane().pane();
        const auto tabs = std::dynamic_pointer_cast<NSTabView>(pane.classTable()->outlet(u"mainTabView")->object(pane));
        return tabs->selectedTabViewItem()->identifier();
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

    // There is no journal either, so that closing without it is asked, once, over what would be lost.
    QStringList asked;
    bool isPaneSeen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            asked += box->text() + u'|' + box->informativeText();
            isPaneSeen = window->findChild<QLineEdit*>(QStringLiteral("xOffset")) != nullptr;
            box->reject();
        }
    });
    poll.start(0);
    window->close();
    poll.stop();
    EXPECT_TRUE(window->isVisible());
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked.front().startsWith(QStringLiteral("Close without saving?|"))) << asked.front().toStdString();
    EXPECT_TRUE(asked.front().contains(QStringLiteral("configurations.json"))) << asked.front().toStdString();
    EXPECT_TRUE(isPaneSeen);
    answerQuestion(QMessageBox::DestructiveRole);
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(contents(folder / "file"), "in the way");
}

TEST_F(HostLife, WhatIsNotSavedIsInAJournalAMomentLaterAndOfferedAtTheNextStart) {
    const auto store = folder / "configurations.json";
    open(store);
    session->keepJournal();
    session->model().saveConfigurations();
    const auto saved = contents(store);
    const auto first = session->model().configurations()->front();
    for (int key = 0; key < 50; ++key)
        first->setName(u"Unsaved" + std::u16string(static_cast<std::size_t>(key), u'!'));
    EXPECT_TRUE(journals().empty()) << "not for each key";
    ASSERT_TRUE(QTest::qWaitFor([&] { return journals().size() == 1; }));
    const auto fromKilled = folder / "as it was when the program was killed";
    fs::copy_file(journals().front(), fromKilled);
    end();
    EXPECT_EQ(contents(store), saved) << "the store itself changes only when it is saved";
    fs::copy_file(fromKilled, journals().front(), fs::copy_options::overwrite_existing);

    open(store);
    session->keepJournal();
    Presser presser(QStringLiteral("Take Over"));
    window->offerUnsaved();
    ASSERT_EQ(presser.seen.size(), 1U);
    EXPECT_EQ(current()->name(), u"Unsaved" + std::u16string(49, u'!'));
    EXPECT_EQ(window->pane().table()->viewAtColumnRow(0, 0)->textField()->stringValue(), current()->name());
    EXPECT_EQ(contents(store), saved);
    window->close();
    EXPECT_NE(contents(store).find("Unsaved!!"), std::string::npos);
    EXPECT_TRUE(journals().empty()) << "a save drops it";
    window->offerUnsaved();
    EXPECT_EQ(presser.seen.size(), 1U);
}

TEST_F(HostLife, WhatNobodyWantsOfAJournalIsDiscardedAndWhatIsLeftForLaterIsOfferedAgain) {
    open(folder / "configurations.json");
    session->keepJournal();
    current()->setName(u"Unsaved");
    end();
    ASSERT_EQ(journals().size(), 1U);
    for (const char* answer : {"Later", "Discard"}) {
        open(folder / "configurations.json");
        Presser presser(QString::fromLatin1(answer));
        window->offerUnsaved();
        EXPECT_EQ(presser.seen.size(), 1U) << answer;
        EXPECT_NE(current()->name(), u"Unsaved");
        window->close();
        end();
    }
    EXPECT_TRUE(journals().empty());
}

TEST_F(HostLife, WhatCouldNotBeSavedIsInTheJournalBeforeAnybodyIsTold) {
    open(folder / "configurations.json");
    session->keepJournal();
    session->model().saveConfigurations();
    std::ofstream(folder / "configurations.json") << "another program broke it";
    current()->setName(u"Unsaved");
    int journalsThen = 0;
    session->setOnSaveFailure([&](const auto&) { journalsThen = static_cast<int>(journals().size()); });
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(journalsThen, 1);
    window->close();
    EXPECT_FALSE(window->isVisible());
    end();
    EXPECT_EQ(journals().size(), 1U) << "closing in spite of the message loses nothing";
    EXPECT_EQ(contents(folder / "configurations.json"), "another program broke it");
}

TEST_F(HostLife, TheWindowAsksWhoseChangesStay) {
    for (const auto& [button, stored] : std::vector<std::pair<QString, std::string>>{
             {QStringLiteral("Keep Mine"), "Mine"}, {QStringLiteral("Take Theirs"), "Theirs"}}) {
        const auto file = folder / (stored + ".json");
        open(file);
        session->model().saveConfigurations();
        app::Session other(file);
        other.model().configurations()->front()->setName(u"Theirs");
        other.model().configurations()->back()->setName(u"Last");
        other.saveChanges();
        const auto shown = current();
        shown->setName(u"Mine");
        Presser presser(button);
        window->close();
        EXPECT_FALSE(window->isVisible());
        ASSERT_EQ(presser.seen.size(), 1U);
        EXPECT_TRUE(presser.seen[0].contains(QStringLiteral("Mine")));
        EXPECT_EQ(toUtf8(shown->name()), stored);
        app::Session next(file);
        EXPECT_EQ(toUtf8(next.model().configurations()->front()->name()), stored);
        EXPECT_EQ(next.model().configurations()->back()->name(), u"Last");
        end();
    }
}

TEST_F(HostLife, TheWindowSaysThatItWaitsForAnotherProgramThatSaves) {
    open(folder / "configurations.json");
    const auto lock = folder / ".configurations.json.lock";
    const int other = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    struct Time final : files::Calls {
        void pause(std::chrono::milliseconds) override { pass(); }
        std::function<void()> pass;
    } time;
    QString said;
    time.pass = [&] {
        said = window->statusBar()->currentMessage();
        if (!said.isEmpty())
            ::flock(other, LOCK_UN);
    };
    files::setCalls(&time);
    current()->setName(u"Mine");
    window->close();
    files::setCalls(nullptr);
    ::close(other);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(said, QStringLiteral("Waiting for another program that is saving…"));
    EXPECT_NE(contents(folder / "configurations.json").find("Mine"), std::string::npos);
}

TEST_F(HostLife, TheWindowSaysWhatStaysInSpiteOfBeingDeleted) {
    open(folder / "configurations.json");
    session->model().saveConfigurations();
    app::Session other(folder / "configurations.json");
    other.model().deleteConfigurationAtIndex(0);
    other.saveChanges();
    current()->setName(u"Edited");
    Presser presser(QStringLiteral("OK"));
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(presser.seen,
              QList<QString>{QStringLiteral("“Edited” was deleted by another program and changed here; it was kept.")});
    EXPECT_EQ(app::Session(folder / "configurations.json").model().configurations()->front()->name(), u"Edited");
}

TEST_F(HostLife, WithoutAnAnswerAboutWhoseChangesStayTheWindowStaysOpenAndNothingIsSaved) {
    open(folder / "configurations.json");
    session->model().saveConfigurations();
    app::Session other(folder / "configurations.json");
    other.model().configurations()->front()->setName(u"Theirs");
    other.saveChanges();
    const auto theirs = contents(folder / "configurations.json");
    current()->setName(u"Mine");
    Presser presser(QStringLiteral("Cancel"));
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(presser.seen.size(), 2U) << "the question, and what came of it";
    EXPECT_EQ(current()->name(), u"Mine");
    EXPECT_EQ(contents(folder / "configurations.json"), theirs);
}

TEST_F(HostLife, ToldToEndBetweenTwoQuestionsItAsksNoMoreAndTheJournalsStay) {
    for (const char16_t* name : {u"First", u"Second"}) {
        app::Session killed(folder / "configurations.json");
        killed.keepJournal();
        killed.model().configurations()->front()->setName(name);
    }
    ASSERT_EQ(journals().size(), 2U);
    open(folder / "configurations.json");
    session->keepJournal();
    int asked = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (qobject_cast<QMessageBox*>(QApplication::activeModalWidget()) && asked++ == 0)
            app::closeUnasked(*window);
    });
    poll.start(0);
    window->offerUnsaved();
    poll.stop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }));
    EXPECT_GE(asked, 1);
    end();
    EXPECT_EQ(journals().size(), 2U);
    EXPECT_EQ(app::Session(folder / "configurations.json").model().configurations()->front()->name(), u"Received");
}

TEST_F(HostLife, ToldToEndWhileItAsksWhoseChangesStayItEndsWithTheOwnInTheJournal) {
    for (const bool byClosing : {true, false}) {
        const auto file = folder / (byClosing ? "closed.json" : "saved.json");
        open(file);
        session->keepJournal();
        session->model().saveConfigurations();
        app::Session other(file);
        other.model().configurations()->front()->setName(u"Theirs");
        other.saveChanges();
        const auto theirs = contents(file);
        current()->setName(u"Mine");
        int asked = 0;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (!QApplication::activeModalWidget() || asked++ > 0)
                return;
            // Whatever else wants to close or save meanwhile is refused.
            window->close();
            session->model().saveConfigurations();
            EXPECT_TRUE(window->isVisible());
            app::closeUnasked(*window);
        });
        poll.start(0);
        if (byClosing)
            window->close();
        else
            session->model().saveConfigurations();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }));
        poll.stop();
        EXPECT_GT(asked, 0);
        EXPECT_EQ(contents(file), theirs);
        end();

        open(file);
        const auto left = session->unsaved();
        ASSERT_EQ(left.size(), 1U);
        EXPECT_EQ(left[0].configurations, 1U);
        EXPECT_NE(contents(left[0].journal).find("Mine"), std::string::npos);
        end();
    }
}

TEST_F(HostLife, ToldToEndWithWhatCanNeitherBeSavedNorKeptItAsksInTheEnd) {
    std::ofstream(folder / "file") << "in the way";
    open(folder / "file" / "configurations.json");
    session->keepJournal();
    current()->setName(u"Unsaved");
    app::closeUnasked(*window);
    Presser cancel(QStringLiteral("Cancel"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return cancel.seen.contains(QStringLiteral("Close without saving?")); }));
    QApplication::processEvents();
    EXPECT_TRUE(window->isVisible());
    EXPECT_NE(window->centralWidget(), nullptr);
    EXPECT_EQ(current()->name(), u"Unsaved");
}

TEST_F(HostLife, WhatAnotherProgramSavedIsShownAfterASave) {
    open(folder / "configurations.json");
    session->model().saveConfigurations();
    app::Session other(folder / "configurations.json");
    other.model().configurations()->front()->setName(u"Theirs");
    other.model().configurations()->front()->setRotation(33);
    other.model().createConfiguration(false)->setName(u"New");
    other.saveChanges();
    (*session->model().configurations())[1]->setName(u"Mine");
    session->model().saveConfigurations();
    const auto table = window->pane().table();
    EXPECT_TRUE(QTest::qWaitFor([&] { return table->numberOfRows() == 4; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return table->viewAtColumnRow(0, 0)->textField()->stringValue() == u"Theirs"; }));
    EXPECT_EQ(window->findChild<QLineEdit*>(QStringLiteral("rotation"))->text(), QStringLiteral("33"));
    window->close();
    EXPECT_EQ(app::Session(folder / "configurations.json").model().configurations()->front()->rotation(), 33);
}

TEST_F(HostLife, PreviewsWaitUntilTheWindowWasPainted) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    window = testing_support::makeWindow(*session);
    ASSERT_TRUE(window);
    auto& model = session->model();
    const auto sample = NSURL::fileURLWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg");
    const auto preview = [&] { return model.imprintFileAtURLWithIndex(sample, current(), 0); };

    // Everything happens but painting: it is shown, told its size, made active, and its timers run out.
    window->setUpdatesEnabled(false);
    window->show();
    window->activateWindow();
    window->resize(window->size() + QSize(10, 10));
    bool waited = false;
    QTimer::singleShot(0, window.get(), [&] { QTimer::singleShot(0, window.get(), [&] { waited = true; }); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return waited; }));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(preview(), std::nullopt);

    window->setUpdatesEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return preview().has_value(); }));
    EXPECT_GT(fs::file_size(preview()->path()), 1000U);
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
    open(folder / "configurations.json");
    window->pane().table()->userSelects(NSIndexSet(1), 1);
    const auto next = (*session->model().configurations())[2];
    press(u"deleteConfiguration:");
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->pane().currentConfiguration() == next; }));
    window->close();
    EXPECT_EQ(defaults->stringForKey(u"ImprinterPrefLastSelected"), next->uniqueID());
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

TEST_F(HostLife, DeletingTwiceAtOnceEndsOnAListedConfiguration) {
    open(folder / "configurations.json");
    const auto second = (*session->model().configurations())[1];
    press(u"deleteConfiguration:");
    press(u"deleteConfiguration:"); // the one being edited is gone already
    EXPECT_TRUE(QTest::qWaitFor([&] { return page() == u"Imprint Configuration" && current() == second; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->pane().table()->selectedRow() == 0; }));
    EXPECT_EQ(session->model().configurations()->size(), 2U);
}

TEST_F(HostLife, ClosingRightAfterDeletingRemembersARowThatIsStillThere) {
    open(folder / "configurations.json");
    window->pane().table()->userSelects(NSIndexSet(1), 1);
    press(u"deleteConfiguration:");
    window->close();
    const auto remembered = defaults->stringForKey(u"ImprinterPrefLastSelected");
    EXPECT_TRUE(!remembered || session->model().configurationForID(*remembered));
    window.reset();
    open(folder / "configurations.json");
    EXPECT_EQ(session->model().configurations()->size(), 2U);
    EXPECT_EQ(page(), u"Imprint Configuration");
    EXPECT_GE(window->pane().table()->selectedRow(), 0);
}

TEST_F(HostLife, TheLastConfigurationStaysDeleted) {
    open(folder / "configurations.json");
    while (session->model().configurations()->size() > 1)
        session->model().deleteConfigurationAtIndex(session->model().indexOfConfiguration(current()) == 0 ? 1 : 0);
    press(u"deleteConfiguration:");
    ASSERT_EQ(page(), u"No Imprint");
    window->pane().refresh(session->model());
    EXPECT_EQ(page(), u"No Imprint");
    answerMessages();
    for (auto* action : window->findChildren<QAction*>())
        if (action->shortcut() == QKeySequence::Open)
            action->trigger();
    ASSERT_EQ(messages.size(), 1U) << "there is nothing to stamp with";
}

/// A title with two runs, a size in the second; the field is the one with the focus.
class RunsInWindow : public HostLife {
protected:
    void open() {
        HostLife::open(folder / "configurations.json");
        window->afterFirstPaint();
        window->pane().perform(u"addConfiguration:");
        edited = std::dynamic_pointer_cast<model::Configuration>(current());
        ASSERT_TRUE(edited);
        const auto first = edited->createFontToken();
        const auto second = edited->createFontToken();
        second->setFontSize(30);
        edited->setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(
            std::vector<host::TitleToken>{first, u"a", second, u"b"}));
        window->pane().refresh(session->model());
        editor = window->findChild<QTextEdit*>(QStringLiteral("titleTokenField"));
        ASSERT_TRUE(editor);
        editor->setFocus();
    }
    std::shared_ptr<host::ImprinterFont> run(std::size_t place) const {
        return std::get<std::shared_ptr<host::ImprinterFont>>((*edited->titleTokens())[place]);
    }
    QString shownRun() const { return window->findChild<QComboBox*>(QStringLiteral("fontTokensPopup"))->currentText(); }
    void typeSize(const char* size) {
        auto* field = window->findChild<QLineEdit*>(QStringLiteral("fontSizeField"));
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, size);
        QTest::keyClick(field, Qt::Key_Return);
    }

    std::shared_ptr<model::Configuration> edited;
    QTextEdit* editor = nullptr;
};

TEST_F(RunsInWindow, AfterAnUndoTheListNamesTheOneThatIsEdited) {
    open();
    editor->moveCursor(QTextCursor::Start);
    QTest::keyClick(editor, Qt::Key_Delete); // selects the first run
    QTest::keyClick(editor, Qt::Key_Delete);
    EXPECT_EQ(count(edited->titleTokens()), 3U);
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(count(edited->titleTokens()), 4U);
    EXPECT_EQ(run(0)->fontNumber(), 0U);
    EXPECT_EQ(run(2)->fontNumber(), 1U);
    EXPECT_EQ(shownRun(), "Font 2");
    typeSize("44");
    EXPECT_EQ(run(2)->fontSize(), 44);
    EXPECT_EQ(run(0)->fontSize(), 12);
}

TEST_F(RunsInWindow, TheOnlyOneBroughtBackIsEditedAgain) {
    open();
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Delete);
    EXPECT_EQ(count(edited->titleTokens()), 0U);
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shownRun(), "Font 1");
    typeSize("44");
    EXPECT_EQ(run(0)->fontSize(), 44);
    EXPECT_EQ(run(2)->fontSize(), 30);
}

TEST_F(RunsInWindow, AnInsertedOneIsEditedNext) {
    open();
    editor->moveCursor(QTextCursor::End);
    const auto field = window->pane().titleField();
    const auto menu = field->insertMenu();
    menu->update();
    field->userChoosesMenuItem(menu->itemAtIndex(0));
    ASSERT_EQ(count(edited->titleTokens()), 5U);
    typeSize("44");
    EXPECT_EQ(run(4)->fontSize(), 44);
    EXPECT_EQ(run(0)->fontSize(), 12);
    EXPECT_EQ(run(2)->fontSize(), 30);
}

TEST_F(HostLife, ClosingTheWindowStoresWhatIsBeingTyped) {
    open(folder / "configurations.json");
    const auto edited = current();
    auto* field = window->findChild<QLineEdit*>(QStringLiteral("xOffset"));
    ASSERT_TRUE(field);
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "4321");
    window->close();
    EXPECT_EQ(edited->offset().x, 4321);
    EXPECT_NE(contents(folder / "configurations.json").find("4321"), std::string::npos);
}

TEST_F(HostLife, AnAbsurdRotationDoesNotKeepTheRestFromBeingStored) {
    open(folder / "configurations.json");
    const auto edited = current();
    edited->setRotation(1e300);
    edited->setName(u"Stored all the same");
    window->pane().refresh(session->model());
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_NE(contents(folder / "configurations.json").find("Stored all the same"), std::string::npos);
}

TEST_F(HostLife, WithoutAFolderForPreviewsThereIsNoneAndEverythingElseWorks) {
    const support::Environment closed("XDG_RUNTIME_DIR", "/proc"); // nobody makes folders there
    open(folder / "configurations.json");
    session->allowPreviews();
    window->pane().table()->userSelects(NSIndexSet(2), 2);
    EXPECT_EQ(window->pane().table()->selectedRow(), 2);
    EXPECT_EQ(current(), (*session->model().configurations())[2]);
    EXPECT_EQ(
        session->model().imprintFileAtURLWithIndex(
            NSURL::fileURLWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg"), current(), 0),
        std::nullopt);
}

TEST_F(HostLife, ANewMemberIsStampedIntoThePreviewThatWasHandedOut) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    session->allowPreviews();
    auto& model = session->model();
    const auto ordinary = model.configurations()->front();
    const auto combined = model.createConfiguration(true);
    const auto sample = NSURL::fileURLWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg");
    const auto bare = model.imprintFileAtURLWithIndex(sample, combined, 0);
    ASSERT_TRUE(bare);
    const auto before = contents(bare->path());
    combined->addConfiguration(ordinary);
    EXPECT_TRUE(QTest::qWaitFor([&] { return contents(bare->path()) != before; }));
    combined->deleteConfiguration(ordinary);
    EXPECT_TRUE(QTest::qWaitFor([&] { return contents(bare->path()) == before; }));
}

TEST_F(HostLife, AStampLeftToDoWhenTheProgramEndsIsHarmless) {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    session->allowPreviews();
    auto& model = session->model();
    const auto combined = model.createConfiguration(true);
    const auto sample = NSURL::fileURLWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg");
    ASSERT_TRUE(model.imprintFileAtURLWithIndex(sample, combined, 0));
    combined->addConfiguration(model.configurations()->front());
    session.reset();
    QApplication::processEvents();
}

TEST_F(HostLife, TheNextPressOnPreviewShowsTheNewMembers) {
    open(folder / "configurations.json");
    session->allowPreviews();
    auto& model = session->model();
    const auto ordinary = model.configurations()->front();
    const auto combined = model.createConfiguration(true);
    window->pane().show(combined, model);
    auto& pane = window->pane().pane();
    const auto pressPreview = [&] {
        NSPopover::setAnimationDuration(0);
        const auto& pressed = *pane.classTable()->action(u"onPreview:");
        pressed(pane, pane.classTable()->outlet(u"previewBtn")->object(pane));
        QApplication::processEvents();
        auto* popover = QApplication::activePopupWidget();
        EXPECT_TRUE(popover);
        auto shown = popover ? popover->grab().toImage() : QImage();
        if (popover)
            QTest::keyClick(popover, Qt::Key_Escape);
        QApplication::processEvents();
        return shown;
    };
    const auto bare = pressPreview();
    EXPECT_EQ(pressPreview(), bare) << "nothing has changed";
    combined->addConfiguration(ordinary);
    QApplication::processEvents();
    EXPECT_NE(pressPreview(), bare);
    NSPopover::setAnimationDuration(0.15);
}

TEST_F(HostLife, AnIdentifierThatIsGoneShowsTheFullListAndTheEmptyPage) {
    defaults->setObjectForKey(u"gone", u"ImprinterPrefLastSelected");
    open(folder / "configurations.json");
    window->afterFirstPaint();
    EXPECT_EQ(page(), u"No Imprint");
    EXPECT_EQ(window->pane().table()->selectedRow(), -1);
    EXPECT_EQ(window->pane().table()->numberOfRows(), 3);
}

TEST_F(HostLife, ADroppedFileIsStampedBesideItAndLeftAsItIs) {
    const auto picture = folder / "letter.png";
    QImage(300, 200, QImage::Format_RGB32).save(picture.c_str());
    const auto before = contents(picture);
    open(folder / "configurations.json");
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(QString::fromStdString(picture.string()))});
    drop(mime);
    EXPECT_TRUE(QTest::qWaitFor([&] { return fs::exists(folder / "letter-stamped.png"); }));
    EXPECT_EQ(contents(picture), before);
}

TEST_F(HostLife, FilesThatCannotBeStampedAreNamedInTheSummary) {
    std::ofstream(folder / "no.pdf") << "no document";
    const auto picture = folder / "letter.png";
    QImage(300, 200, QImage::Format_RGB32).save(picture.c_str());
    open(folder / "configurations.json");
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(QString::fromStdString((folder / "no.pdf").string())),
                  QUrl::fromLocalFile(QString::fromStdString(picture.string()))});
    goOnAfterCheck();
    answerMessages();
    drop(mime);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !messages.empty(); }));
    EXPECT_EQ(messages.front(), "1 of 2 documents could not be stamped.");
    EXPECT_TRUE(fs::exists(folder / "letter-stamped.png"));
    EXPECT_FALSE(fs::exists(folder / "no-stamped.pdf"));
}

TEST_F(HostLife, OriginalsAreReplacedOnlyAfterAsking) {
    const auto picture = folder / "letter.png";
    QImage white(300, 200, QImage::Format_RGB32);
    white.fill(Qt::white);
    white.save(picture.c_str());
    const auto before = contents(picture);
    open(folder / "configurations.json");
    current()->setDuplicateRecord(2);
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(QString::fromStdString(picture.string()))});
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        bool asked = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                asked = true;
                box->button(answer)->click();
            }
        });
        poll.start(1);
        drop(mime);
        EXPECT_TRUE(QTest::qWaitFor([&] { return asked; }));
        poll.stop();
        QApplication::processEvents();
        EXPECT_EQ(contents(picture) == before, answer == QMessageBox::No);
    }
}

} // namespace
