// SPDX-License-Identifier: MIT
#include "MappedFile.h"

#include "PictureFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <mutex>

#include <sys/mman.h>
#include <unistd.h>

namespace engine {

namespace {

/// Where mapped files lie. Reading behind the end of one that was cut off meanwhile is a signal, which ends the program
/// unless somebody puts memory there.
struct Range {
    std::atomic<char*> start = nullptr;
    std::atomic<std::size_t> size = 0;
};
std::array<Range, 256> ranges;
struct sigaction formerAction;

void putMemoryBehindTheEnd(int, siginfo_t* info, void*) {
    auto* const address = static_cast<char*>(info->si_addr);
    for (const auto& range : ranges) {
        auto* const start = range.start.load();
        if (!start || address < start || address >= start + range.size)
            continue;
        // The rest of the file is zeros from now on; that it was changed is found out before anything is written.
        const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        const auto offset = static_cast<std::size_t>(address - start) / page * page;
        if (::mmap(start + offset, range.size - offset, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
            start + offset)
            return;
    }
    ::sigaction(SIGBUS, &formerAction, nullptr); // not ours: the same happens again, as if we were not there
}

void watchForTheEnd() {
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction action {};
        action.sa_sigaction = putMemoryBehindTheEnd;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        ::sigaction(SIGBUS, &action, &formerAction);
    });
}

} // namespace

MappedFile::MappedFile(const std::filesystem::path& path) : m_descriptor(path), m_state(m_descriptor) {
    const auto size = m_state.size();
    if (size == 0)
        return;
    void* const start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, m_descriptor, 0);
    if (start == MAP_FAILED) // NOLINT(performance-no-int-to-ptr): the system's own constant
        throw errno == ENOMEM ? Failure(Code::noMemory, "There is not enough memory for this file.")
                              : Failure(Code::unreadable, "The file cannot be read.");
    m_bytes = {static_cast<const char*>(start), size};
    watchForTheEnd();
    for (auto& range : ranges) {
        char* none = nullptr;
        if (range.start.compare_exchange_strong(none, static_cast<char*>(start))) {
            range.size = size;
            break;
        }
    }
}

void MappedFile::release() const {
    if (!m_bytes.empty())
        ::madvise(const_cast<char*>(m_bytes.data()), m_bytes.size(), MADV_DONTNEED);
}

MappedFile::~MappedFile() {
    if (m_bytes.empty())
        return;
    for (auto& range : ranges)
        if (range.start == m_bytes.data()) {
            range.size = 0;
            range.start = nullptr;
        }
    ::munmap(const_cast<char*>(m_bytes.data()), m_bytes.size());
}

} // namespace engine
