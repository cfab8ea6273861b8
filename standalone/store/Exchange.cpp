// SPDX-License-Identifier: MIT
#include <store/Exchange.h>

#include "Format.h"

#include <algorithm>

namespace store {

namespace {

using Handed = std::shared_ptr<host::ImprinterConfiguration>;
using Own = std::shared_ptr<model::Configuration>;

QString keyOf(const host::ImprinterConfiguration& configuration) {
    return folded(QString::fromStdU16String(configuration.uniqueID()));
}

std::map<QString, Own> byIdentifier(const Configurations& list) {
    std::map<QString, Own> known;
    for (const auto& configuration : list)
        known.emplace(keyOf(*configuration), configuration);
    return known;
}

std::vector<Handed> membersOf(const host::ImprinterConfiguration& configuration) {
    const auto members = configuration.configurations();
    return members ? *members : std::vector<Handed>();
}

/// Whether both say the same, whichever objects their members are.
bool saysTheSame(const model::Configuration& left, const model::Configuration& right) {
    const auto mine = membersOf(left);
    const auto theirs = membersOf(right);
    return left.combinedConfiguration() == right.combinedConfiguration() &&
           (left.differencesFrom(right) & ~unsigned{model::Configuration::membersField}) == 0 &&
           std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end(),
                      [](const Handed& one, const Handed& other) { return keyOf(*one) == keyOf(*other); });
}

/// What is to be done, told before anything is changed.
class Import {
public:
    Import(const Configurations& list, const Configurations& read, Present present) : m_list(list), m_present(present) {
        const auto known = byIdentifier(list);
        for (const auto& configuration : list)
            m_names.insert(configuration->name());
        for (const auto& configuration : read) {
            const auto found = known.find(keyOf(*configuration));
            add(configuration, found == known.end() ? nullptr : found->second);
        }
    }

    /// A combined configuration that would contain another one.
    std::optional<Imported::Nested> nested() const {
        for (const auto& [from, to] : m_written)
            for (const auto& member : membersOf(*from))
                if (m_standsFor.at(member)->combinedConfiguration())
                    return Imported::Nested{m_copies.contains(to) ? to->name() : from->name(),
                                            m_standsFor.at(member)->name()};
        // What was ordinary and is combined in the file may be a member of one that stays.
        for (const auto& configuration : m_list)
            for (const auto& member : membersOf(*configuration))
                if (const auto turned = m_turned.find(member); turned != m_turned.end() && !isWritten(configuration))
                    return Imported::Nested{configuration->name(), turned->second->name()};
        return std::nullopt;
    }

    Imported carryOut(Configurations& list) const {
        Imported result{{}, m_left, {}};
        list = m_list;
        for (const auto& [from, to] : m_written) {
            std::vector<Handed> members;
            for (const auto& member : membersOf(*from))
                members.push_back(m_standsFor.at(member));
            if (to != from && !m_copies.contains(to))
                to->setValuesOf(*from);
            to->setMembers(members);
            result.imported.push_back(to);
        }
        return result;
    }

private:
    void add(const Own& read, const Own& known) {
        Own to = read;
        if (known && m_present == Present::leave) {
            m_left.push_back(read->name());
            m_standsFor.emplace(read, known);
            return;
        }
        if (known && m_present == Present::keepBoth) {
            to = read->copy();
            to->setName(model::nameOfCopy(read->name(), m_names));
            m_copies.insert(to);
        } else if (known && known->combinedConfiguration() == read->combinedConfiguration()) {
            to = known;
        } else if (known) {
            *std::find(m_list.begin(), m_list.end(), known) = read;
            m_turned.emplace(known, read);
        }
        if (!known || m_present == Present::keepBoth)
            m_list.push_back(to);
        m_names.insert(to->name());
        m_standsFor.emplace(read, to);
        m_written.emplace_back(read, to);
    }
    bool isWritten(const Own& configuration) const {
        return std::any_of(m_written.begin(), m_written.end(),
                           [&](const auto& written) { return written.second == configuration; });
    }

    Configurations m_list; // as it is to be
    Present m_present;
    std::set<std::u16string> m_names;
    std::map<Handed, Own> m_standsFor;          // for each that was read
    std::vector<std::pair<Own, Own>> m_written; // what was read, and what takes it over
    std::set<Own> m_copies;
    std::map<Handed, Own> m_turned; // those that come in the place of one of another kind
    std::vector<std::u16string> m_left;
};

} // namespace

std::vector<std::u16string> differingNames(const Configurations& list, const Configurations& read) {
    const auto known = byIdentifier(list);
    std::vector<std::u16string> names;
    for (const auto& configuration : read)
        if (const auto found = known.find(keyOf(*configuration));
            found != known.end() && !saysTheSame(*found->second, *configuration))
            names.push_back(configuration->name());
    return names;
}

Imported importInto(Configurations& list, const Configurations& read, Present present) {
    const Import import(list, read, present);
    if (auto nested = import.nested())
        return {{}, {}, std::move(nested)};
    return import.carryOut(list);
}

Configurations withMembers(const Configurations& chosen) {
    Configurations result;
    std::set<Own> there;
    const auto add = [&](const Own& configuration) {
        if (configuration && there.insert(configuration).second)
            result.push_back(configuration);
    };
    for (const auto& configuration : chosen) {
        for (const auto& member : membersOf(*configuration))
            add(std::dynamic_pointer_cast<model::Configuration>(member));
        add(configuration);
    }
    return result;
}

std::optional<Failure> exportTo(const std::filesystem::path& file, const Configurations& configurations) {
    model::ImprinterModel model;
    model.setConfigurations(configurations);
    Store written(file);
    written.keepNoVersions();
    const auto loaded = written.load();
    if (loaded.readOnly)
        return loaded.messages.empty() ? Failure{Code::readOnly, u"The file cannot be written.", file}
                                       : loaded.messages.front();
    return written.save(model);
}

} // namespace store
