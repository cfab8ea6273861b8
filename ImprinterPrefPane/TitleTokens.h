// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/TokenText.h>
#include <host/ImprinterConfiguration.h>

namespace pane {

// A title as the field holds it: texts, placeholders (texts that begin and end with "%") and objects, of which font
// runs are one kind. Ranges and positions count characters: a text's own UTF-16 units, everything else as one.

using platform::NSArray;
using platform::NSRange;
using platform::NSUInteger;
using platform::RepresentedObject;
using TitleObjects = std::vector<RepresentedObject>;
using FontRuns = std::vector<std::shared_ptr<host::ImprinterFont>>;

/// Whether the text is a placeholder; "%" alone is one.
bool isTokenString(std::u16string_view text);

/// The text without the "%" at its start, of which only one is taken off; a placeholder stays as it is.
std::u16string normalizedTitleTokenString(const std::u16string& text);
/// The same for every text of the title.
TitleObjects normalizedTitleTokens(const NSArray<RepresentedObject>& title);

/// In characters; an empty text counts 1.
NSUInteger lengthOfToken(const RepresentedObject& token);

/// The title with `token` in the place of the characters in `range`. A token at the start of a placeholder or of an
/// object replaces nothing, however long the range is; one beyond the end goes to the end.
TitleObjects titleByInsertingTokenInRange(const NSArray<RepresentedObject>& title, const RepresentedObject& token,
                                          NSRange range);

/// The font run a token is; null for every other token.
std::shared_ptr<host::ImprinterFont> fontRunOf(const RepresentedObject& token);
FontRuns fontRunsOf(const NSArray<RepresentedObject>& title);

/// The font runs whose position lies in the range. Measured in a way of its own: what begins with "%" and has three
/// units or more counts 1, every other text its length, an object that is no font run nothing.
FontRuns fontRunsInRange(const NSArray<RepresentedObject>& title, NSRange range);

/// The title without the first occurrence of each dragged object, compared by identity; texts always stay.
TitleObjects titleWithoutFirstOccurrences(const NSArray<RepresentedObject>& title,
                                          const NSArray<RepresentedObject>& dragged);

/// What the field shows of what the model holds, and back. nil stays nil.
NSArray<RepresentedObject> fieldTitle(const NSArray<host::TitleToken>& title);
NSArray<host::TitleToken> modelTitle(const NSArray<RepresentedObject>& title);

} // namespace pane
