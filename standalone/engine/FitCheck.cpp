// SPDX-License-Identifier: MIT
#include "FitCheck.h"

namespace engine {

namespace {

constexpr double kTolerance = 0.01; // points

/// "page 3", or "page 3 and 4 others".
std::string named(const std::set<std::size_t>& pages) {
    auto text = "page " + std::to_string(*pages.begin());
    if (pages.size() > 1)
        text += " and " + std::to_string(pages.size() - 1) + (pages.size() == 2 ? " other" : " others");
    return text;
}

} // namespace

void FitCheck::look(std::size_t pageNumber, const Box& ink, const Matrix& placed, platform::NSSize page) {
    const Box drawn = placed.map(ink);
    if (drawn.width() > page.width + kTolerance || drawn.height() > page.height + kTolerance)
        m_tooLarge.insert(pageNumber);
    else if (drawn.llx < -kTolerance || drawn.lly < -kTolerance || drawn.urx > page.width + kTolerance ||
             drawn.ury > page.height + kTolerance)
        m_beyond.insert(pageNumber);
}

void FitCheck::tell(Report& report) const {
    if (!m_tooLarge.empty())
        report.sentences.insert("The stamp is larger than " + named(m_tooLarge) + ".");
    if (!m_beyond.empty())
        report.sentences.insert("The stamp reaches beyond the edge of " + named(m_beyond) + ".");
}

} // namespace engine
