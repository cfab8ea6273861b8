// SPDX-License-Identifier: MIT
#pragma once

#include "PdfFonts.h"

#include <map>

namespace engine {

/// Writes stamps as content stream operators, and gathers what their resources must hold.
///
/// A stamp is painted before all glyphs of the document are known, so that its glyphs have no codes yet: where they go
/// stand four digits each, which `fillCodes` writes.
class PdfPainter {
public:
    /// A content stream that lacks its codes.
    struct Content {
        struct Code {
            std::uint32_t offset;
            std::uint16_t font; ///< Its number in the document.
            std::uint16_t glyph;
        };
        std::string text;
        std::vector<Code> codes;
    };

    explicit PdfPainter(PdfFonts& fonts) : m_fonts(fonts) {}

    /// Paints the stamp and collects its glyphs.
    Content paint(const Stamp& stamp);

    /// Once the fonts have their subsets.
    void fillCodes(Content& content) const;

    /// Adds what all stamps painted so far name, and answers a dictionary of it.
    std::string writeResources(PdfObjects& objects) const;

private:
    void setColour(std::string& content, const Colour& colour, bool stroked);
    void paintRun(Content& content, const GlyphRun& run);
    void paintText(Content& content, const GlyphRun& run, const PdfFonts::Font& font);
    void paintPath(std::string& content, const PathShape& shape);

    PdfFonts& m_fonts;
    std::map<std::string, std::string> m_opacities; ///< Resource names by opacity.
    std::string m_opacity;                          ///< In force.
};

} // namespace engine
