// SPDX-License-Identifier: MIT
// Over every face of this machine: that what is drawn under a full font name is the face of that name. FreeType, which
// neither the engine nor the menus ask, says what the faces look like.
#include "FontFace.h"

#include <AppKit/FontSource.h>
#include <Foundation/NSString.h>
#include <engine/FaceLibrary.h>

#include <QGlyphRun>
#include <QRawFont>
#include <QTextLayout>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <harfbuzz/hb-ot.h>

#include <gtest/gtest.h>

#include <set>

using namespace platform;
using platform::qt::FontFace;

namespace {

/// The rectangle around an outline's points, in font units.
struct Extent {
    double left = 0, bottom = 0, right = 0, top = 0;
    bool empty = true;

    void add(double x, double y) {
        left = empty ? x : std::min(left, x);
        right = empty ? x : std::max(right, x);
        bottom = empty ? y : std::min(bottom, y);
        top = empty ? y : std::max(top, y);
        empty = false;
    }
    bool isNear(const Extent& other, double tolerance) const {
        return empty == other.empty && std::abs(left - other.left) <= tolerance &&
               std::abs(right - other.right) <= tolerance && std::abs(bottom - other.bottom) <= tolerance &&
               std::abs(top - other.top) <= tolerance;
    }
};

Extent extentOf(const engine::Path& path) {
    Extent extent;
    for (const auto& element : path.elements)
        if (element.verb != engine::Path::Verb::close)
            extent.add(element.to.x, element.to.y);
    return extent;
}

Extent extentOf(const QPainterPath& path, double scale) {
    Extent extent;
    for (int i = 0; i < path.elementCount(); ++i) {
        const auto element = path.elementAt(i);
        const bool isControl = element.type == QPainterPath::CurveToElement ||
                               (element.type == QPainterPath::CurveToDataElement && i + 1 < path.elementCount() &&
                                path.elementAt(i - 1).type == QPainterPath::CurveToElement);
        if (!isControl)
            extent.add(element.x * scale, -element.y * scale);
    }
    return extent;
}

class FreeTypeFace {
public:
    FreeTypeFace(const std::string& file, unsigned index) {
        FT_Init_FreeType(&m_library);
        if (FT_New_Face(m_library, file.c_str(), static_cast<FT_Long>(index), &m_face) != 0)
            m_face = nullptr;
    }
    ~FreeTypeFace() {
        FT_Done_Face(m_face);
        FT_Done_FreeType(m_library);
    }
    FreeTypeFace(const FreeTypeFace&) = delete;
    FreeTypeFace& operator=(const FreeTypeFace&) = delete;

    FT_Face get() const { return m_face; }
    Extent extentOf(unsigned glyph) const {
        Extent extent;
        if (FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE) != 0)
            return extent;
        FT_Outline_Funcs functions{};
        functions.move_to = [](const FT_Vector* to, void* data) { return add(to, data); };
        functions.line_to = [](const FT_Vector* to, void* data) { return add(to, data); };
        functions.conic_to = [](const FT_Vector*, const FT_Vector* to, void* data) { return add(to, data); };
        functions.cubic_to = [](const FT_Vector*, const FT_Vector*, const FT_Vector* to, void* data) {
            return add(to, data);
        };
        FT_Outline_Decompose(&m_face->glyph->outline, &functions, &extent);
        return extent;
    }

private:
    static int add(const FT_Vector* to, void* data) {
        static_cast<Extent*>(data)->add(static_cast<double>(to->x), static_cast<double>(to->y));
        return 0;
    }
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

/// Every PostScript name that fontconfig lists for something the platform opens.
std::set<std::string> everyName() {
    std::set<std::string> names;
    FcPattern* const all = FcPatternCreate();
    FcObjectSet* const wanted = FcObjectSetBuild(FC_POSTSCRIPT_NAME, nullptr);
    FcFontSet* const found = FcFontList(nullptr, all, wanted);
    for (int i = 0; i < found->nfont; ++i) {
        FcChar8* name = nullptr;
        if (FcPatternGetString(found->fonts[i], FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch &&
            FontSource::current()->namesOf(fromUtf8(reinterpret_cast<const char*>(name))))
            names.insert(reinterpret_cast<const char*>(name));
    }
    FcFontSetDestroy(found);
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(all);
    return names;
}

/// A few glyphs: those of letters, and some at large for faces that have none.
std::set<unsigned> someGlyphs(FT_Face face) {
    std::set<unsigned> glyphs;
    for (const char32_t character : {U'A', U'g', U'Q', U'8', U'@'})
        if (const auto glyph = FT_Get_Char_Index(face, character))
            glyphs.insert(glyph);
    for (long glyph = 3; glyphs.size() < 6 && glyph < face->num_glyphs; glyph += face->num_glyphs / 7 + 1)
        glyphs.insert(static_cast<unsigned>(glyph));
    return glyphs;
}

/// A few characters the face has.
QString someText(FT_Face face) {
    QString text;
    for (const char32_t character : {U'A', U'g', U'Q', U'8', U'@'})
        if (FT_Get_Char_Index(face, character))
            text += QChar(static_cast<char16_t>(character));
    unsigned glyph = 0;
    for (auto character = FT_Get_First_Char(face, &glyph); text.size() < 4 && glyph != 0;
         character = FT_Get_Next_Char(face, character, &glyph))
        if (character < 0xD800 && QChar(static_cast<char16_t>(character)).isLetter())
            text += QChar(static_cast<char16_t>(character));
    return text;
}

std::string nameInside(hb_face_t* face) {
    char text[256];
    unsigned size = sizeof text;
    hb_ot_name_get_utf8(face, HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_LANGUAGE_INVALID, &size, text);
    return std::string(text, size);
}

TEST(EveryFace, IsOpenedUnderItsOwnNameAndDrawnWithItsOwnOutlines) {
    engine::FaceLibrary faces;
    int checked = 0;
    for (const auto& name : everyName()) {
        SCOPED_TRACE(name);
        const auto files = FontSource::current()->filesOf(fromUtf8(name));
        ASSERT_FALSE(files.empty());
        const auto face = faces.faceNamed(name);
        ASSERT_TRUE(face);
        EXPECT_EQ(face->file(), files.front().path);
        EXPECT_EQ(face->index(), files.front().index);
        if (!face->isInstance()) {
            EXPECT_EQ(nameInside(face->face()), name);
        }

        const FreeTypeFace other(face->file(), face->index());
        ASSERT_TRUE(other.get());
        for (const auto glyph : someGlyphs(other.get())) {
            EXPECT_TRUE(extentOf(face->outline(glyph)).isNear(other.extentOf(glyph), 1.01)) << "glyph " << glyph;
            ++checked;
        }
    }
    EXPECT_GT(checked, 0);
    RecordProperty("glyphs", checked);
}

TEST(EveryFace, IsDrawnInMenusByTheToolkitOnlyWhereThatOpenedTheVeryFace) {
    int toolkit = 0;
    int outlines = 0;
    for (const auto& name : everyName()) {
        SCOPED_TRACE(name);
        const auto face = FontFace::named(fromUtf8(name));
        ASSERT_TRUE(face);
        const FreeTypeFace other(face->file().path, face->file().index);
        ASSERT_TRUE(other.get());
        const double em = other.get()->units_per_EM;
        const auto letters = QStringLiteral("AgQ8");
        if (face->covers(letters)) {
            for (const auto letter : letters) {
                const auto glyph = FT_Get_Char_Index(other.get(), letter.unicode());
                EXPECT_TRUE(extentOf(face->outlines(letter, em), 1).isNear(other.extentOf(glyph), 1.01))
                    << letter.toLatin1();
            }
        }
        auto font = face->toolkitFont();
        font.setPixelSize(static_cast<int>(em)); // so that a pixel is a unit
        font.setHintingPreference(QFont::PreferNoHinting);
        const auto text = someText(other.get());
        if (!face->isWhatToolkitSets(text, font)) {
            ++outlines;
            continue;
        }
        ++toolkit;
        // What the toolkit sets is asked for its glyphs, not for its name.
        QTextLayout layout(text, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const auto& run : layout.glyphRuns())
            for (const auto glyph : run.glyphIndexes())
                EXPECT_TRUE(extentOf(run.rawFont().pathForGlyph(glyph), 1).isNear(other.extentOf(glyph), 1.5))
                    << "glyph " << glyph;
    }
    EXPECT_GT(toolkit, 0);
    std::cout << toolkit << " faces drawn by the toolkit, " << outlines << " from their outlines\n";
}

} // namespace
