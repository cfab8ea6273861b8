// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace files {

/// A folder for files of this run alone: readable by nobody else, with a name that cannot be guessed, removed with the
/// object. In the user's runtime folder, else in the system's folder for temporary files.
///
/// The owner holds a lock (`flock`) on a file ".owner" in it, which the system releases when the program ends in
/// whatever way: so a folder that nobody has locked was left by a program that was killed. On file systems without
/// locks the file says which process it is.
class PrivateFolder {
public:
    /// Throws std::system_error where none can be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    static constexpr int mostRemoved = 100;

    /// Removes the folders that killed programs of this user left, `mostRemoved` at a time; never one whose owner is
    /// alive, nor what a symbolic link points at. Where there are no locks, those of other machines have to be a month
    /// old; one that its maker was killed before owning, an hour. Answers how many were removed.
    static int removeLeftovers();

private:
    std::filesystem::path m_path;
    int m_lock = -1;
};

} // namespace files
