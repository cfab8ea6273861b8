// SPDX-License-Identifier: MIT
#pragma once

#include "File.h"
#include "Format.h"

#include <set>

namespace store {

/// What a program had changed and not saved.
struct Journal {
    /// As it was read or saved last, and as it was then; only what differs, and its members, have a form.
    Forms before;
    Forms after;

    /// Gives what did not differ the form that it has in `current`, on both sides.
    void fillUp(const Forms& current);
};

/// The journals beside `file`, whoever they belong to.
std::vector<std::filesystem::path> journalsFor(const std::filesystem::path& file);

/// None where it cannot be read. One that its program had no time to fill is removed.
std::optional<Journal> readJournal(const OwnedFile& file);

/// Writes what `changed` names; makes `journal` where there is none. Throws std::system_error.
void writeJournal(std::unique_ptr<OwnedFile>& journal, const std::filesystem::path& file, const Forms& before,
                  const Forms& after, const std::set<QString>& changed);
void dropJournal(std::unique_ptr<OwnedFile>& journal);

} // namespace store
