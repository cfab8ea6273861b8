// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace store {

/// Those of `identifiers` that are in `among` too.
template <class Identifier>
std::vector<Identifier> kept(const std::vector<Identifier>& identifiers, const std::set<Identifier>& among) {
    std::vector<Identifier> result;
    std::copy_if(identifiers.begin(), identifiers.end(), std::back_inserter(result),
                 [&](const auto& identifier) { return among.contains(identifier); });
    return result;
}

/// Joins two orders that both come from `base`: that of the one who moved something, of both `mine`; what only the
/// other has stands behind what it stands behind there. Of all that, what is `staying`, each with its copy behind it.
///
/// Takes n log n comparisons of identifiers for n of them.
template <class Identifier>
std::vector<Identifier> joinedOrder(const std::vector<Identifier>& base, const std::vector<Identifier>& mine,
                                    const std::vector<Identifier>& theirs, const std::set<Identifier>& staying,
                                    const std::map<Identifier, Identifier>& copies) {
    const auto setOf = [](const std::vector<Identifier>& list) {
        return std::set<Identifier>(list.begin(), list.end());
    };
    const auto common = setOf(kept(kept(base, setOf(mine)), setOf(theirs)));
    const bool moved = kept(mine, common) != kept(base, common);
    const auto list = kept(moved ? mine : theirs, staying);
    const auto rest = kept(moved ? theirs : mine, staying);
    const auto listed = setOf(list);
    const auto inRest = setOf(rest);

    // What only `rest` has waits until what it stands behind is there, and what only `list` has behind that.
    std::vector<Identifier> first;
    std::map<Identifier, std::vector<Identifier>> following;
    auto* group = &first;
    for (const auto& identifier : rest)
        if (listed.contains(identifier))
            group = &following[identifier];
        else
            group->push_back(identifier);

    std::vector<Identifier> joined;
    const auto add = [&](const Identifier& identifier) {
        joined.push_back(identifier);
        if (const auto copy = copies.find(identifier); copy != copies.end())
            joined.push_back(copy->second);
    };
    const auto* waiting = &first;
    for (const auto& identifier : list) {
        if (inRest.contains(identifier)) {
            std::for_each(waiting->begin(), waiting->end(), add);
            waiting = &following[identifier];
        }
        add(identifier);
    }
    std::for_each(waiting->begin(), waiting->end(), add);
    return joined;
}

} // namespace store
