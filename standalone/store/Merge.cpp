// SPDX-License-Identifier: MIT
#include "Merge.h"

#include "Order.h"

#include <QJsonArray>
#include <QUuid>

#include <algorithm>

namespace store {

namespace {

using Form = std::optional<QJsonObject>;

double rotationOf(const QJsonObject& form) {
    const auto value = form.value(key::rotation);
    return value.isString() ? value.toString().toDouble() : value.toDouble();
}

bool isSame(const Form& form, const Form& other) {
    return form && other ? store::isSame(*form, *other) : form.has_value() == other.has_value();
}

Form formIn(const Forms& forms, const QString& identifier) {
    const auto found = forms.byIdentifier.find(identifier);
    return found == forms.byIdentifier.end() ? std::nullopt : std::optional(found->second);
}

bool isCombined(const Form& form) {
    return form && form->value(key::combined).toBool();
}

std::vector<QString> membersOf(const Form& form) {
    std::vector<QString> members;
    if (form)
        for (const auto& member : form->value(key::members).toArray())
            members.push_back(folded(member.toString()));
    return members;
}

class Merger {
public:
    Merger(const Forms& base, const Forms& mine, const Forms& theirs, const std::vector<Decision>& decisions)
        : m_base(base), m_mine(mine), m_theirs(theirs) {
        for (const auto& decision : decisions)
            m_decisions.emplace(decision.about.identifier, &decision);
    }

    Merged merge() {
        m_result.forms.document = m_theirs.document;
        std::set<QString> ordinary;
        std::set<QString> combined;
        for (const auto* forms : {&m_base, &m_mine, &m_theirs})
            for (const auto& [identifier, form] : forms->byIdentifier)
                (isCombined(form) ? combined : ordinary).insert(identifier);
        m_putIntoByMine = putInto(m_mine, combined);
        m_putIntoByTheirs = putInto(m_theirs, combined);
        for (const auto& identifier : ordinary) {
            if (combined.contains(identifier))
                continue;
            const auto base = formIn(m_base, identifier);
            const auto mine = formIn(m_mine, identifier);
            const auto theirs = formIn(m_theirs, identifier);
            decide(identifier, isSame(mine, base), isSame(theirs, base), mine, theirs);
        }
        // What became of the members is known now. One that its own side deleted is no change of the combined one.
        const auto decideCombined = [&](const QString& identifier) {
            const auto base = formIn(m_base, identifier);
            const auto mine = formIn(m_mine, identifier);
            const auto theirs = formIn(m_theirs, identifier);
            const bool mineIsAsItWas = isSame(mine, withMembersIn(base, m_mine));
            const bool theirsIsAsItWas = isSame(theirs, withMembersIn(base, m_theirs));
            if (base && mine && theirs && mineIsAsItWas && theirsIsAsItWas)
                put(identifier, withMembersThatStay(base, {})); // with those that were deleted and stay
            else
                decide(identifier, mineIsAsItWas, theirsIsAsItWas, withMembersThatStay(mine, m_putIntoByMine),
                       withMembersThatStay(theirs, m_putIntoByTheirs));
        };
        // Those that are combined on one side only may be members of the others.
        for (const bool onBoth : {false, true})
            for (const auto& identifier : combined)
                if (ordinary.contains(identifier) != onBoth)
                    decideCombined(identifier);
        std::set<QString> staying;
        for (const auto& [identifier, form] : m_result.forms.byIdentifier)
            staying.insert(identifier);
        m_result.forms.order = joinedOrder(m_base.order, m_mine.order, m_theirs.order, staying, m_copies);
        return std::move(m_result);
    }

private:
    /// The combined configurations that one side put something into, by what it put there.
    using PutInto = std::map<QString, QJsonObject>;

    void decide(const QString& identifier, bool mineIsAsItWas, bool theirsIsAsItWas, const Form& mine,
                const Form& theirs) {
        if (mine && theirs) {
            if (mineIsAsItWas)
                put(identifier, theirs);
            else if (theirsIsAsItWas || isSame(mine, theirs))
                put(identifier, mine);
            else
                decide({identifier, *mine, *theirs});
        } else if (mine) {
            putUnlessDeleted(identifier, *mine, mineIsAsItWas, m_putIntoByMine, false);
        } else if (theirs) {
            putUnlessDeleted(identifier, *theirs, theirsIsAsItWas, m_putIntoByTheirs, true);
        }
    }

    /// Puts what one side has and the other has not, unless that one deleted it and nothing was done with it here.
    void putUnlessDeleted(const QString& identifier, const QJsonObject& form, bool isAsItWas, const PutInto& putInto,
                          bool deletedHere) {
        const auto use = putInto.find(identifier);
        // Of what a journal does not tell there is nothing to bring back.
        if (isAsItWas && (use == putInto.end() || form.isEmpty()))
            return;
        put(identifier, form);
        if (m_base.byIdentifier.contains(identifier))
            m_result.outlived.push_back({form, deletedHere, isAsItWas ? use->second : QJsonObject()});
    }

    /// What stands in a combined configuration of `side` more often than it did at first.
    PutInto putInto(const Forms& side, const std::set<QString>& combined) const {
        PutInto found;
        for (const auto& identifier : combined) {
            const auto form = formIn(side, identifier);
            if (!isCombined(form))
                continue;
            std::map<QString, int> before;
            for (const auto& member : membersOf(formIn(m_base, identifier)))
                ++before[member];
            for (const auto& member : membersOf(form))
                if (--before[member] < 0)
                    found.emplace(member, *form);
        }
        return found;
    }

    void decide(const Contested& contested) {
        const auto [first, last] = m_decisions.equal_range(contested.identifier);
        const auto decision = std::find_if(first, last, [&](const auto& made) {
            return store::isSame(made.second->about.mine, contested.mine) &&
                   store::isSame(made.second->about.theirs, contested.theirs);
        });
        if (decision == last) {
            m_result.contested.push_back(contested);
            put(contested.identifier, contested.mine);
            return;
        }
        const auto choice = decision->second->choice;
        put(contested.identifier, choice == Choice::theirs ? contested.theirs : contested.mine);
        if (choice == Choice::both)
            putCopy(contested);
    }

    void put(const QString& identifier, const Form& form) {
        if (form)
            m_result.forms.byIdentifier.emplace(identifier, *form);
    }

    /// Theirs, as a configuration of its own.
    void putCopy(const Contested& contested) {
        if (m_names.empty())
            for (const Forms* forms : {&m_mine, &m_theirs})
                for (const auto& [identifier, form] : forms->byIdentifier)
                    m_names.insert(form.value(key::name).toString().toStdU16String());
        const auto identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        auto copy = contested.theirs;
        copy[key::uniqueID] = identifier;
        const auto name = model::nameOfCopy(contested.theirs.value(key::name).toString().toStdU16String(), m_names);
        m_names.insert(name);
        copy[key::name] = QString::fromStdU16String(name);
        put(folded(identifier), copy);
        m_copies.emplace(contested.identifier, folded(identifier));
    }

    /// `form` with those of its members that `stays` answers true for.
    template <class Stays>
    static Form withMembers(Form form, Stays stays) {
        if (!isCombined(form))
            return form;
        QJsonArray members;
        for (const auto& member : form->value(key::members).toArray())
            if (stays(folded(member.toString())))
                members.append(member);
        (*form)[key::members] = members;
        return form;
    }
    static Form withMembersIn(const Form& form, const Forms& side) {
        return withMembers(form, [&](const auto& member) { return side.byIdentifier.contains(member); });
    }
    Form withMembersThatStay(const Form& form, const PutInto& putInto) {
        return withMembers(form, [&](const auto& member) {
            const auto found = m_result.forms.byIdentifier.find(member);
            if (found != m_result.forms.byIdentifier.end() && !isCombined(found->second))
                return true;
            const auto changed = formIn(&putInto == &m_putIntoByMine ? m_theirs : m_mine, member);
            if (isCombined(changed) && putInto.contains(member))
                m_result.leftOut.push_back({*changed, *form});
            return false;
        });
    }

    const Forms& m_base;
    const Forms& m_mine;
    const Forms& m_theirs;
    std::multimap<QString, const Decision*> m_decisions;
    std::set<std::u16string> m_names; // of what there is and of the copies; empty as long as nobody asked
    PutInto m_putIntoByMine;
    PutInto m_putIntoByTheirs;
    std::map<QString, QString> m_copies;
    Merged m_result;
};

} // namespace

bool isSame(const QJsonObject& form, const QJsonObject& other) {
    if (form == other)
        return true;
    if (!form.contains(key::rotation) || !other.contains(key::rotation) ||
        static_cast<float>(rotationOf(form)) != static_cast<float>(rotationOf(other)))
        return false;
    auto rest = form;
    rest[key::rotation] = other.value(key::rotation);
    return rest == other;
}

bool isSame(const Forms& forms, const Forms& others) {
    return forms.order == others.order && forms.document == others.document &&
           std::all_of(forms.byIdentifier.begin(), forms.byIdentifier.end(), [&](const auto& entry) {
               const auto other = others.byIdentifier.find(entry.first);
               return other != others.byIdentifier.end() && isSame(entry.second, other->second);
           });
}

std::set<QString> differing(const Forms& forms, const Forms& others) {
    std::set<QString> found;
    for (const auto& [identifier, form] : forms.byIdentifier) {
        const auto other = others.byIdentifier.find(identifier);
        if (other == others.byIdentifier.end() || !isSame(form, other->second))
            found.insert(identifier);
    }
    for (const auto& [identifier, form] : others.byIdentifier)
        if (!forms.byIdentifier.contains(identifier))
            found.insert(identifier);
    return found;
}

Merged merge(const Forms& base, const Forms& mine, const Forms& theirs, const std::vector<Decision>& decisions) {
    return Merger(base, mine, theirs, decisions).merge();
}

} // namespace store
