// SPDX-License-Identifier: MIT
#pragma once

#include "Require.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

/// A folder in memory for what the code under test reads and writes by name.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& name) {
        const bool inMemory = access("/dev/shm", W_OK) == 0;
        auto pattern = ((inMemory ? "/dev/shm" : std::filesystem::temp_directory_path()) / (name + "-XXXXXX")).string();
        require(mkdtemp(pattern.data()) != nullptr, "a folder can be made");
        m_path = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path write(const std::string& name, const std::uint8_t* data, std::size_t size) const {
        auto file = m_path / name;
        std::ofstream(file, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        return file;
    }
    std::size_t fileCount() const {
        std::size_t files = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(m_path))
            ++files;
        return files;
    }

private:
    std::filesystem::path m_path;
};
