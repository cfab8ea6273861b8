// SPDX-License-Identifier: MIT
#include "VelIFonts.h"

#include <AppKit/NSFontCollection.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>

namespace pane {

using namespace platform;

namespace {

constexpr double openingSize = 10;
constexpr double sampleSize = 13;
const std::u16string regular = u"Regular";

const ClassRegistration registration{ClassTable<VelIFonts>(u"VelIFonts")};

bool comesBefore(const std::u16string& a, const std::u16string& b) {
    return caseInsensitiveCompare(a, b) < 0;
}

template <class Table>
std::vector<std::u16string> sortedKeys(const Table& table) {
    std::vector<std::u16string> keys;
    keys.reserve(table.size());
    for (const auto& [key, value] : table)
        keys.push_back(key);
    std::stable_sort(keys.begin(), keys.end(), comesBefore);
    return keys;
}

/// The full font name that a family is drawn in, or null.
const std::u16string* representative(const VelIFonts::FaceTable& faces) {
    const auto found = faces.find(regular);
    if (found != faces.end())
        return &found->second;
    return faces.empty() ? nullptr : &faces.begin()->second;
}

void log(const std::string& description) {
    NSLog("Exception: VelIFonts initialiseFonts. " + description);
}

} // namespace

bool VelIFonts::PlainFirst::operator()(const std::u16string& a, const std::u16string& b) const {
    constexpr std::array<std::u16string_view, 7> plain{u"Regular", u"Roman",  u"Book", u"Normal",
                                                       u"Text",    u"Medium", u"Light"};
    const auto rank = [&plain](const std::u16string& attribute) {
        return std::find(plain.begin(), plain.end(), attribute) - plain.begin();
    };
    const auto rankA = rank(a);
    const auto rankB = rank(b);
    return std::tie(rankA, a) < std::tie(rankB, b);
}

std::u16string_view VelIFonts::className() const {
    return u"VelIFonts";
}

std::shared_ptr<VelIFonts> VelIFonts::sharedVelIFonts() {
    static const auto shared = std::make_shared<VelIFonts>()->init();
    return shared;
}

std::shared_ptr<VelIFonts> VelIFonts::init() {
    m_fontInfoLookup = std::make_shared<FontInfoLookup>();
    initialiseFonts();
    return std::static_pointer_cast<VelIFonts>(shared_from_this());
}

void VelIFonts::initialiseFonts() {
    for (const auto& name : buildFontList()) {
        try {
            enterFont(name);
        } catch (const NSException& exception) {
            log(exception.description());
        } catch (const std::exception& exception) {
            log(exception.what());
        }
    }
}

void VelIFonts::enterFont(const std::u16string& fullFontName) {
    const auto font = NSFont::fontWithNameSize(fullFontName, openingSize);
    if (!font || font->familyName().empty() || !m_fontInfoLookup)
        return;
    const auto& family = font->familyName();
    auto& faces = (*m_fontInfoLookup)[family];
    const auto& display = font->displayName();
    if (caseInsensitiveCompare(family, display) == 0) {
        if (!font->fontName().empty())
            faces[regular] = font->fontName();
    } else if (display.size() > family.size()) {
        // As many units as the family's name has, whatever they are.
        const auto rest = std::u16string_view(display).substr(family.size());
        faces[stringByTrimmingWhitespaceAndNewlines(rest)] = font->fontName();
    }
}

std::vector<std::u16string> VelIFonts::buildFontList() {
    std::vector<std::u16string> names;
    const auto collection = NSFontCollection::fontCollectionWithLocale(NSLocale::currentLocale());
    if (const auto descriptors = tell(collection, &NSFontCollection::matchingDescriptors)) {
        names.reserve(descriptors->size());
        for (const auto& descriptor : *descriptors) {
            const auto name = descriptor->fontAttributes().find(NSFontNameAttribute);
            if (name != descriptor->fontAttributes().end())
                names.push_back(name->second);
        }
    }
    std::stable_sort(names.begin(), names.end(), comesBefore);

    std::vector<std::u16string> list;
    list.reserve(names.size());
    for (auto& name : names) {
        // Names that differ in case only may stand between two that are the same.
        auto before = list.rbegin();
        while (before != list.rend() && *before != name && caseInsensitiveCompare(*before, name) == 0)
            ++before;
        if (before == list.rend() || *before != name)
            list.push_back(std::move(name));
    }
    return list;
}

std::shared_ptr<NSMenu> VelIFonts::fontMenu(bool useFont) {
    auto menu = std::make_shared<NSMenu>(u"");
    if (!m_fontInfoLookup)
        return menu;
    NSInteger place = 0;
    for (const auto& family : sortedKeys(*m_fontInfoLookup)) {
        const auto item = menu->addItemWithTitleActionKeyEquivalent(family, u"", u"");
        item->setTag(place++);
        const auto* const fullFontName = representative(m_fontInfoLookup->at(family));
        if (!fullFontName)
            continue;
        if (useFont)
            item->setAttributedTitle(attributedStringInFont(family, *fullFontName));
        else
            item->setTitle(family);
    }
    return menu;
}

std::shared_ptr<NSMenu> VelIFonts::fontAttributeMenuForFontUseFont(const std::u16string& family, bool useFont) {
    auto menu = std::make_shared<NSMenu>(u"");
    const auto* faces = facesOf(family);
    if (!faces)
        faces = facesOfFamilyContaining(family);
    if (!faces)
        return menu;
    NSInteger place = 0;
    for (const auto& attribute : sortedKeys(*faces)) {
        const bool first = caseInsensitiveCompare(attribute, regular) == 0;
        const auto item =
            menu->insertItemWithTitleActionKeyEquivalentAtIndex(attribute, u"", u"", first ? 0 : menu->numberOfItems());
        item->setTag(place++);
        if (useFont)
            item->setAttributedTitle(attributedStringInFont(attribute, faces->at(attribute)));
        else
            item->setTitle(family);
    }
    return menu;
}

std::shared_ptr<NSAttributedString> VelIFonts::attributedStringInFontForFontFamily(const std::u16string& family) {
    return attributedStringInFontForFontFamily(family, family);
}

std::shared_ptr<NSAttributedString> VelIFonts::attributedStringInFontForFontFamily(const std::u16string& string,
                                                                                   const std::u16string& family) {
    const auto* const faces = facesOf(family);
    const auto* const fullFontName = faces ? representative(*faces) : nullptr;
    return fullFontName ? attributedStringInFont(string, *fullFontName) : nullptr;
}

std::optional<std::u16string> VelIFonts::fullFontNameForFamilyAttibute(const std::optional<std::u16string>& family,
                                                                       const std::optional<std::u16string>& attribute) {
    const auto* const faces = family ? facesOf(*family) : nullptr;
    if (!faces || !attribute)
        return std::nullopt;
    const auto found = faces->find(*attribute);
    return found == faces->end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::u16string> VelIFonts::attributeNameForFullFontNameFamilyName(const std::u16string& fullFontName,
                                                                                const std::u16string& family) {
    if (const auto* const faces = facesOf(family))
        for (const auto& [attribute, name] : *faces)
            if (name == fullFontName)
                return attribute;
    return std::nullopt;
}

const VelIFonts::FaceTable* VelIFonts::facesOf(const std::u16string& family) const {
    if (!m_fontInfoLookup)
        return nullptr;
    const auto found = m_fontInfoLookup->find(family);
    return found == m_fontInfoLookup->end() ? nullptr : &found->second;
}

const VelIFonts::FaceTable* VelIFonts::facesOfFamilyContaining(const std::u16string& name) const {
    if (!m_fontInfoLookup || name.empty()) // nothing contains the empty text
        return nullptr;
    const auto found = std::find_if(m_fontInfoLookup->begin(), m_fontInfoLookup->end(), [&name](const auto& entry) {
        return entry.first.find(name) != std::u16string::npos;
    });
    return found == m_fontInfoLookup->end() ? nullptr : &found->second;
}

std::shared_ptr<NSAttributedString> attributedStringInFont(const std::u16string& string,
                                                           const std::u16string& fullFontName) {
    return std::make_shared<NSAttributedString>(
        string,
        NSAttributedString::Attributes{{NSFontAttributeName, NSFont::fontWithNameSize(fullFontName, sampleSize)}});
}

} // namespace pane
