// SPDX-License-Identifier: MIT
// A font file: it is no font, or its glyphs can be drawn, and a document can hold a subset of it.

#include "ScratchFile.h"

#include <PdfFonts.h>
#include <engine/FaceLibrary.h>

namespace {

/// Takes what is written and forgets it.
class Nowhere final : public engine::PdfObjects {
public:
    std::string add(std::string_view) override { return std::to_string(++m_objects) + " 0 R"; }
    std::string reserve() override { return add({}); }
    void fill(const std::string&, std::string_view) override {}
    std::string addStream(std::string_view entries, std::string_view) override { return add(entries); }
    void changePage(QPDFObjectHandle, const std::string&, const std::string&) override {}

private:
    int m_objects = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder folder("font");
    // The first byte chooses the face of a collection and the instance of a variable font.
    if (size == 0)
        return 0;
    const auto file = folder.write("font", data + 1, size - 1);
    const unsigned index = (data[0] & 0xFU) | (data[0] & 0xF0U) << 12;
    const auto face = engine::Face::open(file, index, "Fuzzed");
    if (!face)
        return 0;
    engine::GlyphRun run;
    run.face = face;
    constexpr std::uint32_t most = 300; // glyphs
    for (std::uint32_t glyph = 0; glyph < most; ++glyph) {
        face->outline(glyph);
        face->extents(glyph, 12, {});
        if (face->isPictorial())
            face->picture(glyph);
        engine::PlacedGlyph placed;
        placed.glyph = glyph;
        placed.text = u"a";
        run.glyphs.push_back(placed);
    }
    for (const char32_t character : U"a\u05D0\u0E01\U0001F600")
        face->hasCharacter(character);
    engine::PdfFonts fonts;
    if (fonts.collect(run) && fonts.subset()) {
        Nowhere nowhere;
        require(!fonts.write(nowhere).empty(), "a font that was collected is written");
    }
    return 0;
}
