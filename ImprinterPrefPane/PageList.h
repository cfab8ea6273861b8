// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pane {

/// `text`, as typed into the field of the custom pages, as a list of page numbers: decimal whole numbers other than 0,
/// joined by commas, in the order typed.
///
/// Of each piece between two commas the number at its start is kept. A piece without one, or with 0, vanishes while no
/// number was kept yet; after that it leaves its comma, so that one just typed survives while the user goes on.
/// A normalised list stays as it is. Takes time linear in the length.
std::u16string normalizedPageList(const std::u16string& text);

} // namespace pane
