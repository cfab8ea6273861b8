// SPDX-License-Identifier: MIT
#include "Journal.h"

#include "Merge.h"

#include <QJsonArray>

namespace store {

namespace key {
constexpr QLatin1String before("before");
constexpr QLatin1String after("after");
constexpr QLatin1String order("order");
} // namespace key

namespace {

constexpr QLatin1String journalFormat("imprinter-unsaved-changes");
constexpr qint64 journalVersion = 1;
constexpr char unsaved[] = "unsaved";

/// One side of a journal: the whole order, and the forms that are `told`.
QJsonObject sideOf(const Forms& forms, const std::set<QString>& told) {
    QJsonArray order;
    QJsonArray configurations;
    for (const auto& identifier : forms.order) {
        order.append(identifier);
        if (told.contains(identifier))
            configurations.append(forms.byIdentifier.at(identifier));
    }
    return {{key::order, order}, {key::configurations, configurations}};
}

Forms formsOf(const QJsonObject& side) {
    Forms forms;
    for (const auto& identifier : side.value(key::order).toArray())
        forms.order.push_back(identifier.toString());
    for (const auto& value : side.value(key::configurations).toArray()) {
        const auto form = value.toObject();
        forms.byIdentifier.emplace(folded(form.value(key::uniqueID).toString()), form);
    }
    return forms;
}

} // namespace

void Journal::fillUp(const Forms& current) {
    std::set<QString> told;
    for (const auto* forms : {&before, &after})
        for (const auto& [identifier, form] : forms->byIdentifier)
            told.insert(identifier);
    for (auto* forms : {&before, &after})
        for (const auto& identifier : forms->order)
            if (!told.contains(identifier)) {
                const auto found = current.byIdentifier.find(identifier);
                // What is gone since was not changed here, so that nobody asks what it was.
                forms->byIdentifier.emplace(identifier,
                                            found == current.byIdentifier.end() ? QJsonObject() : found->second);
            }
}

std::vector<std::filesystem::path> journalsFor(const std::filesystem::path& file) {
    return filesNamed(hiddenPrefix(file, unsaved));
}

std::optional<std::set<QString>> changesOf(Journal journal, const Forms& current) {
    journal.fillUp(current);
    const auto merged = merge(journal.before, journal.after, current, {}).forms;
    auto changed = differing(merged, current);
    return changed.empty() && merged.order == current.order ? std::nullopt : std::optional(std::move(changed));
}

std::optional<Journal> journalIn(const QByteArray& bytes) {
    try {
        const auto object = document(bytes);
        if (object.value(key::format).toString() != journalFormat || object.value(key::version) != journalVersion)
            return std::nullopt;
        return Journal{formsOf(object.value(key::before).toObject()), formsOf(object.value(key::after).toObject())};
    } catch (const Problem&) {
        return std::nullopt;
    }
}

std::optional<Journal> readJournal(const std::filesystem::path& file) {
    try {
        const auto content = readFile(file, 2 * Store::largestFile).bytes;
        return journalIn(QByteArray(content.data(), static_cast<qsizetype>(content.size())));
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

void writeJournal(std::unique_ptr<OwnedFile>& journal, const std::filesystem::path& file, const Forms& before,
                  const Forms& after, const std::set<QString>& changed) {
    // Members of what was changed belong to it: somebody may delete them meanwhile.
    auto told = changed;
    for (const auto& identifier : changed)
        if (const auto form = after.byIdentifier.find(identifier); form != after.byIdentifier.end())
            for (const auto& member : form->second.value(key::members).toArray())
                told.insert(folded(member.toString()));
    const auto bytes = bytesOf({{key::format, journalFormat},
                                {key::version, journalVersion},
                                {key::before, sideOf(before, told)},
                                {key::after, sideOf(after, told)}});
    if (!journal)
        journal = std::make_unique<OwnedFile>(file, unsaved);
    journal->replace({bytes.data(), static_cast<std::size_t>(bytes.size())});
}

void dropJournal(std::unique_ptr<OwnedFile>& journal) {
    if (journal)
        journal->remove();
    journal.reset();
}

} // namespace store
