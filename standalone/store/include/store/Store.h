// SPDX-License-Identifier: MIT
#pragma once

#include <model/ImprinterModel.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace store {

struct Forms;
class OwnedFile;

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
    changedElsewhere, ///< another program wrote the file, and what it wrote cannot be merged, or nobody read it
    contested,        ///< another program changed a configuration that was changed here too
    unwritable,       ///< the file system refused
    busy,             ///< another program has been writing it for too long
};

/// What there is to say about a failure beside its code.
struct Detail {
    enum class Kind {
        reason,             ///< what the system says
        isFolder,           ///< none
        isNoOrdinaryFile,   ///< none
        atLine,             ///< the number of the line of the file
        atPlace,            ///< the place in the file, as "configurations[3].name"
        formatVersion,      ///< the number of the version
        concerns,           ///< the name of a configuration
        left,               ///< none
        keptAside,          ///< the path of the file now
        notRenamed,         ///< what the system says
        suppliedShown,      ///< none; they are shown, and changes are not saved
        shownAsFarAsItGoes, ///< none; the same about what was understood
    };
    /// How many kinds there are.
    static constexpr std::size_t kinds = static_cast<std::size_t>(Kind::shownAsFarAsItGoes) + 1;

    Kind kind;
    std::u16string argument; ///< What stands behind the kind.
};

struct Failure {
    Code code;
    /// For people, complete, in English.
    std::u16string sentence;
    std::filesystem::path file;
    /// What the sentence says beside the code, for those who say it in another language.
    std::vector<Detail> details{};
};

struct LoadResult {
    std::vector<std::shared_ptr<model::Configuration>> configurations;
    /// What people should know; empty when all went well.
    std::vector<Failure> messages;
    /// The file is left as it is: nothing can be saved.
    bool readOnly = false;
    /// Something is there, and the configurations are not what it holds: the supplied ones stand in for them, or for
    /// those of a newer version what could be understood of them. False where there is nothing, at the first start.
    bool standIns = false;
};

/// What becomes of a file that cannot be understood, by whoever could save in its place.
enum class Damaged {
    keepAside, ///< it gets another name
    leave,     ///< it is left as it is, and nothing can be saved
};

/// A configuration that was changed differently here and by another program, or was when a program ended and since.
struct Conflict {
    std::u16string mine;   ///< its name here
    std::u16string theirs; ///< its name there
};

enum class Choice {
    mine,   ///< as it is here
    theirs, ///< as it is there
    both,   ///< as it is here, and theirs as a copy after it
};

/// Asks a person about a conflict; none where nothing is to be done at all. Without a function there is nobody to ask.
using Ask = std::function<std::optional<Choice>(const Conflict& conflict)>;

/// What was decided without a question when changes were joined, and people should know.
struct Notice {
    enum class Kind {
        outlivedDeletion,      ///< it was deleted on one side, and stays since the other changed it
        outlivedDeletionByUse, ///< it was deleted on one side, and stays since the other put it into a combined one
        leftOut,               ///< it is no member of a combined one, since it is combined itself now
    };
    /// Where, or when, something was deleted that stays; what makes it stay is of the opposite.
    enum class Deleted { here, byAnotherProgram, beforeTheProgramEnded, since };

    Kind kind;
    std::u16string configuration; ///< its name
    std::u16string combined;      ///< the name of the combined one; empty where there is none
    Deleted deleted = Deleted::here;
    /// For people, complete, in English.
    std::u16string sentence;
};

/// Changes that a program left behind when it ended without having saved them.
struct Unsaved {
    std::filesystem::path journal;
    /// How many configurations taking it over would change, create or delete; 0 where only their order.
    std::size_t configurations = 0;
    /// As long as there is a copy of it, the journal is offered to nobody else.
    std::shared_ptr<OwnedFile> claim;
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
    /// Where the file of the last save but `number` is kept, from 1 to 3, as long as there is one.
    std::filesystem::path previousVersion(int number) const;

    /// Reads the file and changes nothing on disk, for whoever does not save. Where there is none, or none that can be
    /// understood, the supplied configurations are answered. The result is read-only.
    LoadResult read() const;

    /// Reads the file as `read` does, so that it can be saved.
    ///
    /// A file that is damaged, or that this user may not read, gets the name
    /// "configurations.damaged-<date>-<time>.json" beside it, with a number where that exists, unless `damaged` says
    /// otherwise; where it is a symbolic link, what it points to gets it, and the link stays. Left in its place, and
    /// read-only, is: what cannot be read for another reason, which may be gone the next time; what a newer program
    /// wrote; what is no ordinary file; what cannot be renamed; and, at any other than the default path, what does not
    /// look like a file of configurations. What a killed program left behind when it saved is removed.
    LoadResult load(Damaged damaged = Damaged::keepAside);

    /// Writes every configuration of the model, and the keys that `load` found and did not know. To be called after
    /// `load`: a file that was not loaded is left alone. Where nothing was changed, nothing is written.
    ///
    /// Where another program has written the file since it was loaded or saved, its changes and those of the model are
    /// joined, and the model becomes what is written: its objects stay, and take over what the other program changed.
    /// About what both changed `ask` is asked, while other programs may go on; without an answer nothing is saved, the
    /// model stays as it is, and the failure is `contested`.
    ///
    /// The new file replaces the old one at once or not at all, and is on the disk when this returns; the last three
    /// files are kept beside it. What has no form in a file, such as a member that is not in the model, is a failure
    /// that names it.
    [[nodiscard]] std::optional<Failure> save(model::ImprinterModel& model, const Ask& ask = {});
    /// Told once in a save that has to wait for another program that is writing the file, when that takes longer than a
    /// second. After twenty the save is given up.
    void setOnWait(std::function<void()> tell);
    /// About the last `save` or `takeOver` that did something.
    const std::vector<Notice>& notices() const;
    /// Keeps no former files, and no mark of where the file began: for one that is written to be given away.
    void keepNoVersions();

    /// Keeps what the model has and the file has not in a journal beside the file, for the case that the program ends
    /// without saving; removes the journal where there is nothing to keep. Does not wait for the disk.
    std::optional<Failure> keepUnsaved(const model::ImprinterModel& model);
    /// The journals that other programs left behind; not those of programs that run, nor those that another program was
    /// offered and has not answered about, and none where nothing can be saved. One that would change nothing about
    /// what was loaded or saved last, or that holds nothing, is removed.
    std::vector<Unsaved> findUnsaved();
    /// Whether there is such a journal, for whoever takes nothing over: nothing is claimed, and nothing removed.
    bool hasUnsaved() const;
    /// Joins what a journal holds with the model, as `save` would, and removes it as soon as this store's own journal
    /// has it. The file stays as it is.
    std::optional<Failure> takeOver(const Unsaved& unsaved, model::ImprinterModel& model, const Ask& ask = {});
    void discard(const Unsaved& unsaved);

private:
    struct State;
    struct Reading;
    struct Taken;

    Reading readFile() const;
    Failure failureAbout(Code code, std::u16string sentence, std::vector<Detail> details = {}) const;
    std::optional<Failure> guarded(const std::function<std::optional<Failure>()>& work) const;
    const Forms& base() const;
    /// What `theirs` and this program's configurations come from: where theirs is in a file that was begun anew, since
    /// the one that was loaded was gone or damaged, only what both have. What they lack was not deleted then.
    Forms commonBase(const Forms& theirs) const;
    void adopt(const Taken& taken, const Forms& forms, const Forms& former, model::ImprinterModel& model);
    std::filesystem::path m_file;
    std::uintmax_t m_mostBytes;
    std::unique_ptr<State> m_state;
};

/// The configurations a new user starts with: "Received", "Page of Pages" and "Confidential". New objects at every
/// call, with the same identifiers.
std::vector<std::shared_ptr<model::Configuration>> suppliedConfigurations();

} // namespace store
