// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/FontSource.h>

#include <QFont>
#include <QPainterPath>
#include <QString>

class QRawFont;
struct hb_face_t;
struct hb_font_t;

namespace platform::qt {

/// One face of a font file, opened to be drawn with and to be told apart from others.
class FontFace {
public:
    /// The first of the face's files that can be drawn with; null if none can. Faces used lately stay open.
    static std::shared_ptr<const FontFace> named(const std::u16string& fontName);
    /// Null if the file is gone, or holds no outlines.
    static std::shared_ptr<const FontFace> open(const FontFile& file);

    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const FontFile& file() const { return m_file; }
    bool covers(const QString& text) const;
    /// Whether letters show as something else in it: the listing says so, or the face declares itself a collection of
    /// signs by the family class or the Panose numbers of table OS/2, as OpenType defines them.
    bool isSymbolic() const;
    /// The text on a baseline that starts at the origin, y down. Empty where nothing is to be seen.
    QPainterPath outlines(const QString& text, double pixelSize) const;
    /// The font the toolkit is asked for by the names in the listing.
    QFont toolkitFont() const;
    /// Whether all of `text`, set by the toolkit in `font`, is set in this very face. Not where the file is a variable
    /// one: of those the toolkit does not say at which place of their design space it opened them.
    bool isWhatToolkitSets(const QString& text, const QFont& font) const;

private:
    FontFace() = default;
    QByteArray table(const char* name) const;
    bool isSame(const QRawFont& other) const;

    FontFile m_file;
    hb_face_t* m_face = nullptr;
    hb_font_t* m_font = nullptr;
};

} // namespace platform::qt
