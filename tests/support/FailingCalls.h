// SPDX-License-Identifier: MIT
#pragma once

#include <files/Calls.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace testing_support {

/// The file system of a bad day: one call fails, or all from one on. In force as long as it lives.
class FailingCalls final : public files::Calls {
public:
    /// With `forGood` a disk that is full stays full: calls that need none of it work again.
    FailingCalls(std::size_t number, int error, bool forGood = false)
        : m_number(number), m_error(error), m_forGood(forGood) {
        files::setCalls(this);
    }
    ~FailingCalls() override { files::setCalls(nullptr); }
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    /// The call that failed first; empty where it was not reached.
    std::string failed() const { return m_failed; }
    /// A call that failed or may have failed nothing but what is made up for.
    bool wasReached() const { return !m_failed.empty(); }

    int open(const char* path, int flags, mode_t mode) override {
        return fails("open", (flags & (O_CREAT | O_TMPFILE)) != 0) ? -1 : Calls::open(path, flags, mode);
    }
    int openTemporary(char* pattern) override {
        return fails("openTemporary", true) ? -1 : Calls::openTemporary(pattern);
    }
    ssize_t pread(int file, void* bytes, std::size_t size, off_t at) override {
        return fails("pread", false) ? -1 : Calls::pread(file, bytes, size, at);
    }
    /// One that fails has written half; as a full disk does, which says so only when asked for more.
    ssize_t write(int file, const void* bytes, std::size_t size) override {
        if (!fails("write", true))
            return Calls::write(file, bytes, size);
        if (size > 1)
            (void)!Calls::write(file, bytes, size / 2);
        errno = m_error;
        return -1;
    }
    ssize_t copyRange(int from, off_t* at, int to, std::size_t size) override {
        return fails("copyRange", true) ? -1 : Calls::copyRange(from, at, to, size);
    }
    int sync(int file) override { return fails("sync", true) ? -1 : Calls::sync(file); }
    int close(int file) override {
        const int result = Calls::close(file);
        return fails("close", false) ? -1 : result;
    }
    int rename(const char* from, const char* to, unsigned flags) override {
        return fails("rename", true) ? -1 : Calls::rename(from, to, flags);
    }
    int link(const char* from, const char* to) override { return fails("link", true) ? -1 : Calls::link(from, to); }
    int makeFolder(const char* path, mode_t mode) override {
        return fails("makeFolder", true) ? -1 : Calls::makeFolder(path, mode);
    }

private:
    bool fails(const char* call, bool needsRoom) {
        const auto number = ++m_count;
        if (number != m_number && !(m_forGood && number > m_number && needsRoom))
            return false;
        if (m_failed.empty())
            m_failed = call;
        errno = m_error;
        return true;
    }

    std::size_t m_number;
    int m_error;
    bool m_forGood;
    std::atomic<std::size_t> m_count = 0;
    std::string m_failed;
};

/// A network file system, which locks only files, and for one program alone only those that are open for writing; or
/// one without any locks.
class NetworkLocks : public files::Calls {
public:
    NetworkLocks() { files::setCalls(this); }
    ~NetworkLocks() override { files::setCalls(nullptr); }
    NetworkLocks(const NetworkLocks&) = delete;
    NetworkLocks& operator=(const NetworkLocks&) = delete;

    int lock(int file, int operation) override {
        struct stat status {};
        ::fstat(file, &status);
        const int access = ::fcntl(file, F_GETFL) & O_ACCMODE;
        if (areThere && S_ISREG(status.st_mode) && (access != O_RDONLY || !(operation & LOCK_EX)))
            return Calls::lock(file, operation);
        ++refused;
        errno = areThere ? EBADF : ENOLCK;
        return -1;
    }

    bool areThere = true;
    int refused = 0;
};

/// Writes and copies a few bytes at a time, whatever it is asked for, and is interrupted in between.
class SmallSteps final : public files::Calls {
public:
    SmallSteps() { files::setCalls(this); }
    ~SmallSteps() override { files::setCalls(nullptr); }
    SmallSteps(const SmallSteps&) = delete;
    SmallSteps& operator=(const SmallSteps&) = delete;

    ssize_t pread(int file, void* bytes, std::size_t size, off_t at) override {
        return isInterrupted() ? -1 : Calls::pread(file, bytes, std::min<std::size_t>(size, 7), at);
    }
    ssize_t write(int file, const void* bytes, std::size_t size) override {
        return isInterrupted() ? -1 : Calls::write(file, bytes, std::min<std::size_t>(size, 7));
    }
    ssize_t copyRange(int from, off_t* at, int to, std::size_t size) override {
        return isInterrupted() ? -1 : Calls::copyRange(from, at, to, std::min<std::size_t>(size, 7));
    }
    int steps = 0;

private:
    bool isInterrupted() {
        errno = EINTR;
        return ++steps % 5 == 0;
    }
};

} // namespace testing_support
