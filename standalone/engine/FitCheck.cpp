// SPDX-License-Identifier: MIT
#include "FitCheck.h"

namespace engine {

namespace {

constexpr double kTolerance = 0.01; // points

} // namespace

std::vector<std::string> argumentsFor(const std::set<std::size_t>& pages) {
    return {std::to_string(*pages.begin()), std::to_string(pages.size() - 1)};
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
        report.warn(Warning::Kind::outsidePage, argumentsFor(m_outside));
    if (!misfits)
        return;
    if (!m_tooLarge.empty())
        report.warn(Warning::Kind::largerThanPage, argumentsFor(m_tooLarge));
    if (!m_beyond.empty())
        report.warn(Warning::Kind::beyondEdge, argumentsFor(m_beyond));
}

} // namespace engine
