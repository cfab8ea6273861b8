// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Layout.h>
#include <engine/Placement.h>

#include <set>
#include <string>

namespace engine {

/// "page 3", or "page 3 and 4 others"; there is at least one.
std::string namedPages(const std::set<std::size_t>& pages);

/// Finds the pages on which a stamp does not lie wholly on the page.
class FitCheck {
public:
    /// `ink` is what a stamp draws, and `placed` leads from its own space to the page as it is shown.
    void look(std::size_t pageNumber, const Box& ink, const Matrix& placed, platform::NSSize page);
    /// Adds a sentence about stamps that nobody sees, because they lie wholly beside their page. With `misfits` also
    /// one for stamps that are too large for their page, and one for others that reach beyond its edge.
    void tell(Report& report, bool misfits) const;

private:
    std::set<std::size_t> m_outside;
    std::set<std::size_t> m_tooLarge;
    std::set<std::size_t> m_beyond;
};

} // namespace engine
