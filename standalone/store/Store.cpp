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

Store::Store(fs::path file) : m_file(std::move(file)), m_state(std::make_unique<State>()) {}

Store::~Store() = default;

fs::path Store::defaultPath() {
    const char* set = std::getenv("XDG_DATA_HOME");
    const fs::path folder = set && fs::path(set).is_absolute() ? fs::path(set) : homeFolder() / ".local/share";
    return folder / "imprinter/configurations.json";
}

LoadResult Store::load() {
    *m_state = State();
    FileContent content;
    try {
        content = readFile(m_file, static_cast<std::uintmax_t>(mostBytes));
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            return {suppliedConfigurations(), {}, false};
        if (error.code() == std::errc::file_too_large)
            return keepAside(Code::tooLarge, u"are larger than a file of configurations may be");
        return keepAside(Code::unreadable, u"cannot be read (" + reason(error) + u")");
    }
    try {
        UnknownKeys unknown;
        LoadResult result{
            read(QByteArray::fromRawData(content.bytes.data(), static_cast<qsizetype>(content.bytes.size())), unknown),
            {},
            false};
        m_state->unknown = std::move(unknown);
        m_state->seen = content.fingerprint;
        return result;
    } catch (const Problem& problem) {
        const auto text = problem.text.toStdU16String();
        if (problem.code != Code::newer)
            return keepAside(problem.code, u"cannot be understood (" + text + u")");
        m_state->readOnly = true;
        const auto sentence =
            u"The configurations in " + quoted(m_file) + u" were written by a newer version of the program (" + text +
            u"). They are left as they are; the supplied configurations are shown, and changes are not saved.";
        return {suppliedConfigurations(), {{Code::newer, sentence, m_file}}, true};
    }
}

LoadResult Store::keepAside(Code code, const std::u16string& what) {
    LoadResult result{suppliedConfigurations(), {}, false};
    auto sentence = u"The configurations in " + quoted(m_file) + u" " + what + u". ";
    try {
        const auto aside = renameAside(m_file, "damaged");
        sentence += u"The file is kept as " + quoted(aside) + u"; the supplied configurations take its place.";
    } catch (const std::system_error& error) {
        m_state->readOnly = result.readOnly = true;
        sentence +=
            u"The file could not be renamed (" + reason(error) +
            u"), so that it is left as it is; the supplied configurations are shown, and changes are not saved.";
    }
    result.messages.push_back({code, sentence, m_file});
    return result;
}

std::optional<Failure> Store::save(const model::ImprinterModel& model) {
    if (m_state->readOnly)
        return Failure{Code::readOnly,
                       u"The configurations in " + quoted(m_file) + u" were left as they are, and nothing was saved.",
                       m_file};
    try {
        const auto bytes = write(model, m_state->unknown);
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
