// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Layout.h>
#include <engine/Placement.h>

#include <set>
#include <string>

namespace engine {

/// As a warning names pages; there is at least one.
std::vector<std::string> argumentsFor(const std::set<std::size_t>& pages);

/// Finds the pages on which a stamp does not lie wholly on the page.
class FitCheck {
public:
    /// `ink` is what a stamp draws, and `placed` leads from its own space to the page as it is shown.
    void look(std::size_t pageNumber, const Box& ink, const Matrix& placed, platform::NSSize page);
    /// Warns of stamps that nobody sees, because they lie wholly beside their page. With `misfits` also
    /// of stamps that are too large for their page, and of others that reach beyond its edge.
    void tell(Report& report, bool misfits) const;

private:
    std::set<std::size_t> m_outside;
    std::set<std::size_t> m_tooLarge;
    std::set<std::size_t> m_beyond;
};

} // namespace engine
