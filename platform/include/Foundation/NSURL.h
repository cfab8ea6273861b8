// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace platform {

/// The place of a file. A missing one is an empty std::optional.
class NSURL {
public:
    static NSURL fileURLWithPath(std::filesystem::path path) { return NSURL(std::move(path)); }
    const std::filesystem::path& path() const { return m_path; }
    bool operator==(const NSURL&) const = default;

private:
    explicit NSURL(std::filesystem::path path) : m_path(std::move(path)) {}
    std::filesystem::path m_path;
};

} // namespace platform
