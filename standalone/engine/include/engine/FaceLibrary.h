// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Geometry.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

struct hb_face_t;
struct hb_font_t;

namespace engine {

/// One face of a font file: a file and an index, and for a variable file the named instance.
///
/// Lengths are in font units unless they say otherwise. Owned by the library that opened it; not for several threads.
class Face {
public:
    /// Null if the file cannot be read, or holds neither outlines that HarfBuzz can draw nor pictures. `index` is
    /// fontconfig's: the named instance, from 1, in its upper 16 bits.
    static std::shared_ptr<const Face> open(const std::string& file, unsigned index, std::string postScriptName);

    ~Face();
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    const std::string& postScriptName() const { return m_postScriptName; }
    const std::string& file() const { return m_file; }
    unsigned index() const { return m_index; }
    /// Whether the face is an instance of a variable file.
    bool isInstance() const { return m_index >> 16 != 0; }
    /// Whether the outlines are a CFF table.
    bool isCompact() const { return m_compact; }
    /// Whether glyphs are pictures, as in fonts of emoji; there are no outlines then.
    bool isPictorial() const { return m_pictorial; }
    /// The PNG file of a pictorial glyph, to be shown in the glyph's extents; empty for a blank one.
    std::string picture(std::uint32_t glyph) const;
    /// Whether the licence bits of the face allow a subset of it inside a document.
    bool mayBeEmbedded() const { return m_mayBeEmbedded; }

    unsigned unitsPerEm() const { return m_unitsPerEm; }
    double ascent() const { return m_ascent; }
    /// Positive below the baseline.
    double descent() const { return m_descent; }
    double lineGap() const { return m_lineGap; }

    /// A line of the decoration: its upper edge above the baseline, and its thickness.
    struct Decoration {
        double top;
        double thickness;
    };
    Decoration underline() const { return m_underline; }
    Decoration strikethrough() const { return m_strikethrough; }

    bool hasCharacter(char32_t character) const;
    /// In font units, y up. Empty for a blank glyph or one the face does not have.
    const Path& outline(std::uint32_t glyph) const;
    double advance(std::uint32_t glyph) const;
    /// What a glyph of this size covers that stands at `origin`, in points; of no width for a blank one.
    Box extents(std::uint32_t glyph, double size, Point origin) const;

    /// Scaled to one unit a font unit.
    hb_font_t* font() const { return m_font; }
    hb_face_t* face() const { return m_face; }

private:
    Face() = default;

    std::string m_postScriptName;
    std::string m_file;
    unsigned m_index = 0;
    bool m_compact = false;
    bool m_pictorial = false;
    bool m_mayBeEmbedded = true;
    unsigned m_unitsPerEm = 1000;
    double m_ascent = 0;
    double m_descent = 0;
    double m_lineGap = 0;
    Decoration m_underline{};
    Decoration m_strikethrough{};
    hb_face_t* m_face = nullptr;
    hb_font_t* m_font = nullptr;
    mutable std::unordered_map<std::uint32_t, Path> m_outlines;
};

/// The faces of this machine by PostScript name, and what stands in for those it lacks.
///
/// Opened faces stay open as long as the library lives. Not for several threads at once.
class FaceLibrary {
public:
    /// `defaultName` is the PostScript name of the face for text without a font run and for names the machine lacks.
    explicit FaceLibrary(std::string defaultName = "DejaVuSans");
    ~FaceLibrary();

    /// The face with exactly this PostScript name (UTF-8), or null: of the files that the platform's font source has
    /// for it, the first that can be drawn with.
    std::shared_ptr<const Face> faceNamed(const std::string& postScriptName);

    /// The named default, else fontconfig's choice of a sans-serif face; null on a machine without any font.
    std::shared_ptr<const Face> defaultFace();

    /// The first face in fontconfig's fallback order of `wanted` that has every one of `characters`; null if none has.
    /// Characters that are drawn as nothing do not count.
    std::shared_ptr<const Face> fallbackFor(const Face& wanted, std::u32string_view characters);

private:
    struct FallbackOrder;

    std::shared_ptr<const Face> openFace(const std::string& file, unsigned index, const std::string& name);

    std::string m_defaultName;
    std::shared_ptr<const Face> m_default;
    std::map<std::string, std::shared_ptr<const Face>> m_byName;
    std::map<std::pair<std::string, unsigned>, std::shared_ptr<const Face>> m_byFile;
    std::map<const Face*, std::unique_ptr<FallbackOrder>> m_fallbacks;
    std::map<std::pair<const Face*, std::u32string>, std::shared_ptr<const Face>> m_fallbackFaces;
};

/// Whether `face` can draw all of `characters`, each by itself or composed with the one before it.
bool covers(const Face& face, std::u32string_view characters);

} // namespace engine
