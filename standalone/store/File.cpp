// SPDX-License-Identifier: MIT
#include "File.h"

#include <files/Calls.h>
#include <files/ReadWhole.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <limits>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace store {

namespace fs = std::filesystem;

/// A name of a file that is taken away again, if it is still there.
class Name {
public:
    Name() = default;
    explicit Name(fs::path path) : m_path(std::move(path)) {}
    ~Name() {
        if (!m_path.empty())
            ::unlink(m_path.c_str());
    }
    Name(Name&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}
    Name& operator=(Name&&) = delete;

    /// Empty for none.
    const fs::path& path() const { return m_path; }
    void release() { m_path.clear(); }

private:
    fs::path m_path;
};

namespace {

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

int checked(int result) {
    if (result < 0)
        fail(errno);
    return result;
}

class Descriptor {
public:
    explicit Descriptor(int number) : m_number(checked(number)) {}
    ~Descriptor() {
        if (m_number >= 0)
            files::calls().close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return m_number; }
    int release() { return std::exchange(m_number, -1); }
    void close() { checked(files::calls().close(std::exchange(m_number, -1))); }

private:
    int m_number;
};

Fingerprint fingerprintOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size,
            std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

const auto programStart = fs::file_time_type::clock::now();

void writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = files::calls().write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool isLetterOrDigit(unsigned char c) {
    return c < 0x80 && std::isalnum(c) != 0;
}

constexpr std::string_view pattern = "XXXXXX"; // as mkostemp fills it

/// Whether `name` is `prefix` and what stands for `pattern`.
bool isFilledIn(const std::string& name, const std::string& prefix) {
    return name.size() == prefix.size() + pattern.size() && name.starts_with(prefix) &&
           std::all_of(name.end() - pattern.size(), name.end(), isLetterOrDigit);
}

constexpr char saving[] = "saving";
constexpr char formerly[] = "former";

/// To be called with the folder locked.
void removeLeftoversOf(const fs::path& target) {
    for (const auto& name : filesNamed(hiddenPrefix(target, saving))) {
        std::error_code error;
        if (fs::last_write_time(name, error) < programStart && !error)
            ::unlink(name.c_str());
    }
}

/// A file that goes again unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& prefix)
        : m_path(prefix.string() + std::string(pattern)), m_descriptor(made(m_path)) {}
    ~TemporaryFile() {
        if (!m_path.empty())
            ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int number() const { return m_descriptor.number(); }
    const std::string& path() const { return m_path; }
    /// Answers the state the file will have under its new name too.
    Fingerprint finish() {
        checked(files::calls().sync(m_descriptor.number()));
        struct stat status {};
        checked(::fstat(m_descriptor.number(), &status));
        m_descriptor.close();
        return fingerprintOf(status);
    }
    void renameTo(const fs::path& file) {
        checked(files::calls().rename(m_path.c_str(), file.c_str()));
        m_path.clear();
    }
    /// It stays under the name it has.
    int release() {
        m_path.clear();
        return m_descriptor.release();
    }

private:
    /// Where none is made there is no name to take away.
    static int made(std::string& path) {
        const int number = files::calls().openTemporary(path.data());
        if (number < 0)
            path.clear();
        return number;
    }

    std::string m_path;
    Descriptor m_descriptor;
};

enum class Locked { yes, byAnother, impossible };

/// Locks an open file for this program (LOCK_EX) or all who look (LOCK_SH), or gives it free, without waiting.
Locked lock(int file, int how) {
    int result;
    while ((result = files::calls().lock(file, how | LOCK_NB)) != 0 && errno == EINTR)
        continue;
    return result == 0 ? Locked::yes : errno == EWOULDBLOCK ? Locked::byAnother : Locked::impossible;
}

/// Whether `path` still names the ordinary file that is open as `number`.
bool isNamed(const fs::path& path, int number) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(number, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 && S_ISREG(opened.st_mode) &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

void makeFolders(const fs::path& folder) {
    if (folder.empty() || fs::is_directory(folder))
        return;
    makeFolders(folder.parent_path());
    if (files::calls().makeFolder(folder.c_str(), 0700) != 0 && errno != EEXIST)
        fail(errno);
}

std::string dateAndTime() {
    const auto now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
    return text.data();
}

} // namespace

fs::path targetOf(const fs::path& file) {
    // One by one, because what the last one points to need not be there.
    auto target = fs::absolute(file);
    constexpr int mostLinks = 40; // as many as the system follows
    for (int links = 0; links < mostLinks && fs::is_symlink(target); ++links)
        target = fs::weakly_canonical(target.parent_path()) / fs::read_symlink(target);
    return target.lexically_normal();
}

std::optional<Fingerprint> fingerprintOf(const fs::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return fingerprintOf(status);
}

FileContent readFile(const fs::path& file, std::uintmax_t limit) {
    // Non-blocking, because opening a pipe would wait for a writer.
    const Descriptor descriptor(files::calls().open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    checked(::fstat(descriptor.number(), &status));
    if (S_ISDIR(status.st_mode))
        fail(EISDIR);
    if (!S_ISREG(status.st_mode))
        fail(EINVAL);
    FileContent content{{}, fingerprintOf(status)};
    if (static_cast<std::uintmax_t>(status.st_size) > limit)
        fail(EFBIG);
    content.bytes = files::readWhole(descriptor.number(), static_cast<std::size_t>(status.st_size));
    return content;
}

fs::path versionOf(const fs::path& file, int number) {
    return file.parent_path() /
           (file.stem().string() + ".previous-" + std::to_string(number) + file.extension().string());
}

fs::path hiddenPrefix(const fs::path& file, const std::string& word) {
    const auto target = targetOf(file);
    return target.parent_path() / ("." + target.filename().string() + "." + word + "-");
}

std::vector<fs::path> filesNamed(const fs::path& prefix) {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(prefix.parent_path(), error), end; !error && entry != end; entry.increment(error))
        if (std::error_code none; isFilledIn(entry->path().filename().string(), prefix.filename().string()) &&
                                  entry->symlink_status(none).type() == fs::file_type::regular)
            found.push_back(entry->path());
    std::sort(found.begin(), found.end());
    return found;
}

/// What the programs of this kind lock as long as they replace a file: a hidden one beside it, which is there for that
/// only. Network file systems lock no folders, and nothing that is not open for writing.
class LockFile {
public:
    explicit LockFile(const fs::path& target)
        : m_path(target.parent_path() / ("." + target.filename().string() + ".lock")) {}
    ~LockFile() {
        if (m_descriptor)
            ::unlink(m_path.c_str());
    }
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// Answers NO where another program has it, without waiting. Where the file system has no locks nobody has one.
    /// Throws std::system_error.
    bool take() {
        for (int attempts = 0; attempts < 100; ++attempts) {
            m_descriptor.emplace(files::calls().open(
                m_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR));
            const auto locked = lock(m_descriptor->number(), LOCK_EX);
            m_isLocked = locked == Locked::yes;
            // Who had it before takes the file away, perhaps after it was opened here.
            if (locked == Locked::impossible || (m_isLocked && isNamed(m_path, m_descriptor->number())))
                return true;
            m_descriptor.reset();
            if (!m_isLocked)
                return false;
        }
        return false;
    }
    /// Whether a program has it, or was killed while it had.
    bool isThere() const {
        std::error_code none;
        return fs::exists(m_path, none);
    }
    /// NO where the file system has no locks.
    bool isLocked() const { return m_isLocked; }

private:
    fs::path m_path;
    std::optional<Descriptor> m_descriptor;
    bool m_isLocked = false;
};

struct Turn::Hold {
    explicit Hold(const fs::path& target)
        : folder(files::calls().open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), file(target) {}

    Descriptor folder;
    LockFile file;
};

Turn::Turn(const fs::path& file, const std::function<void()>& onWait) : m_target(targetOf(file)) {
    makeFolders(m_target.parent_path());
    m_hold = std::make_unique<Hold>(m_target);
    constexpr std::chrono::milliseconds step(10);
    std::chrono::milliseconds waited(0);
    for (; !m_hold->file.take(); waited += step) {
        if (waited >= longestWait)
            throw Busy();
        if (waited == silentWait && onWait)
            onWait();
        files::calls().pause(step);
    }
    if (m_hold->file.isLocked()) {
        removeLeftoversOf(m_target);
        finishKilled();
    }
}

Turn::~Turn() = default;

std::optional<Fingerprint> Turn::state() const {
    return fingerprintOf(m_target);
}

void Turn::confirm() {
    // Not every file system can do that with a folder.
    if (files::calls().sync(m_hold->folder.number()) != 0 && errno != EINVAL)
        fail(errno);
}

Name Turn::former(const std::string& suffix) const {
    std::error_code none;
    if (!fs::exists(m_target, none))
        return {};
    Name name(hiddenPrefix(m_target, formerly).string() + suffix);
    if (files::calls().link(m_target.c_str(), name.path().c_str()) == 0)
        return name;
    if (errno != EPERM && errno != EOPNOTSUPP && errno != EMLINK)
        return {};
    // Some file systems have one name for a file only.
    try {
        TemporaryFile copy(hiddenPrefix(m_target, formerly));
        writeAll(copy.number(), readFile(m_target, std::numeric_limits<std::uintmax_t>::max()).bytes);
        copy.finish();
        copy.renameTo(name.path());
        return name;
    } catch (const std::system_error&) {
        return {}; // what was is worth less than what is
    }
}

void Turn::keep(Name former, const std::string& suffix, int versions) const {
    std::error_code none;
    for (int number = 1; number <= versions; ++number)
        if (const auto version = versionOf(m_target, number);
            fs::exists(version, none) && !fs::is_regular_file(version, none))
            return; // whatever that is, it is nobody's former version
    int gap = 1;
    while (gap < versions && fs::exists(versionOf(m_target, gap), none))
        ++gap;
    // Each step can be taken back, so that what cannot be kept leaves what was kept before.
    std::vector<std::pair<fs::path, fs::path>> steps;
    const Name last(hiddenPrefix(m_target, saving).string() + suffix);
    if (fs::exists(versionOf(m_target, gap), none))
        steps.emplace_back(versionOf(m_target, gap), last.path());
    for (; gap > 1; --gap)
        steps.emplace_back(versionOf(m_target, gap - 1), versionOf(m_target, gap));
    steps.emplace_back(former.path(), versionOf(m_target, 1));
    std::size_t done = 0;
    while (done < steps.size() && files::calls().rename(steps[done].first.c_str(), steps[done].second.c_str()) == 0)
        ++done;
    struct stat kept {};
    if (done == steps.size()) {
        // What has a name elsewhere too is not for this program to close.
        if (::lstat(versionOf(m_target, 1).c_str(), &kept) == 0 && kept.st_nlink == 1)
            ::chmod(versionOf(m_target, 1).c_str(), 0600);
    } else {
        while (done-- > 0)
            files::calls().rename(steps[done].second.c_str(), steps[done].first.c_str());
    }
}

void Turn::finishKilled() const {
    for (const auto& path : filesNamed(hiddenPrefix(m_target, formerly))) {
        Name former(path);
        try {
            constexpr auto most = std::numeric_limits<std::uintmax_t>::max();
            // It was killed before the new file came into its place, or after; that file may be gone since.
            if (std::error_code none;
                !fs::exists(m_target, none) ||
                (!fs::equivalent(path, m_target, none) && readFile(path, most).bytes != readFile(m_target, most).bytes))
                keep(std::move(former), path.string().substr(path.string().size() - pattern.size()), mostVersions);
        } catch (const std::system_error&) {
            former.release(); // the next one may be able to
        }
    }
}

void Turn::replace(std::string_view bytes, std::optional<Fingerprint>& seen, int versions) {
    TemporaryFile temporary(hiddenPrefix(m_target, saving));
    writeAll(temporary.number(), bytes);
    const auto written = temporary.finish();
    const auto suffix = temporary.path().substr(temporary.path().size() - pattern.size());
    auto last = versions > 0 ? former(suffix) : Name();
    temporary.renameTo(m_target);
    seen = written;
    if (!last.path().empty())
        keep(std::move(last), suffix, versions);
    confirm();
}

OwnedFile::OwnedFile(const fs::path& file, const std::string& word) : m_temporaryPrefix(hiddenPrefix(file, saving)) {
    const auto prefix = hiddenPrefix(file, word);
    makeFolders(prefix.parent_path());
    // Between its making and its locking another program may take it for one that was left behind.
    for (int attempts = 0; attempts < 100; ++attempts) {
        TemporaryFile made(prefix);
        const auto locked = lock(made.number(), LOCK_EX);
        if (locked == Locked::impossible)
            fail(ENOLCK); // nobody could tell whether its owner is alive
        if (locked != Locked::yes || !isNamed(made.path(), made.number()))
            continue;
        m_path = made.path();
        m_number = made.release();
        return;
    }
    fail(EAGAIN);
}

std::unique_ptr<OwnedFile> OwnedFile::takeOver(const fs::path& file) {
    // For writing, without which network file systems do not give it to one program alone.
    const int number = files::calls().open(file.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (number < 0)
        return nullptr;
    std::unique_ptr<OwnedFile> taken(new OwnedFile(file, number));
    int attempts = 0;
    while (lock(number, LOCK_EX) != Locked::yes) {
        // Who only asks whether it is left behind, as below, has done with it at once; an owner has not.
        if (lock(number, LOCK_SH) != Locked::yes || ++attempts == 100)
            return nullptr;
        lock(number, LOCK_UN);
        std::this_thread::yield();
    }
    // Its owner may have put a new one in its place in this moment.
    return isNamed(file, number) ? std::move(taken) : nullptr;
}

bool OwnedFile::isLeftBehind(const fs::path& file) {
    const int number = files::calls().open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (number < 0)
        return false;
    const Descriptor descriptor(number);
    return lock(number, LOCK_SH) == Locked::yes && isNamed(file, number);
}

OwnedFile::~OwnedFile() {
    if (m_number >= 0)
        files::calls().close(m_number);
}

void OwnedFile::replace(std::string_view bytes) {
    TemporaryFile temporary(m_temporaryPrefix);
    // Before it has the name, so that nobody finds it without its owner.
    if (lock(temporary.number(), LOCK_EX) != Locked::yes)
        fail(ENOLCK);
    writeAll(temporary.number(), bytes);
    temporary.renameTo(m_path);
    const int former = std::exchange(m_number, temporary.release());
    files::calls().close(former);
}

void OwnedFile::remove() const {
    ::unlink(m_path.c_str());
}

void removeLeftovers(const fs::path& file) {
    try {
        const auto target = targetOf(file);
        LockFile lock(target);
        if (!lock.isThere() && filesNamed(hiddenPrefix(target, saving)).empty())
            return;
        if (lock.take() && lock.isLocked())
            removeLeftoversOf(target);
    } catch (const std::system_error&) {
        // Without the folder there is nothing to remove.
    }
}

fs::path renameAside(const fs::path& file, const std::string& word) {
    const auto base = file.stem().string() + "." + word + "-" + dateAndTime();
    for (int number = 1;; ++number) {
        const auto suffix = number == 1 ? std::string() : "-" + std::to_string(number);
        auto aside = file.parent_path() / (base + suffix + file.extension().string());
        if (files::calls().rename(file.c_str(), aside.c_str(), RENAME_NOREPLACE) == 0)
            return aside;
        if (errno == EEXIST)
            continue;
        // Some file systems cannot rename without replacing.
        if (errno != EINVAL && errno != ENOSYS)
            fail(errno);
        if (fs::exists(fs::symlink_status(aside)))
            continue;
        checked(files::calls().rename(file.c_str(), aside.c_str()));
        return aside;
    }
}

} // namespace store
