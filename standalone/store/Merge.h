// SPDX-License-Identifier: MIT
#pragma once

#include "Format.h"

#include <set>

namespace store {

/// Whether both say the same. Rotations are compared in single precision, in which they are edited.
bool isSame(const QJsonObject& form, const QJsonObject& other);
/// The same, and in the same order.
bool isSame(const Forms& forms, const Forms& others);

/// The identifiers of what is not the same in both, or in one of them only.
std::set<QString> differing(const Forms& forms, const Forms& others);

/// A configuration that was changed differently in both.
struct Contested {
    QString identifier;
    QJsonObject mine;
    QJsonObject theirs;
};

/// What is to be done about a contested configuration, as long as it is contested by these two forms.
struct Decision {
    Contested about;
    Choice choice;
};

/// A configuration that was deleted on one side, and is there all the same for what the other side did.
struct Outlived {
    QJsonObject form;
    /// Where it was deleted.
    bool deletedHere = false;
    /// The combined configuration that the other side put it into; empty where it was changed itself.
    QJsonObject combined;
};

/// A member that one side put into a combined configuration, and that the other made a combined one.
struct LeftOut {
    QJsonObject form;
    QJsonObject combined;
};

struct Merged {
    Forms forms;
    /// What no decision is about; as long as there is one, `forms` is not to be used.
    std::vector<Contested> contested;
    std::vector<Outlived> outlived;
    std::vector<LeftOut> leftOut;
};

/// Joins what was changed in `mine` and in `theirs` since both were `base`, as docs/file-format.md says.
Merged merge(const Forms& base, const Forms& mine, const Forms& theirs, const std::vector<Decision>& decisions);

} // namespace store
