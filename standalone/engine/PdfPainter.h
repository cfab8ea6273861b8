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

    /// Paints the stamp and collects its glyphs. `askew`: it will be turned by an angle that is no quarter turn, where
    /// readers do not find words by themselves.
    Content paint(const Stamp& stamp, bool askew);

    /// Once the fonts have their subsets.
    void fillCodes(Content& content) const;

    /// Adds what all stamps painted so far name, and answers a dictionary of it.
    std::string writeResources(PdfObjects& objects) const;

private:
    void setColour(std::string& content, const Colour& colour, bool stroked);
    /// With `spelled` the text is already given for the whole title.
    void paintRun(Content& content, const GlyphRun& run, bool spelled);
    void paintText(Content& content, const GlyphRun& run, const PdfFonts::Font& font, bool spelled);
    void paintUnseenText(Content& content, const GlyphRun& run, bool spelled);
    void paintPictures(Content& content, const GlyphRun& run);
    const std::string& pictureOf(const std::shared_ptr<const Face>& face, std::uint32_t glyph);
    void paintPath(std::string& content, const PathShape& shape);

    PdfFonts& m_fonts;
    std::map<std::string, std::string> m_opacities; ///< Resource names by opacity.
    std::string m_opacity;                          ///< In force.
    struct Picture {
        std::shared_ptr<const Face> face;
        std::uint32_t glyph;
        std::string name; ///< Empty for a blank glyph.
    };
    std::map<std::pair<const Face*, std::uint32_t>, Picture> m_pictures;
    bool m_hasUnseenText = false;
};

} // namespace engine
