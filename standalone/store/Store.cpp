// SPDX-License-Identifier: MIT
#include <store/Store.h>

#include "File.h"
#include "Format.h"

#include <Foundation/NSString.h>

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace store {

namespace fs = std::filesystem;

namespace {

std::u16string quoted(const fs::path& path) {
    return u"“" + platform::fromUtf8(path.string()) + u"”";
}

std::u16string reason(const std::system_error& error) {
    return platform::fromUtf8(error.code().message());
}

/// Renames the file if it may be, and answers whether it did. Ends `sentence` with what became of the file.
bool keepAside(const fs::path& file, bool mayBeRenamed, std::u16string& sentence) {
    std::u16string left = u"The file is left as it is";
    if (mayBeRenamed) {
        try {
            const auto aside = renameAside(file, "damaged");
            sentence += u". The file is kept as " + quoted(aside) + u"; the supplied configurations take its place.";
            return true;
        } catch (const std::system_error& error) {
            left = u"The file could not be renamed (" + reason(error) + u"), so that it is left as it is";
        }
    }
    sentence += u". " + left + u"; the supplied configurations are shown, and changes are not saved.";
    return false;
}

fs::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home)
        return home;
    const auto* user = ::getpwuid(::getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

} // namespace

struct Store::State {
    UnknownKeys unknown;
    /// The state of the file that was loaded or saved last; none where there was no file.
    std::optional<Fingerprint> seen;
    bool readOnly = false;
};

/// What is in the place of the file.
struct Store::Reading {
    /// The supplied ones where there is a problem.
    std::vector<std::shared_ptr<model::Configuration>> configurations;
    State state;
    std::optional<Code> problem;
    /// The beginning of a sentence about the problem; what became of the file has to follow.
    std::u16string sentence;
    /// Whether it is a file that was meant to hold configurations, which may be kept aside.
    bool mayBeRenamed = false;
};

Store::Store(fs::path file, std::uintmax_t mostBytes)
    : m_file(std::move(file)), m_mostBytes(mostBytes), m_state(std::make_unique<State>()) {}

Store::~Store() = default;

fs::path Store::defaultPath() {
    const char* set = std::getenv("XDG_DATA_HOME");
    const fs::path folder = set && fs::path(set).is_absolute() ? fs::path(set) : homeFolder() / ".local/share";
    return folder / "imprinter/configurations.json";
}

Store::Reading Store::readFile() const {
    const auto stopped = [](Code code, std::u16string sentence, bool mayBeRenamed) {
        return Reading{suppliedConfigurations(), {}, code, std::move(sentence), mayBeRenamed};
    };
    const auto configurations = u"The configurations in " + quoted(m_file);
    std::error_code none;
    const auto isDefault = fs::absolute(m_file, none).lexically_normal() == defaultPath().lexically_normal();
    const auto status = fs::status(m_file, none);
    if (fs::exists(status) && !fs::is_regular_file(status))
        return stopped(Code::foreign,
                       quoted(m_file) + u" is not a file of configurations (it is " +
                           (fs::is_directory(status) ? u"a folder)" : u"no ordinary file)"),
                       false);
    FileContent content;
    try {
        content = store::readFile(m_file, m_mostBytes);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            return {suppliedConfigurations(), {}, std::nullopt, {}, false};
        const bool renamed = isDefault && fs::is_regular_file(status);
        if (error.code() == std::errc::file_too_large)
            return stopped(Code::tooLarge, configurations + u" are larger than a file of configurations may be",
                           renamed);
        return stopped(Code::unreadable, configurations + u" cannot be read (" + reason(error) + u")", renamed);
    }
    const auto bytes = QByteArray::fromRawData(content.bytes.data(), static_cast<qsizetype>(content.bytes.size()));
    try {
        Reading reading;
        reading.configurations = store::read(bytes, reading.state.unknown);
        reading.state.seen = content.fingerprint;
        return reading;
    } catch (const Problem& problem) {
        const auto why = u" (" + problem.text.toStdU16String() + u")";
        if (problem.code == Code::newer)
            return stopped(Code::newer, configurations + u" were written by a newer version of the program" + why,
                           false);
        if (!isDefault && !looksLikeConfigurations(bytes))
            return stopped(Code::foreign, quoted(m_file) + u" is not a file of configurations" + why, false);
        return stopped(problem.code, configurations + u" cannot be understood" + why, true);
    }
}

LoadResult Store::read() const {
    auto reading = readFile();
    LoadResult result{std::move(reading.configurations), {}, true, reading.problem.has_value()};
    if (reading.problem)
        result.messages.push_back({*reading.problem, reading.sentence + u". The file is left as it is.", m_file});
    return result;
}

LoadResult Store::load() {
    auto reading = readFile();
    LoadResult result{std::move(reading.configurations), {}, false, reading.problem.has_value()};
    if (reading.problem) {
        reading.state.readOnly = result.readOnly = !keepAside(m_file, reading.mayBeRenamed, reading.sentence);
        result.messages.push_back({*reading.problem, reading.sentence, m_file});
    }
    *m_state = std::move(reading.state);
    if (!result.readOnly)
        removeLeftovers(m_file);
    return result;
}

std::optional<Failure> Store::save(const model::ImprinterModel& model) {
    if (m_state->readOnly)
        return Failure{Code::readOnly, quoted(m_file) + u" is left as it is, and nothing was saved.", m_file};
    try {
        const auto bytes = write(model, m_state->unknown, static_cast<qsizetype>(m_mostBytes));
        if (!replaceFile(m_file, {bytes.data(), static_cast<std::size_t>(bytes.size())}, m_state->seen))
            return Failure{Code::changedElsewhere,
                           u"Another program has written the configurations in " + quoted(m_file) +
                               u", and nothing was saved.",
                           m_file};
    } catch (const Problem& problem) {
        return Failure{problem.code, problem.text.toStdU16String(), m_file};
    } catch (const std::system_error& error) {
        return Failure{Code::unwritable,
                       u"The configurations could not be saved in " + quoted(m_file) + u" (" + reason(error) + u").",
                       m_file};
    }
    return std::nullopt;
}

} // namespace store
