// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/FontSource.h>

#include <filesystem>
#include <fstream>

namespace made_fonts {

inline std::filesystem::path file(const char* name) {
    return std::filesystem::path(MADE_FONTS) / "fonts" / name;
}

/// Puts a file back where it was, whatever happens meanwhile.
class PutBack {
public:
    PutBack(std::filesystem::path kept, std::filesystem::path place)
        : m_kept(std::move(kept)), m_place(std::move(place)) {}
    ~PutBack() {
        std::error_code none;
        std::filesystem::rename(m_kept, m_place, none);
    }
    PutBack(const PutBack&) = delete;
    PutBack& operator=(const PutBack&) = delete;

private:
    std::filesystem::path m_kept;
    std::filesystem::path m_place;
};

/// Runs `act` while that file is gone, though it was listed.
template <class Act>
void withoutFile(const char* name, const Act& act) {
    platform::FontSource::current()->namesOf(u"MakerSans"); // by now the fonts are listed
    const auto away = std::filesystem::path(MADE_FONTS) / name;
    std::filesystem::rename(file(name), away);
    const PutBack back(away, file(name));
    act();
}

/// Runs `act` while that file ends after `size` bytes, though it was listed whole.
template <class Act>
void withFileCutOff(const char* name, std::uintmax_t size, const Act& act) {
    platform::FontSource::current()->namesOf(u"MakerSans");
    const auto whole = std::filesystem::path(MADE_FONTS) / name;
    std::filesystem::copy_file(file(name), whole, std::filesystem::copy_options::overwrite_existing);
    const PutBack back(whole, file(name));
    std::filesystem::resize_file(file(name), size);
    act();
}

} // namespace made_fonts
