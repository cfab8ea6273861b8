// SPDX-License-Identifier: MIT
#include <Foundation/NSProcessInfo.h>

#include <Foundation/NSString.h>

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>

namespace platform {

std::u16string globallyUniqueString() {
    static std::random_device device;
    static std::uint32_t calls = 0;
    const auto now = static_cast<unsigned long long>(std::chrono::system_clock::now().time_since_epoch().count());
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%08X-%08X-%08X-%X-%016llX-%08X", device(), device(), device(),
                  static_cast<unsigned>(::getpid()), now, ++calls);
    return fromUtf8(text.data());
}

} // namespace platform
