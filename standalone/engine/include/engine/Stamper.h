// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Outcome.h>
#include <engine/PageChoice.h>
#include <host/ImprinterConfiguration.h>

#include <chrono>
#include <functional>

namespace engine {

/// How a document is written.
enum class Saving {
    automatic, ///< Updated where that is possible, unless it is linearized; else written anew.
    update,    ///< Updated; a failure where that is impossible.
    rewrite,   ///< Written anew; signed documents are updated nevertheless.
};

/// One file to stamp. Plain values; the configurations are read when the job runs.
struct StampJob {
    std::filesystem::path input;
    /// In an existing folder. A file of this name is replaced, and only when the whole output is safely written.
    std::filesystem::path output;
    /// Stamped in order; a combined configuration stands for its members.
    std::vector<std::shared_ptr<host::ImprinterConfiguration>> configurations;

    /// Removed as well as those of the configurations, by their identifiers (UTF-8).
    std::vector<std::string> removed;
    /// The pages that are stamped in place of those that the configurations name; only they lose stamps.
    std::optional<std::vector<PageRange>> pages;
    /// What %runningNumber% stands for on the first page of the file; it counts every page, stamped or not.
    std::size_t firstNumber = 1;

    std::u16string recordName; ///< What %recordName% stands for; empty: the input's file name without its extension.
    std::u16string user;       ///< What %user% stands for; empty: the account's full or short name.
    std::chrono::system_clock::time_point now = std::chrono::system_clock::now();

    /// First remove what earlier runs stamped with the same configurations, from all pages where `pages` names none; a
    /// failure for pictures, which cannot lose a stamp. A document that loses stamps is written anew if it can be, so
    /// that it does not grow each time.
    bool replace = false;

    /// Write nothing, and answer what would come of it; the warnings also name pages that a stamp does not fit on.
    bool dryRun = false;

    std::string password; ///< The user's or owner's, for encrypted documents: as the document has it, or in UTF-8.
    bool inPlace = false; ///< Output and input may be one file.
    bool mayReplace =
        true;           ///< NO for a name that was chosen since nothing had it: whoever takes it meanwhile keeps it.
    bool force = false; ///< Replace a file that is write-protected too.
    /// Stamp signed documents too, by an incremental update, which leaves valid what was signed.
    bool allowSigned = false;
    Saving saving = Saving::automatic;      ///< Documents only.
    unsigned threads = 2;                   ///< How many the work on the file may take.
    bool deterministic = false;             ///< The same job gives the same bytes (not for encrypted documents).
    std::string defaultFont = "DejaVuSans"; ///< PostScript name; see `FaceLibrary`.

    /// Called with pages done and pages in all, from time to time; answering false ends the run without output.
    std::function<bool(std::size_t, std::size_t)> progress;
};

/// Stamps PDF documents and PNG, JPEG and TIFF pictures, told apart by their content; the output is of the input's
/// kind.
///
/// After a failure there is no output file, and one that was there before is as it was. Whatever goes wrong is in the
/// outcome; it throws nothing.
Outcome stampFile(const StampJob& job);

/// To be called on the program's first thread before files are stamped on others: what reads pictures is then loaded on
/// the thread that outlives it.
void prepareForThreads();

/// How many pages the job's input has: those of a document or a TIFF file, one for another picture; 0 where it cannot
/// be read.
std::size_t countPages(const StampJob& job);

/// Whether the title of one of these configurations, or of a member of one, has the placeholder %runningNumber%.
bool usesRunningNumber(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& configurations);

/// Removes from a PDF document, or from those of its pages that the job names, what was stamped with the job's
/// configurations or is removed by its identifier; all stamps where it names none. Facts and fonts of the job do not
/// count. The document is written anew unless it is signed or the job says otherwise.
Outcome unstampFile(const StampJob& job);

/// Finds the stamps that a PDF document bears, in the order in which they are met. Of the job its input and its
/// password count; nothing is written, whatever the document allows.
Outcome findStamps(const StampJob& job);

} // namespace engine
