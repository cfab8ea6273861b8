// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Stamp.h>

#include <qpdf/QPDF.hh>

#include <map>

namespace engine {

/// The fonts of one document's stamps: first all glyphs are collected, then one subset for each face is written.
class PdfFonts {
public:
    /// A face as content streams name and encode it.
    struct Font {
        std::shared_ptr<const Face> face;
        std::string resourceName;                       ///< "/F0"
        std::map<std::uint32_t, std::u16string> glyphs; ///< Each used glyph with the text it stands for.
        std::map<std::uint32_t, unsigned> codes;        ///< Two-byte codes by glyph; filled by `embed`.
        QPDFObjectHandle object;
    };

    void collect(const Stamp& stamp);

    /// Writes the fonts into `document`. A face that may not or cannot be embedded is not among `fontFor` afterwards;
    /// `report` says so.
    void embed(QPDF& document, std::set<std::string>& sentences);

    /// Null for faces that are drawn as outlines.
    const Font* fontFor(const Face& face) const;

    /// A dictionary of resource names and fonts.
    QPDFObjectHandle resources() const;

private:
    std::map<const Face*, Font> m_fonts;
};

} // namespace engine
