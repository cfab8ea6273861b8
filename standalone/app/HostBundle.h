// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <filesystem>
#include <string>

namespace app {

/// The folder with the program's bundles: beside the program as it is built, or where it is installed.
std::filesystem::path bundleFolder();

/// The program's own text in the user's language; the English one where there is no other.
QString text(const char16_t* english);

QString toQt(const std::u16string& text);

} // namespace app
