// SPDX-License-Identifier: MIT
#include <files/Calls.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace files {

int Calls::open(const char* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}

int Calls::openTemporary(char* pattern) {
    return ::mkostemp(pattern, O_CLOEXEC);
}

ssize_t Calls::pread(int file, void* bytes, std::size_t size, off_t at) {
    return ::pread(file, bytes, size, at);
}

ssize_t Calls::write(int file, const void* bytes, std::size_t size) {
    return ::write(file, bytes, size);
}

ssize_t Calls::copyRange(int from, off_t* at, int to, std::size_t size) {
    return ::copy_file_range(from, at, to, nullptr, size, 0);
}

int Calls::sync(int file) {
    return ::fsync(file);
}

int Calls::lock(int file, int operation) {
    return ::flock(file, operation);
}

void Calls::pause(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

int Calls::close(int file) {
    return ::close(file);
}

int Calls::rename(const char* from, const char* to, unsigned flags) {
    return flags == 0 ? ::rename(from, to) : ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags);
}

int Calls::link(const char* from, const char* to) {
    return ::linkat(AT_FDCWD, from, AT_FDCWD, to, AT_SYMLINK_FOLLOW);
}

int Calls::makeFolder(const char* path, mode_t mode) {
    return ::mkdir(path, mode);
}

namespace {

Calls systemCalls;
Calls* current = &systemCalls;

} // namespace

Calls& calls() {
    return *current;
}

void setCalls(Calls* calls) {
    current = calls ? calls : &systemCalls;
}

} // namespace files
