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

/// What joining the journal with `current` would change there. None where there is nothing left to do: whoever saved
/// `current` had the same changes, or made the same.
std::optional<std::set<QString>> changesOf(Journal journal, const Forms& current);

/// The journals beside `file`, whoever they belong to.
std::vector<std::filesystem::path> journalsFor(const std::filesystem::path& file);

/// None where it is no journal of this version.
std::optional<Journal> journalIn(const QByteArray& bytes);
/// None where it cannot be read.
std::optional<Journal> readJournal(const std::filesystem::path& file);

/// Writes what `changed` names; makes `journal` where there is none. Throws std::system_error.
void writeJournal(std::unique_ptr<OwnedFile>& journal, const std::filesystem::path& file, const Forms& before,
                  const Forms& after, const std::set<QString>& changed);
void dropJournal(std::unique_ptr<OwnedFile>& journal);

} // namespace store
