// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace files {

/// The folder with the program's bundles: beside the program as it is built, or where it is installed.
std::filesystem::path bundleFolder();

/// The sample page that ships with the pane.
std::filesystem::path samplePage();

} // namespace files
