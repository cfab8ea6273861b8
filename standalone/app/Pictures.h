// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace app {

class MainWindow;
class Session;

/// Draws everything as on a desktop with dark windows ("dark"), or one of high contrast ("contrast"); another name is
/// as the toolkit has it.
void chooseLook(const std::string& look);

/// Shows the window and writes a picture of each page of the pane, of the preview over it and of the windows beside it,
/// of the stamped sample page, and a stamped PDF into `folder`; prints their paths. NO, with a line on standard error,
/// where one could not be written.
bool leavePictures(MainWindow& window, Session& session, const std::filesystem::path& folder);

} // namespace app
