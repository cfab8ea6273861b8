// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <fstream>

namespace made_fonts {

inline std::filesystem::path file(const char* name) {
    return std::filesystem::path(MADE_FONTS) / "fonts" / name;
}

/// Runs `act` while that file is away.
template <class Act>
void withoutFile(const char* name, const Act& act) {
    const auto away = std::filesystem::path(MADE_FONTS) / name;
    std::filesystem::rename(file(name), away);
    act();
    std::filesystem::rename(away, file(name));
}

/// Runs `act` while that file ends after `size` bytes.
template <class Act>
void withFileCutOff(const char* name, std::uintmax_t size, const Act& act) {
    const auto whole = std::filesystem::path(MADE_FONTS) / name;
    std::filesystem::copy_file(file(name), whole, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(file(name), size);
    act();
    std::filesystem::rename(whole, file(name));
}

} // namespace made_fonts
