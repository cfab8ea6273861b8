// SPDX-License-Identifier: MIT
#include "SystemFonts.h"

#include <Foundation/NSString.h>

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_map>

namespace platform {

namespace {

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const { release(object); }
};
using Config = std::unique_ptr<FcConfig, Release<FcConfig, FcConfigDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Release<FcPattern, FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Release<FcFontSet, FcFontSetDestroy>>;
using LanguageSet = std::unique_ptr<FcLangSet, Release<FcLangSet, FcLangSetDestroy>>;

std::string_view viewOf(const FcChar8* text) {
    return reinterpret_cast<const char*>(text);
}

const FcChar8* fcText(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

/// The n-th value of a property; empty where there is none.
std::string_view textOf(const FcPattern* face, const char* property, int n = 0) {
    FcChar8* text = nullptr;
    return FcPatternGetString(face, property, n, &text) == FcResultMatch ? viewOf(text) : std::string_view();
}

bool flagOf(const FcPattern* face, const char* property, bool otherwise) {
    FcBool value = FcFalse;
    return FcPatternGetBool(face, property, 0, &value) == FcResultMatch ? value == FcTrue : otherwise;
}

unsigned indexOf(const FcPattern* face) {
    int index = 0;
    FcPatternGetInteger(face, FC_INDEX, 0, &index);
    return static_cast<unsigned>(index);
}

bool isInstance(const FcPattern* face) {
    return indexOf(face) >> 16 != 0;
}

/// Whether it is one face, of a kind that can be drawn.
bool counts(const FcPattern* face) {
    const auto format = textOf(face, FC_FONTFORMAT);
    return (format == "TrueType" || format == "CFF") && flagOf(face, FC_OUTLINE, true) &&
           !flagOf(face, FC_VARIABLE, false);
}

/// The first of a property's values that is in `language`, where `languages` has the language of each; or none.
std::optional<std::string_view> textIn(const FcPattern* face, const char* property, const char* languages,
                                       std::string_view language) {
    for (int n = 0;; ++n) {
        const auto text = textOf(face, property, n);
        if (text.empty())
            return std::nullopt;
        if (textOf(face, languages, n) == language)
            return text;
    }
}

FontNames deriveNames(const FcPattern* face, std::string_view fontName) {
    auto family = textIn(face, FC_FAMILY, FC_FAMILYLANG, "en");
    const auto language = family ? std::string_view("en") : textOf(face, FC_FAMILYLANG);
    if (!family)
        family = textOf(face, FC_FAMILY);
    const auto full = textIn(face, FC_FULLNAME, FC_FULLNAMELANG, language);

    const bool named =
        full && full->starts_with(*family) && (full->size() == family->size() || (*full)[family->size()] == ' ');
    FontNames names{fromUtf8(fontName), fromUtf8(*family), {}};
    if (named) {
        names.displayName = fromUtf8(*full);
    } else {
        const auto style = textIn(face, FC_STYLE, FC_STYLELANG, language).value_or(textOf(face, FC_STYLE));
        names.displayName = style.empty() ? names.familyName : names.familyName + u' ' + fromUtf8(style);
    }
    return names;
}

/// What fontconfig calls the language of a locale.
std::string languageOf(const NSLocale& locale) {
    const auto identifier = toUtf8(locale.localeIdentifier);
    FcChar8* const normalized = identifier.empty() ? nullptr : FcLangNormalize(fcText(identifier));
    std::string language = normalized ? std::string(viewOf(normalized)) : "en";
    FcStrFree(normalized);
    return FcLangGetCharSet(fcText(language)) ? language : "en";
}

/// The listing of one state of the configuration. The patterns are the configuration's own.
class Listing {
public:
    explicit Listing(Config config) : m_config(std::move(config)) {
        for (const auto set : {FcSetSystem, FcSetApplication}) {
            const auto* const faces = FcConfigGetFonts(m_config.get(), set);
            if (faces)
                m_entries.reserve(m_entries.size() + static_cast<std::size_t>(faces->nfont));
            for (int i = 0; faces && i < faces->nfont; ++i)
                add(faces->fonts[i]);
        }
        tellInstancesApart();
        leaveOutDoubles();
        m_byName.reserve(m_entries.size());
        for (std::size_t place = 0; place < m_entries.size(); ++place) {
            const auto [first, isNew] = m_byName.try_emplace(m_entries[place].name, place);
            if (!isNew)
                m_entries[place].next = std::exchange(first->second, place);
        }
    }

    const FcConfig* config() const { return m_config.get(); }

    std::vector<std::u16string> namesFor(const std::string& language) const {
        const LanguageSet wanted(FcLangSetCreate());
        FcLangSetAdd(wanted.get(), fcText(language));
        std::vector<std::u16string> names;
        for (const auto& entry : m_entries) {
            FcLangSet* covered = nullptr;
            if (entry.isOffered && FcPatternGetLangSet(entry.face, FC_LANG, 0, &covered) == FcResultMatch &&
                FcLangSetContains(covered, wanted.get()))
                names.push_back(fromUtf8(entry.name));
        }
        return names;
    }

    std::shared_ptr<const FontNames> namesOf(const std::string& name) {
        const auto found = m_byName.find(name);
        if (found == m_byName.end())
            return nullptr;
        const bool isOnlyOne = m_entries[found->second].next == none;
        auto& entry = m_entries[isOnlyOne ? found->second : bestFirst(name).front()];
        if (!entry.names)
            entry.names = std::make_shared<const FontNames>(deriveNames(entry.face, entry.name));
        return entry.names;
    }

    std::vector<FontFile> filesOf(const std::string& name) const {
        std::vector<FontFile> files;
        for (const auto place : bestFirst(name)) {
            const auto* const face = m_entries[place].face;
            files.push_back({std::string(textOf(face, FC_FILE)), indexOf(face), flagOf(face, FC_SYMBOL, false),
                             std::string(textOf(face, FC_FAMILY)), std::string(textOf(face, FC_STYLE))});
        }
        return files;
    }

private:
    static constexpr std::size_t none = ~std::size_t();

    struct Entry {
        const FcPattern* face;
        std::string_view name;
        std::size_t next; // another one of this name
        bool isOffered;
        std::shared_ptr<const FontNames> names; // null: not asked for yet
    };

    void add(const FcPattern* face) {
        const auto name = textOf(face, FC_POSTSCRIPT_NAME);
        if (name.empty() || !counts(face))
            return;
        m_entries.push_back({face, name, none, name.front() != '.', nullptr});
        if (isInstance(face))
            m_instances.push_back(m_entries.size() - 1);
    }

    /// Where the file has no name to make theirs from, fontconfig lists all of its instances under one: then the style
    /// is added.
    void tellInstancesApart() {
        std::map<std::pair<std::string_view, std::string_view>, std::vector<std::size_t>> alike;
        for (const auto place : m_instances)
            alike[{textOf(m_entries[place].face, FC_FILE), m_entries[place].name}].push_back(place);
        for (const auto& [key, places] : alike) {
            if (places.size() == 1)
                continue;
            for (const auto place : places) {
                auto& name = m_derived.emplace_back(key.second);
                name += '-';
                for (const char character : textOf(m_entries[place].face, FC_STYLE))
                    if (character != ' ')
                        name += character;
                m_entries[place].name = name;
            }
        }
    }

    void leaveOutDoubles() {
        if (m_instances.empty())
            return;
        const auto key = [](const Entry& entry) {
            return std::pair(textOf(entry.face, FC_FAMILY), textOf(entry.face, FC_STYLE));
        };
        std::set<std::pair<std::string_view, std::string_view>> statics;
        for (const auto& entry : m_entries)
            if (!isInstance(entry.face))
                statics.insert(key(entry));
        for (const auto place : m_instances)
            if (statics.count(key(m_entries[place])))
                m_entries[place].isOffered = false;
    }

    std::vector<std::size_t> bestFirst(const std::string& name) const {
        std::vector<std::size_t> places;
        const auto found = m_byName.find(name);
        for (auto place = found == m_byName.end() ? none : found->second; place != none; place = m_entries[place].next)
            places.push_back(place);
        const auto rank = [this](std::size_t place) {
            const auto* const face = m_entries[place].face;
            return std::tuple(isInstance(face), textOf(face, FC_FILE), indexOf(face));
        };
        if (places.size() > 1)
            std::sort(places.begin(), places.end(),
                      [&rank](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
        return places;
    }

    Config m_config;
    std::vector<Entry> m_entries;
    std::vector<std::size_t> m_instances;
    std::deque<std::string> m_derived; // names that the patterns do not have
    std::unordered_map<std::string_view, std::size_t> m_byName;
};

class SystemFonts final : public FontSource {
public:
    std::vector<std::u16string> namesForLocale(const NSLocale& locale) override {
        const std::lock_guard lock(m_mutex);
        return listing().namesFor(languageOf(locale));
    }

    std::shared_ptr<const FontNames> namesOf(const std::u16string& fontName) override {
        const std::lock_guard lock(m_mutex);
        return listing().namesOf(toUtf8(fontName));
    }

    std::vector<FontFile> filesOf(const std::u16string& fontName) override {
        const std::lock_guard lock(m_mutex);
        return listing().filesOf(toUtf8(fontName));
    }

    std::u16string defaultName() override {
        std::u16string preferred = u"DejaVuSans";
        if (namesOf(preferred))
            return preferred;
        const Pattern wanted(FcPatternCreate());
        FcPatternAddString(wanted.get(), FC_FAMILY, fcText("sans-serif"));
        FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
        FcDefaultSubstitute(wanted.get());
        FcResult result = FcResultNoMatch;
        const FontSet order(FcFontSort(nullptr, wanted.get(), FcFalse, nullptr, &result));
        for (int i = 0; order && i < order->nfont; ++i)
            if (const auto name = textOf(order->fonts[i], FC_POSTSCRIPT_NAME); !name.empty() && counts(order->fonts[i]))
                return fromUtf8(name);
        return {};
    }

private:
    Listing& listing() {
        FcInitBringUptoDate(); // in intervals of its own: usually it does nothing
        Config config(FcConfigReference(nullptr));
        if (!m_listing || m_listing->config() != config.get())
            m_listing = std::make_unique<Listing>(std::move(config));
        return *m_listing;
    }

    std::mutex m_mutex;
    std::unique_ptr<Listing> m_listing;
};

} // namespace

std::shared_ptr<FontSource> makeSystemFonts() {
    return std::make_shared<SystemFonts>();
}

} // namespace platform
