// SPDX-License-Identifier: MIT
#pragma once

#include <HostBundle.h>
#include <MainWindow.h>

#include <gtest/gtest.h>

namespace testing_support {

/// The program's window with the real pane, not shown yet; null, and a failure, where the pane cannot be loaded.
inline std::unique_ptr<app::MainWindow> makeWindow(app::Session& session) {
    std::string error;
    auto pane = app::PaneHost::load(app::bundleFolder() / "ImprinterPrefPane.prefPane", error);
    EXPECT_TRUE(pane) << error;
    return pane ? std::make_unique<app::MainWindow>(session, std::move(pane)) : nullptr;
}

} // namespace testing_support
