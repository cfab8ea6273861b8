// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Stamper.h>

#include <vector>

class QString;
class QWidget;

namespace app {

/// What became of a number of documents.
struct StampSummary {
    std::vector<engine::Outcome> done;
    std::vector<engine::Outcome> failed;
    std::vector<std::filesystem::path> inputs; ///< Those that were stamped.
    bool cancelled = false;                    ///< The rest was not tried; what was done by then stays.
    std::size_t all = 0;                       ///< How many there were.
};

/// Stamps each document with `configuration`, beside it or, with `inPlace`, into it. A dialog over `parent` shows how
/// far it is, and cancels; a failure ends nothing but its own document. Running numbers count on through all of them. A
/// person is asked for the password of an encrypted document, and whether a signed one may be stamped.
StampSummary stampDocuments(QWidget* parent, const std::vector<std::filesystem::path>& inputs,
                            const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace);

/// The same for one document, into `output`.
StampSummary stampDocument(QWidget* parent, const std::filesystem::path& input, const std::filesystem::path& output,
                           const std::shared_ptr<host::ImprinterConfiguration>& configuration);

/// Says what became of them: in a dialog where something failed or is worth a remark, save those warnings that were
/// told before. Answers the line for the status bar, which says where results are; empty where there is nothing to say.
QString tellSummary(QWidget* parent, const StampSummary& summary, const std::vector<engine::Warning>& told = {});

} // namespace app
