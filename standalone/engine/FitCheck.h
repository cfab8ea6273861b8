// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Layout.h>
#include <engine/Placement.h>

namespace engine {

/// Finds the pages on which a stamp does not lie wholly on the page.
class FitCheck {
public:
    /// `ink` is what a stamp draws, and `placed` leads from its own space to the page as it is shown.
    void look(std::size_t pageNumber, const Box& ink, const Matrix& placed, platform::NSSize page);
    /// Adds a sentence for each kind of misfit: stamps that are too large for their page, and others that reach beyond
    /// its edge.
    void tell(Report& report) const;

private:
    std::set<std::size_t> m_tooLarge;
    std::set<std::size_t> m_beyond;
};

} // namespace engine
