// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSBundle.h>
#include <files/Installation.h>

#include <QString>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace app {

using files::bundleFolder;

/// The program's texts; null where they are missing.
std::shared_ptr<platform::NSBundle> hostBundle();

/// The program's own text in the user's language; the English one where there is no other.
QString text(const char16_t* english);

/// The same with `arguments` in the places of "%@", in their order, or of "%1$@", by their number.
QString text(const char16_t* english, const std::vector<QString>& arguments);

/// A number of things, as the user writes it.
QString written(std::size_t number);

QString toQt(const std::u16string& text);

/// A path as a user reads it.
QString shown(const std::filesystem::path& path);

} // namespace app
