// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace app {

/// A folder for files of this run alone: readable by nobody else, with a name that cannot be guessed, removed with the
/// object. In the user's runtime folder, else in the system's folder for temporary files.
class PrivateFolder {
public:
    /// Throws std::system_error where none can be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace app
