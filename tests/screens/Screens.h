// SPDX-License-Identifier: MIT
#pragma once

#include "../support/MemoryDefaults.h"

#include "MainWindow.h"

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

namespace testing_support {

/// The stand-alone host with the real pane, in the language of the environment, and a way through all of its screens.
class Screens : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Opens the window on the configurations that the program comes with.
    void open();

    using Look = std::function<void(const std::string& name, QWidget& screen)>;
    /// Shows every page of the pane in the window, at the smallest size the window can have.
    void visitPages(const Look& look);
    /// Shows every other window: dialogs, alerts, the palette, the preview.
    void visitDialogs(const Look& look);
    /// What comes up while documents are stamped, and about the file of configurations.
    void visitStampingDialogs(const Look& look);
    void visitStoreDialogs(const Look& look);
    void visitAll(const Look& look) {
        visitPages(look);
        visitDialogs(look);
    }

    template <class T>
    std::shared_ptr<T> outlet(std::u16string_view name) {
        auto& pane = window->pane().pane();
        const auto* described = pane.classTable()->outlet(name);
        return described ? std::dynamic_pointer_cast<T>(described->object(pane)) : nullptr;
    }
    template <class T = QWidget>
    T* child(const char* name) {
        return window->findChild<T*>(QString::fromLatin1(name));
    }
    void perform(std::u16string_view action, const std::shared_ptr<platform::NSObject>& sender = nullptr);
    void showEditor(const char16_t* page);
    /// Does `open`, which opens something modal, and looks at that.
    void lookAtModal(const std::string& name, const Look& look, const std::function<void()>& open);
    static void settle();

    std::shared_ptr<MemoryDefaults> defaults = std::make_shared<MemoryDefaults>();
    std::filesystem::path folder;
    std::unique_ptr<app::Session> session;
    std::unique_ptr<app::MainWindow> window;
};

/// The language of the environment as a table has it, such as "de" or "zh-Hans".
std::string language();

} // namespace testing_support
