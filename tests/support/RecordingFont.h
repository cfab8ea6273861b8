// SPDX-License-Identifier: MIT
#pragma once

#include "RecordingImprinter.h"

#include <host/ImprinterFont.h>

namespace testing_support {

/// A font run that honours the contract and records what is set.
class RecordingFont final : public host::ImprinterFont {
public:
    RecordingFont(MessageLog& log, std::u16string name) : m_log(log), m_name(std::move(name)) {}

    // What a test sets and reads without a record.
    struct Values {
        host::NSUInteger fontNumber = 99;
        std::u16string fullFontName = u"DejaVuSans";
        std::shared_ptr<host::NSFont> font;
        std::shared_ptr<const host::NSColor> colour;
        double fontSize = 12;
        double strokeWidth = 1;
        bool outline = false;
        bool underline = false;
        bool strikethrough = false;
    };
    Values values;

    std::u16string_view className() const override { return u"VelIFontType"; }
    std::u16string name() const override { return asked("name"), m_name; }
    host::NSUInteger fontNumber() const override { return asked("fontNumber"), values.fontNumber; }
    void setFontNumber(host::NSUInteger number) override {
        note("setFontNumber " + std::to_string(number)), values.fontNumber = number;
    }
    std::u16string fullFontName() const override { return asked("fullFontName"), values.fullFontName; }
    void setFullFontName(const std::u16string& name) override {
        note("setFullFontName " + platform::toUtf8(name)), values.fullFontName = name;
    }
    std::shared_ptr<host::NSFont> font() const override { return asked("font"), values.font; }
    std::shared_ptr<const host::NSColor> colour() const override { return asked("colour"), values.colour; }
    void setColour(const std::shared_ptr<const host::NSColor>& colour) override {
        note("setColour"), values.colour = colour;
    }
    double fontSize() const override { return asked("fontSize"), values.fontSize; }
    void setFontSize(double points) override {
        note("setFontSize " + platform::toUtf8(platform::textOfValue(points))), values.fontSize = points;
    }
    double strokeWidth() const override { return asked("strokeWidth"), values.strokeWidth; }
    void setStrokeWidth(double points) override {
        note("setStrokeWidth " + platform::toUtf8(platform::textOfValue(points))), values.strokeWidth = points;
    }
    bool outline() const override { return asked("outline"), values.outline; }
    void setOutline(bool outline) override { note("setOutline", outline), values.outline = outline; }
    bool underline() const override { return asked("underline"), values.underline; }
    void setUnderline(bool underline) override { note("setUnderline", underline), values.underline = underline; }
    bool strikethrough() const override { return asked("strikethrough"), values.strikethrough; }
    void setStrikethrough(bool strikethrough) override {
        note("setStrikethrough", strikethrough), values.strikethrough = strikethrough;
    }

private:
    void note(const std::string& message) const { arrive(m_log, platform::toUtf8(m_name) + " " + message); }
    /// Questions are not recorded.
    void asked(const std::string& message) const {
        if (const auto& told = onMessage())
            told(platform::toUtf8(m_name) + " " + message);
    }
    void note(const std::string& message, bool value) const { note(message + (value ? " YES" : " NO")); }

    MessageLog& m_log;
    std::u16string m_name;
};

} // namespace testing_support
