// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterConfiguration.h>

#include <algorithm>

namespace support {

/// A font run with plain members.
class PlainFont final : public host::ImprinterFont {
public:
    explicit PlainFont(std::u16string faceName = u"DejaVuSans", double points = 12,
                       std::shared_ptr<const host::NSColor> inColour = nullptr)
        : fullName(std::move(faceName)), size(points), ink(std::move(inColour)) {}

    std::u16string fullName;
    double size;
    std::shared_ptr<const host::NSColor> ink;
    double stroke = 1;
    bool outlined = false;
    bool underlined = false;
    bool struckThrough = false;
    host::NSUInteger number = 0;

    std::u16string name() const override { return u"Font"; }
    host::NSUInteger fontNumber() const override { return number; }
    void setFontNumber(host::NSUInteger value) override { number = value; }
    std::u16string fullFontName() const override { return fullName; }
    void setFullFontName(const std::u16string& value) override { fullName = value; }
    std::shared_ptr<host::NSFont> font() const override { return host::NSFont::fontWithNameSize(fullName, size); }
    std::shared_ptr<const host::NSColor> colour() const override { return ink; }
    void setColour(const std::shared_ptr<const host::NSColor>& value) override { ink = value; }
    double fontSize() const override { return size; }
    void setFontSize(double points) override { size = points; }
    double strokeWidth() const override { return stroke; }
    void setStrokeWidth(double points) override { stroke = points; }
    bool outline() const override { return outlined; }
    void setOutline(bool value) override { outlined = value; }
    bool underline() const override { return underlined; }
    void setUnderline(bool value) override { underlined = value; }
    bool strikethrough() const override { return struckThrough; }
    void setStrikethrough(bool value) override { struckThrough = value; }
};

/// The title token of a font run.
inline host::TitleToken fontRun(const std::shared_ptr<PlainFont>& font) {
    return std::shared_ptr<host::ImprinterFont>(font);
}
inline host::TitleToken fontRun(std::u16string faceName, double points,
                                std::shared_ptr<const host::NSColor> ink = nullptr) {
    return fontRun(std::make_shared<PlainFont>(std::move(faceName), points, std::move(ink)));
}

/// A configuration with plain members.
class PlainConfiguration final : public host::ImprinterConfiguration {
public:
    PlainConfiguration() = default;
    explicit PlainConfiguration(std::vector<host::TitleToken> tokensOfTitle) { setTitle(std::move(tokensOfTitle)); }

    std::u16string identifier = u"A5C0FFEE-0000-4000-8000-000000000001";
    std::u16string title = u"Plain";
    bool isCombined = false;
    std::vector<std::shared_ptr<host::ImprinterConfiguration>> members;
    host::NSInteger duplicates = 0;
    host::NSArray<host::TitleToken> tokens;
    host::NSInteger anchor = 0;
    host::NSPoint shift;
    double degrees = 0;
    host::NSInteger pages = 0;
    std::optional<std::u16string> customPages;
    bool bordered = false;
    host::NSInteger style = 0;
    double thickness = 1;
    std::shared_ptr<const host::NSColor> lineColour;
    bool filled = false;
    std::shared_ptr<const host::NSColor> areaColour;
    double opacity = 1;

    void setTitle(std::vector<host::TitleToken> value) {
        tokens = std::make_shared<const std::vector<host::TitleToken>>(std::move(value));
    }

    std::u16string uniqueID() const override { return identifier; }
    std::u16string name() const override { return title; }
    void setName(const std::u16string& value) override { title = value; }
    bool combinedConfiguration() const override { return isCombined; }
    host::ConfigurationArray configurations() const override {
        using List = std::vector<std::shared_ptr<host::ImprinterConfiguration>>;
        return isCombined ? std::make_shared<const List>(members) : nullptr;
    }
    void addConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& member) override {
        members.push_back(member);
    }
    void deleteConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& member) override {
        members.erase(std::remove(members.begin(), members.end(), member), members.end());
    }
    std::shared_ptr<host::ImprinterFont> createFontToken() override { return std::make_shared<PlainFont>(); }
    host::NSInteger duplicateRecord() const override { return duplicates; }
    void setDuplicateRecord(host::NSInteger code) override { duplicates = code; }
    host::NSArray<host::TitleToken> titleTokens() const override { return tokens; }
    void setTitleTokens(const host::NSArray<host::TitleToken>& value) override { tokens = value; }
    host::NSInteger position() const override { return anchor; }
    void setPosition(host::NSInteger value) override { anchor = value; }
    host::NSPoint offset() const override { return shift; }
    void setOffset(host::NSPoint value) override { shift = value; }
    double rotation() const override { return degrees; }
    void setRotation(double value) override { degrees = value; }
    host::NSInteger occurance() const override { return pages; }
    void setOccurance(host::NSInteger code) override { pages = code; }
    std::optional<std::u16string> customOccurance() const override { return customPages; }
    void setCustomOccurance(const std::u16string& value) override { customPages = value; }
    bool borderEnabled() const override { return bordered; }
    void setBorderEnabled(bool value) override { bordered = value; }
    host::NSInteger borderStyle() const override { return style; }
    void setBorderStyle(host::NSInteger value) override { style = value; }
    double borderThickness() const override { return thickness; }
    void setBorderThickness(double points) override { thickness = points; }
    std::shared_ptr<const host::NSColor> borderColour() const override { return lineColour; }
    void setBorderColour(const std::shared_ptr<const host::NSColor>& value) override { lineColour = value; }
    bool fillEnabled() const override { return filled; }
    void setFillEnabled(bool value) override { filled = value; }
    std::shared_ptr<const host::NSColor> fillColour() const override { return areaColour; }
    void setFillColour(const std::shared_ptr<const host::NSColor>& value) override { areaColour = value; }
    double fillOpacity() const override { return opacity; }
    void setFillOpacity(double value) override { opacity = value; }
};

} // namespace support
