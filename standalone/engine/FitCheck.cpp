// SPDX-License-Identifier: MIT
#include "FitCheck.h"

namespace engine {

namespace {

constexpr double kTolerance = 0.01; // points

} // namespace

std::string namedPages(const std::set<std::size_t>& pages) {
    auto text = "page " + std::to_string(*pages.begin());
    if (pages.size() > 1)
        text += " and " + std::to_string(pages.size() - 1) + (pages.size() == 2 ? " other" : " others");
    return text;
}

void FitCheck::look(std::size_t pageNumber, const Box& ink, const Matrix& placed, platform::NSSize page) {
    const Box drawn = placed.map(ink);
    if (drawn.urx <= 0 || drawn.ury <= 0 || drawn.llx >= page.width || drawn.lly >= page.height)
        m_outside.insert(pageNumber);
    else if (drawn.width() > page.width + kTolerance || drawn.height() > page.height + kTolerance)
        m_tooLarge.insert(pageNumber);
    else if (drawn.llx < -kTolerance || drawn.lly < -kTolerance || drawn.urx > page.width + kTolerance ||
             drawn.ury > page.height + kTolerance)
        m_beyond.insert(pageNumber);
}

void FitCheck::tell(Report& report, bool misfits) const {
    if (!m_outside.empty())
        report.sentences.insert("The stamp lies outside " + namedPages(m_outside) + ", where nobody sees it.");
    if (!misfits)
        return;
    if (!m_tooLarge.empty())
        report.sentences.insert("The stamp is larger than " + namedPages(m_tooLarge) + ".");
    if (!m_beyond.empty())
        report.sentences.insert("The stamp reaches beyond the edge of " + namedPages(m_beyond) + ".");
}

} // namespace engine
