// SPDX-License-Identifier: MIT
#include "OutputFile.h"

#include <files/Calls.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

namespace engine {

namespace {

constexpr std::size_t kBuffer = 256 * 1024;

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

mode_t modeOfNew(mode_t inputMode) {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask & (inputMode | 0600);
}

/// What only the system itself may set, or what describes the old content.
bool isKept(const char* attribute) {
    return std::strcmp(attribute, "security.ima") != 0 && std::strcmp(attribute, "security.evm") != 0;
}

void copyAttributes(const std::filesystem::path& from, int to) {
    std::string names(static_cast<std::size_t>(std::max<ssize_t>(0, ::listxattr(from.c_str(), nullptr, 0))), '\0');
    const auto size = ::listxattr(from.c_str(), names.data(), names.size());
    names.resize(static_cast<std::size_t>(std::max<ssize_t>(0, size)));
    for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
        const char* const name = &names[at];
        std::string value(static_cast<std::size_t>(std::max<ssize_t>(0, ::getxattr(from.c_str(), name, nullptr, 0))),
                          '\0');
        if (!isKept(name) || ::getxattr(from.c_str(), name, value.data(), value.size()) < 0)
            continue;
        // Those of the user's own have to be kept; others need rights that he may not have.
        if (::fsetxattr(to, name, value.data(), value.size(), 0) != 0 && std::strncmp(name, "user.", 5) == 0)
            fail();
    }
}

bool isSomething(const std::filesystem::path& path) {
    std::error_code none;
    return std::filesystem::exists(std::filesystem::symlink_status(path, none));
}

/// Removes the file that a killed program left under this name, and answers whether it did.
bool removeLeft(const std::string& name) {
    // For writing if it may be, without which network file systems lock nothing.
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int left = files::calls().open(name.c_str(), O_RDWR | flags);
    if (left < 0 && errno == EACCES)
        left = files::calls().open(name.c_str(), O_RDONLY | flags);
    if (left < 0)
        return false;
    struct stat status {};
    const bool removed = ::fstat(left, &status) == 0 && S_ISREG(status.st_mode) &&
                         files::calls().lock(left, LOCK_EX | LOCK_NB) == 0 && ::unlink(name.c_str()) == 0;
    files::calls().close(left);
    return removed;
}

/// Makes the new file like the one it will replace.
void takeOver(const std::filesystem::path& from, const struct stat& status, int to) {
    auto mode = status.st_mode & 07777;
    const bool group = ::fchown(to, static_cast<uid_t>(-1), status.st_gid) == 0;
    const bool owner = ::fchown(to, status.st_uid, static_cast<gid_t>(-1)) == 0;
    // Another group gets no more than everybody; and nobody becomes somebody else by running the file.
    if (!group)
        mode &= ~070 | (mode & 07) << 3;
    if (!group || !owner)
        mode &= 0777;
    copyAttributes(from, to);
    // Last, since an access list brings the rights of a group with it. A file system without permissions is no reason
    // to fail.
    (void)!::fchmod(to, mode);
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& target, mode_t inputMode, Existing existing)
    : m_existing(existing) {
    std::error_code none;
    m_target = std::filesystem::canonical(target, none);
    if (none)
        m_target = target;
    // A device, a pipe or a socket would give way to a file.
    if (std::filesystem::exists(m_target, none) && !std::filesystem::is_regular_file(m_target, none))
        throw std::system_error(std::filesystem::is_directory(m_target, none) ? EISDIR : ENOTSUP,
                                std::generic_category());
    m_descriptor = files::calls().open(folder().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (m_descriptor < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        auto name = hidden(".XXXXXX");
        m_descriptor = files::calls().openTemporary(name.data());
        if (m_descriptor >= 0)
            m_aside = name;
    }
    if (m_descriptor < 0)
        fail();
    try {
        struct stat status {};
        if (::stat(m_target.c_str(), &status) == 0)
            takeOver(m_target, status, m_descriptor);
        else
            (void)!::fchmod(m_descriptor, modeOfNew(inputMode));
    } catch (const std::system_error&) {
        close();
        throw;
    }
    m_buffer.reserve(kBuffer);
}

std::filesystem::path OutputFile::folder() const {
    return m_target.has_parent_path() ? m_target.parent_path() : std::filesystem::path(".");
}

std::string OutputFile::hidden(const char* ending) const {
    return (folder() / ("." + m_target.filename().string().substr(0, 200) + ending)).string();
}

void OutputFile::giveName() {
    const auto self = "/proc/self/fd/" + std::to_string(m_descriptor);
    const auto link = [&](const std::filesystem::path& name) {
        const bool linked = files::calls().link(self.c_str(), name.c_str()) == 0;
        if (!linked && errno != EEXIST)
            fail();
        return linked;
    };
    // A name that is free is taken at once; what has it is replaced by way of another.
    if (link(m_target))
        return;
    if (m_existing == Existing::kept)
        throw std::system_error(EEXIST, std::generic_category());
    // Always the same one, so that what a killed program left there is found again; its owner holds a lock on it.
    files::calls().lock(m_descriptor, LOCK_EX | LOCK_NB);
    const auto usual = hidden(".stamping");
    if (link(usual) || (removeLeft(usual) && link(usual))) {
        m_aside = usual;
        return;
    }
    std::random_device random;
    for (;;) {
        auto name = hidden(".XXXXXX");
        for (auto letter = name.end() - 6; letter != name.end(); ++letter)
            *letter = "abcdefghijklmnopqrstuvwxyz0123456789"[random() % 36];
        if (link(name)) {
            m_aside = name;
            return;
        }
    }
}

void OutputFile::close() {
    if (m_descriptor >= 0)
        files::calls().close(std::exchange(m_descriptor, -1));
    if (!m_aside.empty())
        ::unlink(m_aside.c_str());
    m_aside.clear();
}

OutputFile::~OutputFile() {
    close();
}

void OutputFile::writeNow(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = files::calls().write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void OutputFile::flush() {
    writeNow(m_buffer);
    m_buffer.clear();
}

void OutputFile::write(std::string_view bytes) {
    if (m_buffer.size() + bytes.size() > kBuffer)
        flush();
    if (bytes.size() > kBuffer)
        writeNow(bytes);
    else
        m_buffer += bytes;
}

void OutputFile::copy(int descriptor, std::uint64_t size) {
    flush();
    off_t at = 0;
    while (static_cast<std::uint64_t>(at) < size) {
        const auto copied =
            files::calls().copyRange(descriptor, &at, m_descriptor, size - static_cast<std::uint64_t>(at));
        if (copied > 0)
            continue;
        if (copied == 0)
            throw std::system_error(EIO, std::generic_category()); // the file became shorter
        if (errno == EINTR)
            continue;
        if (errno != EXDEV && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP && errno != EBADF)
            fail();
        break;
    }
    // Between some file systems it takes hands.
    std::vector<char> buffer(static_cast<std::uint64_t>(at) < size ? kBuffer : 0);
    while (static_cast<std::uint64_t>(at) < size) {
        const auto part = std::min<std::uint64_t>(buffer.size(), size - static_cast<std::uint64_t>(at));
        const auto got = files::calls().pread(descriptor, buffer.data(), part, at);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail();
        if (got == 0)
            throw std::system_error(EIO, std::generic_category());
        writeNow({buffer.data(), static_cast<std::size_t>(got)});
        at += got;
    }
}

void OutputFile::commit(bool durable) {
    flush();
    if (durable && files::calls().sync(m_descriptor) != 0)
        fail();
    if (m_aside.empty())
        giveName();
    if (!m_aside.empty()) {
        int renamed = -1;
        if (m_existing == Existing::kept) {
            renamed = files::calls().rename(m_aside.c_str(), m_target.c_str(), RENAME_NOREPLACE);
            // Some file systems cannot rename without replacing, and leave a small gap.
            if (renamed != 0 && errno != EINVAL && errno != ENOSYS)
                fail();
            if (renamed != 0 && isSomething(m_target))
                throw std::system_error(EEXIST, std::generic_category());
        }
        if (renamed != 0 && files::calls().rename(m_aside.c_str(), m_target.c_str()) != 0)
            fail();
    }
    m_aside.clear();
    // The file is whole and in its place, whatever closing it says.
    close();
    if (!durable)
        return;
    // The new name is durable once its folder is; the file is in place whether or not that can be asked for.
    const int descriptor = files::calls().open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        files::calls().sync(descriptor);
        files::calls().close(descriptor);
    }
}

bool isWriteProtected(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    // The administrator may do anything; what the mode says is meant for him too.
    return (status.st_mode & 0222) == 0 ||
           (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno == EACCES);
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code none;
    return std::filesystem::equivalent(a, b, none);
}

} // namespace engine
