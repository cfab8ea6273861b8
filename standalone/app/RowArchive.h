// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSIndexSet.h>

namespace app {

/// The type under which rows of configurations are dragged into a pane.
inline const std::u16string rowsPasteboardType = u"VelImprintPasteboardType";

/// A keyed archive, as a binary property list, whose root is an index set of these rows.
platform::NSData archiveOfRows(const platform::NSIndexSet& rows);

} // namespace app
