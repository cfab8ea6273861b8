// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSAttributedString.h>
#include <AppKit/NSMenu.h>

#include <map>
#include <optional>

namespace pane {

/// The one catalog of the fonts a user can pick for a title.
///
/// It is filled once, from what the platform offers for the user's locale, and not refreshed as long as the process
/// lives. Fonts are grouped by family; within its family each is known by a short face name, its attribute: "Regular",
/// "Bold". The full font name, which opens the font, is its PostScript name.
///
/// Menus and attributed texts name fonts by what the catalog holds; one that the platform no longer has raises
/// NSInvalidArgumentException there.
class VelIFonts : public platform::NSObject {
public:
    /// Orders attributes so that the plain faces, whatever a family calls them, come first: where any face may stand
    /// for the family, it is not the bold one.
    struct PlainFirst {
        bool operator()(const std::u16string& a, const std::u16string& b) const;
    };
    /// From a family's attributes to full font names.
    using FaceTable = std::map<std::u16string, std::u16string, PlainFirst>;
    /// From family names, exactly as the platform spells them. A family whose fonts all failed the rule for attributes
    /// has an empty table.
    using FontInfoLookup = std::map<std::u16string, FaceTable>;

    std::u16string_view className() const override;

    /// Made and filled by the first call, once even if several threads are the first.
    static std::shared_ptr<VelIFonts> sharedVelIFonts();

    /// An empty table, then `initialiseFonts`. Answers this object.
    virtual std::shared_ptr<VelIFonts> init();
    /// Fills the table from `buildFontList`: the later of two fonts with the same attribute stays. What is raised while
    /// a font is entered is logged, and the next one is taken.
    virtual void initialiseFonts();
    /// The full font names the platform offers for the current locale, sorted without regard to case, each once.
    virtual std::vector<std::u16string> buildFontList();

    /// Null only if it was set to null.
    const std::shared_ptr<FontInfoLookup>& fontInfoLookup() const { return m_fontInfoLookup; }
    void setFontInfoLookup(const std::shared_ptr<FontInfoLookup>& lookup) { m_fontInfoLookup = lookup; }

    /// A new menu of all families, sorted without regard to case; the tag of an item is its place. With `useFont` each
    /// is drawn in its own font, save a family without faces.
    virtual std::shared_ptr<platform::NSMenu> fontMenu(bool useFont);
    /// A new menu of a family's attributes: "Regular" first, the others in sorted order. The tag of an item is its
    /// place in sorted order, "Regular" counted, and so not its place in the menu.
    ///
    /// For a name that is no family, the first family that contains it stands in; the menu is empty if none does.
    /// Without `useFont` every item is titled with `family`.
    virtual std::shared_ptr<platform::NSMenu> fontAttributeMenuForFontUseFont(const std::u16string& family,
                                                                              bool useFont);

    /// The family's name in the family's own font, "Regular" if it has that, at 13 points; null for a family that is
    /// unknown or has no faces.
    virtual std::shared_ptr<platform::NSAttributedString>
    attributedStringInFontForFontFamily(const std::u16string& family);
    /// The same of another text.
    virtual std::shared_ptr<platform::NSAttributedString>
    attributedStringInFontForFontFamily(const std::u16string& string, const std::u16string& family);

    /// nil where the family, or the attribute in it, is unknown or nil.
    virtual std::optional<std::u16string>
    fullFontNameForFamilyAttibute(const std::optional<std::u16string>& family,
                                  const std::optional<std::u16string>& attribute); // sic
    /// nil where the family has no such font; case counts.
    virtual std::optional<std::u16string> attributeNameForFullFontNameFamilyName(const std::u16string& fullFontName,
                                                                                 const std::u16string& family);

private:
    void enterFont(const std::u16string& fullFontName);
    const FaceTable* facesOf(const std::u16string& family) const;
    const FaceTable* facesOfFamilyContaining(const std::u16string& name) const;

    std::shared_ptr<FontInfoLookup> m_fontInfoLookup;
};

/// `string` in the font of that full font name, at the size of the menus' samples.
std::shared_ptr<platform::NSAttributedString> attributedStringInFont(const std::u16string& string,
                                                                     const std::u16string& fullFontName);

} // namespace pane
