// SPDX-License-Identifier: MIT
#include "PdfObjects.h"

namespace engine {

std::string PdfRewrite::add(std::string_view body) {
    return m_document.makeIndirectObject(QPDFObjectHandle::parse(&m_document, std::string(body))).unparse();
}

std::string PdfRewrite::reserve() {
    return m_document.makeIndirectObject(QPDFObjectHandle::newDictionary()).unparse();
}

void PdfRewrite::fill(const std::string& reference, std::string_view body) {
    const QPDFObjGen id(std::stoi(reference), std::stoi(reference.substr(reference.find(' '))));
    m_document.replaceObject(id, QPDFObjectHandle::parse(&m_document, std::string(body)));
}

std::string PdfRewrite::addStream(std::string_view entries, std::string_view data) {
    auto stream = m_document.newStream(std::string(data));
    // What is to be deflated is so already; the document's writer would set up its tables for each stream.
    stream.setFilterOnWrite(false);
    auto found = m_entries.find(entries);
    if (found == m_entries.end())
        found =
            m_entries
                .emplace(std::string(entries), QPDFObjectHandle::parse(&m_document, "<<" + std::string(entries) + ">>"))
                .first;
    // The writer puts each stream's own length in. A dictionary for each would take half a kilobyte more.
    stream.replaceDict(found->second);
    return stream.unparse();
}

void PdfRewrite::changePage(QPDFObjectHandle page, const std::string& contents, const std::string& resources) {
    page.replaceKey("/Contents", QPDFObjectHandle::parse(&m_document, contents));
    page.replaceKey("/Resources", QPDFObjectHandle::parse(&m_document, resources));
}

} // namespace engine
