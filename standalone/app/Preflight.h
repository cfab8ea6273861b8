// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Outcome.h>
#include <host/ImprinterConfiguration.h>

#include <QStringList>

class QWidget;

namespace app {

/// What stamping would come upon.
struct Preflight {
    /// A line for each remark: the document and what there is to say about it.
    QStringList lines;
    /// Of all of them, to tell what was told already.
    std::vector<engine::Warning> warnings;
    /// How many documents can be stamped, if only after a question.
    std::size_t stampable = 0;
    bool cancelled = false;
};

/// Tries what would come of stamping these documents, or with `inPlace` their originals, and writes nothing. A dialog
/// over `parent` shows how far it is, and cancels.
Preflight checkDocuments(QWidget* parent, const std::vector<std::filesystem::path>& inputs,
                         const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace);

/// Shows what was found in one list, where there is anything, and asks whether to go on.
bool goesOn(QWidget* parent, const Preflight& found);

} // namespace app
