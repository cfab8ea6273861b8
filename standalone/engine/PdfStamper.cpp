// SPDX-License-Identifier: MIT
#include "PdfStamper.h"

#include "FitCheck.h"
#include "MappedFile.h"
#include "OutputFile.h"
#include "PageTree.h"
#include "PageWriter.h"
#include "PdfUpdate.h"
#include "PictureFile.h"
#include "StampRemoval.h"

#include <engine/Placement.h>

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFSystemError.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QUtil.hh>

#include <algorithm>
#include <cstring>
#include <future>
#include <memory>

namespace engine {

namespace {

/// Where the library's writer writes.
class OutputPipeline final : public Pipeline {
public:
    explicit OutputPipeline(OutputFile& file) : Pipeline("output", nullptr), m_file(file) {}
    void write(const unsigned char* bytes, std::size_t size) override {
        m_file.write({reinterpret_cast<const char*>(bytes), size});
    }
    void finish() override {}

private:
    OutputFile& m_file;
};

/// What signatures say about a document.
struct Signatures {
    bool present = false;
    bool certifying = false; ///< One of them forbids changes of the pages.
};

bool certifies(QPDFObjectHandle signature) {
    auto references = signature.getKey("/Reference");
    if (!references.isArray())
        return false;
    for (auto reference : references.getArrayAsVector())
        if (reference.isDictionary() && reference.getKey("/TransformMethod").isNameAndEquals("/DocMDP"))
            return true;
    return false;
}

constexpr int kDeepestField = 16;

/// Looks for signatures that were given among these form fields and the fields below them. A field's kind, and its
/// value, hold for those below it.
void findSignatures(QPDFObjectHandle fields, bool below, int levels, Signatures& found) {
    if (!fields.isArray() || levels == 0)
        return;
    for (auto field : fields.getArrayAsVector()) {
        if (!field.isDictionary())
            continue;
        auto kind = field.getKey("/FT");
        const bool isSignature = kind.isName() ? kind.isNameAndEquals("/Sig") : below;
        auto value = field.getKey("/V");
        if (isSignature && value.isDictionary()) {
            found.present = true;
            found.certifying = found.certifying || certifies(value);
        }
        findSignatures(field.getKey("/Kids"), isSignature, levels - 1, found);
    }
}

/// Looks for signatures among the annotations of a page: readers know a field by its place on a page too, where the
/// form has forgotten it. Kind and value may be said by a field above.
void findSignatures(QPDFObjectHandle annotations, Signatures& found) {
    if (!annotations.isArray())
        return;
    for (const auto& annotation : annotations.getArrayAsVector()) {
        auto kind = QPDFObjectHandle::newNull();
        auto value = QPDFObjectHandle::newNull();
        int levels = kDeepestField;
        for (auto field = annotation; field.isDictionary() && levels > 0; field = field.getKey("/Parent"), --levels) {
            kind = kind.isNull() ? field.getKey("/FT") : kind;
            value = value.isNull() ? field.getKey("/V") : value;
        }
        if (!kind.isNameAndEquals("/Sig") || !value.isDictionary())
            continue;
        found.present = true;
        found.certifying = found.certifying || certifies(value);
    }
}

/// Whether a document may be signed at all. A signature says by offsets in the file what it covers, so that it is never
/// compressed itself. Fields that nobody signed do not have that, and are many in forms.
bool mayBeSigned(std::string_view bytes) {
    constexpr std::string_view covered = "/ByteRange";
    return ::memmem(bytes.data(), bytes.size(), covered.data(), covered.size()) != nullptr;
}

/// A document that is read from a file.
struct PdfFile {
    MappedFile file;
    QPDF document;
    /// Whether its tree leads to pages that there are not; known when the pages were asked for.
    bool lacksPages = false;

    explicit PdfFile(const StampJob& job) : file(job.input) {
        document.setSuppressWarnings(true);
        document.processMemoryFile(job.input.c_str(), file.bytes().data(), file.bytes().size(), job.password.c_str());
    }

    const std::vector<QPDFObjectHandle>& pages() {
        if (!m_hasLooked)
            lacksPages = dropMissingPages(document);
        m_hasLooked = true;
        return document.getAllPages();
    }

private:
    bool m_hasLooked = false;
};

Signatures signaturesOf(PdfFile& pdf) {
    auto root = pdf.document.getRoot();
    Signatures found;
    auto permissions = root.getKey("/Perms");
    found.certifying = permissions.isDictionary() && permissions.hasKey("/DocMDP");
    auto form = root.getKey("/AcroForm");
    // The form's flags say that there is a field for a signature, not that anybody signed.
    if (form.isDictionary())
        findSignatures(form.getKey("/Fields"), false, kDeepestField, found);
    if (!found.present && mayBeSigned(pdf.file.bytes()))
        for (auto page : pdf.pages())
            findSignatures(page.getKey("/Annots"), found);
    return found;
}

void refuseWhatMustNotChange(QPDF& document, const Signatures& signatures, const StampJob& job) {
    if (document.isEncrypted() && !document.ownerPasswordMatched() && !document.allowModifyOther())
        throw Failure(Code::notPermitted, "The document forbids changes; its owner's password lifts that.");
    if (signatures.certifying)
        throw Failure(Code::certified, "The document is certified; a stamp would break that.");
    if (!job.allowSigned && signatures.present)
        throw Failure(Code::isSigned, "The document is signed, and it was not allowed to change it.");
}

/// Tells how far a run is, and ends it where it is told to.
class Progress {
public:
    explicit Progress(const StampJob& job) : m_job(job) {}

    /// `share`: from 0 to 1.
    void tell(double share, std::size_t pages) const {
        if (m_job.progress && !m_job.progress(static_cast<std::size_t>(share * static_cast<double>(pages)), pages))
            throw Failure(Code::cancelled, "The run was cancelled.");
    }

private:
    const StampJob& m_job;
};

/// The number of pages the document says it has; 0 where that cannot be.
std::size_t statedPageCount(QPDF& document, std::string_view bytes) {
    auto count = document.getRoot().getKey("/Pages").getKey("/Count");
    // Hardly any page takes less than this, so that a lie costs little.
    constexpr long long smallestPage = 64;
    return count.isInteger() && count.getIntValue() > 0 &&
                   count.getIntValue() < static_cast<long long>(bytes.size()) / smallestPage
               ? static_cast<std::size_t>(count.getIntValue())
               : 0;
}

/// On a thread of its own; where there can be none, when it is asked for.
constexpr auto kAside = std::launch::async | std::launch::deferred;

/// A press at work on a thread of its own, which ends with this object.
class PressRun {
public:
    PressRun(const std::vector<StampPlan>& plans, const Facts& facts, FaceLibrary& faces, const StampJob& job,
             std::size_t pageCount, bool aside)
        : m_pageCount(pageCount), m_press(plans, facts, faces, job.dryRun),
          m_done(std::async(aside ? kAside : std::launch::deferred, [this] { m_press.run(m_pageCount); })) {}
    ~PressRun() {
        m_press.stop();
        if (m_done.valid())
            m_done.wait();
    }
    PressRun(const PressRun&) = delete;
    PressRun& operator=(const PressRun&) = delete;

    std::size_t pageCount() const { return m_pageCount; }
    StampPress& finish() {
        m_done.get();
        return m_press;
    }

private:
    std::size_t m_pageCount;
    StampPress m_press;
    std::future<void> m_done;
};

/// Whether the library had to repair anything. What it does for a page that stands twice in the tree is no repair.
bool wasDamaged(QPDF& document) {
    bool result = false;
    for (const auto& warning : document.getWarnings())
        result = result || warning.getMessageDetail().find("more than once in the pages tree") == std::string::npos;
    return result;
}

enum class Task { stamp, unstamp };

/// One document being worked on.
class PdfStamping {
public:
    PdfStamping(Task task, const StampJob& job, const Facts& facts, Report& report)
        : m_task(task), m_job(job), m_facts(facts), m_report(report), m_progress(job), m_pdf(job) {}

    std::size_t run() {
        const auto bytes = m_pdf.file.bytes();
        m_linearized = m_pdf.document.isLinearized();
        const auto signatures = signaturesOf(m_pdf);
        m_isSigned = signatures.present;
        refuseWhatMustNotChange(m_pdf.document, signatures, m_job);

        FaceLibrary faces(m_job.defaultFont);
        std::vector<StampPlan> plans;
        if (m_task == Task::stamp || !m_job.configurations.empty())
            plans = planStamps(m_job.configurations, m_job.pages, faces, m_report);
        std::set<std::string> identifiers(m_job.removed.begin(), m_job.removed.end());
        for (const auto& plan : plans)
            identifiers.insert(plan.identifier);
        const bool removesAll = m_task == Task::unstamp && m_job.configurations.empty() && m_job.removed.empty();
        const bool removes = m_task == Task::unstamp || m_job.replace;

        const bool aside = m_job.threads > 1;
        std::optional<PressRun> press;
        if (const auto stated = statedPageCount(m_pdf.document, bytes); stated > 0 && m_task == Task::stamp)
            press.emplace(plans, m_facts, faces, m_job, stated, aside);

        const auto& pages = m_pdf.pages();
        if (pages.empty())
            throw Failure(Code::damaged, "The document has no pages.");
        if (m_task == Task::stamp && (!press || press->pageCount() != pages.size())) {
            press.reset();
            press.emplace(plans, m_facts, faces, m_job, pages.size(), aside);
        }

        const bool inFile =
            !m_pdf.document.isEncrypted() && bytes.starts_with("%PDF-") && !m_pdf.document.anyWarnings();
        auto reader = std::make_unique<ContentReader>(inFile ? bytes : std::string_view(), aside);
        std::vector<PageWriter::Page> sources(pages.size());
        std::vector<bool> stripped(pages.size());
        Inheritance inheritance;
        std::vector<bool> isChosen(pages.size());
        for (const auto& plan : plans)
            if (m_task == Task::stamp)
                for (const auto page : plan.pagesOf(pages.size()))
                    isChosen[page - 1] = true;
        // Other pages than those the job names keep the stamps they have.
        std::vector<bool> isWithin(pages.size(), !m_job.pages);
        if (m_job.pages)
            for (const auto page : choosePages(*m_job.pages, pages.size()))
                isWithin[page - 1] = true;
        const std::set<std::string> none;
        Flate flate;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            if (i % 64 == 0)
                m_progress.tell(0.4 * static_cast<double>(i) / static_cast<double>(pages.size()), pages.size());
            if (!isChosen[i] && !removes)
                continue;
            auto& source = sources[i];
            source.object = pages[i];
            auto streams = streamsOf(source.object.getKey("/Contents"));
            StrippedContent content;
            if (removes)
                content = stripStamps(streams, !isWithin[i] ? &none : removesAll ? nullptr : &identifiers, flate);
            stripped[i] = content.found;
            if (!isChosen[i] && !content.found && content.kept.empty())
                continue;
            const auto attributes = inheritance.of(source.object);
            source.geometry = geometryOf(source.object, attributes);
            source.resources = attributes.resources;
            source.drops = std::move(content.names);
            source.keeps = std::move(content.kept);
            if (!isChosen[i] && !content.found)
                continue;
            source.isRead = true;
            source.content = content.text   ? reader->add(std::move(*content.text))
                             : content.tail ? reader->add(content.streams, std::move(*content.tail))
                                            : reader->add(content.found ? content.streams : streams);
        }
        m_removes = std::find(stripped.begin(), stripped.end(), true) != stripped.end();
        reader->finish(m_pdf.document.anyWarnings());
        tellOfUnread(*reader, sources);
        StampPress* stamps = nullptr;
        std::size_t changed = 0;
        if (m_task == Task::stamp) {
            stamps = &press->finish();
            m_report.warnings.insert(stamps->report().warnings.begin(), stamps->report().warnings.end());
            changed = stamps->stampedPages();
            if (changed == 0) {
                const bool chosen = std::find(isChosen.begin(), isChosen.end(), true) != isChosen.end();
                throw nothingToStamp(chosen, m_job.pages.has_value(), m_report,
                                     "There is nothing to stamp on any page of the document.");
            }
        } else {
            changed = static_cast<std::size_t>(std::count(stripped.begin(), stripped.end(), true));
            if (std::find(isWithin.begin(), isWithin.end(), true) == isWithin.end())
                throw Failure(Code::nothingToRemove, "The page list names no page of the file.");
            if (changed == 0)
                throw Failure(Code::nothingToRemove, "The document bears no such stamp.");
        }

        if (stamps)
            checkFit(*stamps, plans, sources);
        if (m_job.dryRun) {
            mayUpdate(); // refuses what could only be written in a way that was not allowed
            tellOfDamage();
            return changed;
        }

        const auto write = [&](PdfObjects& objects, double last) {
            m_pdf.file.release();
            {
                PageWriter writer(objects, plans, stamps, *reader);
                for (const auto& source : sources)
                    if (!source.drops.empty() || !source.keeps.empty())
                        writer.expect(source);
                for (std::size_t i = 0; i < pages.size(); ++i) {
                    if (i % 64 == 0)
                        m_progress.tell(0.4 + (last - 0.4) * static_cast<double>(i) / static_cast<double>(pages.size()),
                                        pages.size());
                    if (stamps && !stamps->pages()[i].empty())
                        writer.stamp(sources[i], stamps->pages()[i]);
                    else if (stripped[i])
                        writer.bare(sources[i]);
                }
                writer.finish();
            }
            // The writer of the document needs none of it.
            sources = {};
            reader.reset();
            press.reset();
            inheritance.clear();
        };
        if (mayUpdate())
            update(write);
        else
            rewrite(write);
        tellOfDamage();
        return changed;
    }

private:
    void tellOfDamage() {
        if (m_pdf.lacksPages || wasDamaged(m_pdf.document))
            m_report.warn(Warning::Kind::repaired);
    }

    void tellOfUnread(const ContentReader& reader, const std::vector<PageWriter::Page>& sources) {
        std::set<std::size_t> pages;
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (sources[i].isRead && reader.content(sources[i].content).isUnread)
                pages.insert(i + 1);
        if (!pages.empty())
            m_report.warn(Warning::Kind::contentUnread, argumentsFor(pages));
    }

    void checkFit(StampPress& stamps, const std::vector<StampPlan>& plans,
                  const std::vector<PageWriter::Page>& sources) {
        FitCheck fit;
        for (std::size_t i = 0; i < sources.size(); ++i)
            for (const auto& bearing : stamps.pages()[i]) {
                const auto& plan = plans[bearing.plan];
                const auto& form = stamps.forms()[bearing.form];
                const auto page = shownSize(sources[i].geometry);
                fit.look(i + 1, form.ink, placeStamp(form.size, page, plan.anchor, plan.offset, plan.degrees), page);
            }
        fit.tell(m_report, m_job.dryRun);
    }

    Existing existing() const { return m_job.mayReplace ? Existing::replaced : Existing::kept; }

    /// Whether the file is continued instead of being written anew; asked when all of it has been read.
    bool mayUpdate() {
        if (m_job.saving == Saving::rewrite && !m_isSigned)
            return false;
        bool possible = !m_pdf.lacksPages && PdfUpdate::isPossible(m_pdf.document, m_pdf.file.bytes());
        // A page that stands twice in the tree became an object that the file does not have.
        const auto size = m_pdf.document.getTrailer().getKey("/Size").getIntValue();
        for (const auto& page : m_pdf.pages())
            possible = possible && page.getObjectID() < size;
        if (m_isSigned && !possible)
            throw Failure(Code::isSigned, "The document is signed and can only be written anew, which would make its "
                                          "signatures invalid.");
        if (m_job.saving == Saving::update && !possible)
            throw Failure(Code::unsupported, "The document cannot be updated incrementally.");
        // What is removed shall not stay in the file, which would grow with each replacement.
        const bool isBetter = !m_linearized && !m_removes;
        return possible && (m_isSigned || m_job.saving == Saving::update || isBetter);
    }

    template <class Write>
    void update(const Write& write) {
        OutputFile output(m_job.output, m_pdf.file.state().mode(), existing());
        PdfUpdate objects(m_pdf.document, m_pdf.file.bytes(), m_pdf.file.descriptor(), output);
        objects.requireVersion("1.4");
        write(objects, 1.0);
        objects.finish();
        commit(output);
    }

    template <class Write>
    void rewrite(const Write& write) {
        PdfRewrite objects(m_pdf.document);
        write(objects, 0.6);
        OutputFile output(m_job.output, m_pdf.file.state().mode(), existing());
        try {
            // The writer replaces the entry of a repaired trailer, but adds none.
            m_pdf.document.getTrailer().replaceKey("/Size", QPDFObjectHandle::newInteger(0));
            QPDFWriter writer(m_pdf.document);
            OutputPipeline pipeline(output);
            writer.setOutputPipeline(&pipeline);
            writer.setMinimumPDFVersion("1.4");
            writer.setLinearization(m_linearized);
            if (m_job.deterministic && !m_pdf.document.isEncrypted())
                writer.setDeterministicID(true);
            const auto pageCount = m_pdf.pages().size();
            writer.registerProgressReporter(
                std::make_shared<QPDFWriter::FunctionProgressReporter>([this, pageCount](int percent) {
                    m_pdf.file.release();
                    m_progress.tell(0.6 + 0.004 * percent, pageCount);
                }));
            writer.write();
        } catch (const QPDFSystemError& error) {
            throw std::system_error(error.getErrno(), std::generic_category());
        }
        commit(output);
    }

    void commit(OutputFile& output) {
        const auto pageCount = m_pdf.pages().size();
        m_progress.tell(1, pageCount);
        m_pdf.file.state().expectAt(m_job.input);
        output.commit();
    }

    Task m_task;
    const StampJob& m_job;
    Facts m_facts;
    Report& m_report;
    Progress m_progress;
    PdfFile m_pdf;
    bool m_linearized = false;
    bool m_isSigned = false;
    bool m_removes = false; ///< Whether a page loses stamps.
};

/// Answers what `work` does with the job. Older ciphers know a password as bytes of an encoding that depends on who set
/// it, so that its other spellings are tried after the one given.
template <class Work>
std::size_t withAnySpelling(const StampJob& job, const Work& work) {
    try {
        return work(job);
    } catch (const QPDFExc& error) {
        if (error.getErrorCode() != qpdf_e_password || job.password.empty())
            throw;
    }
    auto attempt = job;
    for (const auto& password : QUtil::possible_repaired_encodings(job.password)) {
        attempt.password = password;
        try {
            return work(attempt);
        } catch (const QPDFExc& error) {
            if (error.getErrorCode() != qpdf_e_password)
                throw;
        }
    }
    throw Failure(Code::encrypted, "The password is wrong.");
}

/// The same; what the library throws becomes a `Failure`.
template <class Work>
std::size_t guarded(const StampJob& job, const Work& work) {
    try {
        return withAnySpelling(job, work);
    } catch (const QPDFExc& error) {
        switch (error.getErrorCode()) {
        case qpdf_e_password:
            throw Failure(Code::encrypted, "The document needs a password.");
        case qpdf_e_unsupported:
            throw Failure(Code::unsupported, "The document is encrypted in a way that is not supported.");
        case qpdf_e_system:
            throw Failure(Code::unreadable, "The file cannot be read.");
        default:
            throw Failure(Code::damaged, "The document is damaged beyond repair.");
        }
    } catch (const QPDFSystemError&) {
        throw Failure(Code::unreadable, "The file cannot be read.");
    } catch (const Failure&) {
        throw;
    } catch (const std::system_error&) {
        throw;
    } catch (const std::runtime_error&) {
        throw Failure(Code::damaged, "The document is damaged beyond repair.");
    } catch (const std::logic_error&) {
        throw Failure(Code::damaged, "The document is damaged beyond repair.");
    }
}

} // namespace

std::size_t stampPdf(const StampJob& job, const Facts& facts, Report& report) {
    return guarded(job,
                   [&](const StampJob& attempt) { return PdfStamping(Task::stamp, attempt, facts, report).run(); });
}

std::size_t unstampPdf(const StampJob& job, Report& report) {
    return guarded(job, [&](const StampJob& attempt) { return PdfStamping(Task::unstamp, attempt, {}, report).run(); });
}

std::vector<FoundStamp> findPdfStamps(const StampJob& job, std::size_t& pageCount) {
    std::vector<FoundStamp> stamps;
    pageCount = guarded(job, [&stamps](const StampJob& attempt) {
        PdfFile pdf(attempt);
        const auto& pages = pdf.pages();
        std::size_t bearing = 0;
        Flate flate;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const auto found = stampsIn(streamsOf(QPDFObjectHandle(pages[i]).getKey("/Contents")), flate);
            bearing += found.empty() ? 0 : 1;
            for (const auto& identifier : found) {
                auto known = std::find_if(stamps.begin(), stamps.end(),
                                          [&](const auto& stamp) { return stamp.identifier == identifier; });
                if (known == stamps.end())
                    known = stamps.insert(known, {identifier, {}});
                known->pages.push_back(i + 1);
            }
            if (i % 64 == 0)
                Progress(attempt).tell(static_cast<double>(i) / static_cast<double>(pages.size()), pages.size());
        }
        return bearing;
    });
    return stamps;
}

std::size_t countPdfPages(const StampJob& job) {
    return guarded(job, [](const StampJob& attempt) { return PdfFile(attempt).pages().size(); });
}

} // namespace engine
