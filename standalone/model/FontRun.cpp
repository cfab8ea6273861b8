// SPDX-License-Identifier: MIT
#include <model/FontRun.h>

#include "SameContent.h"

#include <Foundation/NSNumberFormatter.h>
#include <Foundation/NSString.h>
#include <model/Configuration.h>

#include <utility>

namespace model {

const std::u16string& defaultFontName() {
    static const std::u16string name = [] {
        const auto font = host::NSFont::userFontOfSize(0);
        return font ? font->fontName() : std::u16string(u"DejaVuSans");
    }();
    return name;
}

FontRunNames& fontRunNames() {
    static FontRunNames names;
    return names;
}

FontRun::FontRun(std::weak_ptr<Configuration> owner, host::NSUInteger number)
    : m_owner(std::move(owner)), m_fontNumber(number) {}

std::u16string_view FontRun::className() const {
    return u"VelIFontType";
}

std::shared_ptr<Configuration> FontRun::setOwner(std::weak_ptr<Configuration> owner) {
    return std::exchange(m_owner, std::move(owner)).lock();
}

std::u16string FontRun::name() const {
    const auto number = platform::NSNumberFormatter(platform::NSNumberFormatterStyle::decimal)
                            .stringFromNumber(static_cast<double>(m_fontNumber + 1));
    const auto name = platform::stringWithFormat(fontRunNames().numbered, {number});
    return isMissing() ? platform::stringWithFormat(fontRunNames().missing, {name}) : name;
}

void FontRun::setFontNumber(host::NSUInteger number) {
    set(m_fontNumber, number);
}

std::u16string FontRun::fullFontName() const {
    return m_fullFontName ? *m_fullFontName : defaultFontName();
}

void FontRun::setFullFontName(const std::u16string& name) {
    // Whoever chose a face that has no name chose none.
    if (name.empty())
        return;
    m_font = nullptr;
    set(m_fullFontName, std::optional(name));
}

bool FontRun::isMissing() const {
    return !host::NSFont::fontWithNameSize(fullFontName(), m_fontSize);
}

std::shared_ptr<host::NSFont> FontRun::font() const {
    if (!m_font)
        m_font = host::NSFont::fontWithNameSize(fullFontName(), m_fontSize);
    if (!m_font)
        m_font = host::NSFont::userFontOfSize(m_fontSize);
    return m_font;
}

void FontRun::setColour(const std::shared_ptr<const host::NSColor>& colour) {
    set(m_colour, colour);
}

void FontRun::setFontSize(double points) {
    m_font = nullptr;
    set(m_fontSize, points);
}

void FontRun::setStrokeWidth(double points) {
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
    const bool same = sameContent(member, value);
    if (!same)
        platform::tell(m_owner, &Configuration::aboutToChange);
    member = value;
    if (!same)
        platform::tell(m_owner, &Configuration::changed);
}

} // namespace model
