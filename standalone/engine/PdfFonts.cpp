// SPDX-License-Identifier: MIT
#include "PdfFonts.h"

#include "CompactFont.h"
#include "Flate.h"
#include "PdfText.h"

#include <harfbuzz/hb-ot.h>
#include <harfbuzz/hb-subset.h>

#include <algorithm>

namespace engine {

namespace {

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const { release(object); }
};
using Input = std::unique_ptr<hb_subset_input_t, Release<hb_subset_input_t, hb_subset_input_destroy>>;
using Plan = std::unique_ptr<hb_subset_plan_t, Release<hb_subset_plan_t, hb_subset_plan_destroy>>;
using FacePointer = std::unique_ptr<hb_face_t, Release<hb_face_t, hb_face_destroy>>;
using Blob = std::unique_ptr<hb_blob_t, Release<hb_blob_t, hb_blob_destroy>>;

std::string_view bytesOf(const Blob& blob) {
    unsigned length = 0;
    const char* const data = hb_blob_get_data(blob.get(), &length);
    return {data, length};
}

/// The font program and the code of each glyph in it.
struct Program {
    std::string bytes;
    std::map<std::uint32_t, unsigned> codes;
};

/// Fixes the axes of a variable file where the instance has them.
void pinAxes(hb_subset_input_t* input, const Face& face) {
    const unsigned count = hb_ot_var_get_axis_count(face.face());
    if (count == 0)
        return;
    std::vector<hb_ot_var_axis_info_t> axes(count);
    unsigned filled = count;
    hb_ot_var_get_axis_infos(face.face(), 0, &filled, axes.data());
    std::vector<float> coordinates(count);
    for (unsigned i = 0; i < count; ++i)
        coordinates[i] = axes[i].default_value;
    filled = count;
    if (face.isInstance())
        hb_ot_var_named_instance_get_design_coords(face.face(), (face.index() >> 16) - 1, &filled, coordinates.data());
    for (unsigned i = 0; i < count; ++i)
        hb_subset_input_pin_axis_location(input, face.face(), axes[i].tag, coordinates[i]);
}

std::optional<Program> subset(const Face& face, const std::map<std::uint32_t, std::u16string>& glyphs) {
    const Input input(hb_subset_input_create_or_fail());
    if (!input)
        return std::nullopt;
    hb_set_t* const wanted = hb_subset_input_glyph_set(input.get());
    for (const auto& [glyph, text] : glyphs)
        hb_set_add(wanted, glyph);
    // The document says itself what these tables know.
    hb_set_t* const dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
    for (const char* name : {"GSUB", "GPOS", "GDEF", "BASE", "MATH", "cmap", "name", "post", "OS/2", "STAT", "meta",
                             "kern", "gasp", "VORG", "vhea", "vmtx", "COLR", "CPAL", "DSIG"})
        hb_set_add(dropped, hb_tag_from_string(name, 4));
    hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
    pinAxes(input.get(), face);

    const Plan plan(hb_subset_plan_create_or_fail(face.face(), input.get()));
    if (!plan)
        return std::nullopt;
    const FacePointer small(hb_subset_plan_execute_or_fail(plan.get()));
    if (!small)
        return std::nullopt;
    const hb_map_t* const numbers = hb_subset_plan_old_to_new_glyph_mapping(plan.get());
    Program program;
    std::vector<unsigned> identifiers;
    if (face.isCompact()) {
        const Blob table(hb_face_reference_table(small.get(), HB_TAG('C', 'F', 'F', ' ')));
        program.bytes = bytesOf(table);
        auto found = compactFontIdentifiers(program.bytes, hb_face_get_glyph_count(small.get()));
        if (!found)
            return std::nullopt;
        identifiers = std::move(*found);
    } else {
        const Blob whole(hb_face_reference_blob(small.get()));
        program.bytes = bytesOf(whole);
        const Blob outlines(hb_face_reference_table(small.get(), HB_TAG('l', 'o', 'c', 'a')));
        if (bytesOf(outlines).empty())
            return std::nullopt;
    }
    for (const auto& [glyph, text] : glyphs) {
        const auto number = hb_map_get(numbers, glyph);
        if (number == HB_MAP_VALUE_INVALID)
            return std::nullopt;
        program.codes[glyph] = number < identifiers.size() ? identifiers[number] : number;
    }
    return program;
}

/// Six capitals that depend on face and glyphs only.
std::string subsetTag(const PdfFonts::Font& font) {
    std::uint64_t hash = 14695981039346656037ULL; // FNV-1a
    const auto mix = [&](std::uint64_t value) { hash = (hash ^ value) * 1099511628211ULL; };
    for (const char c : font.face->postScriptName())
        mix(static_cast<unsigned char>(c));
    for (const auto& [glyph, text] : font.glyphs)
        mix(glyph);
    std::string tag;
    for (int i = 0; i < 6; ++i) {
        tag += static_cast<char>('A' + hash % 26);
        hash /= 26;
    }
    return tag;
}

std::string toUnicode(const PdfFonts::Font& font) {
    std::map<unsigned, std::u16string_view> texts;
    for (const auto& [glyph, text] : font.glyphs)
        if (!text.empty())
            texts.emplace(font.codes.at(glyph), text);
    std::string map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
                      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    std::size_t left = texts.size();
    std::size_t inGroup = 0;
    for (const auto& [code, text] : texts) {
        if (inGroup == 0) {
            inGroup = std::min<std::size_t>(left, 100); // the most a group may have
            map += std::to_string(inGroup) + " beginbfchar\n";
        }
        map += '<';
        appendCodeHex(map, code);
        map += "> <";
        appendUtf16Hex(map, text);
        map += ">\n";
        --left;
        if (--inGroup == 0)
            map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

/// A stream's entries and data, deflated.
std::pair<std::string, std::string> deflated(const std::string& plain, const std::string& entries) {
    return {entries + "/Filter/FlateDecode", Flate().deflate(plain)};
}

std::string writeFont(PdfObjects& objects, const PdfFonts::Font& font) {
    const Face& face = *font.face;
    const double perMille = 1000.0 / face.unitsPerEm();
    std::string name;
    appendName(name, "/" + subsetTag(font) + "+" + face.postScriptName());

    Box bounds{0, -face.descent(), 0, face.ascent()};
    std::map<unsigned, double> widths;
    for (const auto& [glyph, code] : font.codes) {
        widths[code] = face.advance(glyph) * perMille;
        hb_glyph_extents_t extents{};
        if (!hb_font_get_glyph_extents(face.font(), glyph, &extents))
            continue;
        bounds.llx = std::min(bounds.llx, static_cast<double>(extents.x_bearing));
        bounds.urx = std::max(bounds.urx, static_cast<double>(extents.x_bearing + extents.width));
        bounds.ury = std::max(bounds.ury, static_cast<double>(extents.y_bearing));
        bounds.lly = std::min(bounds.lly, static_cast<double>(extents.y_bearing + extents.height));
    }

    const auto [fileEntries, file] = deflated(
        font.program, face.isCompact() ? "/Subtype/CIDFontType0C" : "/Length1 " + std::to_string(font.program.size()));
    std::string descriptor = "<</Type/FontDescriptor/Flags 4/StemV 80/FontName " + name + "/FontBBox [";
    for (const double value : {bounds.llx, bounds.lly, bounds.urx, bounds.ury}) {
        appendNumber(descriptor, value * perMille);
        descriptor += ' ';
    }
    descriptor += ']';
    const auto entry = [&descriptor](const char* key, double value) {
        descriptor += key;
        descriptor += ' ';
        appendNumber(descriptor, value);
    };
    entry("/ItalicAngle", static_cast<double>(hb_style_get_value(face.font(), HB_STYLE_TAG_SLANT_ANGLE)));
    entry("/Ascent", face.ascent() * perMille);
    entry("/Descent", -face.descent() * perMille);
    hb_position_t capHeight = 0;
    hb_ot_metrics_get_position_with_fallback(face.font(), HB_OT_METRICS_TAG_CAP_HEIGHT, &capHeight);
    entry("/CapHeight", capHeight * perMille);
    descriptor += (face.isCompact() ? "/FontFile3 " : "/FontFile2 ") + objects.addStream(fileEntries, file) + ">>";

    std::string descendant = "<</Type/Font/CIDSystemInfo<</Registry(Adobe)/Ordering(Identity)/Supplement 0>>/DW 0";
    descendant += face.isCompact() ? "/Subtype/CIDFontType0" : "/Subtype/CIDFontType2/CIDToGIDMap/Identity";
    descendant += "/BaseFont " + name + "/FontDescriptor " + objects.add(descriptor) + "/W [";
    for (auto width = widths.begin(); width != widths.end();) {
        descendant += std::to_string(width->first) + " [";
        for (unsigned code = width->first; width != widths.end() && width->first == code; ++width, ++code) {
            appendNumber(descendant, width->second);
            descendant += ' ';
        }
        descendant += ']';
    }
    descendant += "]>>";

    const auto [mapEntries, map] = deflated(toUnicode(font), {});
    const auto descendants = objects.add(descendant);
    return objects.add("<</Type/Font/Subtype/Type0/Encoding/Identity-H/BaseFont " + name + "/DescendantFonts [" +
                       descendants + "]/ToUnicode " + objects.addStream(mapEntries, map) + ">>");
}

} // namespace

const PdfFonts::Font* PdfFonts::collect(const GlyphRun& run) {
    const Face* const face = run.face.get();
    if (!face->mayBeEmbedded() || m_outlined.count(face) > 0) {
        m_outlined.insert(face);
        m_outlinedFaces.insert(face->postScriptName());
        return nullptr;
    }
    const auto [place, isNew] = m_fonts.try_emplace(face);
    auto& font = place->second;
    if (isNew) {
        font.face = run.face;
        font.number = static_cast<std::uint16_t>(m_order.size());
        m_order.push_back(&font);
    }
    const auto& glyphs = run.glyphs;
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        // A glyph that shares its cluster with others stands for no text of its own.
        const bool alone = !glyphs[i].text.empty() && (i + 1 == glyphs.size() || !glyphs[i + 1].text.empty());
        auto& text = font.glyphs[glyphs[i].glyph];
        if (alone && text.empty())
            text = glyphs[i].text;
    }
    return &font;
}

bool PdfFonts::subset() {
    bool whole = true;
    for (auto& [face, font] : m_fonts) {
        auto program = engine::subset(*face, font.glyphs);
        if (!program) {
            m_outlined.insert(face);
            whole = false;
            continue;
        }
        font.codes = std::move(program->codes);
        font.program = std::move(program->bytes);
    }
    if (!whole) {
        m_fonts.clear();
        m_order.clear();
    }
    return whole;
}

std::string PdfFonts::write(PdfObjects& objects) const {
    std::string entries;
    for (const auto* font : m_order)
        entries += font->resourceName() + ' ' + writeFont(objects, *font);
    return entries;
}

} // namespace engine
