// SPDX-License-Identifier: MIT
#pragma once

#include "PdfPainter.h"
#include "StampPlan.h"

#include <atomic>
#include <cstdint>

namespace engine {

/// The stamps of a document's pages, laid out and written as content streams.
///
/// It needs to know how many pages there are and which numbers they have, nothing else of the document, so that it can
/// work while the document is being read.
class StampPress {
public:
    /// A distinct stamp.
    struct Form {
        platform::NSSize size;
        Box ink;
        std::string content;
        bool deflated = false;
    };
    /// A stamp that a page gets.
    struct Bearing {
        std::uint32_t plan;
        std::uint32_t form;
    };

    /// The arguments have to outlive this object.
    StampPress(const std::vector<StampPlan>& plans, const Facts& facts, FaceLibrary& faces, bool namesFallbacks)
        : m_plans(plans), m_facts(facts), m_faces(faces), m_painter(m_fonts), m_report{{}, namesFallbacks} {}

    /// Makes the stamps of all pages. Ends early, its results of no use, once `stop` is called from another thread.
    void run(std::size_t pageCount);
    void stop() { m_stopped = true; }

    /// What each page gets, in stamping order.
    const std::vector<std::vector<Bearing>>& pages() const { return m_pages; }
    std::vector<Form>& forms() { return m_forms; }
    const PdfPainter& painter() const { return m_painter; }
    const Report& report() const { return m_report; }
    std::size_t stampedPages() const;

private:
    void paintAll(std::size_t pageCount, std::vector<PdfPainter::Content>& contents);

    const std::vector<StampPlan>& m_plans;
    const Facts& m_facts;
    FaceLibrary& m_faces;
    PdfFonts m_fonts;
    PdfPainter m_painter;
    Report m_report;
    std::vector<std::vector<Bearing>> m_pages;
    std::vector<Form> m_forms;
    std::atomic<bool> m_stopped = false;
};

} // namespace engine
