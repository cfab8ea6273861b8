// SPDX-License-Identifier: MIT
#include "PageWriter.h"

#include "PdfText.h"

#include <cmath>

namespace engine {

namespace {

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
    const auto& names = namesOf(page);
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
    std::string objects = names.objects;
    std::size_t number = 0;
    for (const auto& bearing : bearings) {
        const auto& plan = m_plans[bearing.plan];
        const auto& form = m_press->forms()[bearing.form];
        std::string name;
        do
            name = "/ImprinterStamp" + std::to_string(number++);
        while (names.taken.count(name) > 0);
        objects += name + ' ' + formFor(bearing.form);
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
    m_objects.changePage(page.object, contents + stream + ']', "<<" + names.others + "/XObject<<" + objects + ">>>>");
}

void PageWriter::bare(const Page& page) {
    const auto& names = namesOf(page);
    std::string contents = "[";
    appendContent(m_reader.content(page.content), contents);
    m_objects.changePage(page.object, contents + ']',
                         "<<" + names.others + (names.objects.empty() ? "" : "/XObject<<" + names.objects + ">>") +
                             ">>");
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
}

std::string PageWriter::addStream(const std::string& content) {
    const auto deflated = m_flate.deflate(content);
    return deflated.size() + 20 < content.size() ? m_objects.addStream("/Filter/FlateDecode", deflated)
                                                 : m_objects.addStream({}, content);
}

const PageWriter::Names& PageWriter::namesOf(const Page& page) {
    QPDFObjectHandle resources = page.resources;
    QPDFObjectHandle object = page.object;
    if (!page.drops.empty() || (!resources.isIndirect() && object.getKey("/Resources").isDictionary()))
        return m_ownNames = read(resources, false, page.drops);
    // What several pages may share is read once.
    if (resources.isIndirect()) {
        const auto [place, isNew] = m_indirectNames.try_emplace(resources.getObjGen());
        if (isNew)
            place->second = read(resources, true, {});
        return place->second;
    }
    for (auto& [known, names] : m_inheritedNames)
        if (known.isSameObjectAs(resources))
            return names;
    return m_inheritedNames.emplace_back(resources, read(resources, true, {})).second;
}

PageWriter::Names PageWriter::read(QPDFObjectHandle resources, bool shared, const std::set<std::string>& drops) {
    Names names;
    if (!resources.isDictionary())
        return names;
    for (const auto& [key, found] : resources.getDictAsMap()) {
        QPDFObjectHandle value = found;
        if (key == "/XObject") {
            if (!value.isDictionary())
                continue;
            for (const auto& [name, object] : value.getDictAsMap()) {
                if (drops.count(name) > 0)
                    continue;
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
