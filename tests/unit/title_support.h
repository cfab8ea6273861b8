// SPDX-License-Identifier: MIT
#pragma once

#include <TitleTokens.h>

#include <AppKit/NSColor.h>

#include <ostream>

namespace title_test {

/// A font run of which only the number is looked at.
class PlainRun final : public host::ImprinterFont {
public:
    std::u16string name() const override { return u"run"; }
    host::NSUInteger fontNumber() const override { return m_number; }
    void setFontNumber(host::NSUInteger number) override { m_number = number; }
    std::u16string fullFontName() const override { return {}; }
    void setFullFontName(const std::u16string&) override {}
    std::shared_ptr<host::NSFont> font() const override { return nullptr; }
    std::shared_ptr<const host::NSColor> colour() const override { return nullptr; }
    void setColour(const std::shared_ptr<const host::NSColor>&) override {}
    double fontSize() const override { return 12; }
    void setFontSize(double) override {}
    double strokeWidth() const override { return 1; }
    void setStrokeWidth(double) override {}
    bool outline() const override { return false; }
    void setOutline(bool) override {}
    bool underline() const override { return false; }
    void setUnderline(bool) override {}
    bool strikethrough() const override { return false; }
    void setStrikethrough(bool) override {}

private:
    host::NSUInteger m_number = 0;
};

class Foreign final : public platform::NSObject {};

using Title = pane::TitleObjects;

inline platform::RepresentedObject object(std::shared_ptr<platform::NSObject> held) {
    return held;
}
inline platform::RepresentedObject text(std::u16string held) {
    return held;
}
inline platform::NSArray<platform::RepresentedObject> listOf(Title title) {
    return std::make_shared<const Title>(std::move(title));
}

} // namespace title_test
