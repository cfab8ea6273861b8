// SPDX-License-Identifier: MIT
#include "PdfPainter.h"

#include "Flate.h"
#include "PdfText.h"
#include "Spelling.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <optional>

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

/// Begins marked content that stands for `text`, whatever its glyphs say.
void beginSpelling(std::string& content, std::u16string_view text) {
    content += "/Span <</ActualText <FEFF";
    appendUtf16Hex(content, text);
    content += ">>> BDC\n";
}

/// Adds a picture with its clear parts and answers a reference to it.
std::string writePicture(PdfObjects& objects, const std::string& file) {
    auto picture = QImage::fromData(reinterpret_cast<const uchar*>(file.data()), static_cast<int>(file.size()), "png");
    if (picture.isNull())
        picture = QImage(1, 1, QImage::Format_ARGB32);
    picture.convertTo(QImage::Format_ARGB32);
    std::string colours;
    std::string opacities;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            for (const int channel : {qRed(line[x]), qGreen(line[x]), qBlue(line[x])})
                colours += static_cast<char>(channel);
            opacities += static_cast<char>(qAlpha(line[x]));
        }
    }
    Flate flate;
    const auto entries = "/Type/XObject/Subtype/Image/BitsPerComponent 8/Filter/FlateDecode/Width " +
                         std::to_string(picture.width()) + "/Height " + std::to_string(picture.height());
    const auto mask = objects.addStream(entries + "/ColorSpace/DeviceGray", flate.deflate(opacities));
    return objects.addStream(entries + "/ColorSpace/DeviceRGB/SMask " + mask, flate.deflate(colours));
}

} // namespace

PdfPainter::Content PdfPainter::paint(const Stamp& stamp, bool askew) {
    Content content;
    m_opacity = "1"; // what a form starts with
    const GlyphRun* last = nullptr;
    for (const auto& shape : stamp.shapes)
        if (const auto* run = std::get_if<GlyphRun>(&shape))
            last = run;
    const auto spelling = spellingOf(stamp, askew);
    bool begun = false;
    for (const auto& shape : stamp.shapes) {
        const auto* run = std::get_if<GlyphRun>(&shape);
        if (!run) {
            paintPath(content.text, std::get<PathShape>(shape));
            continue;
        }
        if (spelling && !begun)
            beginSpelling(content.text, *spelling);
        begun = true;
        paintRun(content, *run, spelling.has_value());
        if (spelling && run == last)
            content.text += "EMC\n";
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

void PdfPainter::paintRun(Content& content, const GlyphRun& run, bool spelled) {
    setColour(content.text, run.colour, run.outlined);
    if (run.face->isPictorial()) {
        paintPictures(content, run);
        paintUnseenText(content, run, spelled);
        return;
    }
    if (run.outlined) {
        appendOperator(content.text, {run.strokeWidth}, "w");
        content.text += "1 j\n[] 0 d\n";
    }
    if (const auto* font = m_fonts.collect(run)) {
        paintText(content, run, *font, spelled);
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
    paintUnseenText(content, run, spelled);
}

void PdfPainter::paintUnseenText(Content& content, const GlyphRun& run, bool spelled) {
    m_hasUnseenText = true;
    const auto& glyphs = run.glyphs;
    const double perUnit = run.size / run.face->unitsPerEm();
    for (std::size_t i = 0; i < glyphs.size();) {
        // One space for each cluster, drawn out to its width.
        std::size_t end = i + 1;
        while (end < glyphs.size() && glyphs[end].text.empty())
            ++end;
        double width = 0;
        for (auto k = i; k < end; ++k)
            width += run.face->advance(glyphs[k].glyph) * perUnit;
        if (!spelled)
            beginSpelling(content.text, glyphs[i].text);
        content.text += "BT\n/U ";
        appendOperator(content.text, {run.size}, "Tf");
        content.text += "3 Tr\n";
        constexpr double spaceWidth = 0.278; // of Helvetica, in ems
        appendOperator(content.text, {100 * std::max(width, run.size / 100) / (spaceWidth * run.size)}, "Tz");
        appendOperator(content.text, {1, 0, 0, 1, glyphs[i].x, glyphs[i].y}, "Tm");
        content.text += "( ) Tj\n100 Tz\nET\n";
        if (!spelled)
            content.text += "EMC\n";
        i = end;
    }
}

void PdfPainter::paintPictures(Content& content, const GlyphRun& run) {
    for (const auto& glyph : run.glyphs) {
        const auto& name = pictureOf(run.face, glyph.glyph);
        const Box box = run.face->extents(glyph.glyph, run.size, {glyph.x, glyph.y});
        if (name.empty() || box.width() <= 0)
            continue;
        content.text += "q\n";
        appendOperator(content.text, {box.width(), 0, 0, box.height(), box.llx, box.lly}, "cm");
        content.text += name + " Do\nQ\n";
    }
}

const std::string& PdfPainter::pictureOf(const std::shared_ptr<const Face>& face, std::uint32_t glyph) {
    const auto [place, isNew] = m_pictures.try_emplace({face.get(), glyph});
    if (isNew) {
        const bool blank = face->picture(glyph).empty();
        place->second = {face, glyph, blank ? std::string() : "/I" + std::to_string(m_pictures.size() - 1)};
    }
    return place->second.name;
}

void PdfPainter::paintText(Content& result, const GlyphRun& run, const PdfFonts::Font& font, bool spelled) {
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
        const bool spelledOut = !spelled && (end > i + 1 || font.glyphs.at(glyphs[i].glyph) != glyphs[i].text);
        if (spelledOut) {
            flush();
            beginSpelling(content, glyphs[i].text);
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
    std::string dictionary = "<</Font<<" + m_fonts.write(objects);
    if (m_hasUnseenText)
        dictionary += "/U<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>";
    dictionary += ">>";
    if (!m_opacities.empty()) {
        dictionary += "/ExtGState<<";
        for (const auto& [opacity, name] : m_opacities)
            dictionary += name + "<</Type/ExtGState/ca " + opacity + "/CA " + opacity + ">>";
        dictionary += ">>";
    }
    if (!m_pictures.empty()) {
        dictionary += "/XObject<<";
        for (const auto& [key, picture] : m_pictures)
            if (!picture.name.empty())
                dictionary += picture.name + ' ' + writePicture(objects, picture.face->picture(picture.glyph));
        dictionary += ">>";
    }
    return dictionary + ">>";
}

} // namespace engine
