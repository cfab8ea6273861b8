// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <vector>

namespace app {

/// The exit status of `runWindow` where there is no display to open a window on.
inline constexpr int noDisplay = 5;

/// Opens the window on the configurations in `store` and runs until it is closed. `documents` wait in it to be stamped.
/// Answers the program's exit status.
int runWindow(int& argc, char** argv, const std::filesystem::path& store,
              const std::vector<std::filesystem::path>& documents = {});

/// Draws the window without showing it: one picture for every page of the pane, and what stamping makes of the sample
/// as a picture and as a PDF, all in `folder`, which is made where it is missing. Prints the paths of the files.
/// Answers the program's exit status.
int drawPictures(int& argc, char** argv, const std::filesystem::path& store, const std::filesystem::path& folder);

/// What the window's library offers, by a function of the name `windowEntry` that answers a pointer to it.
struct WindowLibrary {
    decltype(&app::runWindow) runWindow;
    decltype(&app::drawPictures) drawPictures;
};
inline constexpr const char* windowEntry = "imprinterWindow";

} // namespace app
