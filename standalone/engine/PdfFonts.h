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
        std::uint16_t number = 0;                       ///< In the order of use.
        std::map<std::uint32_t, std::u16string> glyphs; ///< Each used glyph with the text it stands for.
        std::map<std::uint32_t, unsigned> codes;        ///< Two-byte codes by glyph; filled by `subset`.
        std::string program;

        std::string resourceName() const { return "/F" + std::to_string(number); }
    };

    /// Collects the glyphs of a run and answers the font it is to be set in; null for a face that is drawn as outlines,
    /// since its licence forbids to embed it or no subset of it could be made.
    const Font* collect(const GlyphRun& run);

    const Font& fontNumbered(std::uint16_t number) const { return *m_order[number]; }

    /// Makes the subsets, once all glyphs are collected. False where a face turned out to have none: it is drawn as
    /// outlines from now on, and all stamps have to be painted again.
    bool subset();

    /// Adds the fonts and answers the entries of a dictionary of resource names and fonts.
    std::string write(PdfObjects& objects) const;

    /// Names of the faces that are drawn as outlines.
    const std::set<std::string>& outlinedFaces() const { return m_outlinedFaces; }

private:
    std::map<const Face*, Font> m_fonts;
    std::vector<const Font*> m_order; ///< By number.
    std::set<const Face*> m_outlined;
    std::set<std::string> m_outlinedFaces;
};

} // namespace engine
