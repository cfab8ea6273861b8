// SPDX-License-Identifier: MIT
#include "PageWriter.h"

#include "PdfText.h"

#include <cmath>

namespace engine {

namespace {

const std::string kName = "/ImprinterStamp"; // followed by a number

/// What makes up for all that a page's content leaves open.
std::string closingOf(const PageContent& content) {
    std::string closing = '\n' + content.closing;
    if (content.openText)
        closing += "ET\n";
    for (std::size_t i = 0; i < content.openMarks; ++i)
        closing += "EMC\n";
    for (std::size_t i = 0; i <= content.openStates; ++i)
        closing += "Q\n";
    return closing;
}

} // namespace

PageWriter::PageWriter(PdfObjects& objects, const std::vector<StampPlan>& plans, StampPress* press,
                       const ContentReader& reader)
    : m_objects(objects), m_plans(plans), m_press(press), m_reader(reader) {
    if (!press)
        return;
    m_resources = objects.add(press->painter().writeResources(objects));
    m_forms.resize(press->forms().size());
    for (const auto& plan : plans)
        m_marks.push_back("/Artifact <</Type /Pagination /Subtype /Watermark /ImprinterStamp " +
                          QPDFObjectHandle::newUnicodeString(plan.identifier).unparse() + ">> BDC\nq ");
}

void PageWriter::stamp(const Page& page, const std::vector<StampPress::Bearing>& bearings) {
    auto& objects = objectsOf(page);
    const bool shares = !objects.reference.empty();
    const auto& content = m_reader.content(page.content);
    std::string contents = "[";
    std::string suffix;
    if (!content.isEmpty()) {
        if (m_save.empty())
            m_save = m_objects.addStream({}, "q\n");
        contents += m_save + ' ';
        appendContent(content, contents);
        suffix = closingOf(content);
    }
    std::string own = shares ? std::string() : objects.entries;
    std::size_t number = 0;
    for (const auto& bearing : bearings) {
        const auto& plan = m_plans[bearing.plan];
        const auto& form = m_press->forms()[bearing.form];
        std::string name;
        if (shares) {
            auto& known = objects.stamps[bearing.form];
            if (known.empty())
                known = nextName(objects, objects.next);
            name = known;
        } else {
            name = nextName(objects, number);
            own += name + ' ' + formFor(bearing.form);
        }
        suffix += m_marks[bearing.plan];
        const auto m = placeStamp(form.size, shownSize(page.geometry), plan.anchor, plan.offset, plan.degrees)
                           .then(userSpaceFromShown(page.geometry));
        for (const double value : {m.a, m.b, m.c, m.d, m.e, m.f}) {
            appendNumber(suffix, value);
            suffix += ' ';
        }
        suffix += "cm " + name + " Do Q\nEMC\n";
    }
    auto& stream = m_suffixes[suffix];
    if (stream.empty())
        stream = addStream(suffix);
    m_objects.changePage(page.object, contents + stream + ']',
                         "<<" + othersOf(page) + "/XObject" + (shares ? ' ' + objects.reference : "<<" + own + ">>") +
                             ">>");
}

void PageWriter::bare(const Page& page) {
    const auto& objects = objectsOf(page);
    std::string contents = "[";
    appendContent(m_reader.content(page.content), contents);
    std::string resources = "<<" + othersOf(page);
    if (!objects.reference.empty())
        resources += "/XObject " + objects.reference;
    else if (!objects.entries.empty())
        resources += "/XObject<<" + objects.entries + ">>";
    m_objects.changePage(page.object, contents + ']', resources + ">>");
}

void PageWriter::finish() {
    m_sharedObjects.forEach([this](Objects& objects) {
        if (objects.reference.empty())
            return;
        std::string body = "<<" + objects.entries;
        for (const auto& [form, name] : objects.stamps)
            body += name + ' ' + formFor(form);
        m_objects.fill(objects.reference, body + ">>");
    });
}

void PageWriter::appendContent(const PageContent& content, std::string& contents) {
    if (content.text) {
        auto& stream = m_mended[&content];
        if (stream.empty())
            stream = addStream(*content.text);
        contents += stream + ' ';
        return;
    }
    for (const auto& stream : content.streams)
        contents += std::to_string(stream.getObj()) + ' ' + std::to_string(stream.getGen()) + " R ";
    if (content.tail)
        contents += addStream(*content.tail) + ' ';
}

std::string PageWriter::addStream(const std::string& content) {
    const auto deflated = m_flate.deflate(content);
    return deflated.size() + 20 < content.size() ? m_objects.addStream("/Filter/FlateDecode", deflated)
                                                 : m_objects.addStream({}, content);
}

std::string PageWriter::nextName(const Objects& objects, std::size_t& number) {
    std::string name;
    do
        name = kName + std::to_string(number++);
    while (objects.taken.count(name) > 0);
    return name;
}

bool PageWriter::ownsResources(const Page& page) {
    return !page.resources.isIndirect() && QPDFObjectHandle(page.object).getKey("/Resources").isDictionary();
}

PageWriter::Objects* PageWriter::sharedObjectsOf(const Page& page) {
    QPDFObjectHandle resources = page.resources;
    auto objects = resources.isDictionary() ? resources.getKey("/XObject") : QPDFObjectHandle::newNull();
    if (objects.isIndirect() && objects.isDictionary())
        return &m_sharedObjects.of(objects);
    return ownsResources(page) ? nullptr : &m_sharedObjects.of(resources);
}

void PageWriter::expect(const Page& page) {
    if (auto* const shared = sharedObjectsOf(page)) {
        shared->drops.insert(page.drops.begin(), page.drops.end());
        shared->keeps.insert(page.keeps.begin(), page.keeps.end());
    }
}

PageWriter::Objects& PageWriter::objectsOf(const Page& page) {
    auto* const shared = sharedObjectsOf(page);
    if (!shared) {
        m_ownObjects = {};
        m_ownObjects.drops = page.drops;
        readObjects(page, m_ownObjects);
        return m_ownObjects;
    }
    if (!shared->isRead) {
        readObjects(page, *shared);
        // Few of them cost less than a reference on each page.
        constexpr std::size_t fewObjects = 256;
        if (shared->entries.size() > fewObjects) {
            // A list of its own is amended: pages that are not written may share it, and shall lose stamps as well.
            auto list = QPDFObjectHandle(page.resources).getKey("/XObject");
            shared->reference = list.isIndirect() ? list.unparse() : m_objects.reserve();
        }
    }
    return *shared;
}

void PageWriter::readObjects(const Page& page, Objects& objects) {
    objects.isRead = true;
    QPDFObjectHandle resources = page.resources;
    auto dictionary = resources.isDictionary() ? resources.getKey("/XObject") : QPDFObjectHandle::newNull();
    if (!dictionary.isDictionary())
        return;
    for (const auto& [name, object] : dictionary.getDictAsMap()) {
        if (objects.drops.count(name) > 0 && objects.keeps.count(name) == 0)
            continue;
        appendName(objects.entries, name);
        objects.entries += ' ' + QPDFObjectHandle(object).unparse();
        if (name.starts_with(kName))
            objects.taken.insert(name);
    }
}

const std::string& PageWriter::othersOf(const Page& page) {
    if (ownsResources(page))
        return m_ownOthers = readOthers(page.resources, false);
    auto& others = m_sharedOthers.of(page.resources);
    if (!others)
        others = readOthers(page.resources, true);
    return *others;
}

std::string PageWriter::readOthers(QPDFObjectHandle resources, bool shared) {
    std::string others;
    if (!resources.isDictionary())
        return others;
    for (const auto& [key, found] : resources.getDictAsMap()) {
        if (key == "/XObject")
            continue;
        QPDFObjectHandle value = found;
        auto text = value.unparse();
        // A long value that many pages share stays one.
        constexpr std::size_t longText = 40;
        if (shared && !value.isIndirect() && text.size() > longText)
            text = m_objects.add(text);
        appendName(others, key);
        others += ' ' + text;
    }
    return others;
}

const std::string& PageWriter::formFor(std::uint32_t number) {
    auto& reference = m_forms[number];
    if (!reference.empty())
        return reference;
    auto& form = m_press->forms()[number];
    std::string entries = "/Subtype/Form/BBox [";
    // A point of air, since renderers clip to whole pixels of the box.
    for (const double edge : {std::floor(form.ink.llx - 1), std::floor(form.ink.lly - 1), std::ceil(form.ink.urx + 1),
                              std::ceil(form.ink.ury + 1)}) {
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

} // namespace engine
