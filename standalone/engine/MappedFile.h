// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace engine {

/// A file whose bytes are read where they are. It has to stay as it is until this object is gone.
class MappedFile {
public:
    /// Throws `Failure`.
    explicit MappedFile(const std::filesystem::path& path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::string_view bytes() const { return m_bytes; }
    /// Gives the memory back that reading has taken so far; what is read again comes from the file again.
    void release() const;
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor = -1;
    std::string_view m_bytes;
};

} // namespace engine
