// SPDX-License-Identifier: MIT
#include "PdfStamper.h"

#include "ContentScan.h"
#include "Flate.h"
#include "OutputFile.h"
#include "PdfFonts.h"
#include "PdfPainter.h"
#include "PdfText.h"
#include "PictureFile.h"

#include <engine/PageChoice.h>
#include <engine/Placement.h>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFSystemError.hh>
#include <qpdf/QPDFWriter.hh>

#include <cmath>

namespace engine {

namespace {

/// A stamp on a page.
struct Placed {
    const StampPlan* plan;
    const Stamp* stamp;
    Matrix userFromStamp;
};

Box boxOf(QPDFObjectHandle object, const Box& missing) {
    if (!object.isRectangle())
        return missing;
    const auto box = object.getArrayAsRectangle();
    return {box.llx, box.lly, box.urx, box.ury};
}

PageGeometry geometryOf(QPDFPageObjectHelper page) {
    PageGeometry geometry;
    const Box letter = geometry.mediaBox;
    geometry.mediaBox = boxOf(page.getAttribute("/MediaBox", false), letter);
    if (geometry.mediaBox.width() == 0 || geometry.mediaBox.height() == 0)
        geometry.mediaBox = letter;
    geometry.cropBox = boxOf(page.getAttribute("/CropBox", false), geometry.mediaBox);
    auto rotate = page.getAttribute("/Rotate", false);
    if (rotate.isNumber() && std::abs(rotate.getNumericValue()) < 1e6 &&
        rotate.getNumericValue() == std::floor(rotate.getNumericValue()))
        geometry.rotate = static_cast<int>(rotate.getNumericValue());
    auto unit = page.getObjectHandle().getKey("/UserUnit");
    if (unit.isNumber())
        geometry.userUnit = unit.getNumericValue();
    return geometry;
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
    if (!job.breakSignatures && isSigned(root))
        throw Failure(Code::isSigned, "The document is signed; a stamp would make its signatures invalid.");
}

/// Puts stamps on the pages of one document.
class PageWriter {
public:
    PageWriter(QPDF& document, PdfPainter& painter) : m_document(document), m_painter(painter) {}

    void stamp(QPDFObjectHandle page, const std::vector<Placed>& stamps) {
        QPDFPageObjectHelper helper(page);
        const auto closing = wrapContents(page);
        auto resources = ownDictionary(page, "/Resources", helper.getAttribute("/Resources", false));
        auto objects = ownDictionary(resources, "/XObject", resources.getKey("/XObject"));
        std::string content = closing;
        for (const auto& placed : stamps) {
            const auto name = addObject(objects, formFor(*placed.stamp));
            content += "/Artifact <</Type /Pagination /Subtype /Watermark /ImprinterStamp " +
                       QPDFObjectHandle::newUnicodeString(placed.plan->identifier).unparse() + ">> BDC\nq ";
            const Matrix& m = placed.userFromStamp;
            for (const double number : {m.a, m.b, m.c, m.d, m.e, m.f}) {
                appendNumber(content, number);
                content += ' ';
            }
            content += "cm " + name + " Do Q\nEMC\n";
        }
        auto& stream = m_suffixes[content];
        if (!stream.isStream())
            stream = newStream(content);
        auto contents = page.getKey("/Contents");
        contents.appendItem(stream);
    }

    /// Once all pages are done.
    void finish() {
        if (m_resources.isInitialized())
            m_document.replaceObject(m_resources.getObjGen(), m_painter.resources());
    }

private:
    /// Makes the page's contents an array of its own that runs between `q` and `Q`, and answers what the next stream
    /// must begin with to close it.
    std::string wrapContents(QPDFObjectHandle page) {
        auto contents = page.getKey("/Contents");
        std::vector<QPDFObjectHandle> streams;
        if (contents.isStream())
            streams.push_back(contents);
        else if (contents.isArray())
            for (auto item : contents.getArrayAsVector())
                if (item.isStream())
                    streams.push_back(item);
        if (streams.empty()) {
            page.replaceKey("/Contents", QPDFObjectHandle::newArray());
            return {};
        }
        std::vector<QPDFObjGen> key;
        for (auto stream : streams)
            key.push_back(stream.getObjGen());
        auto [place, isNew] = m_wraps.try_emplace(key);
        if (isNew)
            place->second = wrapFor(streams);
        if (!m_save.isInitialized())
            m_save = newStream("q\n");
        auto array = QPDFObjectHandle::newArray();
        array.appendItem(m_save);
        for (const auto& stream : place->second.streams)
            array.appendItem(stream);
        page.replaceKey("/Contents", array);
        return place->second.closing;
    }

    /// Deflated here where that makes it smaller; the document's writer would set up its tables for each one.
    QPDFObjectHandle newStream(const std::string& content) {
        const auto deflated = m_flate.deflate(content);
        const bool smaller = deflated.size() + 20 < content.size(); // the filter's entry
        auto stream = m_document.newStream(smaller ? deflated : content);
        if (smaller)
            stream.getDict().replaceKey("/Filter", QPDFObjectHandle::newName("/FlateDecode"));
        else
            stream.setFilterOnWrite(false);
        return stream;
    }

    void appendDecoded(QPDFObjectHandle stream, std::string& content) {
        auto dictionary = stream.getDict();
        if (dictionary.getKey("/Filter").isNameAndEquals("/FlateDecode") && !dictionary.hasKey("/DecodeParms")) {
            const auto raw = stream.getRawStreamData();
            const auto plain = m_flate.inflate({reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize()});
            if (plain) {
                content += *plain;
                return;
            }
        }
        const auto data = stream.getStreamData(qpdf_dl_generalized);
        content.append(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
    }

    struct Wrap {
        std::vector<QPDFObjectHandle> streams;
        std::string closing;
    };

    Wrap wrapFor(const std::vector<QPDFObjectHandle>& streams) {
        Wrap wrap{streams, "\nQ\n"};
        std::string content;
        try {
            for (auto stream : streams) {
                appendDecoded(stream, content);
                content += '\n';
            }
        } catch (const QPDFExc&) {
            return wrap; // What cannot be decoded cannot be mended either.
        }
        const auto balance = scanContent(content);
        if (!balance.surplusRestores.empty()) {
            // Viewers pass over a restore without a save. Inside the wrapper it would end the wrapper.
            for (const auto offset : balance.surplusRestores)
                content[offset] = ' ';
            wrap.streams = {newStream(content)};
        }
        wrap.closing = "\n";
        if (balance.openText)
            wrap.closing += "ET\n";
        for (std::size_t i = 0; i < balance.openMarks; ++i)
            wrap.closing += "EMC\n";
        for (std::size_t i = 0; i <= balance.openStates; ++i)
            wrap.closing += "Q\n";
        return wrap;
    }

    /// A dictionary that is the owner's alone: what may be inherited, or shared as an indirect object, is copied.
    static QPDFObjectHandle ownDictionary(QPDFObjectHandle owner, const std::string& key, QPDFObjectHandle present) {
        owner.replaceKey(key, present.isDictionary() ? present.shallowCopy() : QPDFObjectHandle::newDictionary());
        return owner.getKey(key);
    }

    static std::string addObject(QPDFObjectHandle objects, QPDFObjectHandle object) {
        for (std::size_t number = 0;; ++number) {
            const auto name = "/ImprinterStamp" + std::to_string(number);
            if (objects.hasKey(name))
                continue;
            objects.replaceKey(name, object);
            return name;
        }
    }

    QPDFObjectHandle formFor(const Stamp& stamp) {
        auto& form = m_forms[&stamp];
        if (form.isStream())
            return form;
        if (!m_resources.isInitialized())
            m_resources = m_document.makeIndirectObject(QPDFObjectHandle::newDictionary());
        form = newStream(m_painter.paint(stamp));
        auto dictionary = form.getDict();
        dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
        dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
        std::string box = "[";
        // A point of air, since renderers clip to whole pixels of the box.
        for (const double edge : {stamp.ink.llx - 1, stamp.ink.lly - 1, stamp.ink.urx + 1, stamp.ink.ury + 1}) {
            appendNumber(box, edge);
            box += ' ';
        }
        dictionary.replaceKey("/BBox", QPDFObjectHandle::parse(box + "]"));
        dictionary.replaceKey("/Resources", m_resources);
        return form;
    }

    QPDF& m_document;
    PdfPainter& m_painter;
    Flate m_flate;
    QPDFObjectHandle m_save;
    QPDFObjectHandle m_resources;
    std::map<std::vector<QPDFObjGen>, Wrap> m_wraps;
    std::map<std::string, QPDFObjectHandle> m_suffixes;
    std::map<const Stamp*, QPDFObjectHandle> m_forms;
};

std::size_t stampDocument(QPDF& document, const StampJob& job, const Facts& facts, Report& report) {
    const auto& pages = document.getAllPages();
    if (pages.empty())
        throw Failure(Code::damaged, "The document has no pages.");
    FaceLibrary faces(job.defaultFont);
    const auto plans = planStamps(job.configurations, faces, report);
    std::vector<StampCache> caches(plans.size());
    std::vector<std::vector<const StampPlan*>> chosen(pages.size());
    for (const auto& plan : plans)
        for (const auto page : choosePages(plan.occurrence, plan.customPages, pages.size()))
            chosen[page - 1].push_back(&plan);

    PdfFonts fonts;
    std::set<const Stamp*> collected;
    std::vector<std::vector<Placed>> placed(pages.size());
    std::size_t stampedPages = 0;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (chosen[i].empty())
            continue;
        if (job.progress && i % 16 == 0 && !job.progress(i, pages.size()))
            throw Failure(Code::cancelled, "The run was cancelled.");
        Facts pageFacts = facts;
        pageFacts.pageNumber = i + 1;
        pageFacts.recordPageCount = pages.size();
        const auto geometry = geometryOf(QPDFPageObjectHelper(pages[i]));
        for (const auto* plan : chosen[i]) {
            auto& cache = caches[static_cast<std::size_t>(plan - plans.data())];
            const auto& stamp = cache.stampFor(*plan, pageFacts, faces, report);
            if (!stamp)
                continue;
            if (collected.insert(stamp.get()).second)
                fonts.collect(*stamp);
            const auto place = placeStamp(stamp->size, shownSize(geometry), plan->anchor, plan->offset, plan->degrees);
            placed[i].push_back({plan, stamp.get(), place.then(userSpaceFromShown(geometry))});
        }
        stampedPages += placed[i].empty() ? 0 : 1;
    }
    if (stampedPages == 0)
        throw Failure(Code::nothingToStamp, "There is nothing to stamp on any page of the document.");

    fonts.embed(document, report.sentences);
    PdfPainter painter(fonts);
    PageWriter writer(document, painter);
    for (std::size_t i = 0; i < pages.size(); ++i)
        if (!placed[i].empty())
            writer.stamp(pages[i], placed[i]);
    writer.finish();
    return stampedPages;
}

void writeDocument(QPDF& document, const StampJob& job, bool linearized) {
    const auto pageCount = document.getAllPages().size();
    OutputFile output(job.output);
    try {
        // The writer replaces the entry of a repaired trailer, but adds none.
        document.getTrailer().replaceKey("/Size", QPDFObjectHandle::newInteger(0));
        QPDFWriter writer(document);
        writer.setOutputFile(job.output.c_str(), output.stream(), false);
        writer.setMinimumPDFVersion("1.4");
        writer.setLinearization(linearized);
        if (job.deterministic && !document.isEncrypted())
            writer.setDeterministicID(true);
        writer.write();
    } catch (const QPDFSystemError& error) {
        throw std::system_error(error.getErrno(), std::generic_category());
    }
    if (job.progress && !job.progress(pageCount, pageCount))
        throw Failure(Code::cancelled, "The run was cancelled.");
    output.commit();
}

} // namespace

std::size_t stampPdf(const StampJob& job, const Facts& facts, Report& report) {
    try {
        QPDF document;
        document.setSuppressWarnings(true);
        document.processFile(job.input.c_str(), job.password.c_str());
        const bool linearized = document.isLinearized();
        refuseWhatMustNotChange(document, job);
        const auto stampedPages = stampDocument(document, job, facts, report);
        writeDocument(document, job, linearized);
        if (document.anyWarnings())
            report.sentences.insert("The document was damaged; it was repaired as far as possible.");
        return stampedPages;
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
