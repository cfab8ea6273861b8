// SPDX-License-Identifier: MIT
#include <files/PrivateFolder.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace files {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view prefix = "imprinter-";
constexpr std::string_view pattern = "XXXXXX"; // as mkdtemp fills it

fs::path parentFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    return runtime && fs::is_directory(runtime, error) ? fs::path(runtime) : fs::temp_directory_path();
}

bool isNameOfOurs(const std::string& name) {
    return name.size() == prefix.size() + pattern.size() && name.starts_with(prefix) &&
           std::all_of(name.begin() + prefix.size(), name.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
           });
}

/// Opens a folder and locks it. -1 where it is none, a link to one, or locked by somebody.
int lock(const fs::path& folder) {
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (file >= 0 && flock(file, LOCK_EX | LOCK_NB) == 0)
        return file;
    if (file >= 0)
        close(file);
    return -1;
}

/// Whether `folder` is still the one that was opened as `file`, and the user's own.
bool isOurs(const fs::path& folder, int file) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && lstat(folder.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino && opened.st_uid == geteuid() && (opened.st_mode & 07777) == 0700;
}

} // namespace

PrivateFolder::PrivateFolder() {
    const auto wanted = (parentFolder() / prefix).string() + std::string(pattern);
    // Between its making and its locking another program may take a folder for a leftover: then a new one is made.
    for (int attempts = 0; attempts < 100; ++attempts) {
        std::string name = wanted;
        if (!mkdtemp(name.data()))
            throw std::system_error(errno, std::generic_category(), name);
        m_lock = lock(name);
        if (m_lock >= 0 && isOurs(name, m_lock)) {
            m_path = name;
            return;
        }
        if (m_lock >= 0)
            close(m_lock);
    }
    throw std::system_error(EAGAIN, std::generic_category(), wanted);
}

PrivateFolder::~PrivateFolder() {
    std::error_code error;
    fs::remove_all(m_path, error);
    close(m_lock);
}

int PrivateFolder::removeLeftovers() {
    std::error_code error;
    std::vector<fs::path> candidates;
    fs::path parent;
    try {
        parent = parentFolder();
    } catch (const fs::filesystem_error&) {
        return 0; // where there is no folder for temporary files there are no leftovers
    }
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error))
        if (isNameOfOurs(entry->path().filename().string()))
            candidates.push_back(entry->path());
    int removed = 0;
    for (const auto& folder : candidates) {
        const int file = lock(folder);
        if (file < 0)
            continue;
        if (isOurs(folder, file) && fs::remove_all(folder, error) != static_cast<std::uintmax_t>(-1))
            ++removed;
        close(file);
    }
    return removed;
}

} // namespace files
