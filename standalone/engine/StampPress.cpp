// SPDX-License-Identifier: MIT
#include "StampPress.h"

#include "Flate.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>

namespace engine {

namespace {

constexpr int kSmallEffort = 3;

} // namespace

void StampPress::run(std::size_t pageCount) {
    std::vector<PdfPainter::Content> contents;
    do
        paintAll(pageCount, contents);
    while (!m_stopped && !m_fonts.subset());
    for (const auto& name : m_fonts.outlinedFaces())
        m_report.warn(Warning::Kind::notEmbeddable, {name});
    Flate flate(kSmallEffort);
    for (std::size_t i = 0; i < contents.size() && !m_stopped; ++i) {
        auto& content = contents[i];
        m_painter.fillCodes(content);
        auto smaller = flate.deflate(content.text);
        m_forms[i].deflated = smaller.size() + 20 < content.text.size(); // the filter's entry
        m_forms[i].content = m_forms[i].deflated ? std::move(smaller) : std::move(content.text);
        m_forms[i].content.shrink_to_fit();
        content = {};
    }
}

void StampPress::paintAll(std::size_t pageCount, std::vector<PdfPainter::Content>& contents) {
    contents.clear();
    m_forms.clear();
    m_pages.assign(pageCount, {});
    std::vector<std::vector<std::size_t>> chosen;
    for (const auto& plan : m_plans)
        chosen.push_back(plan.pagesOf(pageCount));
    std::vector<std::unordered_map<std::u16string, std::optional<std::uint32_t>>> made(m_plans.size());
    std::vector<std::size_t> next(m_plans.size());
    Facts facts = m_facts;
    facts.recordPageCount = pageCount;
    for (std::size_t page = 1; page <= pageCount && !m_stopped; ++page) {
        facts.pageNumber = page;
        facts.runningNumber = m_facts.runningNumber + page - 1;
        for (std::size_t i = 0; i < m_plans.size(); ++i) {
            if (next[i] == chosen[i].size() || chosen[i][next[i]] != page)
                continue;
            ++next[i];
            auto title = resolveTitle(m_plans[i].appearance, facts, m_report);
            const auto [form, isNew] = made[i].try_emplace(std::move(title));
            if (isNew) {
                // Null for a blank title.
                if (auto stamp = engine::layOut(m_plans[i].appearance, form->first, m_faces, m_report)) {
                    form->second = static_cast<std::uint32_t>(m_forms.size());
                    contents.push_back(m_painter.paint(*stamp, std::fmod(m_plans[i].degrees, 90) != 0));
                    contents.back().text.shrink_to_fit();
                    contents.back().codes.shrink_to_fit();
                    m_forms.push_back({stamp->size, stamp->ink, {}, false});
                }
            }
            if (form->second)
                m_pages[page - 1].push_back({static_cast<std::uint32_t>(i), *form->second});
        }
    }
}

std::size_t StampPress::stampedPages() const {
    return static_cast<std::size_t>(
        std::count_if(m_pages.begin(), m_pages.end(), [](const auto& page) { return !page.empty(); }));
}

} // namespace engine
