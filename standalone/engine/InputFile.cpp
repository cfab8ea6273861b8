// SPDX-License-Identifier: MIT
#include "InputFile.h"

#include "PictureFile.h"

#include <files/Calls.h>
#include <files/ReadWhole.h>

#include <cerrno>
#include <system_error>
#include <tuple>

#include <fcntl.h>

namespace engine {

namespace {

/// The reason goes without saying where there is no such file.
[[noreturn]] void fail(int reason) {
    throw Failure(Code::unreadable, reason == ENOENT
                                        ? "The file cannot be read."
                                        : "The file cannot be read: " + std::generic_category().message(reason) + ".");
}

} // namespace

// A pipe would keep the program waiting for somebody at its other end.
InputFile::InputFile(const std::filesystem::path& path)
    : m_descriptor(files::calls().open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (m_descriptor < 0)
        fail(errno);
}

InputFile::~InputFile() {
    files::calls().close(m_descriptor);
}

std::string InputFile::read(std::size_t most) const {
    try {
        return files::readWhole(m_descriptor, most);
    } catch (const std::system_error& error) {
        fail(error.code().value());
    }
}

InputState::InputState(int file) {
    if (::fstat(file, &m_status) != 0)
        fail(errno);
    if (!S_ISREG(m_status.st_mode))
        fail(ENOENT);
}

InputState::InputState(const std::filesystem::path& path) {
    if (::stat(path.c_str(), &m_status) != 0)
        m_status = {};
}

bool InputState::operator==(const InputState& other) const {
    const auto key = [](const struct stat& s) {
        return std::tuple(s.st_dev, s.st_ino, s.st_size, s.st_mtim.tv_sec, s.st_mtim.tv_nsec);
    };
    return key(m_status) == key(other.m_status);
}

void InputState::expectAt(const std::filesystem::path& path) const {
    if (!(InputState(path) == *this))
        throw Failure(Code::changed, "The file was changed while it was being worked on, and is left as it is.");
}

} // namespace engine
