// SPDX-License-Identifier: MIT
#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <system_error>
#include <vector>

namespace engine {

namespace {

constexpr std::size_t kBuffer = 256 * 1024;

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

mode_t modeFor(const std::filesystem::path& target) {
    struct stat status {};
    if (::stat(target.c_str(), &status) == 0)
        return status.st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& target) {
    std::error_code none;
    m_target = std::filesystem::canonical(target, none);
    if (none)
        m_target = target;
    // A device, a pipe or a socket would give way to a file.
    if (std::filesystem::exists(m_target, none) && !std::filesystem::is_regular_file(m_target, none))
        throw std::system_error(std::filesystem::is_directory(m_target, none) ? EISDIR : ENOTSUP,
                                std::generic_category());
    int descriptor = ::open(folder().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        auto name = pattern();
        descriptor = ::mkostemp(name.data(), O_CLOEXEC);
        m_aside = name;
    }
    if (descriptor < 0) {
        m_aside.clear();
        fail();
    }
    // A file system without permissions is no reason to fail.
    (void)!::fchmod(descriptor, modeFor(m_target));
    m_stream = ::fdopen(descriptor, "wb");
    m_buffer.resize(kBuffer);
    std::setvbuf(m_stream, m_buffer.data(), _IOFBF, m_buffer.size());
}

std::filesystem::path OutputFile::folder() const {
    return m_target.has_parent_path() ? m_target.parent_path() : std::filesystem::path(".");
}

std::string OutputFile::pattern() const {
    return (folder() / ("." + m_target.filename().string().substr(0, 200) + ".XXXXXX")).string();
}

void OutputFile::giveName() {
    const auto self = "/proc/self/fd/" + std::to_string(::fileno(m_stream));
    const auto link = [&](const std::filesystem::path& name) {
        const bool linked = ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
        if (!linked && errno != EEXIST)
            fail();
        return linked;
    };
    // A name that is free is taken at once; what has it is replaced by way of another.
    if (link(m_target))
        return;
    std::random_device random;
    for (;;) {
        auto name = pattern();
        for (auto letter = name.end() - 6; letter != name.end(); ++letter)
            *letter = "abcdefghijklmnopqrstuvwxyz0123456789"[random() % 36];
        if (link(name)) {
            m_aside = name;
            return;
        }
    }
}

OutputFile::~OutputFile() {
    if (m_stream)
        std::fclose(m_stream);
    if (!m_aside.empty())
        ::unlink(m_aside.c_str());
}

void OutputFile::write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_stream) != bytes.size())
        fail();
}

void OutputFile::copy(int descriptor, std::uint64_t size) {
    if (std::fflush(m_stream) != 0)
        fail();
    const int to = ::fileno(m_stream);
    loff_t at = 0;
    while (static_cast<std::uint64_t>(at) < size) {
        const auto copied = ::copy_file_range(descriptor, &at, to, nullptr, size - static_cast<std::uint64_t>(at), 0);
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
        const auto got = ::pread(descriptor, buffer.data(), part, at);
        if (got < 0)
            fail();
        if (got == 0)
            throw std::system_error(EIO, std::generic_category());
        write({buffer.data(), static_cast<std::size_t>(got)});
        at += got;
    }
}

void OutputFile::commit(bool durable) {
    if (std::fflush(m_stream) != 0 || std::ferror(m_stream) || (durable && ::fsync(::fileno(m_stream)) != 0))
        fail();
    if (m_aside.empty())
        giveName();
    std::FILE* const stream = m_stream;
    m_stream = nullptr;
    if (std::fclose(stream) != 0)
        fail();
    if (!m_aside.empty() && ::rename(m_aside.c_str(), m_target.c_str()) != 0)
        fail();
    m_aside.clear();
    if (!durable)
        return;
    // The new name is durable once its folder is; the file is in place whether or not that can be asked for.
    const int descriptor = ::open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code none;
    return std::filesystem::equivalent(a, b, none);
}

} // namespace engine
