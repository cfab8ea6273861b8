// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace engine {

/// A moment in the local time zone, as the locale in force for times writes it: that of LC_ALL, LC_TIME or LANG,
/// whichever is there first. Years have four digits, so that a stamp says what it means in a hundred years too. Without
/// a locale, or with "C" and "POSIX", as ISO 8601: 2024-02-29 and 18:05.
struct WrittenTime {
    explicit WrittenTime(std::chrono::system_clock::time_point moment);

    std::u16string day;
    std::u16string time; ///< Hours and minutes.
};

} // namespace engine
