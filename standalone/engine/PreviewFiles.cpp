// SPDX-License-Identifier: MIT
#include "PreviewFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <system_error>

namespace engine {

namespace {

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

/// A file that is closed whatever happens.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return m_number; }

private:
    int m_number;
};

void writeAt(int descriptor, const char* bytes, std::size_t size, std::size_t offset) {
    while (size > 0) {
        const auto written = ::pwrite(descriptor, bytes, size, static_cast<off_t>(offset));
        if (written < 0)
            fail();
        bytes += written;
        size -= static_cast<std::size_t>(written);
        offset += static_cast<std::size_t>(written);
    }
}

/// Whether nobody else has the file open. Where the system cannot tell, somebody has.
bool isOurs(int descriptor) {
    // Should somebody open it in this moment, the signal says so; the usual one would end the program.
    if (::fcntl(descriptor, F_SETSIG, SIGURG) != 0 || ::fcntl(descriptor, F_SETLEASE, F_WRLCK) != 0)
        return false;
    ::fcntl(descriptor, F_SETLEASE, F_UNLCK);
    return true;
}

} // namespace

PreviewFiles::PreviewFiles(std::filesystem::path folder)
    : m_folder(std::move(folder)), m_sparePath(m_folder / ".spare") {}

PreviewFiles::~PreviewFiles() {
    dropSpare();
}

void PreviewFiles::setBase(std::string header, const char* pixels, int rowCount, std::size_t rowSize) {
    dropSpare();
    m_results.clear();
    m_header = std::move(header);
    m_pixels = pixels;
    m_rowCount = rowCount;
    m_rowSize = rowSize;
}

void PreviewFiles::dropSpare() {
    if (m_spare)
        ::unlink(m_sparePath.c_str());
    m_spare.reset();
}

int PreviewFiles::openSpare(Known& spare) {
    if (m_spare) {
        struct stat status {};
        const int descriptor = ::open(m_sparePath.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
        const auto size = m_header.size() + m_rowSize * static_cast<std::size_t>(m_rowCount);
        if (descriptor >= 0 && ::fstat(descriptor, &status) == 0 && status.st_ino == m_spare->inode &&
            static_cast<std::size_t>(status.st_size) == size && isOurs(descriptor)) {
            spare = *m_spare;
            return descriptor;
        }
        if (descriptor >= 0)
            ::close(descriptor);
        dropSpare();
    }
    ::unlink(m_sparePath.c_str());
    const int descriptor = ::open(m_sparePath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0)
        fail();
    struct stat status {};
    ::fstat(descriptor, &status);
    m_spare = spare = {status.st_ino, {0, m_rowCount}};
    return descriptor;
}

void PreviewFiles::writeRows(int descriptor, const char* from, Rows rows) const {
    if (rows.count > 0)
        writeAt(descriptor, from, m_rowSize * static_cast<std::size_t>(rows.count),
                m_header.size() + m_rowSize * static_cast<std::size_t>(rows.first));
}

std::filesystem::path PreviewFiles::put(const std::string& name, const char* band, Rows rows) {
    auto target = m_folder / name;
    Known made;
    try {
        const Descriptor spare(openSpare(made));
        // Rows that differed and are not replaced now are the base's again.
        const int end = rows.first + rows.count;
        const int formerEnd = made.rows.first + made.rows.count;
        const auto restore = [&](int first, int last) {
            if (first < last)
                writeRows(spare, m_pixels + m_rowSize * static_cast<std::size_t>(first), {first, last - first});
        };
        if (made.rows.count == m_rowCount)
            writeAt(spare, m_header.data(), m_header.size(), 0);
        if (rows.count == 0) {
            restore(made.rows.first, formerEnd);
        } else {
            restore(made.rows.first, std::min(formerEnd, rows.first));
            writeRows(spare, band, rows);
            restore(std::max(made.rows.first, end), formerEnd);
        }
        made.rows = rows;
    } catch (const std::system_error&) {
        dropSpare();
        throw;
    }
    m_spare.reset();
    const auto former = m_results.find(name);
    if (former != m_results.end() &&
        ::renameat2(AT_FDCWD, m_sparePath.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) {
        m_spare = former->second;
    } else if (::rename(m_sparePath.c_str(), target.c_str()) != 0) {
        const int reason = errno;
        ::unlink(m_sparePath.c_str());
        errno = reason;
        fail();
    }
    m_results[name] = made;
    return target;
}

void PreviewFiles::remove(const std::string& name) {
    if (m_results.erase(name) != 0)
        ::unlink((m_folder / name).c_str());
}

} // namespace engine
