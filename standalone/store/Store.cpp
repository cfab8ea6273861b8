// SPDX-License-Identifier: MIT
#include <store/Store.h>

#include "File.h"
#include "Format.h"
#include "Journal.h"
#include "Merge.h"

#include <QUuid>

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

void sayLeft(Failure& failure) {
    failure.sentence += u". The file is left as it is.";
    failure.details.push_back({Detail::Kind::left, {}});
}

/// Renames the file if it may be, and answers whether it did. Ends what `failure` says with what became of the file.
bool keepAside(const fs::path& file, bool mayBeRenamed, bool isUnderstoodInPart, Failure& failure) {
    auto& sentence = failure.sentence;
    std::u16string left = u"The file is left as it is";
    if (mayBeRenamed) {
        try {
            const auto aside = renameAside(targetOf(file), "damaged");
            sentence += u". The file is kept as " + quoted(aside) + u"; the supplied configurations take its place.";
            failure.details.push_back({Detail::Kind::keptAside, platform::fromUtf8(aside.string())});
            return true;
        } catch (const std::system_error& error) {
            left = u"The file could not be renamed (" + reason(error) + u"), so that it is left as it is";
            failure.details.push_back({Detail::Kind::notRenamed, reason(error)});
        }
    }
    failure.details.push_back({Detail::Kind::left, {}});
    failure.details.push_back(
        {isUnderstoodInPart ? Detail::Kind::shownAsFarAsItGoes : Detail::Kind::suppliedShown, {}});
    sentence += u". " + left +
                (isUnderstoodInPart ? u"; its configurations are shown as far as they can be read"
                                    : u"; the supplied configurations are shown") +
                u", and changes are not saved.";
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
    /// What the file had in that state; none before the file was loaded.
    std::optional<QByteArray> baseBytes;
    /// The same, made when it is needed; without bytes it is the supplied configurations.
    mutable std::optional<Forms> base;
    bool readOnly = false;
    /// The last file may not be on the disk yet.
    bool unsynced = false;
    int versions = mostVersions;
    std::unique_ptr<OwnedFile> journal;
    std::vector<Notice> notices;
    std::function<void()> onWait;
};

/// What is in the place of the file.
struct Store::Reading {
    /// The supplied ones where there is a problem, or what a newer version wrote, as far as it is understood.
    std::vector<std::shared_ptr<model::Configuration>> configurations;
    State state;
    /// Its sentence is only begun; what became of the file has to follow.
    std::optional<Failure> problem;
    bool isUnderstoodInPart = false;
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
    const auto supplied = [] {
        Reading reading;
        reading.configurations = suppliedConfigurations();
        reading.state.baseBytes.emplace();
        return reading;
    };
    const auto stopped = [&](Code code, std::u16string sentence, bool mayBeRenamed, std::vector<Detail> details = {}) {
        auto reading = supplied();
        reading.problem = Failure{code, std::move(sentence), m_file, std::move(details)};
        reading.mayBeRenamed = mayBeRenamed;
        return reading;
    };
    const auto configurations = u"The configurations in " + quoted(m_file);
    std::error_code none;
    const auto isDefault = fs::absolute(m_file, none).lexically_normal() == defaultPath().lexically_normal();
    const auto status = fs::status(m_file, none);
    if (fs::exists(status) && !fs::is_regular_file(status))
        return stopped(Code::foreign,
                       quoted(m_file) + u" is not a file of configurations (it is " +
                           (fs::is_directory(status) ? u"a folder)" : u"no ordinary file)"),
                       false,
                       {{fs::is_directory(status) ? Detail::Kind::isFolder : Detail::Kind::isNoOrdinaryFile, {}}});
    FileContent content;
    try {
        content = store::readFile(m_file, m_mostBytes);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            return supplied();
        // What somebody may not read stays unreadable; any other error may be gone the next time.
        const bool renamed =
            isDefault && fs::is_regular_file(status) &&
            (error.code() == std::errc::permission_denied || error.code() == std::errc::operation_not_permitted ||
             error.code() == std::errc::file_too_large);
        if (error.code() == std::errc::file_too_large)
            return stopped(Code::tooLarge, configurations + u" are larger than a file of configurations may be",
                           renamed);
        return stopped(Code::unreadable, configurations + u" cannot be read (" + reason(error) + u")", renamed,
                       {{Detail::Kind::reason, reason(error)}});
    }
    const auto bytes = QByteArray::fromRawData(content.bytes.data(), static_cast<qsizetype>(content.bytes.size()));
    try {
        Reading reading;
        reading.configurations = store::read(bytes, reading.state.unknown);
        reading.state.seen = content.fingerprint;
        reading.state.baseBytes = QByteArray(bytes.data(), bytes.size());
        return reading;
    } catch (const Problem& problem) {
        const auto why = u" (" + problem.text.toStdU16String() + u")";
        if (problem.code == Code::newer) {
            auto reading =
                stopped(Code::newer, configurations + u" were written by a newer version of the program" + why, false,
                        problem.details);
            if (auto understood = readNewer(bytes)) {
                reading.configurations = std::move(*understood);
                reading.isUnderstoodInPart = true;
            }
            return reading;
        }
        if (!isDefault && !looksLikeConfigurations(bytes))
            return stopped(Code::foreign, quoted(m_file) + u" is not a file of configurations" + why, false,
                           problem.details);
        return stopped(problem.code, configurations + u" cannot be understood" + why, true, problem.details);
    }
}

LoadResult Store::read() const {
    auto reading = readFile();
    LoadResult result{std::move(reading.configurations), {}, true, reading.problem.has_value()};
    if (reading.problem) {
        sayLeft(*reading.problem);
        result.messages.push_back(std::move(*reading.problem));
    }
    return result;
}

LoadResult Store::load(Damaged damaged) {
    auto reading = readFile();
    LoadResult result{std::move(reading.configurations), {}, false, reading.problem.has_value()};
    if (reading.problem) {
        if (damaged == Damaged::leave)
            sayLeft(*reading.problem);
        reading.state.readOnly = result.readOnly =
            damaged == Damaged::leave ||
            !keepAside(m_file, reading.mayBeRenamed, reading.isUnderstoodInPart, *reading.problem);
        result.messages.push_back(*reading.problem);
    }
    // A store that is begun says so, for programs that still know one that was there before.
    if (reading.state.baseBytes && reading.state.baseBytes->isEmpty() && m_state->versions > 0)
        reading.state.unknown.document[key::lineage] = QUuid::createUuid().toString(QUuid::WithoutBraces);
    reading.state.versions = m_state->versions;
    reading.state.journal = std::move(m_state->journal);
    reading.state.onWait = std::move(m_state->onWait);
    *m_state = std::move(reading.state);
    if (!result.readOnly)
        removeLeftovers(m_file);
    return result;
}

Failure Store::failureAbout(Code code, std::u16string sentence, std::vector<Detail> details) const {
    return {code, std::move(sentence), m_file, std::move(details)};
}

std::optional<Failure> Store::guarded(const std::function<std::optional<Failure>()>& work) const {
    try {
        return work();
    } catch (const Problem& problem) {
        return failureAbout(problem.code, problem.text.toStdU16String(), problem.details);
    } catch (const Busy&) {
        return failureAbout(Code::busy, u"Another program has been writing the configurations in " + quoted(m_file) +
                                            u" for " + platform::fromUtf8(std::to_string(longestWait.count())) +
                                            u" seconds, and nothing was saved.");
    } catch (const std::system_error& error) {
        return failureAbout(Code::unwritable,
                            u"The configurations could not be saved in " + quoted(m_file) + u" (" + reason(error) +
                                u").",
                            {{Detail::Kind::reason, reason(error)}});
    }
}

namespace {

/// Without bytes those of the supplied configurations.
Forms formsOrSupplied(const QByteArray& bytes) {
    if (!bytes.isEmpty())
        return formsIn(bytes);
    model::ImprinterModel model;
    model.setConfigurations(suppliedConfigurations());
    return formsOf(model, {});
}

} // namespace

const Forms& Store::base() const {
    auto& base = m_state->base;
    if (!base)
        base = formsOrSupplied(*m_state->baseBytes);
    return *base;
}

Forms Store::commonBase(const Forms& theirs) const {
    auto common = base();
    if (m_state->baseBytes->isEmpty() || common.document.value(key::lineage) == theirs.document.value(key::lineage))
        return common;
    std::erase_if(common.byIdentifier, [&](const auto& entry) { return !theirs.byIdentifier.contains(entry.first); });
    std::erase_if(common.order, [&](const auto& identifier) { return !theirs.byIdentifier.contains(identifier); });
    return common;
}

namespace {

/// The answers to what is contested; none where there is no answer to one.
bool decide(const std::vector<Contested>& contested, const Ask& ask, std::vector<Decision>& decisions) {
    const auto nameIn = [](const QJsonObject& form) { return form.value(key::name).toString().toStdU16String(); };
    for (const auto& about : contested) {
        const auto choice = ask ? ask({nameIn(about.mine), nameIn(about.theirs)}) : std::nullopt;
        if (!choice)
            return false;
        decisions.push_back({about, *choice});
    }
    return true;
}

std::u16string wordFor(Notice::Deleted where) {
    switch (where) {
    case Notice::Deleted::here:
        return u"here";
    case Notice::Deleted::byAnotherProgram:
        return u"by another program";
    case Notice::Deleted::beforeTheProgramEnded:
        return u"before the program ended";
    case Notice::Deleted::since:
        return u"since";
    }
    return {};
}

/// What to tell about what was joined. `here` and `there` are where the two sides did what they did.
std::vector<Notice> noticesOf(const Merged& merged, Notice::Deleted here, Notice::Deleted there) {
    const auto nameIn = [](const QJsonObject& form) { return form.value(key::name).toString().toStdU16String(); };
    std::vector<Notice> notices;
    for (const auto& [form, deletedHere, combined] : merged.outlived) {
        const auto deleted = deletedHere ? here : there;
        const auto used = wordFor(deletedHere ? there : here);
        const auto name = nameIn(form);
        const auto what =
            combined.isEmpty() ? u" and changed " + used : u" and put into “" + nameIn(combined) + u"” " + used;
        notices.push_back({combined.isEmpty() ? Notice::Kind::outlivedDeletion : Notice::Kind::outlivedDeletionByUse,
                           name, nameIn(combined), deleted,
                           u"“" + name + u"” was deleted " + wordFor(deleted) + what + u"; it was kept."});
    }
    for (const auto& [form, combined] : merged.leftOut)
        notices.push_back({Notice::Kind::leftOut, nameIn(form), nameIn(combined), here,
                           u"“" + nameIn(form) + u"” is no member of “" + nameIn(combined) +
                               u"”, since it is a combined configuration now."});
    return notices;
}

std::u16string namesOf(const std::vector<Contested>& contested) {
    std::u16string names;
    for (const auto& about : contested)
        names += (names.empty() ? u"“" : u", “") + about.mine.value(key::name).toString().toStdU16String() + u"”";
    return names;
}

std::vector<Detail> concerned(const std::vector<Contested>& contested) {
    std::vector<Detail> details;
    for (const auto& about : contested)
        details.push_back({Detail::Kind::concerns, about.mine.value(key::name).toString().toStdU16String()});
    return details;
}

/// Takes what is unknown about `from` and its font runs over to `to` and its, in their order.
void moveUnknown(UnknownKeys& unknown, const UnknownKeys& found, const std::shared_ptr<model::Configuration>& from,
                 const std::shared_ptr<model::Configuration>& to) {
    const auto move = [&](const auto& source, const auto& target) {
        unknown.objects.erase(std::shared_ptr<const platform::NSObject>(target));
        if (const auto keys = found.objects.find(std::shared_ptr<const platform::NSObject>(source));
            keys != found.objects.end())
            unknown.objects.emplace(std::shared_ptr<const platform::NSObject>(target), keys->second);
    };
    move(from, to);
    const auto sources = from->titleTokens();
    const auto targets = to->titleTokens();
    for (std::size_t i = 0; i < platform::count(sources); ++i)
        if (const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&(*sources)[i]))
            move(*run, std::get<std::shared_ptr<host::ImprinterFont>>((*targets)[i]));
}

} // namespace

/// Configurations that are to be taken over, read before anything is changed, since reading may fail.
struct Store::Taken {
    explicit Taken(const QByteArray& bytes) : list(store::read(bytes, unknown)) {}

    UnknownKeys unknown;
    std::vector<std::shared_ptr<model::Configuration>> list;
};

void Store::adopt(const Taken& taken, const Forms& forms, const Forms& former, model::ImprinterModel& model) {
    const auto& found = taken.unknown;
    const auto& read = taken.list;
    m_state->unknown.document = found.document;

    // Whoever shows a configuration knows it by its object, which therefore stays, and takes over what has changed.
    std::map<QString, std::shared_ptr<model::Configuration>> present;
    for (const auto& handed : *model.configurations())
        present.emplace(folded(QString::fromStdU16String(handed->uniqueID())),
                        std::dynamic_pointer_cast<model::Configuration>(handed));
    std::vector<std::shared_ptr<model::Configuration>> list;
    std::map<std::shared_ptr<host::ImprinterConfiguration>, std::shared_ptr<model::Configuration>> kept;
    for (std::size_t i = 0; i < read.size(); ++i) {
        const auto own = present.find(forms.order[i]);
        const bool stays =
            own != present.end() && own->second->combinedConfiguration() == read[i]->combinedConfiguration();
        list.push_back(stays ? own->second : read[i]);
        kept.emplace(read[i], list.back());
    }
    const auto before = *model.configurations();
    if (!std::equal(before.begin(), before.end(), list.begin(), list.end()))
        model.setConfigurations(list);
    for (std::size_t i = 0; i < read.size(); ++i) {
        const auto& identifier = forms.order[i];
        if (read[i]->combinedConfiguration()) {
            std::vector<std::shared_ptr<host::ImprinterConfiguration>> members;
            for (const auto& member : *read[i]->configurations())
                members.push_back(kept.at(member));
            list[i]->setMembers(members);
        }
        const auto was = former.byIdentifier.find(identifier);
        if (list[i] != read[i] &&
            (was == former.byIdentifier.end() || was->second != forms.byIdentifier.at(identifier)))
            list[i]->setValuesOf(*read[i]);
        if (list[i] == read[i] || was == former.byIdentifier.end() || was->second != forms.byIdentifier.at(identifier))
            moveUnknown(m_state->unknown, found, read[i], list[i]);
    }
}

std::optional<Failure> Store::save(model::ImprinterModel& model, const Ask& ask) {
    m_state->notices.clear();
    if (m_state->readOnly)
        return failureAbout(Code::readOnly, quoted(m_file) + u" is left as it is, and nothing was saved.");
    const auto nothing = [&](Code code, const std::u16string& why, const std::vector<Detail>& details = {}) {
        return failureAbout(code,
                            u"Another program has written the configurations in " + quoted(m_file) + why +
                                u", and nothing was saved.",
                            details);
    };
    const auto attempt = [&](std::vector<Contested>& contested,
                             const std::vector<Decision>& decisions) -> std::optional<Failure> {
        const auto mine = formsOf(model, m_state->unknown);
        std::optional<Turn> turn(std::in_place, m_file, m_state->onWait);
        const auto state = turn->state();
        auto forms = mine;
        std::vector<Notice> notices;
        bool isThere = state && state == m_state->seen && isSame(mine, base());
        if (isThere && m_state->unsynced) {
            auto failure = guarded([&] {
                turn->confirm();
                return std::nullopt;
            });
            m_state->unsynced = failure.has_value();
            return failure;
        }
        auto seen = m_state->seen;
        QByteArray bytes = m_state->baseBytes.value_or(QByteArray()); // of the file that is there, if that is to stay
        if (state && state != m_state->seen) {
            if (!m_state->baseBytes)
                return nothing(Code::changedElsewhere, {});
            auto theirs = readFile();
            if (theirs.problem)
                return nothing(Code::changedElsewhere, u". " + theirs.problem->sentence, theirs.problem->details);
            const auto theirForms = formsIn(*theirs.state.baseBytes);
            auto merged = merge(commonBase(theirForms), mine, theirForms, decisions);
            contested = std::move(merged.contested);
            if (!contested.empty())
                return std::nullopt;
            notices = noticesOf(merged, Notice::Deleted::here, Notice::Deleted::byAnotherProgram);
            forms = std::move(merged.forms);
            isThere = isSame(forms, theirForms);
            seen = theirs.state.seen;
            if (isThere) {
                forms = theirForms;
                bytes = *theirs.state.baseBytes;
            }
        }
        if (!isThere)
            bytes = bytesOf(forms, static_cast<qsizetype>(m_mostBytes));
        std::optional<Taken> taken;
        if (forms.byIdentifier != mine.byIdentifier || forms.order != mine.order)
            taken.emplace(bytes);
        std::optional<Failure> failure;
        if (!isThere) {
            const auto before = seen;
            failure = guarded([&] {
                turn->replace({bytes.data(), static_cast<std::size_t>(bytes.size())}, seen, m_state->versions);
                return std::nullopt;
            });
            // The new file may be in its place though the disk has not confirmed it.
            if (failure && seen == before)
                return failure;
        }
        turn.reset();
        m_state->seen = seen;
        m_state->unsynced = failure.has_value();
        m_state->notices = std::move(notices);
        m_state->baseBytes = bytes;
        m_state->base = forms;
        if (taken)
            adopt(*taken, forms, mine, model);
        return failure;
    };
    return guarded([&]() -> std::optional<Failure> {
        for (std::vector<Decision> decisions;;) {
            std::vector<Contested> contested;
            if (auto failure = attempt(contested, decisions))
                return failure;
            if (contested.empty())
                break;
            if (!decide(contested, ask, decisions))
                return failureAbout(Code::contested,
                                    u"Another program has changed the configurations in " + quoted(m_file) + u", and " +
                                        namesOf(contested) + u" differently than here; nothing was saved.",
                                    concerned(contested));
        }
        dropJournal(m_state->journal);
        return std::nullopt;
    });
}

fs::path Store::previousVersion(int number) const {
    return versionOf(targetOf(m_file), number);
}

void Store::setOnWait(std::function<void()> tell) {
    m_state->onWait = std::move(tell);
}

const std::vector<Notice>& Store::notices() const {
    return m_state->notices;
}

void Store::keepNoVersions() {
    m_state->versions = 0;
}

std::optional<Failure> Store::keepUnsaved(const model::ImprinterModel& model) {
    if (m_state->readOnly || !m_state->baseBytes)
        return std::nullopt;
    return guarded([&]() -> std::optional<Failure> {
        const auto mine = formsOf(model, m_state->unknown);
        const auto changed = differing(mine, base());
        if (changed.empty() && mine.order == base().order)
            dropJournal(m_state->journal);
        else
            writeJournal(m_state->journal, m_file, base(), mine, changed);
        return std::nullopt;
    });
}

std::vector<Unsaved> Store::findUnsaved() {
    std::vector<Unsaved> found;
    if (m_state->readOnly || !m_state->baseBytes)
        return found; // what is taken over could neither be saved nor kept
    for (const auto& path : journalsFor(m_file)) {
        std::shared_ptr<OwnedFile> claim = OwnedFile::takeOver(path);
        if (!claim)
            continue;
        std::error_code none;
        const auto journal = readJournal(path);
        const auto changes = journal ? changesOf(*journal, base()) : std::nullopt;
        if (changes)
            found.push_back({path, changes->size(), std::move(claim)});
        else if (journal || fs::is_empty(path, none))
            claim->remove();
    }
    return found;
}

bool Store::hasUnsaved() const {
    std::optional<Forms> current;
    for (const auto& path : journalsFor(m_file)) {
        const auto journal = OwnedFile::isLeftBehind(path) ? readJournal(path) : std::nullopt;
        if (journal && !current)
            current = m_state->baseBytes ? base() : formsOrSupplied(*readFile().state.baseBytes);
        if (journal && changesOf(*journal, *current))
            return true;
    }
    return false;
}

std::optional<Failure> Store::takeOver(const Unsaved& unsaved, model::ImprinterModel& model, const Ask& ask) {
    m_state->notices.clear();
    if (m_state->readOnly || !m_state->baseBytes)
        return failureAbout(Code::readOnly, quoted(m_file) + u" is left as it is, and nothing was taken over.");
    return guarded([&]() -> std::optional<Failure> {
        auto journal = unsaved.claim ? readJournal(unsaved.journal) : std::nullopt;
        if (!journal)
            return Failure{Code::unreadable, quoted(unsaved.journal) + u" cannot be read.", unsaved.journal};
        const auto current = formsOf(model, m_state->unknown);
        journal->fillUp(current);
        auto merged = merge(journal->before, journal->after, current, {});
        for (std::vector<Decision> decisions; !merged.contested.empty();
             merged = merge(journal->before, journal->after, current, decisions))
            if (!decide(merged.contested, ask, decisions))
                return failureAbout(Code::contested,
                                    namesOf(merged.contested) + u" was changed since; what was not saved is kept.",
                                    concerned(merged.contested));
        const Taken taken(bytesOf(merged.forms, static_cast<qsizetype>(m_mostBytes)));
        adopt(taken, merged.forms, current, model);
        m_state->notices = noticesOf(merged, Notice::Deleted::beforeTheProgramEnded, Notice::Deleted::since);
        if (auto failure = keepUnsaved(model))
            return failure;
        unsaved.claim->remove();
        return std::nullopt;
    });
}

void Store::discard(const Unsaved& unsaved) {
    if (unsaved.claim)
        unsaved.claim->remove();
}

} // namespace store
