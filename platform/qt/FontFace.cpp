// SPDX-License-Identifier: MIT
#include "FontFace.h"

#include "Text.h"

#include <QCache>
#include <QGlyphRun>
#include <QRawFont>
#include <QTextLayout>

#include <harfbuzz/hb-ot.h>
#include <harfbuzz/hb.h>

#include <algorithm>

namespace platform::qt {

namespace {

constexpr int facesKept = 256;

using Kept = std::shared_ptr<const FontFace>;

QPainterPath& pathOf(void* data) {
    return *static_cast<QPainterPath*>(data);
}
void moveTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    pathOf(path).moveTo(x, y);
}
void lineTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    pathOf(path).lineTo(x, y);
}
void quadraticTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float cx, float cy, float x, float y, void*) {
    pathOf(path).quadTo(cx, cy, x, y);
}
void cubicTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float c1x, float c1y, float c2x, float c2y, float x,
             float y, void*) {
    pathOf(path).cubicTo(c1x, c1y, c2x, c2y, x, y);
}
void closePath(hb_draw_funcs_t*, void* path, hb_draw_state_t*, void*) {
    pathOf(path).closeSubpath();
}

hb_draw_funcs_t* pathFunctions() {
    static hb_draw_funcs_t* const functions = [] {
        auto* const made = hb_draw_funcs_create();
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

std::shared_ptr<const FontFace> FontFace::named(const std::u16string& fontName) {
    static QCache<QString, Kept> kept(facesKept);
    for (const auto& file : FontSource::current()->filesOf(fontName)) {
        const auto key = QString::fromStdString(file.path) + QLatin1Char(':') + QString::number(file.index);
        const auto* found = kept.object(key);
        auto face = found ? *found : open(file);
        if (!found)
            kept.insert(key, new Kept(face));
        if (face)
            return face;
    }
    return nullptr;
}

std::shared_ptr<const FontFace> FontFace::open(const FontFile& file) {
    auto* const mapped = hb_blob_create_from_file_or_fail(file.path.c_str());
    // A file that is cut off while it is mapped would end the program.
    auto* const blob = mapped ? hb_blob_copy_writable_or_fail(mapped) : nullptr;
    hb_blob_destroy(mapped);
    if (!blob)
        return nullptr;
    const std::shared_ptr<FontFace> face(new FontFace);
    face->m_file = file;
    face->m_face = hb_face_create(blob, file.index & 0xFFFF);
    hb_blob_destroy(blob);
    const bool outlined =
        !face->table("glyf").isEmpty() || !face->table("CFF ").isEmpty() || !face->table("CFF2").isEmpty();
    if (hb_face_get_glyph_count(face->m_face) == 0 || !outlined)
        return nullptr;
    face->m_font = hb_font_create(face->m_face);
    if (file.isInstance())
        hb_font_set_var_named_instance(face->m_font, (file.index >> 16) - 1);
    return face;
}

FontFace::~FontFace() {
    hb_font_destroy(m_font);
    hb_face_destroy(m_face);
}

QByteArray FontFace::table(const char* name) const {
    auto* const blob = hb_face_reference_table(m_face, hb_tag_from_string(name, -1));
    unsigned length = 0;
    const char* const data = hb_blob_get_data(blob, &length);
    QByteArray bytes(data, static_cast<qsizetype>(length));
    hb_blob_destroy(blob);
    return bytes;
}

bool FontFace::covers(const QString& text) const {
    for (const auto character : text.toUcs4()) {
        hb_codepoint_t glyph = 0;
        if (!QChar::isSpace(character) && !hb_font_get_nominal_glyph(m_font, character, &glyph))
            return false;
    }
    return true;
}

bool FontFace::isSymbolic() const {
    constexpr char symbolicClass = 12;
    constexpr char pictorialFamily = 5;
    constexpr int classAt = 30;
    constexpr int panoseAt = 32;
    const auto os2 = table("OS/2");
    return m_file.symbolic ||
           (os2.size() > panoseAt && (os2[classAt] == symbolicClass || os2[panoseAt] == pictorialFamily));
}

QString FontFace::firstSigns(int count) const {
    QString signs;
    auto* const covered = hb_set_create();
    hb_face_collect_unicodes(m_face, covered);
    for (hb_codepoint_t code = 0x20; signs.toUcs4().size() < count && hb_set_next(covered, &code);)
        if (QChar::isPrint(code) && !QChar::isLetterOrNumber(code) && !QChar::isPunct(code) && !QChar::isMark(code) &&
            !QChar::isSpace(code))
            signs += QChar::fromUcs4(code);
    hb_set_destroy(covered);
    return signs;
}

QPainterPath FontFace::outlines(const QString& text, double pixelSize) const {
    auto* const buffer = hb_buffer_create();
    hb_buffer_add_utf16(buffer, text.utf16(), static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(m_font, buffer, nullptr, 0);
    unsigned count = 0;
    const auto* const glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    const auto* const places = hb_buffer_get_glyph_positions(buffer, &count);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    double pen = 0;
    for (unsigned i = 0; i < count; ++i) {
        QPainterPath glyph;
        hb_font_get_glyph_shape(m_font, glyphs[i].codepoint, pathFunctions(), &glyph);
        path.addPath(glyph.translated(pen + places[i].x_offset, places[i].y_offset));
        pen += places[i].x_advance;
    }
    hb_buffer_destroy(buffer);
    const double scale = pixelSize / hb_face_get_upem(m_face);
    return QTransform::fromScale(scale, -scale).map(path);
}

QFont FontFace::toolkitFont() const {
    QFont font;
    font.setFamilies({QString::fromStdString(m_file.family)});
    font.setStyleName(QString::fromStdString(m_file.style));
    return font;
}

bool FontFace::isSame(const QRawFont& other) const {
    // The names tell the faces of one file apart, and the head has the check sum of the whole file.
    return other.isValid() && other.fontTable("name") == table("name") && other.fontTable("head") == table("head");
}

bool FontFace::isWhatToolkitSets(const QString& text, const QFont& font) const {
    if (m_file.isInstance() || !table("fvar").isEmpty())
        return false;
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const auto runs = layout.glyphRuns();
    return !runs.isEmpty() &&
           std::all_of(runs.begin(), runs.end(), [this](const QGlyphRun& run) { return isSame(run.rawFont()); });
}

} // namespace platform::qt
