// SPDX-License-Identifier: MIT
#pragma once

#include "../support/MemoryDefaults.h"
#include "../support/ProgramWindow.h"

#include <AppKit/NSAlert.h>
#include <Foundation/NSString.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fstream>

#include <gtest/gtest.h>

namespace testing_support {

/// The program's window with the real pane, on a store of its own.
class WindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform::NSUserDefaults::setStandardUserDefaults(defaults);
        open();
    }
    void TearDown() override {
        close();
        platform::NSUserDefaults::setStandardUserDefaults(nullptr);
    }
    void open() {
        session = std::make_unique<app::Session>(path("store/configurations.json"));
        window = makeWindow(*session);
        ASSERT_TRUE(window);
        window->show();
        window->activateWindow();
        window->afterFirstPaint();
        settle();
    }
    void close() {
        window.reset();
        session.reset();
    }

    std::filesystem::path path(const std::string& name) const { return folder.path().toStdString() + "/" + name; }
    static void settle() {
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    /// The command of a menu, by its English title without mark.
    QAction* command(const QString& title) const {
        for (auto* action : window->findChildren<QAction*>())
            if (QString(action->text()).remove(u'&') == title)
                return action;
        return nullptr;
    }
    void choose(const QString& title) {
        auto* action = command(title);
        ASSERT_TRUE(action) << title.toStdString();
        ASSERT_TRUE(action->isEnabled()) << title.toStdString();
        action->trigger();
        settle();
    }
    /// As a user deletes the configuration on show.
    void deleteCurrent() {
        platform::NSAlert::setAnswerer([](const platform::NSAlert&) { return platform::NSAlertFirstButtonReturn; });
        window->pane().perform(u"deleteConfiguration:");
        platform::NSAlert::setAnswerer({});
        settle();
    }

    model::ImprinterModel& model() { return session->model(); }
    std::shared_ptr<host::ImprinterConfiguration> at(std::size_t row) { return model().configurations()->at(row); }
    std::shared_ptr<host::ImprinterConfiguration> current() { return window->pane().currentConfiguration(); }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (const auto& configuration : *model().configurations())
            all.push_back(platform::toUtf8(configuration->name()));
        return all;
    }
    template <class T>
    std::shared_ptr<T> outlet(std::u16string_view name) {
        auto& pane = window->pane().pane();
        return std::dynamic_pointer_cast<T>(pane.classTable()->outlet(name)->object(pane));
    }
    template <class T = QWidget>
    T* child(const char* name) {
        return window->findChild<T*>(QString::fromLatin1(name));
    }

    /// Does `work`, and meanwhile gives each modal window in turn to `answers`.
    template <class Work>
    void answering(std::vector<std::function<void(QWidget&)>> answers, const Work& work) {
        // A timer does not come again while what it set off goes on, such as a dialog that opens another one.
        QObject context;
        std::size_t next = 0;
        const QWidget* last = nullptr;
        std::function<void()> look = [&] {
            QTimer::singleShot(1, &context, look);
            auto* modal = QApplication::activeModalWidget();
            if (!modal || modal == last || modal->objectName() == "stamping")
                return;
            if (next < answers.size()) {
                last = modal;
                answers[next++](*modal);
                last = nullptr;
            } else {
                ADD_FAILURE() << "one window too many";
                modal->close();
            }
        };
        look();
        work();
        EXPECT_TRUE(QTest::qWaitFor([&] { return next == answers.size(); })) << "asked " << next << " times";
        settle();
    }
    /// Presses the button of this English title in a box; keeps what it says.
    static std::function<void(QWidget&)> press(const QString& title, QString* said = nullptr) {
        return [=](QWidget& modal) {
            auto* box = qobject_cast<QMessageBox*>(&modal);
            ASSERT_TRUE(box);
            if (said)
                *said = (box->text() + u'\n' + box->informativeText()).trimmed();
            for (auto* button : box->buttons())
                if (QString(button->text()).remove(u'&') == title)
                    return button->click();
            ADD_FAILURE() << "no button " << title.toStdString();
            box->close();
        };
    }

    /// Takes this file in a dialog of files.
    static std::function<void(QWidget&)> take(const std::filesystem::path& file) {
        return [=](QWidget& modal) {
            auto* dialog = qobject_cast<QFileDialog*>(&modal);
            ASSERT_TRUE(dialog);
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(app::toQt(file.u16string()));
            QMetaObject::invokeMethod(dialog, "accept");
        };
    }
    void write(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
    }
    std::string contents(const std::string& name) const {
        std::ifstream stream(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    QString status() const { return window->statusBar()->currentMessage(); }

    QTemporaryDir folder;
    std::shared_ptr<MemoryDefaults> defaults = std::make_shared<MemoryDefaults>();
    std::unique_ptr<app::Session> session;
    std::unique_ptr<app::MainWindow> window;
};

} // namespace testing_support
