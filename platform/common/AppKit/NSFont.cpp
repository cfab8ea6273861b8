// SPDX-License-Identifier: MIT
#include <AppKit/NSFont.h>

#include <Foundation/NSString.h>

#include <fontconfig/fontconfig.h>

namespace platform {

namespace {

std::string property(FcPattern* pattern, const char* name) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, name, 0, &text) == FcResultMatch ? reinterpret_cast<const char*>(text)
                                                                        : std::string();
}

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const { release(object); }
};
using Pattern = std::unique_ptr<FcPattern, Release<FcPattern, FcPatternDestroy>>;
using ObjectSet = std::unique_ptr<FcObjectSet, Release<FcObjectSet, FcObjectSetDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Release<FcFontSet, FcFontSetDestroy>>;

} // namespace

NSFont::NSFont(std::u16string fontName, std::u16string familyName, std::u16string displayName, double pointSize)
    : m_fontName(std::move(fontName)), m_familyName(std::move(familyName)), m_displayName(std::move(displayName)),
      m_pointSize(pointSize) {}

std::shared_ptr<NSFont> NSFont::fontWithNameSize(const std::u16string& name, double size) {
    const auto wanted = toUtf8(name);
    if (wanted.empty())
        return nullptr;
    const Pattern pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_POSTSCRIPT_NAME, reinterpret_cast<const FcChar8*>(wanted.c_str()));
    const ObjectSet properties(FcObjectSetBuild(FC_POSTSCRIPT_NAME, FC_FAMILY, FC_FULLNAME, FC_STYLE, nullptr));
    const FontSet found(FcFontList(nullptr, pattern.get(), properties.get()));
    for (int i = 0; found && i < found->nfont; ++i) {
        // The listing folds case, a PostScript name does not.
        if (property(found->fonts[i], FC_POSTSCRIPT_NAME) != wanted)
            continue;
        const auto family = property(found->fonts[i], FC_FAMILY);
        const auto full = property(found->fonts[i], FC_FULLNAME);
        const bool usable = full == family || full.starts_with(family + " ");
        const auto display = usable ? full : family + " " + property(found->fonts[i], FC_STYLE);
        return std::make_shared<NSFont>(name, fromUtf8(family), fromUtf8(display), size > 0 ? size : 12);
    }
    return nullptr;
}

} // namespace platform
