// SPDX-License-Identifier: MIT
#pragma once

#include "InputFile.h"

#include <string_view>

namespace engine {

/// A file whose bytes are read where they are. It should stay as it is until this object is gone; where it becomes
/// shorter, zeros are read behind its end.
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
    /// As it was when it was opened.
    const InputState& state() const { return m_state; }

private:
    InputFile m_descriptor;
    InputState m_state;
    std::string_view m_bytes;
};

} // namespace engine
