// SPDX-License-Identifier: MIT
#include "MappedFile.h"

#include "PictureFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {

MappedFile::MappedFile(const std::filesystem::path& path) : m_descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (m_descriptor < 0)
        throw Failure(Code::unreadable, "The file cannot be read.");
    struct stat status {};
    bool readable = ::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const auto size = static_cast<std::size_t>(status.st_size);
    if (readable && size > 0) {
        void* const start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, m_descriptor, 0);
        if (start == MAP_FAILED) // NOLINT(performance-no-int-to-ptr): the system's own constant
            readable = false;
        else
            m_bytes = {static_cast<const char*>(start), size};
    }
    if (!readable) {
        ::close(m_descriptor);
        throw Failure(Code::unreadable, "The file cannot be read.");
    }
}

void MappedFile::release() const {
    if (!m_bytes.empty())
        ::madvise(const_cast<char*>(m_bytes.data()), m_bytes.size(), MADV_DONTNEED);
}

MappedFile::~MappedFile() {
    if (!m_bytes.empty())
        ::munmap(const_cast<char*>(m_bytes.data()), m_bytes.size());
    ::close(m_descriptor);
}

} // namespace engine
