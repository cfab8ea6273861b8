// SPDX-License-Identifier: MIT
#include <engine/Stamper.h>

#include "FitCheck.h"
#include "OutputFile.h"
#include "PdfStamper.h"
#include "PictureFile.h"
#include "StampPlan.h"

#include <Foundation/NSString.h>
#include <engine/WrittenTime.h>

#include <QImageReader>

#include <algorithm>
#include <new>
#include <optional>
#include <system_error>

namespace engine {

namespace {

enum class Kind { unknown, pdf, png, jpeg, tiff };

Kind kindOf(const std::filesystem::path& path) {
    const InputFile file(path);
    const InputState state(file);
    const auto head = file.read(std::min<std::size_t>(state.size(), 1024));
    if (isPng(head))
        return Kind::png;
    if (isJpeg(head))
        return Kind::jpeg;
    if (isTiff(head))
        return Kind::tiff;
    return head.find("%PDF-") != std::string::npos ? Kind::pdf : Kind::unknown;
}

Facts factsOf(const StampJob& job) {
    Facts facts;
    facts.recordName = job.recordName.empty() ? platform::fromUtf8(job.input.stem().string()) : job.recordName;
    facts.user = job.user.empty() ? accountName() : job.user;
    const WrittenTime now(job.now);
    facts.day = now.day;
    facts.time = now.time;
    facts.runningNumber = job.firstNumber;
    return facts;
}

std::size_t stampPicture(const StampJob& job, Kind kind, Report& report) {
    // An earlier stamp would stay below the new one.
    if (job.replace)
        throw Failure(Code::unsupported, "A stamp on a picture is part of the picture and cannot be replaced.");
    FaceLibrary faces(job.defaultFont);
    std::optional<std::vector<StampPlan>> plans; // made when a picture asks for them, which may be reading meanwhile
    bool chosen = false;
    const auto nothing = [&] {
        return nothingToStamp(chosen, job.pages.has_value(), report, "There is nothing to stamp on the picture.");
    };
    FitCheck fit;
    const PagePartsFor partsForPage = [&](const PictureGeometry& geometry, std::size_t page, std::size_t pageCount) {
        if (!plans)
            plans = planStamps(job.configurations, job.pages, faces, report);
        auto facts = factsOf(job);
        facts.pageNumber = page;
        facts.recordPageCount = pageCount;
        facts.runningNumber += page - 1;
        PictureParts parts;
        for (const auto& plan : *plans) {
            const auto pages = plan.pagesOf(pageCount);
            if (!std::binary_search(pages.begin(), pages.end(), page))
                continue;
            chosen = true;
            const auto stamp = layOut(plan.appearance, resolveTitle(plan.appearance, facts, report), faces, report);
            if (!stamp)
                continue;
            const auto shown = shownSize(geometry);
            parts.push_back({stamp, placeStamp(stamp->size, shown, plan.anchor, plan.offset, plan.degrees)});
            fit.look(page, stamp->ink, parts.back().shownFromStamp, shown);
        }
        if (job.progress && !job.progress(page - 1, pageCount))
            throw Failure(Code::cancelled, "The run was cancelled.");
        return parts;
    };
    const PartsFor partsFor = [&](const PictureGeometry& geometry) {
        auto parts = partsForPage(geometry, 1, 1);
        if (parts.empty())
            throw nothing();
        return parts;
    };
    std::optional<InputState> input;
    const auto bytes = readWhole(job.input, input);
    std::size_t pages = 1;
    const auto stamped = kind == Kind::png    ? stampPng(bytes, partsFor, report)
                         : kind == Kind::tiff ? stampTiff(bytes, partsForPage, pages)
                                              : stampJpeg(bytes, partsFor, report);
    if (pages == 0)
        throw nothing();
    if (job.progress && !job.progress(1, 1))
        throw Failure(Code::cancelled, "The run was cancelled.");
    fit.tell(report, job.dryRun);
    if (job.dryRun)
        return pages;
    OutputFile output(job.output, input->mode(), job.mayReplace ? Existing::replaced : Existing::kept);
    output.write(stamped);
    input->expectAt(job.input);
    output.commit();
    return pages;
}

} // namespace

namespace {

/// Whether something is there that is neither a file nor a folder: a device, a pipe, a socket.
bool isNoFile(const std::filesystem::path& path) {
    std::error_code none;
    return std::filesystem::is_other(path, none);
}

/// Runs `work` and puts what it throws into the outcome.
template <class Work>
void runGuarded(const StampJob& job, Outcome& outcome, const Work& work) {
    const auto fail = [&outcome](Code code, const std::string& sentence) {
        outcome.code = code;
        outcome.sentence = sentence;
    };
    try {
        work();
    } catch (const Failure& failure) {
        fail(failure.code(), failure.what());
    } catch (const std::system_error& error) {
        fail(Code::cannotWrite, "The output cannot be written: " + error.code().message() + ".");
        outcome.path = job.output;
    } catch (const std::bad_alloc&) {
        fail(Code::noMemory, "There is not enough memory for this file.");
    } catch (const std::exception& error) {
        fail(Code::damaged, std::string("The file cannot be worked on: ") + error.what() + '.');
    }
}

/// Runs `work` on the input and turns what it throws into an outcome. It answers the number of pages.
template <class Work>
Outcome outcomeOf(const StampJob& job, const Work& work) {
    Report report{{}, job.dryRun};
    Outcome outcome;
    outcome.path = job.input;
    const InputState before(job.input);
    runGuarded(job, outcome, [&] {
        // Reading a pipe might wait for ever, and would take from it what somebody else wants.
        std::error_code none;
        if (std::filesystem::is_directory(job.input, none))
            throw Failure(Code::unreadable, "This is a folder.");
        if (isNoFile(job.input))
            throw Failure(Code::unreadable, "This is a pipe or a device, not a file.");
        const auto kind = kindOf(job.input);
        if (!job.inPlace && isSameFile(job.input, job.output))
            throw Failure(Code::sameFile, "The output is the same file as the input.");
        if (kind == Kind::unknown)
            throw Failure(Code::otherKind, "This is no PDF, PNG, JPEG or TIFF file.");
        if (isNoFile(job.output)) {
            outcome.path = job.output;
            throw Failure(Code::cannotWrite, "The output is a pipe or a device, not a file.");
        }
        if (!job.force && isWriteProtected(job.output)) {
            outcome.path = job.output;
            throw Failure(Code::writeProtected, "The file is write-protected.");
        }
        const bool hasOtherNames = job.inPlace && before.hasOtherNames();
        outcome.pagesStamped = work(kind, report);
        if (hasOtherNames)
            report.warn(Warning::Kind::otherNames);
        outcome.path = job.output;
    });
    // What looks damaged, or too short to be copied, may only have been half written.
    if (!outcome && outcome.code != Code::cancelled) {
        try {
            before.expectAt(job.input);
        } catch (const Failure& change) {
            outcome.code = change.code();
            outcome.sentence = change.what();
            outcome.path = job.input;
        }
    }
    outcome.warnings.assign(report.warnings.begin(), report.warnings.end());
    std::sort(outcome.warnings.begin(), outcome.warnings.end(),
              [](const Warning& one, const Warning& other) { return one.sentence() < other.sentence(); });
    return outcome;
}

std::string wordFor(const StampJob& job, const char* done) {
    return job.dryRun ? "would be" : done;
}

} // namespace

Outcome stampFile(const StampJob& job) {
    auto outcome = outcomeOf(job, [&job](Kind kind, Report& report) {
        return kind == Kind::pdf ? stampPdf(job, factsOf(job), report) : stampPicture(job, kind, report);
    });
    const bool one = outcome.pagesStamped == 1;
    if (outcome)
        outcome.sentence = std::to_string(outcome.pagesStamped) + (one ? " page " : " pages ") +
                           wordFor(job, one ? "was" : "were") + " stamped.";
    return outcome;
}

std::size_t countPages(const StampJob& job) {
    if (isNoFile(job.input))
        return 0;
    try {
        switch (kindOf(job.input)) {
        case Kind::unknown:
            return 0;
        case Kind::pdf:
            return countPdfPages(job);
        case Kind::tiff:
            return countTiffPages(readWhole(job.input));
        default:
            return 1;
        }
    } catch (const std::exception&) {
        return 0; // whoever stamps the file says why
    }
}

bool usesRunningNumber(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& configurations) {
    FaceLibrary faces;
    Report report;
    for (const auto& plan : planStamps(configurations, {}, faces, report))
        for (const auto& piece : plan.appearance.pieces)
            if (piece.placeholder && piece.text == u"%runningNumber%")
                return true;
    return false;
}

Outcome unstampFile(const StampJob& job) {
    auto outcome = outcomeOf(job, [&job](Kind kind, Report& report) {
        if (kind != Kind::pdf)
            throw Failure(Code::unsupported, "A stamp on a picture is part of the picture and cannot be removed.");
        return unstampPdf(job, report);
    });
    if (outcome)
        outcome.sentence = "Stamps " + wordFor(job, "were") + " removed from " + std::to_string(outcome.pagesStamped) +
                           (outcome.pagesStamped == 1 ? " page." : " pages.");
    return outcome;
}

Outcome findStamps(const StampJob& job) {
    std::vector<FoundStamp> stamps;
    auto outcome = outcomeOf(job, [&](Kind kind, Report&) {
        if (kind != Kind::pdf)
            throw Failure(Code::unsupported, "A stamp on a picture is part of the picture and cannot be told from it.");
        std::size_t pages = 0;
        stamps = findPdfStamps(job, pages);
        return pages;
    });
    outcome.path = job.input;
    if (!outcome)
        return outcome;
    const auto count = stamps.empty() ? "no" : std::to_string(stamps.size());
    outcome.sentence = "The document bears " + count + (stamps.size() == 1 ? " stamp." : " stamps.");
    outcome.stamps = std::move(stamps);
    return outcome;
}

void prepareForThreads() {
    QImageReader::supportedImageFormats(); // asks every reader, and loads it for that
}

} // namespace engine
