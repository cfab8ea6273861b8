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

PdfPainter::Content PdfPainter::paint(const Stamp& stamp) {
    Content content;
    m_opacity = "1"; // what a form starts with
    for (const auto& shape : stamp.shapes) {
        if (const auto* run = std::get_if<GlyphRun>(&shape))
            paintRun(content, *run);
        else
            paintPath(content.text, std::get<PathShape>(shape));
    }
    return content;
}

void PdfPainter::fillCodes(Content& content) const {
    std::string digits;
    for (const auto& code : content.codes) {
        digits.clear();
        appendCodeHex(digits, m_fonts.fontNumbered(code.font).codes.at(code.glyph));
        content.text.replace(code.offset, 4, digits);
    }
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

void PdfPainter::paintRun(Content& content, const GlyphRun& run) {
    setColour(content.text, run.colour, run.outlined);
    if (run.outlined) {
        appendOperator(content.text, {run.strokeWidth}, "w");
        content.text += "1 j\n[] 0 d\n";
    }
    if (const auto* font = m_fonts.collect(run)) {
        paintText(content, run, *font);
        return;
    }
    const double scale = run.size / run.face->unitsPerEm();
    bool any = false;
    for (const auto& glyph : run.glyphs) {
        const Path& outline = run.face->outline(glyph.glyph);
        appendPath(content.text, outline, scale, {glyph.x, glyph.y});
        any = any || !outline.elements.empty();
    }
    if (any)
        content.text += run.outlined ? "S\n" : "f\n";
}

void PdfPainter::paintText(Content& result, const GlyphRun& run, const PdfFonts::Font& font) {
    std::string& content = result.text;
    const double perMille = 1000.0 / run.face->unitsPerEm();
    const auto& glyphs = run.glyphs;
    content += "BT\n" + font.resourceName() + ' ';
    appendOperator(content, {run.size}, "Tf");
    content += run.outlined ? "1 Tr\n" : "0 Tr\n";

    double penX = 0;
    double penY = 0;
    bool placed = false;
    bool inArray = false; // an operand of TJ is being written
    bool inString = false;
    const auto closeString = [&] {
        if (inString)
            content += '>';
        inString = false;
    };
    const auto flush = [&] {
        closeString();
        if (inArray)
            content += "] TJ\n";
        inArray = false;
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
                appendNumber(content, -gap);
                penX = glyph.x;
            }
            if (!inArray)
                content += '[';
            if (!inString)
                content += '<';
            inArray = inString = true;
            result.codes.push_back(
                {static_cast<std::uint32_t>(content.size()), font.number, static_cast<std::uint16_t>(glyph.glyph)});
            content += "0000";
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
