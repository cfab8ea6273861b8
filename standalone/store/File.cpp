// SPDX-License-Identifier: MIT
#include "File.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace store {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

int checked(int result) {
    if (result < 0)
        fail(errno);
    return result;
}

class Descriptor {
public:
    explicit Descriptor(int number) : m_number(checked(number)) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return m_number; }
    void close() { checked(::close(std::exchange(m_number, -1))); }

private:
    int m_number;
};

Fingerprint fingerprintOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size,
            std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

const auto programStart = fs::file_time_type::clock::now();

/// A folder that the programs of this kind lock as long as they have a temporary file in it.
class LockedFolder {
public:
    /// Waits for the other programs, unless `how` is LOCK_EX | LOCK_NB.
    LockedFolder(const fs::path& folder, int how)
        : m_descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        int result;
        while ((result = ::flock(m_descriptor.number(), how)) != 0 && errno == EINTR)
            continue;
        m_locked = result == 0;
    }
    int number() const { return m_descriptor.number(); }
    /// False where another program has the lock, and on network file systems, which do not lock folders.
    bool isLocked() const { return m_locked; }

private:
    Descriptor m_descriptor;
    bool m_locked;
};

/// The beginning of the names of temporary files for `file`; six letters and digits follow.
std::string temporaryPrefix(const fs::path& file) {
    return "." + file.filename().string() + ".saving-";
}

/// To be called with the folder locked.
void removeLeftoversOf(const fs::path& target) {
    const auto prefix = temporaryPrefix(target);
    const auto isLeftover = [&](const fs::directory_entry& entry) {
        const auto name = entry.path().filename().string();
        const auto isLetterOrDigit = [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; };
        std::error_code error;
        return name.size() == prefix.size() + 6 && name.starts_with(prefix) &&
               std::all_of(name.end() - 6, name.end(), isLetterOrDigit) &&
               entry.symlink_status(error).type() == fs::file_type::regular &&
               entry.last_write_time(error) < programStart && !error;
    };
    std::error_code error;
    for (fs::directory_iterator entry(target.parent_path(), error), end; !error && entry != end; entry.increment(error))
        if (isLeftover(*entry))
            ::unlink(entry->path().c_str());
}

/// What is replaced where `file` is to be replaced.
fs::path targetOf(const fs::path& file) {
    return fs::absolute(fs::is_symlink(file) ? fs::weakly_canonical(file) : file);
}

/// A file that goes again unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& beside)
        : m_path((beside.parent_path() / (temporaryPrefix(beside) + "XXXXXX")).string()),
          m_descriptor(::mkostemp(m_path.data(), O_CLOEXEC)) {}
    ~TemporaryFile() {
        if (!m_path.empty())
            ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Answers the state the file will have under its new name too.
    Fingerprint write(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto written = ::write(m_descriptor.number(), bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                fail(errno);
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        checked(::fsync(m_descriptor.number()));
        struct stat status {};
        checked(::fstat(m_descriptor.number(), &status));
        m_descriptor.close();
        return fingerprintOf(status);
    }
    void renameTo(const fs::path& file) {
        checked(::rename(m_path.c_str(), file.c_str()));
        m_path.clear();
    }

private:
    std::string m_path;
    Descriptor m_descriptor;
};

void makeFolders(const fs::path& folder) {
    if (folder.empty() || fs::is_directory(folder))
        return;
    makeFolders(folder.parent_path());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        fail(errno);
}

std::string dateAndTime() {
    const auto now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
    return text.data();
}

} // namespace

std::optional<Fingerprint> fingerprintOf(const fs::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return fingerprintOf(status);
}

FileContent readFile(const fs::path& file, std::uintmax_t limit) {
    // Non-blocking, because opening a pipe would wait for a writer.
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    checked(::fstat(descriptor.number(), &status));
    if (S_ISDIR(status.st_mode))
        fail(EISDIR);
    if (!S_ISREG(status.st_mode))
        fail(EINVAL);
    FileContent content{{}, fingerprintOf(status)};
    if (static_cast<std::uintmax_t>(status.st_size) > limit)
        fail(EFBIG);
    content.bytes.resize(static_cast<std::size_t>(status.st_size));
    std::size_t at = 0;
    while (at < content.bytes.size()) {
        const auto count = ::read(descriptor.number(), content.bytes.data() + at, content.bytes.size() - at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(errno);
        if (count == 0)
            break;
        at += static_cast<std::size_t>(count);
    }
    content.bytes.resize(at);
    return content;
}

bool replaceFile(const fs::path& file, std::string_view bytes, std::optional<Fingerprint>& seen) {
    const auto target = targetOf(file);
    makeFolders(target.parent_path());
    // Two of our own programs take turns here, so that neither replaces what it has not seen. Where there is no lock a
    // small gap remains.
    const LockedFolder folder(target.parent_path(), LOCK_EX);
    if (folder.isLocked())
        removeLeftoversOf(target);
    TemporaryFile temporary(target);
    const auto written = temporary.write(bytes);
    if (const auto found = fingerprintOf(target); found && found != seen)
        return false;
    temporary.renameTo(target);
    seen = written;
    // Not every file system can do that with a folder.
    if (::fsync(folder.number()) != 0 && errno != EINVAL)
        fail(errno);
    return true;
}

void removeLeftovers(const fs::path& file) {
    try {
        const auto target = targetOf(file);
        const LockedFolder folder(target.parent_path(), LOCK_EX | LOCK_NB);
        if (folder.isLocked())
            removeLeftoversOf(target);
    } catch (const std::system_error&) {
        // Without the folder there is nothing to remove.
    }
}

fs::path renameAside(const fs::path& file, const std::string& word) {
    const auto base = file.stem().string() + "." + word + "-" + dateAndTime();
    for (int number = 1;; ++number) {
        const auto suffix = number == 1 ? std::string() : "-" + std::to_string(number);
        auto aside = file.parent_path() / (base + suffix + file.extension().string());
        if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0)
            return aside;
        if (errno == EEXIST)
            continue;
        // Some file systems cannot rename without replacing.
        if (errno != EINVAL && errno != ENOSYS)
            fail(errno);
        if (fs::exists(fs::symlink_status(aside)))
            continue;
        checked(::rename(file.c_str(), aside.c_str()));
        return aside;
    }
}

} // namespace store
