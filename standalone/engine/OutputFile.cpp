// SPDX-License-Identifier: MIT
#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

namespace engine {

namespace {

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
    if (std::filesystem::is_directory(m_target, none))
        throw std::system_error(EISDIR, std::generic_category());
    const auto folder = m_target.has_parent_path() ? m_target.parent_path() : std::filesystem::path(".");
    std::string name = (folder / ("." + m_target.filename().string().substr(0, 200) + ".XXXXXX")).string();
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        fail();
    m_aside = name;
    // A file system without permissions is no reason to fail.
    (void)!::fchmod(descriptor, modeFor(m_target));
    m_stream = ::fdopen(descriptor, "wb");
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

void OutputFile::commit(bool durable) {
    if (std::fflush(m_stream) != 0 || std::ferror(m_stream) || (durable && ::fsync(::fileno(m_stream)) != 0))
        fail();
    std::FILE* const stream = m_stream;
    m_stream = nullptr;
    if (std::fclose(stream) != 0)
        fail();
    if (::rename(m_aside.c_str(), m_target.c_str()) != 0)
        fail();
    m_aside.clear();
    if (!durable)
        return;
    // The new name is durable once its folder is; the file is in place whether or not that can be asked for.
    const auto folder = m_target.has_parent_path() ? m_target.parent_path() : std::filesystem::path(".");
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
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
