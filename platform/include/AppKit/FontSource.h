// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSLocale.h>

#include <memory>
#include <string>
#include <vector>

namespace platform {

/// What a face is called.
struct FontNames {
    /// The PostScript name, which stands for one face.
    std::u16string fontName;
    /// Empty where the face has none.
    std::u16string familyName;
    /// Family and face as one text.
    std::u16string displayName;
};

/// Where a face is on this machine.
struct FontFile {
    std::string path;
    /// fontconfig's: of a collection the face, in the lower 16 bits; of a variable file the named instance, from 1, in
    /// the upper 16 bits.
    unsigned index = 0;
    /// Whether the characters of the Latin alphabet show as something else in it.
    bool symbolic = false;
    /// Under which a toolkit may know the face; (UTF-8).
    std::string family;
    std::string style;

    bool isInstance() const { return index >> 16 != 0; }
};

/// The faces there are. Those of the system come from fontconfig's listing, and no font file is opened for it: a file
/// that is damaged or was removed since is found out when somebody draws with it.
///
/// Of the listing, faces count that have a PostScript name and outlines, TrueType or CFF; neither Type 1 files nor the
/// entries that stand for a variable file as a whole. Where the listing has one PostScript name for several instances
/// of a variable file, a hyphen and the style are added to it. May be asked by several threads at once.
class FontSource {
public:
    virtual ~FontSource();

    /// The PostScript names of the faces offered to a user of that locale, in no promised order, maybe some of them
    /// twice.
    ///
    /// Offered are the faces that cover the locale's language, English for one that is unset, "C" or unknown; not those
    /// hidden by a name that begins with a dot, and no instance of a variable file where a static face has the same
    /// family and style.
    virtual std::vector<std::u16string> namesForLocale(const NSLocale& locale) = 0;

    /// The face with exactly this PostScript name, or null.
    ///
    /// Family and full name are taken in the same language: English, or else the family's first. The display name is
    /// the full name where that is the family, or begins with it and a space; and otherwise family, space and style.
    virtual std::shared_ptr<const FontNames> namesOf(const std::u16string& fontName) = 0;

    /// The files that have that face, best first: a static face before an instance of a variable file, then by path.
    virtual std::vector<FontFile> filesOf(const std::u16string& fontName) = 0;

    /// The PostScript name of the face for text without one: DejaVu Sans, else the first one of fontconfig's choices
    /// for sans-serif; empty on a machine without fonts.
    virtual std::u16string defaultName() = 0;

    /// The system's, unless another one was set.
    static std::shared_ptr<FontSource> current();
    /// For tests; null goes back to the system's.
    static void setCurrent(std::shared_ptr<FontSource> source);
};

} // namespace platform
