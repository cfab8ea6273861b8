// SPDX-License-Identifier: MIT
#include "StampPress.h"

#include "Flate.h"

#include <engine/PageChoice.h>

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace engine {

void StampPress::run(std::size_t pageCount) {
    std::vector<std::shared_ptr<const Stamp>> stamps;
    layOutAll(pageCount, stamps);
    m_fonts.subset(m_report.sentences);
    Flate flate;
    m_forms.reserve(stamps.size());
    for (auto& stamp : stamps) {
        if (m_stopped)
            return;
        auto content = m_painter.paint(*stamp);
        auto smaller = flate.deflate(content);
        const bool deflated = smaller.size() + 20 < content.size(); // the filter's entry
        m_forms.push_back({stamp->size, stamp->ink, deflated ? std::move(smaller) : std::move(content), deflated});
        m_forms.back().content.shrink_to_fit();
        stamp.reset();
    }
}

void StampPress::layOutAll(std::size_t pageCount, std::vector<std::shared_ptr<const Stamp>>& stamps) {
    m_pages.resize(pageCount);
    std::vector<std::vector<std::size_t>> chosen;
    for (const auto& plan : m_plans)
        chosen.push_back(choosePages(plan.occurrence, plan.customPages, pageCount));
    std::vector<std::unordered_map<std::u16string, std::optional<std::uint32_t>>> made(m_plans.size());
    std::vector<std::size_t> next(m_plans.size());
    Facts facts = m_facts;
    facts.recordPageCount = pageCount;
    for (std::size_t page = 1; page <= pageCount && !m_stopped; ++page) {
        facts.pageNumber = page;
        for (std::size_t i = 0; i < m_plans.size(); ++i) {
            if (next[i] == chosen[i].size() || chosen[i][next[i]] != page)
                continue;
            ++next[i];
            auto title = resolveTitle(m_plans[i].appearance, facts, m_report);
            const auto [form, isNew] = made[i].try_emplace(std::move(title));
            if (isNew) {
                // Null for a blank title.
                if (auto stamp = engine::layOut(m_plans[i].appearance, form->first, m_faces, m_report)) {
                    m_fonts.collect(*stamp);
                    form->second = static_cast<std::uint32_t>(stamps.size());
                    stamps.push_back(std::move(stamp));
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
