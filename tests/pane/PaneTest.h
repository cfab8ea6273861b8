// SPDX-License-Identifier: MIT
#pragma once

#include "../support/FakeQueue.h"
#include "../support/MemoryDefaults.h"
#include "../support/RecordingImprinter.h"

#include <VelImprinterPrefPane.h>

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSTokenField.h>
#include <PlatformQt/Bridge.h>
#include <host/PlaceholderTokenField.h>

#include <QApplication>
#include <QMainWindow>
#include <QTest>

#include <gtest/gtest.h>

namespace testing_support {

/// The title field of a host that has one of its own: text is plain, placeholders are tokens, and its menu has one
/// item.
class HostTokenField final : public host::PlaceholderTokenField {
public:
    std::u16string_view className() const override { return u"PlaceholderTokenField"; }
    platform::NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<platform::NSTokenField>&,
                                                               const platform::RepresentedObject& object) override {
        const auto* text = std::get_if<std::u16string>(&object);
        const bool isPlaceholder = text && text->size() > 1 && text->front() == u'%' && text->back() == u'%';
        return text && !isPlaceholder ? platform::NSTokenStyle::none : platform::NSTokenStyle::squared;
    }
    std::optional<std::u16string>
    tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<platform::NSTokenField>&,
                                                const platform::RepresentedObject& object) override {
        const auto* text = std::get_if<std::u16string>(&object);
        return text && *text == u"%pageNumber%" ? std::optional<std::u16string>(u"Page") : std::nullopt;
    }
    bool hasInsertMenu() const override { return true; }
    std::shared_ptr<platform::NSMenu> insertMenu() override {
        auto menu = std::make_shared<platform::NSMenu>();
        menu->addItemWithTitleActionKeyEquivalent(u"Count", {}, {})->setRepresentedObject(u"%recordPageCount%");
        const auto field = std::static_pointer_cast<platform::NSTokenField>(shared_from_this());
        if (const auto completes = menuDelegate())
            completes->tokenFieldWillPopUpMenuWithPlaceholderMenu(field, menu, menu);
        return menu;
    }
};

/// The names of the widgets that are enabled or disabled while it lives, in order.
class EnablingLog final : public QObject {
public:
    EnablingLog() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        // Parts of controls have names of their own making, or none.
        if (event->type() == QEvent::EnabledChange && !watched->objectName().isEmpty() &&
            !watched->objectName().startsWith(QLatin1String("qt_")))
            names.push_back(watched->objectName().toStdString());
        return false;
    }
    std::vector<std::string> names;
};

/// The real bundle with its real interface file in an offscreen window, on a host that records.
class PaneTest : public ::testing::Test {
protected:
    void SetUp() override {
        defaults = std::make_shared<MemoryDefaults>();
        platform::NSUserDefaults::setStandardUserDefaults(defaults);
        queue = std::make_shared<FakeQueue>();
        platform::setMainQueue(queue);
        imprinter = std::make_shared<RecordingImprinter>(log);
        platform::NSAlert::setAnswerer([this](const platform::NSAlert& alert) {
            alerts.push_back(alert.messageText());
            informativeTexts.push_back(alert.informativeText());
            buttonTitles.push_back(alert.buttonTitles());
            alertStyles.push_back(alert.alertStyle());
            if (onAlert)
                onAlert();
            return alertAnswer;
        });
    }

    void TearDown() override {
        if (pane) {
            pane->willUnselect();
            if (window)
                window->takeCentralWidget();
        }
        window.reset();
        pane.reset();
        platform::NSAlert::setAnswerer({});
        platform::setMainQueue(nullptr);
        platform::NSUserDefaults::setStandardUserDefaults(nullptr);
    }

    std::shared_ptr<RecordingConfiguration> configuration(std::u16string id, bool combined = false) {
        return std::make_shared<RecordingConfiguration>(log, std::move(id), combined);
    }

    /// The class the pane looks up; without it there is no host.
    void registerHost() {
        plugin = std::make_shared<RecordingPlugin>(imprinter, log);
        registration = std::make_unique<platform::ClassRegistration>(RecordingPlugin::describe(plugin));
    }

    /// Loads the pane; the view is in no window yet.
    void load() {
        const auto bundle = platform::NSBundle::bundleWithPath(PANE_BUNDLE);
        ASSERT_TRUE(bundle);
        std::string error;
        ASSERT_TRUE(bundle->load(error)) << error;
        const auto made = bundle->principalClass()->make();
        pane = std::static_pointer_cast<pane::VelImprinterPrefPane>(made);
        pane->setBundle(bundle);
        ASSERT_TRUE(pane->loadMainView());
        EXPECT_EQ(pane->interfaceProblems(), std::vector<std::string>());
    }

    /// Puts the pane into a window and selects it.
    void show() {
        window = std::make_unique<QMainWindow>();
        pane->willSelect();
        window->setCentralWidget(platform::widgetOf(*pane->mainView()));
        window->show();
        window->activateWindow();
        pane->didSelect();
        QApplication::processEvents();
    }

    void start() {
        registerHost();
        load();
        show();
    }

    template <class T>
    std::shared_ptr<T> outlet(std::u16string_view name) {
        const auto* described = pane->classTable()->outlet(name);
        return described ? std::dynamic_pointer_cast<T>(described->object(*pane)) : nullptr;
    }

    std::u16string mainPage() {
        return outlet<platform::NSTabView>(u"mainTabView")->selectedTabViewItem()->identifier();
    }

    /// What was recorded since the last call.
    MessageLog taken() {
        auto messages = std::move(log);
        log.clear();
        return messages;
    }

    /// The same without the questions about the list, which a pane may ask as often as it likes.
    MessageLog takenWithoutListing() {
        auto messages = taken();
        std::erase_if(messages, [](const std::string& message) {
            return message == "imprinter configurations" || message.ends_with(" name");
        });
        return messages;
    }

    MessageLog log;
    platform::ClassRegistration tokenField{
        platform::ClassTable<HostTokenField>(u"PlaceholderTokenField", u"NSTokenField")};
    std::shared_ptr<MemoryDefaults> defaults;
    std::shared_ptr<FakeQueue> queue;
    std::shared_ptr<RecordingImprinter> imprinter;
    std::shared_ptr<RecordingPlugin> plugin;
    std::unique_ptr<platform::ClassRegistration> registration;
    std::unique_ptr<QMainWindow> window;
    std::shared_ptr<pane::VelImprinterPrefPane> pane;
    platform::NSInteger alertAnswer = platform::NSAlertFirstButtonReturn;
    std::function<void()> onAlert;
    std::vector<std::u16string> alerts;
    std::vector<std::u16string> informativeTexts;
    std::vector<std::vector<std::u16string>> buttonTitles;
    std::vector<platform::NSAlertStyle> alertStyles;
};

} // namespace testing_support
