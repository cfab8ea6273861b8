// SPDX-License-Identifier: MIT
#include <files/PrivateFolder.h>

#include <files/Calls.h>
#include <files/ReadWhole.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace files {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view prefix = "imprinter-";
constexpr std::string_view pattern = "XXXXXX"; // as mkdtemp fills it

fs::path parentFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    return runtime && fs::is_directory(runtime, error) ? fs::path(runtime) : fs::temp_directory_path();
}

bool isNameOfOurs(const std::string& name) {
    return name.size() == prefix.size() + pattern.size() && name.starts_with(prefix) &&
           std::all_of(name.begin() + prefix.size(), name.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
           });
}

/// What the owner of a folder locks, and writes into for file systems that have no locks: the machine, the process, and
/// when that was started.
constexpr char ownerName[] = ".owner";

class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return m_number; }
    int release() { return std::exchange(m_number, -1); }
    void close() {
        if (m_number >= 0)
            ::close(release());
    }

private:
    int m_number;
};

/// Whether `folder` is still the one that was opened as `file`, and the user's own.
bool isOurs(const fs::path& folder, int file) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && lstat(folder.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino && opened.st_uid == geteuid() && (opened.st_mode & 07777) == 0700;
}

/// Whether the owner's file is still in the folder under its name.
bool isNamed(int folder, int owner) {
    struct stat opened {};
    struct stat named {};
    return fstat(owner, &opened) == 0 && fstatat(folder, ownerName, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           opened.st_ino == named.st_ino;
}

enum class Locked { yes, byAnother, impossible };

Locked lock(int file) {
    if (calls().lock(file, LOCK_EX | LOCK_NB) == 0)
        return Locked::yes;
    return errno == EWOULDBLOCK ? Locked::byAnother : Locked::impossible;
}

std::string machine() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 && *name ? name : "?";
}

/// When a process was started, as the system counts; empty where there is none.
std::string startOf(const std::string& process) {
    std::ifstream stream("/proc/" + process + "/stat");
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    // The name, in brackets, may hold anything; the start is the 20th word behind it.
    std::istringstream words(text.substr(std::min(text.size(), text.rfind(')') + 1)));
    std::string word;
    for (int number = 0; number < 20; ++number)
        words >> word;
    return words ? word : std::string();
}

/// So long ago somebody changed the file last.
std::chrono::seconds ageOf(int file) {
    struct stat status {};
    const auto changed = fstat(file, &status) == 0 ? status.st_mtime : std::time(nullptr);
    return std::chrono::seconds(std::time(nullptr) - changed);
}

/// Whether the owner of a folder is gone, where no lock can tell.
bool isOwnerGone(int owner) {
    // Of another machine's processes nobody here knows anything.
    constexpr std::chrono::hours longest(30 * 24);
    std::string text;
    try {
        text = readWhole(owner, 1024);
    } catch (const std::system_error&) {
        return false;
    }
    std::istringstream words(text);
    std::string host;
    std::string process;
    std::string start;
    if (words >> host >> process >> start && host == machine() &&
        process.find_first_not_of("0123456789") == std::string::npos)
        return startOf(process) != start;
    return ageOf(owner) > longest;
}

/// Takes a folder that nobody owns any more, so that no other program does so too; answers whether it did.
bool takeLeftover(const fs::path& folder) {
    const Descriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (file < 0 || !isOurs(folder, file))
        return false;
    const Descriptor owner(openat(file, ownerName, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (owner < 0) // between its making and its owner's file there is a moment only
        return errno == ENOENT && ageOf(file) > std::chrono::hours(1);
    const auto locked = lock(owner);
    if (locked == Locked::byAnother || (locked == Locked::impossible && !isOwnerGone(owner)))
        return false;
    // A program that has just made it sees by this that it is taken.
    return unlinkat(file, ownerName, 0) == 0;
}

} // namespace

PrivateFolder::PrivateFolder() {
    const auto wanted = (parentFolder() / prefix).string() + std::string(pattern);
    const auto record = machine() + " " + std::to_string(getpid()) + " " + startOf(std::to_string(getpid())) + "\n";
    // Before it is locked another program may take a folder for a leftover: then a new one is made.
    for (int attempts = 0; attempts < 100; ++attempts) {
        std::string name = wanted;
        if (!mkdtemp(name.data()))
            throw std::system_error(errno, std::generic_category(), name);
        const Descriptor folder(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        Descriptor owner(openat(folder, ownerName, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        // For writing, since network file systems lock nothing else. A folder without locks is told by the record.
        if (owner >= 0 && lock(owner) != Locked::byAnother && isOurs(name, folder) && isNamed(folder, owner)) {
            [[maybe_unused]] const auto written = write(owner, record.data(), record.size());
            m_lock = owner.release();
            m_path = name;
            return;
        }
        const int reason = owner < 0 ? errno : ENOENT;
        std::error_code ignored;
        fs::remove_all(name, ignored);
        if (reason != ENOENT) // which it is when it was taken
            throw std::system_error(reason, std::generic_category(), name);
    }
    throw std::system_error(EAGAIN, std::generic_category(), wanted);
}

PrivateFolder::~PrivateFolder() {
    close(m_lock); // first, because a network file system keeps what is open, and the folder with it
    std::error_code error;
    fs::remove_all(m_path, error);
}

int PrivateFolder::removeLeftovers() {
    std::error_code error;
    std::vector<fs::path> candidates;
    fs::path parent;
    try {
        parent = parentFolder();
    } catch (const fs::filesystem_error&) {
        return 0; // where there is no folder for temporary files there are no leftovers
    }
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error))
        if (isNameOfOurs(entry->path().filename().string()))
            candidates.push_back(entry->path());
    int removed = 0;
    for (const auto& folder : candidates) {
        if (removed == mostRemoved)
            break; // the rest is for the next start
        if (takeLeftover(folder) && fs::remove_all(folder, error) != static_cast<std::uintmax_t>(-1))
            ++removed;
    }
    return removed;
}

} // namespace files
