// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>

namespace store {

/// What tells one state of a file from another: device, inode, size, and time of change in nanoseconds.
using Fingerprint = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t>;

/// None where there is no such file.
std::optional<Fingerprint> fingerprintOf(const std::filesystem::path& file);

struct FileContent {
    std::string bytes;
    Fingerprint fingerprint;
};

/// Reads an ordinary file. Throws std::system_error: no_such_file_or_directory where there is none, file_too_large
/// above `limit` bytes.
FileContent readFile(const std::filesystem::path& file, std::uintmax_t limit);

/// Puts `bytes` in the place of `file`, at once or not at all, and waits until they are on the disk. Missing folders
/// are made for the user alone, and so is the file; where `file` is a symbolic link, what it points to is replaced.
/// Leftovers are removed, as `removeLeftovers` does.
///
/// Nothing is written and false is answered when there is a file and it is not in the state `seen`; else `seen` becomes
/// the state of the new file. Throws std::system_error; the old file is then untouched, unless only the last wait
/// failed.
bool replaceFile(const std::filesystem::path& file, std::string_view bytes, std::optional<Fingerprint>& seen);

/// Removes the temporary files of programs that were killed while they replaced `file`. Nothing is removed while
/// another program replaces a file of the folder, nor where the file system has no locks to tell; and no file that is
/// younger than this program. What cannot be removed stays.
void removeLeftovers(const std::filesystem::path& file);

/// Gives `file` the name "<stem>.<word>-<date>-<time><extension>", with a number behind the time where that name is
/// taken, and answers the new path. Throws std::system_error.
std::filesystem::path renameAside(const std::filesystem::path& file, const std::string& word);

} // namespace store
