// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/FontSource.h>
#include <Foundation/NSException.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace testing_support {

/// A machine with the fonts a test wants: none of them has a file.
class MadeUpFonts final : public platform::FontSource {
public:
    struct Row {
        std::u16string fontName;
        std::u16string familyName;
        std::u16string displayName;
    };

    explicit MadeUpFonts(const std::vector<Row>& rows = {}) {
        for (const auto& row : rows)
            add(row);
    }

    void add(const Row& row) {
        offered.push_back(row.fontName);
        known[row.fontName] =
            std::make_shared<platform::FontNames>(platform::FontNames{row.fontName, row.familyName, row.displayName});
    }

    std::vector<std::u16string> namesForLocale(const platform::NSLocale& locale) override {
        ++listings;
        askedFor = locale;
        return offered;
    }
    std::shared_ptr<const platform::FontNames> namesOf(const std::u16string& fontName) override {
        if (raising.count(fontName))
            throw platform::NSException("FontException", "the font is broken");
        const auto found = known.find(fontName);
        return found == known.end() ? nullptr : found->second;
    }
    std::vector<platform::FontFile> filesOf(const std::u16string&) override { return {}; }
    std::u16string defaultName() override { return offered.empty() ? std::u16string() : offered.front(); }

    std::vector<std::u16string> offered;
    std::map<std::u16string, std::shared_ptr<const platform::FontNames>> known;
    std::set<std::u16string> raising;
    platform::NSLocale askedFor;
    int listings = 0;
};

/// Has the platform find these fonts as long as it lives.
class WithFonts {
public:
    explicit WithFonts(std::shared_ptr<platform::FontSource> source) {
        platform::FontSource::setCurrent(std::move(source));
    }
    ~WithFonts() { platform::FontSource::setCurrent(nullptr); }
    WithFonts(const WithFonts&) = delete;
    WithFonts& operator=(const WithFonts&) = delete;
};

} // namespace testing_support
