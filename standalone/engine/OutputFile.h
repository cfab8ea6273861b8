// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace engine {

/// What becomes of a file that has the name already.
enum class Existing { replaced, kept };

/// A file written aside, in the folder of its final place, without a name or under one that nobody else uses; it takes
/// its place when it is whole and on the disk. Without `commit` nothing of it remains; where the file system knows
/// files without a name, not even when the program is killed, but for the moment in which it changes places with the
/// file that it replaces; what is left then goes with the next one for the same target. Errors are std::system_error.
class OutputFile {
public:
    /// `target` may be a symbolic link, whose file is then replaced. What is there and no regular file is refused.
    ///
    /// What replaces a file gets its permissions, its owner and group as far as this user may give them, its access
    /// list and its extended attributes. A new file can be read by nobody who could not read the one it is made from,
    /// whose permissions are `inputMode`.
    /// With `Existing::kept` nothing is replaced: `commit` throws what file_exists stands for.
    explicit OutputFile(const std::filesystem::path& target, mode_t inputMode = 0666,
                        Existing existing = Existing::replaced);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::string_view bytes);
    /// Copies the first `size` bytes of the file open as `descriptor`.
    void copy(int descriptor, std::uint64_t size);

    /// With `durable` the file is on the disk before it takes its place.
    void commit(bool durable = true);

private:
    std::filesystem::path folder() const;
    /// A hidden name beside the target.
    std::string hidden(const char* ending) const;
    void giveName();
    void flush();
    void writeNow(std::string_view bytes);
    void close();

    std::filesystem::path m_target;
    std::filesystem::path m_aside; ///< Empty as long as the file has no name.
    std::string m_buffer;
    Existing m_existing;
    int m_descriptor = -1;
};

/// Whether there is a file that this user may not write, or that nobody may. It could be replaced nevertheless, since
/// that is a matter of its folder.
bool isWriteProtected(const std::filesystem::path& path);

/// Whether both names lead to one existing file.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

} // namespace engine
