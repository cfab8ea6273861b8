// SPDX-License-Identifier: MIT
#pragma once

#include <store/Store.h>

namespace store {

using Configurations = std::vector<std::shared_ptr<model::Configuration>>;

/// What becomes of a configuration that comes from a file and is there already, as its identifier tells.
enum class Present {
    leave,    ///< The one that is there stays as it is.
    replace,  ///< The one that is there takes over what the file says.
    keepBoth, ///< The one of the file gets an identifier and a name of its own.
};

struct Imported {
    /// New ones and replaced ones.
    Configurations imported;
    /// The names in the file of those that were left.
    std::vector<std::u16string> left;
    /// Why nothing was imported: a combined configuration would contain another one.
    struct Nested {
        std::u16string outer;
        std::u16string inner;
    };
    std::optional<Nested> nested;
};

/// The names of those in `read` that are in `list` too, and say something else there.
std::vector<std::u16string> differingNames(const Configurations& list, const Configurations& read);

/// Adds what was read from a file to the end of `list`. Objects of the list stay where their kind stays; members are
/// those of the list where it has them. Changes nothing where a combined configuration would contain another one.
Imported importInto(Configurations& list, const Configurations& read, Present present);

/// The configurations with the members that they need, each once, members first.
Configurations withMembers(const Configurations& chosen);

/// Writes a file of just these configurations. One that is there and holds something else is left alone.
std::optional<Failure> exportTo(const std::filesystem::path& file, const Configurations& configurations);

} // namespace store
