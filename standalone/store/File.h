// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

namespace store {

/// What tells one state of a file from another: device, inode, size, and time of change in nanoseconds.
using Fingerprint = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t>;

/// None where there is no such file.
std::optional<Fingerprint> fingerprintOf(const std::filesystem::path& file);

struct FileContent {
    std::string bytes;
    Fingerprint fingerprint;
};

/// Reads an ordinary file. Throws std::system_error: no_such_file_or_directory where there is none, file_too_large
/// above `limit` bytes.
FileContent readFile(const std::filesystem::path& file, std::uintmax_t limit);

/// What is replaced where `file` is to be replaced: what it points to where it is a symbolic link.
std::filesystem::path targetOf(const std::filesystem::path& file);

/// How many former versions of a file stay beside it.
inline constexpr int mostVersions = 3;

/// The name under which a former version of `file` is kept: "<stem>.previous-<number><extension>"; 1 is the last one.
std::filesystem::path versionOf(const std::filesystem::path& file, int number);

class Name;

/// Another program has had its turn for too long. Thrown inside the store only.
struct Busy {};

/// So long a program waits for its turn without a word, and so long at all.
inline constexpr std::chrono::seconds silentWait{1};
inline constexpr std::chrono::seconds longestWait{20};

/// A program's turn to replace a file. Others of its kind wait, so that what is read in a turn is what is replaced in
/// it; where the file system has no locks a small gap remains.
class Turn {
public:
    /// Waits for the others; `onWait` is called once where that takes longer than `silentWait`. Missing folders are
    /// made, for the user alone; leftovers are removed, as `removeLeftovers` does. Where `file` is a symbolic link,
    /// what it points to is meant. Throws std::system_error, and Busy after `longestWait`.
    explicit Turn(const std::filesystem::path& file, const std::function<void()>& onWait = {});
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// The state of the file; none where there is none.
    std::optional<Fingerprint> state() const;

    /// Puts `bytes` in the place of the file, at once or not at all, and waits until they are on the disk. The new file
    /// is the user's alone. `seen` becomes its state when it is in its place.
    ///
    /// Once the new file is in its place, the one that was there is kept under `versionOf(file, 1)`, and those kept
    /// before move on by one number, as many as `versions`; what a killed program did not come to do of that the next
    /// one does. What cannot be kept is no reason not to replace, and leaves what was kept as it was. Throws
    /// std::system_error; the old file is then untouched, unless only the last wait failed.
    void replace(std::string_view bytes, std::optional<Fingerprint>& seen, int versions);
    /// Waits until the names of the folder are on the disk, as `replace` does last. Throws std::system_error.
    void confirm();

private:
    Name former(const std::string& suffix) const;
    void keep(Name former, const std::string& suffix, int versions) const;
    void finishKilled() const;

    std::filesystem::path m_target;
    struct Hold;
    std::unique_ptr<Hold> m_hold;
};

/// What hidden files for `file` begin with; six letters or digits follow: ".<name>.<word>-", beside it. Where `file` is
/// a symbolic link, what it points to is meant.
std::filesystem::path hiddenPrefix(const std::filesystem::path& file, const std::string& word);
/// The files that begin with `prefix` and end with six letters or digits, sorted by name.
std::vector<std::filesystem::path> filesNamed(const std::filesystem::path& prefix);

/// A file that belongs to a running program as long as this object lives, and can be told from one that was left
/// behind by a program that ended.
class OwnedFile {
public:
    /// Makes one beside `file`, with a name that begins with `hiddenPrefix(file, word)`. Throws std::system_error.
    OwnedFile(const std::filesystem::path& file, const std::string& word);
    /// Takes over one that was left behind; none where it is gone, a link, or its owner is alive, who may have taken it
    /// over too.
    static std::unique_ptr<OwnedFile> takeOver(const std::filesystem::path& file);
    /// Whether it was left behind and could be taken over; nothing is.
    static bool isLeftBehind(const std::filesystem::path& file);
    /// The file stays.
    ~OwnedFile();
    OwnedFile(const OwnedFile&) = delete;
    OwnedFile& operator=(const OwnedFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    /// At once or not at all, without waiting for the disk. Throws std::system_error.
    void replace(std::string_view bytes);
    void remove() const;

private:
    OwnedFile(std::filesystem::path path, int number) : m_path(std::move(path)), m_number(number) {}

    std::filesystem::path m_temporaryPrefix; ///< Empty for one that was taken over, which is not replaced.
    std::filesystem::path m_path;
    int m_number = -1;
};

/// Removes the temporary files of programs that were killed while they replaced `file`. Nothing is removed while
/// another program replaces it, nor where the file system has no locks to tell; and no file that is
/// younger than this program. What cannot be removed stays.
void removeLeftovers(const std::filesystem::path& file);

/// Gives `file` the name "<stem>.<word>-<date>-<time><extension>", with a number behind the time where that name is
/// taken, and answers the new path. Throws std::system_error.
std::filesystem::path renameAside(const std::filesystem::path& file, const std::string& word);

} // namespace store
