// SPDX-License-Identifier: MIT
#pragma once

#include "PdfFonts.h"

#include <map>

namespace engine {

/// Writes stamps as content stream operators, and gathers what their resources must hold.
class PdfPainter {
public:
    explicit PdfPainter(const PdfFonts& fonts) : m_fonts(fonts) {}

    std::string paint(const Stamp& stamp);

    /// Adds what all stamps painted so far name, and answers a dictionary of it.
    std::string writeResources(PdfObjects& objects) const;

private:
    void setColour(std::string& content, const Colour& colour, bool stroked);
    void paintRun(std::string& content, const GlyphRun& run);
    void paintText(std::string& content, const GlyphRun& run, const PdfFonts::Font& font);
    void paintPath(std::string& content, const PathShape& shape);

    const PdfFonts& m_fonts;
    std::map<std::string, std::string> m_opacities; ///< Resource names by opacity.
    std::string m_opacity;                          ///< In force.
};

} // namespace engine
