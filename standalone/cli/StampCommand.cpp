// SPDX-License-Identifier: MIT
// `stamp` and `unstamp`, and the list of stamps: many files, one after the other or several at once.

#include "Arguments.h"
#include "Commands.h"
#include "Progress.h"
#include "TitleOptions.h"

#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <engine/Naming.h>
#include <engine/Stamper.h>
#include <files/PrivateFolder.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cli {

namespace fs = std::filesystem;

namespace {

enum class Task { stamp, unstamp, list };

/// One file of a run.
struct File {
    fs::path input;         ///< What is read.
    fs::path output;        ///< What is written.
    std::string name;       ///< What people call it.
    std::string resultName; ///< What people call the result.
    bool inPlace = false;
    bool announced = false; ///< Whether the result's name was chosen here and has to be told.
};

std::atomic<bool> isInterrupted = false;

void interrupt(int) {
    isInterrupted = true;
}

constexpr int kEndings[] = {SIGINT, SIGTERM, SIGHUP};

/// Lets a signal end the run in good order. What is ignored, as by nohup, stays so.
void catchSignals() {
    struct sigaction action {};
    action.sa_handler = interrupt;
    for (const int signal : kEndings) {
        struct sigaction before {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
    // Whoever writes is told, and cleans up.
    std::signal(SIGPIPE, SIG_IGN);
}

/// Waits until there is something to read, or the end; false where a signal ends the run.
bool awaitInput(int descriptor) {
    sigset_t endings;
    sigset_t before;
    sigemptyset(&endings);
    for (const int signal : kEndings)
        sigaddset(&endings, signal);
    // From here on they come in while it waits, and at no other moment.
    pthread_sigmask(SIG_BLOCK, &endings, &before);
    pollfd input{descriptor, POLLIN, 0};
    while (!isInterrupted && ::ppoll(&input, 1, nullptr, &before) < 0 && errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return !isInterrupted;
}

/// A folder for what comes through pipes, made when it is needed first and gone with this object.
class PipeFolder {
public:
    /// Empty where it cannot be made.
    fs::path path() {
        try {
            if (!m_folder) {
                files::PrivateFolder::removeLeftovers();
                m_folder.emplace();
            }
            return m_folder->path();
        } catch (const std::exception&) {
            return {};
        }
    }

private:
    std::optional<files::PrivateFolder> m_folder;
};

enum class Copied { all, notRead, notWritten };

Copied copyAll(int from, int to) {
    std::vector<char> buffer(64 * 1024);
    for (;;) {
        if (!awaitInput(from))
            return Copied::notRead;
        const auto got = ::read(from, buffer.data(), buffer.size());
        if (got == 0)
            return Copied::all;
        if (got < 0)
            return Copied::notRead;
        for (ssize_t at = 0; at < got;) {
            const auto put = ::write(to, buffer.data() + at, static_cast<std::size_t>(got - at));
            if (put < 0 && errno == EINTR && !isInterrupted)
                continue;
            if (put < 0)
                return Copied::notWritten;
            at += put;
        }
    }
}

/// Copies between a file and a descriptor; `writing` for one into the file.
Copied copyFile(const fs::path& file, int descriptor, bool writing) {
    const auto failed = writing ? Copied::notWritten : Copied::notRead;
    const int own =
        ::open(file.c_str(), writing ? O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC : O_RDONLY | O_CLOEXEC, 0600);
    if (own < 0)
        return failed;
    const auto copied = writing ? copyAll(descriptor, own) : copyAll(own, descriptor);
    return ::close(own) != 0 && copied == Copied::all ? failed : copied;
}

std::string inQuotes(const std::string& text) {
    return '"' + text + '"';
}

/// What tells files apart whatever they are called; none where there is no such file.
std::optional<std::pair<dev_t, ino_t>> identityOf(const fs::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return std::pair(status.st_dev, status.st_ino);
}

/// A sentence about two files of which one would be lost, or stamped twice; empty where there are none.
std::string collisionIn(const std::vector<File>& files) {
    std::map<fs::path, const File*> byOutput;
    std::map<std::pair<dev_t, ino_t>, const File*> byInput;
    for (const auto& file : files) {
        if (const auto identity = identityOf(file.input))
            if (const auto [other, isNew] = byInput.emplace(*identity, &file); !isNew)
                return inQuotes(other->second->name) + " and " + inQuotes(file.name) + " are the same file";
        if (const auto [other, isNew] = byOutput.emplace(file.output.lexically_normal(), &file); !isNew)
            return inQuotes(other->second->name) + " and " + inQuotes(file.name) + " would both be stamped into " +
                   inQuotes(file.resultName);
    }
    for (const auto& file : files) {
        const auto identity = identityOf(file.output);
        const auto other = identity ? byInput.find(*identity) : byInput.end();
        // A file that is its own output is the engine's to refuse.
        if (other != byInput.end() && other->second != &file)
            return inQuotes(file.name) + " would be stamped into " + inQuotes(file.resultName) +
                   ", which is the input " + inQuotes(other->second->name);
    }
    return {};
}

/// Whether the configurations say that an item is duplicated before it is stamped.
bool duplicates(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& configurations) {
    const auto chosen = platform::NSUserDefaults::standardUserDefaults().stringForKey(u"ImprinterDuplicateRecord");
    // An original is only replaced where its owner said so.
    const bool byDefault =
        !chosen || platform::NSUserDefaults::standardUserDefaults().boolForKey(u"ImprinterDuplicateRecord");
    return configurations.empty() ||
           std::any_of(configurations.begin(), configurations.end(), [&](const auto& configuration) {
               switch (host::DuplicateRecord(configuration->duplicateRecord())) {
               case host::DuplicateRecord::followDefault:
                   return byDefault;
               case host::DuplicateRecord::duplicate:
                   return true;
               default:
                   return false;
               }
           });
}

/// Whether several results can go into a folder of this name: it is one, or does not look like a document.
bool canBeFolder(const fs::path& output) {
    std::error_code none;
    if (fs::is_directory(output, none) || !output.has_filename())
        return true;
    if (fs::exists(output, none))
        return false;
    auto extension = output.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    static const std::set<std::string> documents{".pdf", ".png", ".jpg", ".jpeg", ".tif", ".tiff"};
    return documents.count(extension) == 0;
}

/// One line about a file that failed.
std::string sentenceOf(const engine::Outcome& outcome) {
    auto sentence = outcome.sentence;
    if (outcome.code == engine::Code::nothingToStamp)
        for (const auto& reason : outcome.warnings)
            sentence += ' ' + reason.sentence();
    std::error_code none;
    if (outcome.code == engine::Code::unreadable && fs::is_other(outcome.path, none))
        sentence += " What comes through a pipe is read from the standard input, which is called \"-\".";
    if (outcome.code == engine::Code::writeProtected)
        sentence += " It is replaced where --force says so.";
    return sentence;
}

int statusOf(engine::Code code) {
    switch (code) {
    case engine::Code::ok:
        return done;
    case engine::Code::cannotWrite:
    case engine::Code::writeProtected:
    case engine::Code::sameFile:
        return cannotWrite;
    case engine::Code::cancelled:
        return interrupted;
    default:
        return badInput;
    }
}

const char* nameOf(engine::Code code) {
    using engine::Code;
    switch (code) {
    case Code::ok:
        return "ok";
    case Code::unreadable:
        return "unreadable";
    case Code::otherKind:
    case Code::unsupported:
        return "unsupported";
    case Code::damaged:
        return "damaged";
    case Code::encrypted:
        return "encrypted";
    case Code::notPermitted:
        return "notPermitted";
    case Code::isSigned:
        return "signed";
    case Code::certified:
        return "certified";
    case Code::tooLarge:
        return "tooLarge";
    case Code::noMemory:
        return "noMemory";
    case Code::nothingToStamp:
        return "nothingToStamp";
    case Code::nothingToRemove:
        return "nothingToRemove";
    case Code::sameFile:
        return "sameFile";
    case Code::writeProtected:
        return "writeProtected";
    case Code::cannotWrite:
        return "cannotWrite";
    case Code::changed:
        return "changed";
    case Code::cancelled:
        return "cancelled";
    }
    return "failed";
}

/// Pages as `--pages` takes them: "1-3,7". `pages` ascend.
std::string listOf(const std::vector<std::size_t>& pages) {
    std::string list;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const auto first = pages[i];
        while (i + 1 < pages.size() && pages[i + 1] == pages[i] + 1)
            ++i;
        list += (list.empty() ? "" : ",") + std::to_string(first);
        if (pages[i] != first)
            list += '-' + std::to_string(pages[i]);
    }
    return list;
}

/// A whole number of at least 1; none for anything else.
std::optional<std::size_t> countIn(const std::string& text) {
    std::size_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && value > 0 ? std::optional(value)
                                                                                        : std::nullopt;
}

/// The files of a run, with what is read from and written to pipes put into files.
class Run {
public:
    Run(Task task, const fs::path& store, Arguments arguments)
        : m_task(task), m_store(store), m_arguments(std::move(arguments)), m_json(m_arguments.has("--json")) {}

    int go() {
        if (const auto problem = findJob(); !problem.empty())
            return complain(usage, problem);
        const auto configurations = m_arguments.values("--configuration");
        if (!configurations.empty()) {
            const auto known = readStore(m_store);
            if (!known)
                return noConfiguration;
            for (const auto& name : configurations) {
                auto found = configurationCalled(name, *known);
                if (!found)
                    return noConfiguration;
                m_job.configurations.push_back(std::move(found));
            }
        }
        if (m_task == Task::list || m_arguments.has("--stamp")) {
            // Without a store stamps are called by their identifiers.
            if (!isLost(m_store))
                m_known = readStore(m_store).value_or(Configurations());
            for (const auto& name : m_arguments.values("--stamp"))
                removeStampCalled(name);
        }
        std::string wrongLooks;
        if (auto described = configurationFromOptions(m_arguments, wrongLooks))
            m_job.configurations.push_back(std::move(described));
        if (!wrongLooks.empty())
            return complain(usage, wrongLooks);
        if (const int status = readPassword(); status != done)
            return status;
        if (const auto problem = findFiles(); !problem.empty())
            return complain(usage, problem);
        catchSignals();
        if (const int status = openPipes(); status != done)
            return status;
        if (const auto collision = m_task == Task::list ? "" : collisionIn(m_files); !collision.empty())
            return complain(usage, collision);
        if (m_intoFolder && !m_job.dryRun) {
            const fs::path folder = m_arguments.value("--output");
            std::error_code error;
            fs::create_directories(folder, error);
            if (error)
                return complain(cannotWrite, folder.string() + ": " + error.message());
        }
        numberFiles();
        work();
        return m_status;
    }

private:
    /// A sentence about what is wrong with the options; empty where nothing is.
    std::string findJob() {
        const auto& a = m_arguments;
        if (m_task == Task::stamp && !a.has("--configuration") && !a.has("--title"))
            return "which configuration? Name one with --configuration, `imprinter list` shows them, or say what is to "
                   "be stamped with --title";
        if (m_task == Task::list)
            for (const auto& [option, value] : a.options)
                if (option != "--list" && option != "--json" && option != "--jobs" && option != "--password-file")
                    return "--list only looks; " + option + " has no place beside it";
        if (a.files.empty())
            return m_task == Task::stamp  ? "which file is to be stamped?"
                   : m_task == Task::list ? "which file's stamps are to be listed?"
                                          : "which file is to be freed from stamps?";
        if (a.has("--output") && a.value("--output").empty())
            return "where to? Name a file, or a folder for several files, with --output";
        if (a.has("--output") && a.has("--in-place"))
            return "--output and --in-place exclude each other";
        if (a.has("--incremental") && a.has("--rewrite"))
            return "--incremental and --rewrite exclude each other";
        if (std::count(a.files.begin(), a.files.end(), "-") > 1)
            return "the standard input can be read once only";
        const bool piped = a.files.front() == "-" && a.files.size() == 1 && !a.has("--output");
        m_toStdout = a.value("--output") == "-" || (piped && m_task != Task::list);
        if (m_toStdout && (a.files.size() > 1 || m_json))
            return m_json ? "--json and a result on the standard output exclude each other"
                          : "only one result can be written to the standard output";
        if (a.has("--in-place") && std::count(a.files.begin(), a.files.end(), "-") > 0)
            return "the standard input cannot be stamped in place";
        m_job.saving = a.has("--incremental") ? engine::Saving::update
                       : a.has("--rewrite")   ? engine::Saving::rewrite
                                              : engine::Saving::automatic;
        m_job.allowSigned = a.has("--allow-signed");
        m_job.replace = a.has("--replace");
        m_job.force = a.has("--force");
        m_job.dryRun = a.has("--dry-run");
        // Several lists are one.
        std::string pages;
        for (const auto& list : a.values("--pages")) {
            if (!engine::readPageRanges(list))
                return "--pages takes a list such as 1-3,7,10-, not " + inQuotes(list);
            pages += (pages.empty() ? "" : ",") + list;
        }
        if (a.has("--pages"))
            m_job.pages = engine::readPageRanges(pages);
        for (const char* option : {"--jobs", "--first-number"})
            if (a.has(option) && !countIn(a.value(option)))
                return std::string(option) + " takes a whole number from 1, not " + inQuotes(a.value(option));
        m_job.firstNumber = a.has("--first-number") ? *countIn(a.value("--first-number")) : 1;
        constexpr std::size_t mostJobs = 64;
        m_jobs = std::min({a.has("--jobs") ? *countIn(a.value("--jobs")) : 1, a.files.size(), mostJobs});
        const auto cores = std::max(1U, std::thread::hardware_concurrency());
        m_job.threads = std::max(1U, cores / static_cast<unsigned>(m_jobs));
        return {};
    }

    int readPassword() {
        if (!m_arguments.has("--password-file"))
            return done;
        const auto path = m_arguments.value("--password-file");
        std::ifstream stream(path, std::ios::binary);
        if (!std::getline(stream, m_job.password) && !stream.eof())
            return complain(badInput, path + ": The file cannot be read.");
        if (m_job.password.ends_with('\r'))
            m_job.password.pop_back();
        // The mark that editors of other systems begin a file with.
        if (const std::string mark = "\xEF\xBB\xBF"; m_job.password.starts_with(mark))
            m_job.password.erase(0, mark.size());
        return done;
    }

    std::string findFiles() {
        const auto& a = m_arguments;
        const fs::path output = a.value("--output");
        const bool given = a.has("--output") && !m_toStdout;
        std::error_code none;
        m_intoFolder = given && (a.files.size() > 1 || fs::is_directory(output, none) || !output.has_filename());
        if (m_intoFolder && !canBeFolder(output))
            return inQuotes(output.string()) + " is no folder; several files need one";
        const bool inPlace = a.has("--in-place") ||
                             (!given && !m_toStdout && m_task == Task::stamp && !duplicates(m_job.configurations));
        std::set<fs::path> taken;
        for (const auto& name : a.files) {
            File file;
            const bool piped = name == "-";
            file.name = piped ? "standard input" : name;
            file.input = piped ? fs::path() : fs::path(name);
            if (m_task == Task::list) {
                // There is no result.
            } else if (m_toStdout) {
                file.resultName = "standard output";
            } else if (given) {
                if (piped && m_intoFolder)
                    return "the standard input needs a file of its own with --output";
                file.output = m_intoFolder ? output / file.input.filename() : output;
            } else if (inPlace && !piped) {
                file.output = file.input;
                file.inPlace = true;
            } else if (piped) {
                return "where to? The standard input needs --output among several files";
            } else {
                file.output =
                    engine::nameOfDuplicate(file.input, m_task == Task::stamp ? "-stamped" : "-unstamped", taken);
                file.announced = true;
            }
            if (!file.output.empty())
                file.resultName = file.output.string();
            taken.insert(file.output);
            m_files.push_back(std::move(file));
        }
        return {};
    }

    int openPipes() {
        for (auto& file : m_files) {
            const bool needsOutput = file.output.empty() && m_task != Task::list;
            if (!file.input.empty() && !needsOutput)
                continue;
            if (m_pipes.path().empty())
                return complain(cannotWrite, "a folder for temporary files cannot be made");
            if (file.input.empty()) {
                file.input = m_pipes.path() / "input";
                const auto copied = copyFile(file.input, STDIN_FILENO, true);
                if (copied != Copied::all && isInterrupted)
                    return interrupted;
                if (copied == Copied::notRead)
                    return complain(badInput, "standard input: The file cannot be read.");
                if (copied == Copied::notWritten)
                    return complain(cannotWrite, "the standard input cannot be kept in " +
                                                     file.input.parent_path().string() + ": " +
                                                     std::generic_category().message(errno));
            }
            if (needsOutput)
                file.output = m_pipes.path() / "output";
        }
        return done;
    }

    /// Gives each file the number its first page has.
    void numberFiles() {
        m_firstNumbers.assign(m_files.size(), m_job.firstNumber);
        if (m_task != Task::stamp || m_files.size() < 2 || !engine::usesRunningNumber(m_job.configurations))
            return;
        auto next = m_job.firstNumber;
        auto job = m_job;
        for (std::size_t i = 0; i < m_files.size(); ++i) {
            m_firstNumbers[i] = next;
            job.input = m_files[i].input;
            next += engine::countPages(job);
        }
    }

    void work() {
        m_progress.emplace(m_files.size());
        std::atomic<std::size_t> next = 0;
        const auto takeTurns = [&] {
            for (auto i = next++; i < m_files.size() && !isInterrupted; i = next++)
                workOn(i);
        };
        if (m_jobs > 1)
            engine::prepareForThreads();
        std::vector<std::thread> others;
        try {
            for (std::size_t i = 1; i < m_jobs; ++i)
                others.emplace_back(takeTurns);
        } catch (const std::system_error&) {
            // Fewer take longer, and do the same.
        }
        takeTurns();
        for (auto& other : others)
            other.join();
        m_progress.reset();
        if (isInterrupted)
            m_status = interrupted;
    }

    void workOn(std::size_t number) {
        const auto& file = m_files[number];
        try {
            report(file, outcomeOf(number));
        } catch (const std::exception&) {
            // All that may fail beyond the work itself takes memory.
            engine::Outcome outcome;
            outcome.code = engine::Code::noMemory;
            outcome.sentence = "There is not enough memory for this file.";
            outcome.path = file.input;
            report(file, outcome);
        }
    }

    engine::Outcome outcomeOf(std::size_t number) {
        const auto& file = m_files[number];
        auto job = m_job;
        job.input = file.input;
        job.output = file.output;
        job.inPlace = file.inPlace;
        job.mayReplace = !file.announced;
        job.firstNumber = m_firstNumbers[number];
        if (file.name == "standard input")
            job.recordName = u"standard input";
        job.progress = [&](std::size_t done, std::size_t all) {
            m_progress->tell(number, all == 0 ? 0 : static_cast<double>(done) / static_cast<double>(all));
            return !isInterrupted;
        };
        auto outcome = m_task == Task::stamp  ? engine::stampFile(job)
                       : m_task == Task::list ? engine::findStamps(job)
                                              : engine::unstampFile(job);
        if (outcome && m_toStdout && !m_job.dryRun && copyFile(file.output, STDOUT_FILENO, false) != Copied::all) {
            outcome.code = isInterrupted ? engine::Code::cancelled : engine::Code::cannotWrite;
            outcome.sentence = "The output cannot be written.";
            outcome.path = file.output;
        }
        m_progress->tell(number, 1);
        return outcome;
    }

    void report(const File& file, const engine::Outcome& outcome) {
        const std::lock_guard lock(m_mutex);
        const auto concerned = outcome.path == file.output && !outcome ? file.resultName : file.name;
        if (!outcome)
            m_status = std::max(m_status, statusOf(outcome.code));
        m_progress->hide();
        if (m_json) {
            std::string line = "{\"file\": " + jsonText(file.name) + ", \"status\": \"" + nameOf(outcome.code) + "\"";
            if (outcome && m_task != Task::list)
                line += ", \"output\": " + jsonText(file.resultName);
            if (outcome)
                line += ", \"pages\": " + std::to_string(outcome.pagesStamped);
            if (outcome && m_task == Task::list) {
                std::string stamps;
                for (const auto& stamp : outcome.stamps)
                    stamps += (stamps.empty() ? "" : ", ") + ("{\"name\": " + jsonText(nameOfStamp(stamp))) +
                              ", \"identifier\": " + jsonText(stamp.identifier) + ", \"pages\": \"" +
                              listOf(stamp.pages) + "\"}";
                line += ", \"stamps\": [" + stamps + ']';
            }
            line +=
                ", \"message\": " + jsonText(outcome ? outcome.sentence : sentenceOf(outcome)) + ", \"warnings\": [";
            for (const auto& warning : outcome.warnings)
                line += (&warning == &outcome.warnings.front() ? "" : ", ") + jsonText(warning.sentence());
            std::cout << line + "]}\n" << std::flush;
            return;
        }
        if (!outcome) {
            if (outcome.code != engine::Code::cancelled)
                complain(0, concerned + ": " + sentenceOf(outcome));
            return;
        }
        for (const auto& warning : outcome.warnings)
            complain(0, file.name + ": " + warning.sentence());
        if (m_task == Task::list) {
            std::string text = outcome.stamps.empty() ? file.name + ": no stamps\n" : "";
            for (const auto& stamp : outcome.stamps)
                text += file.name + ": " + inQuotes(nameOfStamp(stamp)) +
                        (stamp.pages.size() == 1 ? " on page " : " on pages ") + listOf(stamp.pages) + '\n';
            std::cout << text << std::flush;
        } else if (m_job.dryRun)
            std::cout << file.name + ": " + outcome.sentence + '\n' << std::flush;
        else if (file.announced)
            std::cout << file.resultName + '\n' << std::flush;
    }

    /// Has the stamps of that name removed.
    void removeStampCalled(const std::string& name) {
        const auto text = platform::fromUtf8(name);
        for (const auto& configuration : m_known)
            if (configuration->name() == text || configuration->uniqueID() == text)
                m_job.configurations.push_back(configuration);
        m_job.removed.push_back(titleCalled(name).value_or(name));
    }

    /// What people call a stamp: what `removeStampCalled` understands, and takes for no other.
    std::string nameOfStamp(const engine::FoundStamp& stamp) const {
        if (const auto title = nameOfTitle(stamp.identifier))
            return *title;
        const auto identifier = platform::fromUtf8(stamp.identifier);
        const auto bears = [&](const auto& configuration) { return configuration->uniqueID() == identifier; };
        const auto found = std::find_if(m_known.begin(), m_known.end(), bears);
        if (found == m_known.end())
            return stamp.identifier;
        const auto name = (*found)->name();
        const auto isUnique = std::count_if(m_known.begin(), m_known.end(), [&](const auto& configuration) {
                                  return configuration->name() == name;
                              }) == 1;
        return isUnique && !name.empty() ? platform::toUtf8(name) : stamp.identifier;
    }

    static std::string jsonText(const std::string& text) {
        std::string result = "\"";
        // What is no UTF-8 in a file's name would be none in the line either.
        for (const char c : platform::toUtf8(platform::fromUtf8(text))) {
            if (c == '"' || c == '\\') {
                result += '\\';
                result += c;
            } else if (static_cast<unsigned char>(c) < 0x20) {
                char code[8];
                std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
                result += code;
            } else {
                result += c;
            }
        }
        return result + '"';
    }

    Task m_task;
    fs::path m_store;
    Arguments m_arguments;
    bool m_json;
    engine::StampJob m_job;
    Configurations m_known; ///< Where stamps are called by names.
    std::size_t m_jobs = 1;
    bool m_toStdout = false;
    bool m_intoFolder = false;
    PipeFolder m_pipes;
    std::vector<File> m_files;
    std::vector<std::size_t> m_firstNumbers;
    std::optional<Progress> m_progress;
    std::mutex m_mutex;
    int m_status = done;
};

} // namespace

int stamp(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    std::vector<std::string> withValue{"--configuration", "--output",       "--pages",
                                       "--password-file", "--first-number", "--jobs"};
    withValue.insert(withValue.end(), titleOptions().begin(), titleOptions().end());
    auto sorted = sortArguments(
        arguments, withValue,
        {"--in-place", "--force", "--allow-signed", "--replace", "--json", "--incremental", "--rewrite", "--dry-run"},
        problem);
    return sorted ? Run(Task::stamp, store, std::move(*sorted)).go() : complain(usage, problem);
}

int unstamp(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    auto sorted = sortArguments(
        arguments, {"--configuration", "--stamp", "--output", "--pages", "--password-file", "--jobs"},
        {"--list", "--in-place", "--force", "--allow-signed", "--json", "--incremental", "--rewrite", "--dry-run"},
        problem);
    if (!sorted)
        return complain(usage, problem);
    const auto task = sorted->has("--list") ? Task::list : Task::unstamp;
    return Run(task, store, std::move(*sorted)).go();
}

} // namespace cli
