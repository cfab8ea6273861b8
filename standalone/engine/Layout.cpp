// SPDX-License-Identifier: MIT
#include <engine/Layout.h>

#include <engine/Placement.h>

#include <Foundation/NSString.h>
#include <host/BorderStyle.h>

#include <fribidi.h>
#include <harfbuzz/hb.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <optional>

namespace engine {

namespace {

using host::BorderStyle;

constexpr double kDefaultSize = 12;
constexpr double kHairline = 0.25;

double lengthOrZero(double value) {
    return std::isfinite(value) && value > 0 ? value : 0;
}

double component(double value) {
    return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0;
}

Colour colourOf(const std::shared_ptr<const host::NSColor>& colour, const Colour& missing) {
    if (!colour)
        return missing;
    return {component(colour->redComponent()), component(colour->greenComponent()), component(colour->blueComponent()),
            component(colour->alphaComponent())};
}

bool endsLine(char16_t unit) {
    return unit == u'\n' || unit == 0x2028 || unit == 0x2029;
}

/// Text as it can be set: one sort of line end, tabs as spaces, no other control characters.
std::u16string settable(std::u16string_view text) {
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (endsLine(unit))
            result += u'\n';
        else if (unit == u'\r')
            result += i + 1 < text.size() && text[i + 1] == u'\n' ? u"" : u"\n";
        else if (unit == u'\t')
            result += u' ';
        else if (unit >= 0x20 && (unit < 0x7F || unit > 0x9F))
            result += unit;
    }
    return result;
}

std::optional<std::u16string> valueOf(const std::u16string& placeholder, const Facts& facts) {
    const auto number = [](std::size_t value) { return platform::fromUtf8(std::to_string(value)); };
    if (placeholder == u"%pageNumber%")
        return number(facts.pageNumber);
    if (placeholder == u"%recordPageCount%")
        return number(facts.recordPageCount);
    if (placeholder == u"%runningNumber%")
        return number(facts.runningNumber);
    if (placeholder == u"%recordName%")
        return facts.recordName;
    if (placeholder == u"%user%")
        return facts.user;
    if (placeholder == u"%date%")
        return facts.day;
    if (placeholder == u"%time%")
        return facts.time;
    return std::nullopt;
}

/// One character of a line.
struct Character {
    char32_t code = 0;
    std::size_t unit = 0; ///< Where it stands among the UTF-16 units of the line.
    std::size_t style = 0;
    FriBidiLevel level = 0;
    hb_script_t script = HB_SCRIPT_COMMON;
    const Face* face = nullptr;
};

/// Characters that are shaped together.
struct Item {
    std::size_t begin = 0; ///< UTF-16 units of the line.
    std::size_t end = 0;
    std::size_t style = 0;
    FriBidiLevel level = 0;
    hb_script_t script = HB_SCRIPT_COMMON;
    const Face* face = nullptr;
};

bool extendsCluster(char32_t code) {
    const auto category = hb_unicode_general_category(hb_unicode_funcs_get_default(), code);
    return category == HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK ||
           category == HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK ||
           category == HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK || code == 0x200C || code == 0x200D ||
           (code >= 0x1F3FB && code <= 0x1F3FF) || (code >= 0xE0020 && code <= 0xE007F); // skin tones, flag tags
}

bool isRegionalIndicator(char32_t code) {
    return code >= 0x1F1E6 && code <= 0x1F1FF;
}

struct BufferRelease {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};

/// Sets one title.
class Setter {
public:
    Setter(const Appearance& appearance, FaceLibrary& faces, Report& report)
        : m_appearance(appearance), m_faces(faces), m_report(report), m_buffer(hb_buffer_create()) {}

    /// A line's shapes with its baseline at 0 and its left end at 0.
    struct Line {
        double width = 0;
        double ascent = 0;
        double descent = 0;
        double gap = 0;
        std::vector<GlyphRun> runs;
        struct Bar {
            double left;
            double right;
            Face::Decoration decoration; ///< Points.
            Colour colour;
        };
        std::vector<Bar> bars;
    };

    /// `styles` has the style of each unit, and one more for the end of the line.
    Line setLine(const std::u16string& text, const std::size_t* styles) {
        Line line;
        growFor(line, m_appearance.styles[styles[text.size()]]);
        if (text.empty())
            return line;
        auto characters = decode(text, styles);
        findLevels(characters);
        findScripts(characters);
        findFaces(characters);
        auto items = itemize(characters, text.size());
        reorder(items);
        for (const auto& item : items)
            shape(item, text, line);
        return line;
    }

    /// The ink of everything shaped so far, about each line's own origin.
    Box inkOf(const GlyphRun& run) const {
        const double scale = run.size / run.face->unitsPerEm();
        const double extra = run.outlined ? run.strokeWidth / 2 : 0;
        Box ink{1e9, 1e9, -1e9, -1e9};
        for (const auto& glyph : run.glyphs) {
            hb_glyph_extents_t extents{};
            if (!hb_font_get_glyph_extents(run.face->font(), glyph.glyph, &extents) || extents.width == 0)
                continue;
            const double left = glyph.x + extents.x_bearing * scale;
            const double top = glyph.y + extents.y_bearing * scale;
            ink.llx = std::min(ink.llx, left - extra);
            ink.urx = std::max(ink.urx, left + extents.width * scale + extra);
            ink.ury = std::max(ink.ury, top + extra);
            ink.lly = std::min(ink.lly, top + extents.height * scale - extra);
        }
        return ink;
    }

private:
    std::vector<Character> decode(const std::u16string& text, const std::size_t* styles) const {
        std::vector<Character> characters;
        for (std::size_t i = 0; i < text.size(); ++i) {
            Character character{text[i], i, styles[i], 0, HB_SCRIPT_COMMON, nullptr};
            const bool high = text[i] >= 0xD800 && text[i] < 0xDC00;
            if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
                character.code = 0x10000 + ((char32_t(text[i]) - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00);
                ++i;
            } else if (text[i] >= 0xD800 && text[i] < 0xE000) {
                character.code = 0xFFFD;
            }
            characters.push_back(character);
        }
        return characters;
    }

    static void findLevels(std::vector<Character>& characters) {
        const bool plain =
            std::all_of(characters.begin(), characters.end(), [](const Character& c) { return c.code < 0x0590; });
        if (plain)
            return;
        const auto length = static_cast<FriBidiStrIndex>(characters.size());
        std::vector<FriBidiChar> codes;
        for (const auto& character : characters)
            codes.push_back(character.code);
        std::vector<FriBidiCharType> types(characters.size());
        std::vector<FriBidiBracketType> brackets(characters.size());
        std::vector<FriBidiLevel> levels(characters.size());
        fribidi_get_bidi_types(codes.data(), length, types.data());
        fribidi_get_bracket_types(codes.data(), length, types.data(), brackets.data());
        FriBidiParType base = FRIBIDI_PAR_ON;
        if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &base, levels.data()) == 0)
            return;
        for (std::size_t i = 0; i < characters.size(); ++i)
            characters[i].level = levels[i];
        // White space at the end of a line goes where the paragraph ends.
        const FriBidiLevel baseLevel = FRIBIDI_IS_RTL(base) ? 1 : 0;
        for (auto i = characters.size(); i-- > 0 && characters[i].code == U' ';)
            characters[i].level = baseLevel;
    }

    static void findScripts(std::vector<Character>& characters) {
        hb_script_t last = HB_SCRIPT_INVALID;
        for (auto& character : characters) {
            character.script = hb_unicode_script(hb_unicode_funcs_get_default(), character.code);
            if (character.script == HB_SCRIPT_COMMON || character.script == HB_SCRIPT_INHERITED)
                character.script = last;
            last = character.script;
        }
        last = HB_SCRIPT_COMMON;
        for (auto i = characters.size(); i-- > 0;) {
            if (characters[i].script == HB_SCRIPT_INVALID)
                characters[i].script = last;
            last = characters[i].script;
        }
    }

    void findFaces(std::vector<Character>& characters) {
        for (std::size_t begin = 0; begin < characters.size();) {
            std::size_t end = begin + 1;
            // What is one picture in a font of emoji stays in one face: joined pictures, and the two letters of a flag.
            while (end < characters.size() &&
                   (extendsCluster(characters[end].code) || characters[end - 1].code == 0x200D ||
                    (end == begin + 1 && isRegionalIndicator(characters[begin].code) &&
                     isRegionalIndicator(characters[end].code))))
                ++end;
            const auto* own = m_appearance.styles[characters[begin].style].face.get();
            const Face* face = own;
            std::u32string codes;
            for (auto i = begin; i < end; ++i)
                codes += characters[i].code;
            if (!covers(*own, codes)) {
                auto other = m_faces.fallbackFor(*own, codes);
                if (!other && codes.size() > 1)
                    other = own->hasCharacter(codes[0]) ? nullptr : m_faces.fallbackFor(*own, codes.substr(0, 1));
                if (other) {
                    face = other.get();
                    m_held[face] = other;
                    if (m_report.namesFallbacks)
                        m_report.warn(Warning::Kind::characterElsewhere,
                                      {own->postScriptName(), named(codes), other->postScriptName()});
                } else {
                    m_report.warn(Warning::Kind::characterMissing, {named(codes)});
                }
            }
            for (auto i = begin; i < end; ++i)
                characters[i].face = face;
            begin = end;
        }
    }

    /// As "U+0041 U+0301".
    static std::string named(const std::u32string& codes) {
        std::string names;
        for (const char32_t code : codes) {
            char name[16];
            std::snprintf(name, sizeof name, "%sU+%04X", names.empty() ? "" : " ", static_cast<unsigned>(code));
            names += name;
        }
        return names;
    }

    static std::vector<Item> itemize(const std::vector<Character>& characters, std::size_t length) {
        std::vector<Item> items;
        for (const auto& c : characters) {
            if (!items.empty()) {
                const Item& last = items.back();
                if (last.style == c.style && last.level == c.level && last.script == c.script && last.face == c.face)
                    continue;
                items.back().end = c.unit;
            }
            items.push_back({c.unit, length, c.style, c.level, c.script, c.face});
        }
        return items;
    }

    /// From logical to visual order, by rule L2 of the Unicode bidirectional algorithm.
    static void reorder(std::vector<Item>& items) {
        FriBidiLevel highest = 0;
        for (const auto& item : items)
            highest = std::max(highest, item.level);
        for (auto level = highest; level > 0; --level)
            for (std::size_t i = 0; i < items.size();) {
                std::size_t end = i;
                while (end < items.size() && items[end].level >= level)
                    ++end;
                std::reverse(items.begin() + static_cast<std::ptrdiff_t>(i),
                             items.begin() + static_cast<std::ptrdiff_t>(end));
                i = std::max(end, i + 1);
            }
    }

    static void growFor(Line& line, const TextStyle& style) { growFor(line, *style.face, style.size); }

    static void growFor(Line& line, const Face& face, double size) {
        const double scale = size / face.unitsPerEm();
        line.ascent = std::max(line.ascent, face.ascent() * scale);
        line.descent = std::max(line.descent, face.descent() * scale);
        line.gap = std::max(line.gap, face.lineGap() * scale);
    }

    void shape(const Item& item, const std::u16string& text, Line& line) {
        const TextStyle& style = m_appearance.styles[item.style];
        const double scale = style.size / item.face->unitsPerEm();
        const bool rightToLeft = FRIBIDI_LEVEL_IS_RTL(item.level);
        hb_buffer_t* const buffer = m_buffer.get();
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t*>(text.data()), static_cast<int>(text.size()),
                            static_cast<unsigned>(item.begin), static_cast<int>(item.end - item.begin));
        hb_buffer_set_direction(buffer, rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer, item.script);
        hb_buffer_set_language(buffer, hb_language_get_default());
        hb_shape(item.face->font(), buffer, nullptr, 0);

        unsigned count = 0;
        const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer, &count);
        const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer, &count);
        std::vector<std::size_t> starts;
        for (unsigned i = 0; i < count; ++i)
            starts.push_back(infos[i].cluster);
        std::sort(starts.begin(), starts.end());
        starts.push_back(item.end);

        GlyphRun run{ownerOf(item), style.size, style.colour, style.outlined, style.strokeWidth, rightToLeft, {}};
        double x = line.width;
        for (unsigned i = 0; i < count; ++i) {
            PlacedGlyph glyph{infos[i].codepoint, x + positions[i].x_offset * scale, positions[i].y_offset * scale, {}};
            const bool first = i == 0 || infos[i].cluster != infos[i - 1].cluster;
            if (first) {
                const auto end = *std::upper_bound(starts.begin(), starts.end(), std::size_t(infos[i].cluster));
                glyph.text = text.substr(infos[i].cluster, end - infos[i].cluster);
            }
            x += positions[i].x_advance * scale;
            run.glyphs.push_back(std::move(glyph));
        }
        if (style.underline)
            addBar(line, x, style, style.face->underline());
        if (style.strikethrough)
            addBar(line, x, style, style.face->strikethrough());
        line.width = x;
        growFor(line, style);
        growFor(line, *item.face, style.size);
        if (!run.glyphs.empty())
            line.runs.push_back(std::move(run));
    }

    /// From the line's present end to `right`; joined with the bar before it where both are one.
    static void addBar(Line& line, double right, const TextStyle& style, Face::Decoration decoration) {
        const double scale = style.size / style.face->unitsPerEm();
        decoration.top *= scale;
        decoration.thickness *= scale;
        for (auto& bar : line.bars)
            if (bar.right == line.width && bar.colour == style.colour && bar.decoration.top == decoration.top &&
                bar.decoration.thickness == decoration.thickness) {
                bar.right = right;
                return;
            }
        line.bars.push_back({line.width, right, decoration, style.colour});
    }

    std::shared_ptr<const Face> ownerOf(const Item& item) const {
        const auto held = m_held.find(item.face);
        return held != m_held.end() ? held->second : m_appearance.styles[item.style].face;
    }

    const Appearance& m_appearance;
    FaceLibrary& m_faces;
    Report& m_report;
    std::unique_ptr<hb_buffer_t, BufferRelease> m_buffer;
    std::map<const Face*, std::shared_ptr<const Face>> m_held;
};

Box inset(const Box& box, double by) {
    return {box.llx + by, box.lly + by, box.urx - by, box.ury - by};
}

Box joined(const Box& a, const Box& b) {
    return {std::min(a.llx, b.llx), std::min(a.lly, b.lly), std::max(a.urx, b.urx), std::max(a.ury, b.ury)};
}

/// The path of a border's line, or of the area it encloses, for the styles that enclose one.
Path outlineOf(BorderStyle style, const Box& box) {
    Path path;
    if (style == BorderStyle::oval)
        path.addEllipse(box);
    else if (style == BorderStyle::roundedRectangle)
        path.addRoundedRectangle(box, std::min(box.width(), box.height()) / 4);
    else
        path.addRectangle(box);
    return path;
}

void addFillAndBorder(const Appearance& appearance, const Box& box, std::vector<Shape>& shapes) {
    const auto style = BorderStyle(appearance.borderStyle);
    const double thickness = appearance.bordered ? appearance.borderThickness : 0;
    if (appearance.filled)
        shapes.push_back(PathShape{outlineOf(style, inset(box, thickness / 2)), appearance.fillColour, false, 0, {}});
    if (thickness <= 0)
        return;
    const Box middle = inset(box, thickness / 2);
    const auto stroke = [&](Path path, std::vector<double> dash = {}) {
        shapes.push_back(PathShape{std::move(path), appearance.borderColour, true, thickness, std::move(dash)});
    };
    switch (style) {
    case BorderStyle::doubleLine:
        stroke(outlineOf(style, middle));
        stroke(outlineOf(style, inset(middle, 2 * thickness)));
        break;
    case BorderStyle::dashed:
        stroke(outlineOf(style, middle), {4 * thickness, 2 * thickness});
        break;
    case BorderStyle::underline: {
        Path line;
        line.moveTo({box.llx, middle.lly});
        line.lineTo({box.urx, middle.lly});
        stroke(std::move(line));
        break;
    }
    case BorderStyle::cornerMarks: {
        const double arm = std::min(middle.width(), middle.height()) / 3;
        Path marks;
        for (const double x : {middle.llx, middle.urx})
            for (const double y : {middle.lly, middle.ury}) {
                marks.moveTo({x == middle.llx ? x + arm : x - arm, y});
                marks.lineTo({x, y});
                marks.lineTo({x, y == middle.lly ? y + arm : y - arm});
            }
        stroke(std::move(marks));
        break;
    }
    default:
        stroke(outlineOf(style, middle));
    }
}

/// How far the text's box stands inside the stamp's, on each side.
platform::NSSize paddingFor(const Appearance& appearance, platform::NSSize text, double largestSize) {
    const bool framed = appearance.filled || appearance.bordered;
    if (!framed)
        return {};
    const double air = std::max(2.0, largestSize / 4);
    const double thickness = appearance.bordered ? appearance.borderThickness : 0;
    const auto style = BorderStyle(appearance.borderStyle);
    double around = air + thickness;
    if (style == BorderStyle::doubleLine)
        around += 2 * thickness;
    platform::NSSize padding{around, around};
    if (style == BorderStyle::oval) {
        // The smallest ellipse of the text box's proportions around it is larger by the square root of two.
        padding.width += text.width * (std::numbers::sqrt2 - 1) / 2;
        padding.height += text.height * (std::numbers::sqrt2 - 1) / 2;
    }
    return padding;
}

} // namespace

Appearance readAppearance(const host::ImprinterConfiguration& configuration, FaceLibrary& faces, Report& report) {
    Appearance appearance;
    const Colour black{};
    const Colour white{1, 1, 1, 1};
    appearance.styles.push_back({faces.defaultFace(), kDefaultSize, black, false, 0, false, false});
    const auto tokens = configuration.titleTokens();
    for (std::size_t i = 0; tokens && i < tokens->size(); ++i) {
        const auto& token = (*tokens)[i];
        if (const auto* text = std::get_if<std::u16string>(&token)) {
            const bool placeholder = text->size() >= 3 && text->front() == u'%' && text->back() == u'%';
            appearance.pieces.push_back(
                {placeholder ? *text : settable(*text), placeholder, appearance.styles.size() - 1});
        } else if (const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&token); run && *run) {
            const auto& font = **run;
            TextStyle style;
            style.size = lengthOrZero(font.fontSize());
            if (style.size == 0)
                style.size = kDefaultSize;
            style.colour = colourOf(font.colour(), black);
            style.outlined = font.outline();
            style.strokeWidth = style.outlined ? std::max(kHairline, lengthOrZero(font.strokeWidth())) : 0;
            style.underline = font.underline();
            style.strikethrough = font.strikethrough();
            const auto name = platform::toUtf8(font.fullFontName());
            style.face = faces.faceNamed(name);
            if (!style.face) {
                style.face = faces.defaultFace();
                if (style.face)
                    report.warn(Warning::Kind::fontMissing, {name, style.face->postScriptName()});
            }
            appearance.styles.push_back(std::move(style));
        }
    }
    appearance.alignment = lineAlignment(configuration.position());
    appearance.borderStyle = configuration.borderStyle();
    if (BorderStyle(appearance.borderStyle) != BorderStyle::none) {
        appearance.borderThickness = lengthOrZero(configuration.borderThickness());
        appearance.bordered = configuration.borderEnabled() && appearance.borderThickness > 0;
        appearance.borderColour = colourOf(configuration.borderColour(), black);
        appearance.filled = configuration.fillEnabled();
        appearance.fillColour = colourOf(configuration.fillColour(), white);
        appearance.fillColour.alpha *= component(configuration.fillOpacity());
    }
    return appearance;
}

std::u16string resolveTitle(const Appearance& appearance, const Facts& facts, Report& report) {
    std::u16string title;
    for (const auto& piece : appearance.pieces) {
        if (piece.placeholder) {
            const auto value = valueOf(piece.text, facts);
            if (!value)
                report.warn(Warning::Kind::unknownPlaceholder, {platform::toUtf8(piece.text)});
            title += settable(value.value_or(piece.text));
        } else {
            title += piece.text;
        }
        title += u'\0';
    }
    return title;
}

std::shared_ptr<const Stamp> layOut(const Appearance& appearance, const std::u16string& resolvedTitle,
                                    FaceLibrary& faces, Report& report) {
    const bool blank = std::all_of(resolvedTitle.begin(), resolvedTitle.end(),
                                   [](char16_t unit) { return unit == 0 || platform::isWhitespaceOrNewline(unit); });
    if (blank)
        return nullptr;
    if (!appearance.styles.front().face) {
        report.warn(Warning::Kind::noFont);
        return nullptr;
    }

    Setter setter(appearance, faces, report);
    std::vector<Setter::Line> lines;
    std::u16string text;
    std::vector<std::size_t> styles;
    std::size_t piece = 0;
    const auto styleNow = [&] {
        return piece < appearance.pieces.size() ? appearance.pieces[piece].style : appearance.styles.size() - 1;
    };
    const auto endLine = [&](std::size_t style) {
        styles.push_back(style);
        lines.push_back(setter.setLine(text, styles.data()));
        text.clear();
        styles.clear();
    };
    std::size_t lastStyle = styleNow();
    for (const char16_t unit : resolvedTitle) {
        if (unit == 0) {
            ++piece;
            continue;
        }
        lastStyle = styleNow();
        if (unit == u'\n') {
            endLine(lastStyle);
        } else {
            text += unit;
            styles.push_back(lastStyle);
        }
    }
    endLine(lastStyle);

    platform::NSSize textSize;
    double largestSize = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        textSize.width = std::max(textSize.width, lines[i].width);
        textSize.height += lines[i].ascent + lines[i].descent + (i + 1 < lines.size() ? lines[i].gap : 0);
        for (const auto& run : lines[i].runs)
            largestSize = std::max(largestSize, run.size);
    }
    const auto padding = paddingFor(appearance, textSize, largestSize);

    auto stamp = std::make_shared<Stamp>();
    stamp->size = {textSize.width + 2 * padding.width, textSize.height + 2 * padding.height};
    const Box box{0, 0, stamp->size.width, stamp->size.height};
    stamp->ink = box;
    std::copy_if(resolvedTitle.begin(), resolvedTitle.end(), std::back_inserter(stamp->text),
                 [](char16_t unit) { return unit != 0; });
    addFillAndBorder(appearance, box, stamp->shapes);
    double top = stamp->size.height - padding.height;
    for (auto& line : lines) {
        const double left = padding.width + (textSize.width - line.width) * appearance.alignment;
        const double baseline = top - line.ascent;
        for (auto& run : line.runs) {
            for (auto& glyph : run.glyphs) {
                glyph.x += left;
                glyph.y += baseline;
            }
            stamp->ink = joined(stamp->ink, setter.inkOf(run));
            stamp->shapes.push_back(std::move(run));
        }
        for (const auto& bar : line.bars) {
            const double upper = baseline + bar.decoration.top;
            const Box bounds{left + bar.left, upper - bar.decoration.thickness, left + bar.right, upper};
            PathShape shape{{}, bar.colour, false, 0, {}};
            shape.path.addRectangle(bounds);
            stamp->ink = joined(stamp->ink, bounds);
            stamp->shapes.push_back(std::move(shape));
        }
        top = baseline - line.descent - line.gap;
    }
    return stamp;
}

} // namespace engine
