// SPDX-License-Identifier: MIT
#include <model/FontRun.h>

#include "Assign.h"

#include <Foundation/NSString.h>
#include <model/Configuration.h>

#include <fontconfig/fontconfig.h>

#include <cmath>

namespace model {

namespace {

std::u16string defaultSansSerif() {
    FcPattern* wanted = FcPatternCreate();
    FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8*>("sans-serif"));
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern* found = FcFontMatch(nullptr, wanted, &result);
    FcPatternDestroy(wanted);
    if (!found)
        return {};
    std::u16string name;
    FcChar8* text = nullptr;
    if (FcPatternGetString(found, FC_POSTSCRIPT_NAME, 0, &text) == FcResultMatch)
        name = platform::fromUtf8(reinterpret_cast<const char*>(text));
    FcPatternDestroy(found);
    return name;
}

} // namespace

const std::u16string& defaultFontName() {
    static const std::u16string name = [] {
        std::u16string preferred = u"DejaVuSans";
        if (host::NSFont::fontWithNameSize(preferred, 12))
            return preferred;
        auto other = defaultSansSerif();
        return other.empty() ? preferred : other;
    }();
    return name;
}

FontRun::FontRun(std::weak_ptr<Configuration> maker, host::NSUInteger number)
    : m_maker(std::move(maker)), m_fontNumber(number) {}

std::u16string_view FontRun::className() const {
    return u"VelIFontType";
}

std::u16string FontRun::name() const {
    return u"Font " + platform::fromUtf8(std::to_string(m_fontNumber + 1));
}

void FontRun::setFontNumber(host::NSUInteger number) {
    set(m_fontNumber, number);
}

std::u16string FontRun::fullFontName() const {
    return m_fullFontName ? *m_fullFontName : defaultFontName();
}

void FontRun::setFullFontName(const std::u16string& name) {
    // Whoever chose a face that has no name, or no number for a size, chose none.
    if (name.empty())
        return;
    m_font = nullptr;
    set(m_fullFontName, std::optional(name));
}

std::shared_ptr<host::NSFont> FontRun::font() const {
    if (!m_font)
        m_font = host::NSFont::fontWithNameSize(fullFontName(), m_fontSize);
    if (!m_font)
        m_font = host::NSFont::fontWithNameSize(defaultFontName(), m_fontSize);
    return m_font;
}

void FontRun::setColour(const std::shared_ptr<const host::NSColor>& colour) {
    set(m_colour, colour);
}

void FontRun::setFontSize(double points) {
    if (!std::isfinite(points))
        return;
    m_font = nullptr;
    set(m_fontSize, points);
}

void FontRun::setStrokeWidth(double points) {
    if (std::isfinite(points))
        set(m_strokeWidth, points);
}

void FontRun::setOutline(bool outline) {
    set(m_outline, outline);
}

void FontRun::setUnderline(bool underline) {
    set(m_underline, underline);
}

void FontRun::setStrikethrough(bool strikethrough) {
    set(m_strikethrough, strikethrough);
}

void FontRun::setAttributesOf(const host::ImprinterFont& other) {
    setFontNumber(other.fontNumber());
    setFullFontName(other.fullFontName());
    setColour(other.colour());
    setFontSize(other.fontSize());
    setStrokeWidth(other.strokeWidth());
    setOutline(other.outline());
    setUnderline(other.underline());
    setStrikethrough(other.strikethrough());
}

template <class T>
void FontRun::set(T& member, const T& value) {
    if (assign(member, value))
        platform::tell(m_maker, &Configuration::changed);
}

} // namespace model
