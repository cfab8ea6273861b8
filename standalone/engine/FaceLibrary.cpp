// SPDX-License-Identifier: MIT
#include <engine/FaceLibrary.h>

#include <AppKit/FontSource.h>
#include <Foundation/NSString.h>

#include <fontconfig/fontconfig.h>
#include <harfbuzz/hb-ot.h>
#include <harfbuzz/hb.h>

#include <algorithm>
#include <vector>

namespace engine {

namespace {

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const { release(object); }
};
using Pattern = std::unique_ptr<FcPattern, Release<FcPattern, FcPatternDestroy>>;
using ObjectSet = std::unique_ptr<FcObjectSet, Release<FcObjectSet, FcObjectSetDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Release<FcFontSet, FcFontSetDestroy>>;

std::string text(FcPattern* pattern, const char* property) {
    FcChar8* value = nullptr;
    return FcPatternGetString(pattern, property, 0, &value) == FcResultMatch ? reinterpret_cast<const char*>(value)
                                                                             : std::string();
}

const FcChar8* fcText(const std::string& value) {
    return reinterpret_cast<const FcChar8*>(value.c_str());
}

/// What is needed to open the face of a pattern.
struct Entry {
    std::string file;
    unsigned index = 0;
    std::string name;
};

/// False for patterns that open as nothing we can draw: Type 1, and the umbrella entries of variable files.
bool entryOf(FcPattern* pattern, Entry& entry) {
    int index = 0;
    FcBool variable = FcFalse;
    const auto format = text(pattern, FC_FONTFORMAT);
    if ((format != "TrueType" && format != "CFF") ||
        (FcPatternGetBool(pattern, FC_VARIABLE, 0, &variable) == FcResultMatch && variable))
        return false;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    entry = {text(pattern, FC_FILE), static_cast<unsigned>(index), text(pattern, FC_POSTSCRIPT_NAME)};
    return !entry.file.empty();
}

bool isDrawnAsNothing(char32_t character) {
    return (character >= 0x200B && character <= 0x200F) || (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || (character >= 0xFE00 && character <= 0xFE0F) ||
           character == 0x00AD || character == 0xFEFF || (character >= 0xE0000 && character <= 0xE0FFF);
}

hb_blob_t* table(hb_face_t* face, hb_tag_t tag) {
    return hb_face_reference_table(face, tag);
}

bool hasTable(hb_face_t* face, hb_tag_t tag) {
    hb_blob_t* const blob = table(face, tag);
    const bool present = hb_blob_get_length(blob) > 0;
    hb_blob_destroy(blob);
    return present;
}

/// Reads the field fsType of table OS/2 as OpenType defines it: of the usage bits the most permissive counts.
bool licenceAllowsSubset(hb_face_t* face) {
    hb_blob_t* const blob = table(face, HB_TAG('O', 'S', '/', '2'));
    unsigned length = 0;
    const char* const data = hb_blob_get_data(blob, &length);
    unsigned type = 0;
    if (length >= 10)
        type = static_cast<unsigned>(static_cast<unsigned char>(data[8])) << 8 | static_cast<unsigned char>(data[9]);
    hb_blob_destroy(blob);
    const bool restricted = (type & 0x000E) == 0x0002;
    const bool noSubset = type & 0x0100;
    const bool bitmapOnly = type & 0x0200;
    return !restricted && !noSubset && !bitmapOnly;
}

void moveTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    static_cast<Path*>(path)->moveTo({x, y});
}
void lineTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    static_cast<Path*>(path)->lineTo({x, y});
}
void quadraticTo(hb_draw_funcs_t*, void* path, hb_draw_state_t* state, float cx, float cy, float x, float y, void*) {
    const double fromX = static_cast<double>(state->current_x);
    const double fromY = static_cast<double>(state->current_y);
    const Point control{cx, cy};
    const Point to{x, y};
    static_cast<Path*>(path)->cubicTo({fromX + (control.x - fromX) * 2 / 3, fromY + (control.y - fromY) * 2 / 3},
                                      {to.x + (control.x - to.x) * 2 / 3, to.y + (control.y - to.y) * 2 / 3}, to);
}
void cubicTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float c1x, float c1y, float c2x, float c2y, float x,
             float y, void*) {
    static_cast<Path*>(path)->cubicTo({c1x, c1y}, {c2x, c2y}, {x, y});
}
void closePath(hb_draw_funcs_t*, void* path, hb_draw_state_t*, void*) {
    static_cast<Path*>(path)->close();
}

hb_draw_funcs_t* pathFunctions() {
    static hb_draw_funcs_t* const functions = [] {
        hb_draw_funcs_t* const made = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(made, moveTo, nullptr, nullptr);
        hb_draw_funcs_set_line_to_func(made, lineTo, nullptr, nullptr);
        hb_draw_funcs_set_quadratic_to_func(made, quadraticTo, nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(made, cubicTo, nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(made, closePath, nullptr, nullptr);
        hb_draw_funcs_make_immutable(made);
        return made;
    }();
    return functions;
}

} // namespace

std::shared_ptr<const Face> Face::open(const std::string& file, unsigned index, std::string postScriptName) {
    hb_blob_t* const mapped = hb_blob_create_from_file_or_fail(file.c_str());
    // A file that is cut off while it is mapped would end the program.
    hb_blob_t* const blob = mapped ? hb_blob_copy_writable_or_fail(mapped) : nullptr;
    hb_blob_destroy(mapped);
    if (!blob)
        return nullptr;
    std::shared_ptr<Face> result(new Face);
    result->m_face = hb_face_create(blob, index & 0xFFFF);
    hb_blob_destroy(blob);
    hb_face_t* const face = result->m_face;
    hb_face_make_immutable(face);
    result->m_compact = hasTable(face, HB_TAG('C', 'F', 'F', ' '));
    const bool outlines =
        result->m_compact || hasTable(face, HB_TAG('g', 'l', 'y', 'f')) || hasTable(face, HB_TAG('C', 'F', 'F', '2'));
    result->m_pictorial = !outlines && hb_ot_color_has_png(face);
    if (hb_face_get_glyph_count(face) == 0 || !(outlines || result->m_pictorial))
        return nullptr;

    result->m_postScriptName = std::move(postScriptName);
    result->m_file = file;
    result->m_index = index;
    result->m_mayBeEmbedded = licenceAllowsSubset(face);
    result->m_unitsPerEm = hb_face_get_upem(face);
    hb_font_t* const font = result->m_font = hb_font_create(face);
    const int em = static_cast<int>(result->m_unitsPerEm);
    hb_font_set_scale(font, em, em);
    if (result->isInstance())
        hb_font_set_var_named_instance(font, (index >> 16) - 1);

    hb_font_extents_t extents{};
    if (hb_font_get_h_extents(font, &extents) && extents.ascender - extents.descender > 0) {
        result->m_ascent = extents.ascender;
        result->m_descent = -extents.descender;
        result->m_lineGap = extents.line_gap;
    } else {
        result->m_ascent = 0.8 * em;
        result->m_descent = 0.2 * em;
    }
    const auto metric = [font](hb_ot_metrics_tag_t tag) {
        hb_position_t value = 0;
        hb_ot_metrics_get_position_with_fallback(font, tag, &value);
        return static_cast<double>(value);
    };
    result->m_underline = {metric(HB_OT_METRICS_TAG_UNDERLINE_OFFSET), metric(HB_OT_METRICS_TAG_UNDERLINE_SIZE)};
    result->m_strikethrough = {metric(HB_OT_METRICS_TAG_STRIKEOUT_OFFSET), metric(HB_OT_METRICS_TAG_STRIKEOUT_SIZE)};
    return result;
}

Face::~Face() {
    hb_font_destroy(m_font);
    hb_face_destroy(m_face);
}

bool Face::hasCharacter(char32_t character) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(m_font, character, &glyph) && glyph != 0;
}

const Path& Face::outline(std::uint32_t glyph) const {
    const auto [place, isNew] = m_outlines.try_emplace(glyph);
    if (isNew)
        hb_font_get_glyph_shape(m_font, glyph, pathFunctions(), &place->second);
    return place->second;
}

std::string Face::picture(std::uint32_t glyph) const {
    hb_blob_t* const blob = hb_ot_color_glyph_reference_png(m_font, glyph);
    unsigned length = 0;
    const char* const data = hb_blob_get_data(blob, &length);
    std::string file(data ? data : "", data ? length : 0);
    hb_blob_destroy(blob);
    return file;
}

double Face::advance(std::uint32_t glyph) const {
    return hb_font_get_glyph_h_advance(m_font, glyph);
}

Box Face::extents(std::uint32_t glyph, double size, Point origin) const {
    hb_glyph_extents_t extents{};
    if (!hb_font_get_glyph_extents(m_font, glyph, &extents) || extents.width == 0)
        return {origin.x, origin.y, origin.x, origin.y};
    const double scale = size / m_unitsPerEm;
    const double left = origin.x + extents.x_bearing * scale;
    const double top = origin.y + extents.y_bearing * scale;
    return {left, top + extents.height * scale, left + extents.width * scale, top};
}

struct FaceLibrary::FallbackOrder {
    FontSet fonts;
};

FaceLibrary::FaceLibrary(std::string defaultName) : m_defaultName(std::move(defaultName)) {}

FaceLibrary::~FaceLibrary() = default;

std::shared_ptr<const Face> FaceLibrary::openFace(const std::string& file, unsigned index, const std::string& name) {
    const auto [place, isNew] = m_byFile.try_emplace({file, index});
    if (isNew)
        place->second = Face::open(file, index, name);
    return place->second;
}

std::shared_ptr<const Face> FaceLibrary::faceNamed(const std::string& postScriptName) {
    const auto [place, isNew] = m_byName.try_emplace(postScriptName);
    if (!isNew || postScriptName.empty())
        return place->second;

    for (const auto& file : platform::FontSource::current()->filesOf(platform::fromUtf8(postScriptName))) {
        place->second = openFace(file.path, file.index, postScriptName);
        if (place->second)
            break;
    }
    return place->second;
}

std::shared_ptr<const Face> FaceLibrary::defaultFace() {
    if (m_default)
        return m_default;
    m_default = faceNamed(m_defaultName);
    if (m_default)
        return m_default;
    const Pattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, fcText("sans-serif"));
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const FontSet order(FcFontSort(nullptr, wanted.get(), FcFalse, nullptr, &result));
    for (int i = 0; order && i < order->nfont && !m_default; ++i) {
        Entry entry;
        if (entryOf(order->fonts[i], entry))
            m_default = openFace(entry.file, entry.index, entry.name);
    }
    return m_default;
}

std::shared_ptr<const Face> FaceLibrary::fallbackFor(const Face& wanted, std::u32string_view characters) {
    const auto [place, isNew] = m_fallbackFaces.try_emplace({&wanted, std::u32string(characters)});
    if (!isNew)
        return place->second;

    auto& order = m_fallbacks[&wanted];
    if (!order) {
        order = std::make_unique<FallbackOrder>();
        const Pattern own(FcPatternCreate());
        FcPatternAddString(own.get(), FC_POSTSCRIPT_NAME, fcText(wanted.postScriptName()));
        const ObjectSet properties(FcObjectSetBuild(FC_FAMILY, FC_STYLE, FC_WEIGHT, FC_SLANT, FC_WIDTH, nullptr));
        const FontSet described(FcFontList(nullptr, own.get(), properties.get()));
        const Pattern request(described && described->nfont > 0 ? FcPatternDuplicate(described->fonts[0])
                                                                : FcPatternCreate());
        FcConfigSubstitute(nullptr, request.get(), FcMatchPattern);
        FcDefaultSubstitute(request.get());
        FcResult result = FcResultNoMatch;
        order->fonts.reset(FcFontSort(nullptr, request.get(), FcFalse, nullptr, &result));
    }
    for (int i = 0; order->fonts && i < order->fonts->nfont; ++i) {
        FcPattern* const pattern = order->fonts->fonts[i];
        FcCharSet* charset = nullptr;
        Entry entry;
        if (FcPatternGetCharSet(pattern, FC_CHARSET, 0, &charset) != FcResultMatch || !entryOf(pattern, entry))
            continue;
        // A precomposed character may do for the whole sequence, so the face decides; the first one it must have.
        if (!FcCharSetHasChar(charset, characters.front()))
            continue;
        const auto face = openFace(entry.file, entry.index, entry.name);
        if (face && covers(*face, characters)) {
            place->second = face;
            break;
        }
    }
    return place->second;
}

bool covers(const Face& face, std::u32string_view characters) {
    char32_t before = 0;
    for (const char32_t character : characters) {
        hb_codepoint_t composed = 0;
        const bool composes = before &&
                              hb_unicode_compose(hb_unicode_funcs_get_default(), before, character, &composed) &&
                              face.hasCharacter(composed);
        if (!composes && !isDrawnAsNothing(character) && !face.hasCharacter(character))
            return false;
        before = composes ? char32_t(composed) : character;
    }
    return true;
}

} // namespace engine
