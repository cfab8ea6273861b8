// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterFont.h>

#include <optional>

namespace model {

class Configuration;

/// The PostScript name of the face that new runs have, and that stands in for every face the machine lacks: the
/// platform's face for text without a font. Asked for at the first call only.
const std::u16string& defaultFontName();

/// How font runs are called: "%@" stands for the number of a run, and then for the name of one whose face is missing.
struct FontRunNames {
    std::u16string numbered = u"Font %@";
    std::u16string missing = u"%@ (missing)";
};
/// In English until the program sets its own.
FontRunNames& fontRunNames();

/// A font run of the stand-alone host, an object of the class "VelIFontType". A configuration makes it; titles hold it.
/// It belongs to one configuration, the one whose title took it last.
///
/// A new run is set in the default face at 12 points, without colour (which is drawn black), outline 1 point wide but
/// off, not underlined and not struck through.
class FontRun final : public host::ImprinterFont {
public:
    /// Changes are told to `owner` as long as it lives.
    FontRun(std::weak_ptr<Configuration> owner, host::NSUInteger number);
    /// Answers the former one.
    std::shared_ptr<Configuration> setOwner(std::weak_ptr<Configuration> owner);

    std::u16string_view className() const override;

    /// "Font 1" for the run with number 0; where the machine lacks the face, "Font 1 (missing)".
    std::u16string name() const override;
    host::NSUInteger fontNumber() const override { return m_fontNumber; }
    void setFontNumber(host::NSUInteger number) override;
    /// The name that was set, whether or not the machine has the face.
    std::u16string fullFontName() const override;
    void setFullFontName(const std::u16string& name) override;
    /// Whether the machine has no face of that name, so that another one is drawn.
    bool isMissing() const;
    /// Looked up once for each name and size.
    std::shared_ptr<host::NSFont> font() const override;
    std::shared_ptr<const host::NSColor> colour() const override { return m_colour; }
    void setColour(const std::shared_ptr<const host::NSColor>& colour) override;
    double fontSize() const override { return m_fontSize; }
    void setFontSize(double points) override;
    double strokeWidth() const override { return m_strokeWidth; }
    void setStrokeWidth(double points) override;
    bool outline() const override { return m_outline; }
    void setOutline(bool outline) override;
    bool underline() const override { return m_underline; }
    void setUnderline(bool underline) override;
    bool strikethrough() const override { return m_strikethrough; }
    void setStrikethrough(bool strikethrough) override;

    /// Takes over every attribute of `other`, which may be of any host, its number included.
    void setAttributesOf(const host::ImprinterFont& other);

private:
    template <class T>
    void set(T& member, const T& value);

    std::weak_ptr<Configuration> m_owner;
    host::NSUInteger m_fontNumber;
    std::optional<std::u16string> m_fullFontName; // none: the default face, not yet asked for
    mutable std::shared_ptr<host::NSFont> m_font; // null: to be looked up
    std::shared_ptr<const host::NSColor> m_colour;
    double m_fontSize = 12;
    double m_strokeWidth = 1;
    bool m_outline = false;
    bool m_underline = false;
    bool m_strikethrough = false;
};

} // namespace model
