// SPDX-License-Identifier: MIT
#include "PdfPainter.h"

#include "PdfText.h"

#include <cmath>
#include <initializer_list>

namespace engine {

namespace {

void appendOperator(std::string& content, std::initializer_list<double> operands, const char* name) {
    for (const double operand : operands) {
        appendNumber(content, operand);
        content += ' ';
    }
    content += name;
    content += '\n';
}

void appendPath(std::string& content, const Path& path, double scale, Point origin) {
    const auto x = [&](Point point) { return origin.x + point.x * scale; };
    const auto y = [&](Point point) { return origin.y + point.y * scale; };
    for (const auto& e : path.elements)
        switch (e.verb) {
        case Path::Verb::move:
            appendOperator(content, {x(e.to), y(e.to)}, "m");
            break;
        case Path::Verb::line:
            appendOperator(content, {x(e.to), y(e.to)}, "l");
            break;
        case Path::Verb::cubic:
            appendOperator(content, {x(e.control1), y(e.control1), x(e.control2), y(e.control2), x(e.to), y(e.to)},
                           "c");
            break;
        case Path::Verb::close:
            content += "h\n";
            break;
        }
}

} // namespace

std::string PdfPainter::paint(const Stamp& stamp) {
    std::string content;
    m_opacity = "1"; // what a form starts with
    for (const auto& shape : stamp.shapes) {
        if (const auto* run = std::get_if<GlyphRun>(&shape))
            paintRun(content, *run);
        else
            paintPath(content, std::get<PathShape>(shape));
    }
    return content;
}

void PdfPainter::setColour(std::string& content, const Colour& colour, bool stroked) {
    std::string opacity;
    appendNumber(opacity, colour.alpha);
    if (opacity != m_opacity) {
        const auto [place, isNew] = m_opacities.try_emplace(opacity, "/G" + std::to_string(m_opacities.size()));
        content += place->second + " gs\n";
        m_opacity = opacity;
    }
    if (colour.red == colour.green && colour.green == colour.blue)
        appendOperator(content, {colour.red}, stroked ? "G" : "g");
    else
        appendOperator(content, {colour.red, colour.green, colour.blue}, stroked ? "RG" : "rg");
}

void PdfPainter::paintRun(std::string& content, const GlyphRun& run) {
    setColour(content, run.colour, run.outlined);
    if (run.outlined) {
        appendOperator(content, {run.strokeWidth}, "w");
        content += "1 j\n[] 0 d\n";
    }
    if (const auto* font = m_fonts.fontFor(*run.face)) {
        paintText(content, run, *font);
        return;
    }
    const double scale = run.size / run.face->unitsPerEm();
    bool any = false;
    for (const auto& glyph : run.glyphs) {
        const Path& outline = run.face->outline(glyph.glyph);
        appendPath(content, outline, scale, {glyph.x, glyph.y});
        any = any || !outline.elements.empty();
    }
    if (any)
        content += run.outlined ? "S\n" : "f\n";
}

void PdfPainter::paintText(std::string& content, const GlyphRun& run, const PdfFonts::Font& font) {
    const double perMille = 1000.0 / run.face->unitsPerEm();
    const auto& glyphs = run.glyphs;
    content += "BT\n" + font.resourceName + ' ';
    appendOperator(content, {run.size}, "Tf");
    content += run.outlined ? "1 Tr\n" : "0 Tr\n";

    double penX = 0;
    double penY = 0;
    bool placed = false;
    std::string array; // the operand of TJ being gathered
    bool inString = false;
    const auto closeString = [&] {
        if (inString)
            array += '>';
        inString = false;
    };
    const auto flush = [&] {
        closeString();
        if (!array.empty())
            content += '[' + array + "] TJ\n";
        array.clear();
    };
    for (std::size_t i = 0; i < glyphs.size();) {
        std::size_t end = i + 1;
        while (end < glyphs.size() && glyphs[end].text.empty())
            ++end;
        // Where the font's own map would say otherwise, the text is given beside the glyphs.
        const bool spelledOut = end > i + 1 || font.glyphs.at(glyphs[i].glyph) != glyphs[i].text;
        if (spelledOut) {
            flush();
            content += "/Span <</ActualText <FEFF";
            appendUtf16Hex(content, glyphs[i].text);
            content += ">>> BDC\n";
        }
        for (; i < end; ++i) {
            const auto& glyph = glyphs[i];
            const double gap = (glyph.x - penX) * 1000 / run.size;
            if (!placed || std::abs(glyph.y - penY) > 0.001 || std::abs(gap) > 30000) {
                flush();
                appendOperator(content, {1, 0, 0, 1, glyph.x, glyph.y}, "Tm");
                penX = glyph.x;
                penY = glyph.y;
                placed = true;
            } else if (std::abs(gap) > 0.01) {
                closeString();
                appendNumber(array, -gap);
                penX = glyph.x;
            }
            if (!inString)
                array += '<';
            inString = true;
            appendCodeHex(array, font.codes.at(glyph.glyph));
            penX += run.face->advance(glyph.glyph) * perMille * run.size / 1000;
        }
        if (spelledOut) {
            flush();
            content += "EMC\n";
        }
    }
    flush();
    content += "ET\n";
}

void PdfPainter::paintPath(std::string& content, const PathShape& shape) {
    setColour(content, shape.colour, shape.stroked);
    if (shape.stroked) {
        appendOperator(content, {shape.strokeWidth}, "w");
        content += "0 j\n[";
        for (const double length : shape.dash) {
            content += ' ';
            appendNumber(content, length);
        }
        content += "] 0 d\n";
    }
    appendPath(content, shape.path, 1, {});
    content += shape.stroked ? "S\n" : "f\n";
}

std::string PdfPainter::writeResources(PdfObjects& objects) const {
    std::string dictionary = "<</Font " + m_fonts.write(objects);
    if (!m_opacities.empty()) {
        dictionary += "/ExtGState<<";
        for (const auto& [opacity, name] : m_opacities)
            dictionary += name + "<</Type/ExtGState/ca " + opacity + "/CA " + opacity + ">>";
        dictionary += ">>";
    }
    return dictionary + ">>";
}

} // namespace engine
