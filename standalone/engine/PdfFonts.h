// SPDX-License-Identifier: MIT
#pragma once

#include "PdfObjects.h"

#include <engine/Stamp.h>

#include <map>
#include <set>

namespace engine {

/// The fonts of one document's stamps: first all glyphs are collected, then one subset for each face is written.
class PdfFonts {
public:
    /// A face as content streams name and encode it.
    struct Font {
        std::shared_ptr<const Face> face;
        std::string resourceName;                       ///< "/F0"
        std::map<std::uint32_t, std::u16string> glyphs; ///< Each used glyph with the text it stands for.
        std::map<std::uint32_t, unsigned> codes;        ///< Two-byte codes by glyph; filled by `subset`.
        std::string program;
    };

    void collect(const Stamp& stamp);

    /// Makes the subsets, once all stamps are collected. A face that may not or cannot be embedded is not among
    /// `fontFor` afterwards; `sentences` says so.
    void subset(std::set<std::string>& sentences);

    /// Null for faces that are drawn as outlines.
    const Font* fontFor(const Face& face) const;

    /// Adds the fonts and answers a dictionary of resource names and fonts.
    std::string write(PdfObjects& objects) const;

private:
    std::map<const Face*, Font> m_fonts;
};

} // namespace engine
