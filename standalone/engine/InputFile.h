// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace engine {

/// The descriptor of a file that is open for reading; closed with this object.
class InputFile {
public:
    /// Throws `Failure`.
    explicit InputFile(const std::filesystem::path& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    operator int() const { return m_descriptor; }

    /// As many bytes from the beginning as there are, but at most `most`. Throws `Failure`.
    std::string read(std::size_t most) const;

private:
    int m_descriptor;
};

/// What tells whether a file was changed, or replaced, since it was looked at.
class InputState {
public:
    /// Of the open file. Throws `Failure` where that is no ordinary file.
    explicit InputState(int file);
    /// Of whatever is there; a file that is missing stays the same as long as it is missing.
    explicit InputState(const std::filesystem::path& path);

    bool operator==(const InputState& other) const;
    /// Throws `Failure`: `Code::changed` where `path` does not name the file in this state any more.
    void expectAt(const std::filesystem::path& path) const;

    std::size_t size() const { return static_cast<std::size_t>(m_status.st_size); }
    bool hasOtherNames() const { return m_status.st_nlink > 1; }
    mode_t mode() const { return m_status.st_mode & 0777; }

private:
    struct stat m_status {};
};

} // namespace engine
