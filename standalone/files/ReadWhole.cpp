// SPDX-License-Identifier: MIT
#include <files/ReadWhole.h>

#include <files/Calls.h>

#include <cerrno>
#include <system_error>

namespace files {

std::string readWhole(int file, std::size_t most) {
    std::string bytes(most, '\0');
    std::size_t at = 0;
    while (at < most) {
        const auto got = calls().pread(file, bytes.data() + at, most - at, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw std::system_error(errno, std::generic_category());
        if (got == 0)
            break;
        at += static_cast<std::size_t>(got);
    }
    bytes.resize(at);
    return bytes;
}

} // namespace files
