// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace app {

class MainWindow;
class Session;

/// Shows the window and writes a picture of each page of the pane, of the stamped sample page, and a stamped PDF into
/// `folder`; prints their paths. NO, with a line on standard error, where one could not be written.
bool leavePictures(MainWindow& window, Session& session, const std::filesystem::path& folder);

} // namespace app
