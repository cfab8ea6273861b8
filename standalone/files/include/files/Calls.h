// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>

#include <sys/types.h>

namespace files {

/// What store and engine ask of the file system, call by call, so that a test can have any of them fail. Each does what
/// the system's own of that name does, and answers as it does: a negative number, with the reason in `errno`.
///
/// What only looks (`stat`) or takes away (`unlink`) is asked of the system directly. For several threads at once.
class Calls {
public:
    virtual ~Calls() = default;

    virtual int open(const char* path, int flags, mode_t mode = 0);
    /// `mkostemp`, closed in programs that are started: fills in the last six letters of `pattern`.
    virtual int openTemporary(char* pattern);
    virtual ssize_t pread(int file, void* bytes, std::size_t size, off_t at);
    virtual ssize_t write(int file, const void* bytes, std::size_t size);
    /// `copy_file_range` to where `to` stands.
    virtual ssize_t copyRange(int from, off_t* at, int to, std::size_t size);
    virtual int sync(int file);
    /// `flock`.
    virtual int lock(int file, int operation);
    /// Nothing happens for so long.
    virtual void pause(std::chrono::milliseconds time);
    /// The file is closed whatever is answered.
    virtual int close(int file);
    /// `renameat2`; `rename` where there are no flags.
    virtual int rename(const char* from, const char* to, unsigned flags = 0);
    /// `linkat`; a symbolic link at `from` is followed.
    virtual int link(const char* from, const char* to);
    virtual int makeFolder(const char* path, mode_t mode);
};

/// The calls in force: the system's, or those that a test put in their place.
Calls& calls();
/// Null gives the system's back. Not while another thread uses them.
void setCalls(Calls* calls);

} // namespace files
