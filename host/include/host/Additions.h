// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTableView.h>
#include <Foundation/NSBundle.h>

namespace host {

// What the host adds to classes of the platform.

/// Replaces every title, label, tool tip and accessibility label in `view` and below it by the text that `table` of
/// `bundle` has under it; what the table lacks stays as it is. Texts the user can edit are left alone.
void localizeUsingTableBundle(platform::NSView& view, const std::u16string& table, const platform::NSBundle& bundle);

/// Gives the table a header view with a line under it.
void installBottomBorderedHeaderView(platform::NSTableView& table);

/// `text` without the leading ones of its characters that are `character`.
std::u16string stringByTrimmingPrefixCharacter(const std::u16string& text, char16_t character);

} // namespace host
