// SPDX-License-Identifier: MIT
#include "PdfStamper.h"

#include "ContentReader.h"
#include "Flate.h"
#include "MappedFile.h"
#include "OutputFile.h"
#include "PdfText.h"
#include "PdfUpdate.h"
#include "PictureFile.h"
#include "StampPress.h"

#include <engine/PageChoice.h>
#include <engine/Placement.h>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFSystemError.hh>
#include <qpdf/QPDFWriter.hh>

#include <cmath>
#include <deque>
#include <future>
#include <memory>
#include <unordered_map>

namespace engine {

namespace {

Box boxOf(QPDFObjectHandle object, const Box& missing) {
    if (!object.isRectangle())
        return missing;
    const auto box = object.getArrayAsRectangle();
    return {box.llx, box.lly, box.urx, box.ury};
}

/// Whether one of these form fields, or of the fields below them, is a signature that was given.
bool anySigned(QPDFObjectHandle fields, int levels) {
    if (!fields.isArray() || levels == 0)
        return false;
    for (auto field : fields.getArrayAsVector())
        if (field.isDictionary() &&
            ((field.getKey("/FT").isNameAndEquals("/Sig") && field.getKey("/V").isDictionary()) ||
             anySigned(field.getKey("/Kids"), levels - 1)))
            return true;
    return false;
}

bool isSigned(QPDFObjectHandle root) {
    auto form = root.getKey("/AcroForm");
    if (!form.isDictionary())
        return false;
    auto flags = form.getKey("/SigFlags");
    return (flags.isInteger() && flags.getIntValue() & 1) || anySigned(form.getKey("/Fields"), 16);
}

void refuseWhatMustNotChange(QPDF& document, const StampJob& job) {
    if (document.isEncrypted() && !document.ownerPasswordMatched() && !document.allowModifyOther())
        throw Failure(Code::notPermitted, "The document forbids changes; its owner's password lifts that.");
    auto root = document.getRoot();
    auto permissions = root.getKey("/Perms");
    if (permissions.isDictionary() && permissions.hasKey("/DocMDP"))
        throw Failure(Code::certified, "The document is certified; a stamp would break that.");
    if (!job.allowSigned && isSigned(root))
        throw Failure(Code::isSigned, "The document is signed, and it was not allowed to change it.");
}

/// What a page gets from its ancestors in the tree unless it says otherwise.
struct Inherited {
    QPDFObjectHandle mediaBox;
    QPDFObjectHandle cropBox;
    QPDFObjectHandle rotate;
    QPDFObjectHandle resources;
};

/// Looks inheritable attributes up, each node of the page tree once.
class Inheritance {
public:
    Inherited of(QPDFObjectHandle page) {
        Inherited result{page.getKey("/MediaBox"), page.getKey("/CropBox"), page.getKey("/Rotate"),
                         page.getKey("/Resources")};
        if (result.mediaBox.isNull() || result.cropBox.isNull() || result.rotate.isNull() ||
            result.resources.isNull()) {
            const auto& above = ofNode(page.getKey("/Parent"), 0);
            const auto fill = [](QPDFObjectHandle& own, const QPDFObjectHandle& inherited) {
                if (own.isNull())
                    own = inherited;
            };
            fill(result.mediaBox, above.mediaBox);
            fill(result.cropBox, above.cropBox);
            fill(result.rotate, above.rotate);
            fill(result.resources, above.resources);
        }
        return result;
    }

private:
    const Inherited& ofNode(QPDFObjectHandle node, int level) {
        static const Inherited none{QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull(),
                                    QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull()};
        constexpr int deepest = 200; // a tree that leads back to itself ends here
        if (!node.isDictionary() || level == deepest)
            return none;
        const auto found = m_nodes.find(node.getObjGen());
        if (found != m_nodes.end() && node.isIndirect())
            return found->second;
        Inherited own{node.getKey("/MediaBox"), node.getKey("/CropBox"), node.getKey("/Rotate"),
                      node.getKey("/Resources")};
        const Inherited above = ofNode(node.getKey("/Parent"), level + 1);
        for (const auto attribute :
             {&Inherited::mediaBox, &Inherited::cropBox, &Inherited::rotate, &Inherited::resources})
            if ((own.*attribute).isNull())
                own.*attribute = above.*attribute;
        return m_nodes[node.getObjGen()] = own;
    }

    std::map<QPDFObjGen, Inherited> m_nodes;
};

PageGeometry geometryOf(QPDFObjectHandle page, const Inherited& attributes) {
    PageGeometry geometry;
    const Box letter = geometry.mediaBox;
    geometry.mediaBox = boxOf(attributes.mediaBox, letter);
    if (geometry.mediaBox.width() == 0 || geometry.mediaBox.height() == 0)
        geometry.mediaBox = letter;
    geometry.cropBox = boxOf(attributes.cropBox, geometry.mediaBox);
    auto rotate = attributes.rotate;
    if (rotate.isNumber() && std::abs(rotate.getNumericValue()) < 1e6 &&
        rotate.getNumericValue() == std::floor(rotate.getNumericValue()))
        geometry.rotate = static_cast<int>(rotate.getNumericValue());
    auto unit = page.getKey("/UserUnit");
    if (unit.isNumber())
        geometry.userUnit = unit.getNumericValue();
    return geometry;
}

std::vector<QPDFObjectHandle> streamsOf(QPDFObjectHandle contents) {
    std::vector<QPDFObjectHandle> streams;
    if (contents.isStream())
        streams.push_back(contents);
    else if (contents.isArray())
        for (auto item : contents.getArrayAsVector())
            if (item.isStream())
                streams.push_back(item);
    return streams;
}

/// Writes stamps onto pages.
class PageWriter {
public:
    PageWriter(PdfObjects& objects, const std::vector<StampPlan>& plans, StampPress& press, const ContentReader& reader)
        : m_objects(objects), m_plans(plans), m_press(press), m_reader(reader),
          m_resources(objects.add(press.painter().writeResources(objects))), m_forms(press.forms().size()) {
        for (const auto& plan : plans)
            m_marks.push_back("/Artifact <</Type /Pagination /Subtype /Watermark /ImprinterStamp " +
                              QPDFObjectHandle::newUnicodeString(plan.identifier).unparse() + ">> BDC\nq ");
    }

    void stamp(QPDFObjectHandle page, const PageGeometry& geometry, QPDFObjectHandle resources, std::size_t content,
               const std::vector<StampPress::Bearing>& bearings) {
        const auto& names = namesOf(resources, page.getKey("/Resources"));
        std::string contents = "[";
        std::string suffix = openings(m_reader.content(content), contents);
        std::string objects = names.objects;
        std::size_t number = 0;
        for (const auto& bearing : bearings) {
            const auto& plan = m_plans[bearing.plan];
            const auto& form = m_press.forms()[bearing.form];
            std::string name;
            do
                name = "/ImprinterStamp" + std::to_string(number++);
            while (names.taken.count(name) > 0);
            objects += name + ' ' + formFor(bearing.form);
            suffix += m_marks[bearing.plan];
            const auto m = placeStamp(form.size, shownSize(geometry), plan.anchor, plan.offset, plan.degrees)
                               .then(userSpaceFromShown(geometry));
            for (const double value : {m.a, m.b, m.c, m.d, m.e, m.f}) {
                appendNumber(suffix, value);
                suffix += ' ';
            }
            suffix += "cm " + name + " Do Q\nEMC\n";
        }
        auto& stream = m_suffixes[suffix];
        if (stream.empty())
            stream = addStream(suffix);
        m_objects.changePage(page, contents + stream + ']', "<<" + names.others + "/XObject<<" + objects + ">>>>");
    }

private:
    /// Appends the streams that come before the stamps to `contents`, and answers what the next stream must begin with
    /// to close what they leave open.
    std::string openings(const PageContent& content, std::string& contents) {
        if (content.streams.empty())
            return {};
        if (m_save.empty())
            m_save = m_objects.addStream({}, "q\n");
        contents += m_save;
        if (content.mended) {
            auto& mended = m_mended[&content];
            if (mended.empty())
                mended = addStream(*content.mended);
            contents += ' ' + mended;
        } else {
            for (const auto& stream : content.streams)
                contents += ' ' + std::to_string(stream.getObj()) + ' ' + std::to_string(stream.getGen()) + " R";
        }
        contents += ' ';
        std::string closing = "\n";
        if (content.openText)
            closing += "ET\n";
        for (std::size_t i = 0; i < content.openMarks; ++i)
            closing += "EMC\n";
        for (std::size_t i = 0; i <= content.openStates; ++i)
            closing += "Q\n";
        return closing;
    }

    std::string addStream(const std::string& content) {
        const auto deflated = m_flate.deflate(content);
        return deflated.size() + 20 < content.size() ? m_objects.addStream("/Filter/FlateDecode", deflated)
                                                     : m_objects.addStream({}, content);
    }

    /// A page's resources as text, without its forms and pictures; and these.
    struct Names {
        std::string others;
        std::string objects;
        std::set<std::string> taken; ///< Names of ours that are in use.
    };

    /// `own` is what the page itself has. What several pages may share is read once.
    const Names& namesOf(QPDFObjectHandle resources, QPDFObjectHandle own) {
        const bool shared = resources.isIndirect() || !own.isDictionary();
        if (!shared)
            return m_ownNames = read(resources, false);
        // An inherited one that is direct is told by what it holds, which is one object for all pages.
        for (auto& [known, names] : m_sharedNames)
            if (known.isSameObjectAs(resources))
                return names;
        return m_sharedNames.emplace_back(resources, read(resources, true)).second;
    }

    Names read(QPDFObjectHandle resources, bool shared) {
        Names names;
        if (!resources.isDictionary())
            return names;
        for (const auto& [key, found] : resources.getDictAsMap()) {
            QPDFObjectHandle value = found;
            if (key == "/XObject") {
                if (!value.isDictionary())
                    continue;
                for (const auto& [name, object] : value.getDictAsMap()) {
                    appendName(names.objects, name);
                    names.objects += ' ' + QPDFObjectHandle(object).unparse();
                    if (name.starts_with("/ImprinterStamp"))
                        names.taken.insert(name);
                }
                continue;
            }
            auto text = value.unparse();
            // A long value that many pages share stays one.
            constexpr std::size_t longText = 40;
            if (shared && !value.isIndirect() && text.size() > longText)
                text = m_objects.add(text);
            appendName(names.others, key);
            names.others += ' ' + text;
        }
        return names;
    }

    const std::string& formFor(std::uint32_t number) {
        auto& reference = m_forms[number];
        if (!reference.empty())
            return reference;
        auto& form = m_press.forms()[number];
        std::string entries = "/Subtype/Form/BBox [";
        // A point of air, since renderers clip to whole pixels of the box.
        for (const double edge : {std::floor(form.ink.llx - 1), std::floor(form.ink.lly - 1),
                                  std::ceil(form.ink.urx + 1), std::ceil(form.ink.ury + 1)}) {
            appendNumber(entries, edge);
            entries += ' ';
        }
        entries += "]/Resources " + m_resources;
        if (form.deflated)
            entries += "/Filter/FlateDecode";
        reference = m_objects.addStream(entries, form.content);
        form.content = {}; // it is in the document now
        return reference;
    }

    PdfObjects& m_objects;
    const std::vector<StampPlan>& m_plans;
    StampPress& m_press;
    const ContentReader& m_reader;
    std::string m_resources; ///< A reference, as are the following.
    std::vector<std::string> m_forms;
    std::vector<std::string> m_marks; ///< What begins a stamp of each plan.
    Flate m_flate;
    std::string m_save;
    std::map<const PageContent*, std::string> m_mended;
    std::unordered_map<std::string, std::string> m_suffixes;
    Names m_ownNames;
    std::deque<std::pair<QPDFObjectHandle, Names>> m_sharedNames;
};

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
    // No page takes less than this, so that a lie costs nothing.
    constexpr long long smallestPage = 8;
    return count.isInteger() && count.getIntValue() > 0 &&
                   count.getIntValue() < static_cast<long long>(bytes.size()) / smallestPage
               ? static_cast<std::size_t>(count.getIntValue())
               : 0;
}

/// A press at work on a thread of its own, which ends with this object.
class PressRun {
public:
    PressRun(const std::vector<StampPlan>& plans, const Facts& facts, FaceLibrary& faces, std::size_t pageCount,
             bool aside)
        : m_pageCount(pageCount), m_press(plans, facts, faces),
          m_done(std::async(aside ? std::launch::async : std::launch::deferred, [this] { m_press.run(m_pageCount); })) {
    }
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

/// One document being stamped.
class PdfStamping {
public:
    PdfStamping(const StampJob& job, const Facts& facts, Report& report)
        : m_job(job), m_facts(facts), m_report(report), m_progress(job), m_file(job.input) {}

    std::size_t run() {
        const auto bytes = m_file.bytes();
        m_document.setSuppressWarnings(true);
        m_document.processMemoryFile(m_job.input.c_str(), bytes.data(), bytes.size(), m_job.password.c_str());
        m_linearized = m_document.isLinearized();
        refuseWhatMustNotChange(m_document, m_job);

        FaceLibrary faces(m_job.defaultFont);
        const auto plans = planStamps(m_job.configurations, faces, m_report);
        const bool aside = m_job.threads > 1;
        std::optional<PressRun> press;
        if (const auto stated = statedPageCount(m_document, bytes); stated > 0)
            press.emplace(plans, m_facts, faces, stated, aside);

        const auto& pages = m_document.getAllPages();
        if (pages.empty())
            throw Failure(Code::damaged, "The document has no pages.");
        if (!press || press->pageCount() != pages.size()) {
            press.reset();
            press.emplace(plans, m_facts, faces, pages.size(), aside);
        }

        const bool inFile = !m_document.isEncrypted() && bytes.starts_with("%PDF-") && !m_document.anyWarnings();
        auto reader = std::make_unique<ContentReader>(inFile ? bytes : std::string_view(), aside);
        std::vector<Page> sources;
        sources.reserve(pages.size());
        Inheritance inheritance;
        std::vector<std::vector<std::size_t>> chosen;
        for (const auto& plan : plans)
            chosen.push_back(choosePages(plan.occurrence, plan.customPages, pages.size()));
        std::vector<bool> isChosen(pages.size());
        for (const auto& list : chosen)
            for (const auto page : list)
                isChosen[page - 1] = true;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            if (i % 64 == 0)
                m_progress.tell(0.4 * static_cast<double>(i) / static_cast<double>(pages.size()), pages.size());
            auto& source = sources.emplace_back();
            if (!isChosen[i])
                continue;
            auto page = pages[i];
            const auto attributes = inheritance.of(page);
            source.geometry = geometryOf(page, attributes);
            source.resources = attributes.resources;
            source.content = reader->add(streamsOf(page.getKey("/Contents")));
        }
        reader->finish(m_document.anyWarnings());
        auto& stamps = press->finish();
        m_report.sentences.insert(stamps.report().sentences.begin(), stamps.report().sentences.end());
        if (stamps.stampedPages() == 0)
            throw Failure(Code::nothingToStamp, "There is nothing to stamp on any page of the document.");

        const auto stampedPages = stamps.stampedPages();
        const auto write = [&](PdfObjects& objects, double last) {
            m_file.release();
            PageWriter writer(objects, plans, stamps, *reader);
            for (std::size_t i = 0; i < pages.size(); ++i) {
                if (i % 64 == 0)
                    m_progress.tell(0.4 + (last - 0.4) * static_cast<double>(i) / static_cast<double>(pages.size()),
                                    pages.size());
                if (!stamps.pages()[i].empty())
                    writer.stamp(pages[i], sources[i].geometry, sources[i].resources, sources[i].content,
                                 stamps.pages()[i]);
            }
            // The writer of the document needs none of it.
            sources = {};
            reader.reset();
            press.reset();
            inheritance = {};
        };
        if (mayUpdate())
            update(write);
        else
            rewrite(write);
        if (m_document.anyWarnings())
            m_report.sentences.insert("The document was damaged; it was repaired as far as possible.");
        return stampedPages;
    }

private:
    struct Page {
        PageGeometry geometry;
        QPDFObjectHandle resources;
        std::size_t content = 0;
    };

    /// Whether the file is continued instead of being written anew; asked when all of it has been read.
    bool mayUpdate() {
        const bool isSafe = isSigned(m_document.getRoot());
        if (m_job.saving == Saving::rewrite && !isSafe)
            return false;
        bool possible = PdfUpdate::isPossible(m_document, m_file.bytes());
        // A page that stands twice in the tree became an object that the file does not have.
        const auto size = m_document.getTrailer().getKey("/Size").getIntValue();
        for (auto page : m_document.getAllPages())
            possible = possible && page.getObjectID() < size;
        if (isSafe && !possible)
            throw Failure(Code::isSigned, "The document is signed and can only be written anew, which would make its "
                                          "signatures invalid.");
        if (m_job.saving == Saving::update && !possible)
            throw Failure(Code::unsupported, "The document cannot be updated incrementally.");
        return possible && (isSafe || m_job.saving == Saving::update || !m_linearized);
    }

    template <class Write>
    void update(const Write& write) {
        OutputFile output(m_job.output);
        PdfUpdate objects(m_document, m_file.bytes(), m_file.descriptor(), output);
        objects.requireVersion("1.4");
        write(objects, 1.0);
        objects.finish();
        commit(output);
    }

    template <class Write>
    void rewrite(const Write& write) {
        PdfRewrite objects(m_document);
        write(objects, 0.6);
        OutputFile output(m_job.output);
        try {
            // The writer replaces the entry of a repaired trailer, but adds none.
            m_document.getTrailer().replaceKey("/Size", QPDFObjectHandle::newInteger(0));
            QPDFWriter writer(m_document);
            writer.setOutputFile(m_job.output.c_str(), output.stream(), false);
            writer.setMinimumPDFVersion("1.4");
            writer.setLinearization(m_linearized);
            if (m_job.deterministic && !m_document.isEncrypted())
                writer.setDeterministicID(true);
            const auto pageCount = m_document.getAllPages().size();
            writer.registerProgressReporter(
                std::make_shared<QPDFWriter::FunctionProgressReporter>([this, pageCount](int percent) {
                    m_file.release();
                    m_progress.tell(0.6 + 0.004 * percent, pageCount);
                }));
            writer.write();
        } catch (const QPDFSystemError& error) {
            throw std::system_error(error.getErrno(), std::generic_category());
        }
        commit(output);
    }

    void commit(OutputFile& output) {
        const auto pageCount = m_document.getAllPages().size();
        m_progress.tell(1, pageCount);
        output.commit();
    }

    const StampJob& m_job;
    const Facts& m_facts;
    Report& m_report;
    Progress m_progress;
    MappedFile m_file;
    QPDF m_document;
    bool m_linearized = false;
};

} // namespace

std::size_t stampPdf(const StampJob& job, const Facts& facts, Report& report) {
    try {
        return PdfStamping(job, facts, report).run();
    } catch (const QPDFExc& error) {
        switch (error.getErrorCode()) {
        case qpdf_e_password:
            throw Failure(Code::encrypted,
                          job.password.empty() ? "The document needs a password." : "The password is wrong.");
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

} // namespace engine
