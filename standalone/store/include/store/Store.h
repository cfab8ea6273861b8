// SPDX-License-Identifier: MIT
#pragma once

#include <model/ImprinterModel.h>

#include <cstdint>
#include <filesystem>

namespace store {

/// What went wrong with the file of configurations.
enum class Code {
    unreadable,       ///< the file is there and cannot be read
    damaged,          ///< it is not JSON, or not a file of configurations
    foreign,          ///< what is there is something else than a file of configurations
    invalid,          ///< it holds a value or a reference that cannot be
    newer,            ///< a newer version of the program wrote it
    tooLarge,         ///< it has, or would get, more of something than a file may have
    unstorable,       ///< the model holds a value that has no form in a file
    readOnly,         ///< the file that was loaded must not be written
    changedElsewhere, ///< another program wrote the file since it was loaded or saved
    unwritable,       ///< the file system refused
};

struct Failure {
    Code code;
    /// For people, complete, in English.
    std::u16string sentence;
    std::filesystem::path file;
};

struct LoadResult {
    std::vector<std::shared_ptr<model::Configuration>> configurations;
    /// What people should know; empty when all went well.
    std::vector<Failure> messages;
    /// The file is left as it is: nothing can be saved.
    bool readOnly = false;
    /// Something is there, and the configurations are not from it: the supplied ones stand in for them. False where
    /// there is nothing, at the first start.
    bool standIns = false;
};

/// The configurations on disk: one file, described in docs/file-format.md.
///
/// A file that cannot be understood is never overwritten: it is kept aside under another name, or left in its place. A
/// save that fails leaves the file of the last one.
class Store {
public:
    static constexpr std::uintmax_t largestFile = std::uintmax_t{64} << 20;

    /// `file` and its folder need not exist. A file of more than `mostBytes` is neither read nor written.
    explicit Store(std::filesystem::path file, std::uintmax_t mostBytes = largestFile);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// The file in the folder "imprinter" of the user's data folder: $XDG_DATA_HOME, or ~/.local/share where that is
    /// not set or not absolute.
    static std::filesystem::path defaultPath();

    const std::filesystem::path& file() const { return m_file; }

    /// Reads the file and changes nothing on disk, for whoever does not save. Where there is none, or none that can be
    /// understood, the supplied configurations are answered. The result is read-only.
    LoadResult read() const;

    /// Reads the file as `read` does, so that it can be saved.
    ///
    /// An unreadable or damaged file gets the name "configurations.damaged-<date>-<time>.json" beside it, with a number
    /// where that exists. Left in its place, and read-only, is: what a newer program wrote; what is no ordinary file;
    /// what cannot be renamed; and, at any other than the default path, what does not look like a file of
    /// configurations. What a killed program left behind when it saved is removed.
    LoadResult load();

    /// Writes every configuration of the model, and the keys that `load` found and did not know. To be called after
    /// `load`: a file that was not loaded, or was written by another program since, is left alone.
    ///
    /// The new file replaces the old one at once or not at all, and is on the disk when this returns. Members that are
    /// not in the model, and title tokens that are neither text nor font run, are left out.
    [[nodiscard]] std::optional<Failure> save(const model::ImprinterModel& model);

private:
    struct State;
    struct Reading;

    Reading readFile() const;
    std::filesystem::path m_file;
    std::uintmax_t m_mostBytes;
    std::unique_ptr<State> m_state;
};

/// The configurations a new user starts with: "Received", "Page of Pages" and "Confidential". New objects at every
/// call, with the same identifiers.
std::vector<std::shared_ptr<model::Configuration>> suppliedConfigurations();

} // namespace store
