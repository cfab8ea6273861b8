// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <vector>

namespace engine {

/// A file written aside, in the folder of its final place, without a name or under one that nobody else uses; it takes
/// its place when it is whole and on the disk. Without `commit` nothing of it remains; where the file system knows
/// files without a name, not even when the program is killed. Errors are std::system_error.
class OutputFile {
public:
    /// `target` may be a symbolic link, whose file is then replaced. A replaced file's permissions are kept. What is
    /// there and no regular file is refused.
    explicit OutputFile(const std::filesystem::path& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// For writers that want a stream. Stays with this object.
    std::FILE* stream() const { return m_stream; }
    void write(std::string_view bytes);
    /// Copies the first `size` bytes of the file open as `descriptor`.
    void copy(int descriptor, std::uint64_t size);

    /// With `durable` the file is on the disk before it takes its place.
    void commit(bool durable = true);

private:
    std::filesystem::path folder() const;
    /// A name beside the target, its last six letters still to be chosen.
    std::string pattern() const;
    void giveName();

    std::filesystem::path m_target;
    std::filesystem::path m_aside; ///< Empty as long as the file has no name.
    std::vector<char> m_buffer;
    std::FILE* m_stream = nullptr;
};

/// Whether both names lead to one existing file.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

} // namespace engine
