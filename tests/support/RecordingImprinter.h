// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSString.h>
#include <host/VelImprinterPlugin.h>

#include <functional>
#include <string>
#include <vector>

namespace testing_support {

/// The messages a host has received, in order, as "receiver message argument".
using MessageLog = std::vector<std::string>;

/// Told each message as it arrives at whichever recording object, before it is answered; what it throws, the host
/// throws.
inline std::function<void(const std::string& message)>& onMessage() {
    static std::function<void(const std::string&)> told;
    return told;
}

inline void arrive(MessageLog& log, std::string message) {
    log.push_back(std::move(message));
    if (const auto& told = onMessage())
        told(log.back());
}

/// A configuration that honours the contract and records every message.
class RecordingConfiguration : public host::ImprinterConfiguration {
public:
    RecordingConfiguration(MessageLog& log, std::u16string id, bool combined)
        : m_log(log), m_id(std::move(id)), m_combined(combined), m_name(m_id) {}

    // What a test sets and reads without a record.
    struct Values {
        host::NSInteger duplicateRecord = 0;
        host::NSInteger position = 0;
        host::NSPoint offset;
        double rotation = 0;
        host::NSInteger occurance = 0;
        std::optional<std::u16string> customOccurance;
        bool borderEnabled = false;
        host::NSInteger borderStyle = 1;
        double borderThickness = 1;
        std::shared_ptr<const host::NSColor> borderColour;
        bool fillEnabled = false;
        std::shared_ptr<const host::NSColor> fillColour;
        double fillOpacity = 1;
        host::NSArray<host::TitleToken> titleTokens;
    };
    Values values;
    /// Makes the runs that the pane asks for; none without it.
    std::function<std::shared_ptr<host::ImprinterFont>()> makeFont;
    /// Runs when the pane asks whether this is a combined configuration, the first thing it asks on switching to it.
    std::function<void()> onSwitch;

    std::u16string uniqueID() const override { return note("uniqueID"), m_id; }
    std::u16string name() const override { return note("name"), m_name; }
    void setName(const std::u16string& name) override { note("setName " + platform::toUtf8(name)), m_name = name; }
    bool combinedConfiguration() const override {
        note("combinedConfiguration");
        if (onSwitch)
            onSwitch();
        return m_combined;
    }
    host::ConfigurationArray configurations() const override { return note("configurations"), m_members; }
    void addConfiguration(const std::shared_ptr<host::ImprinterConfiguration>&) override { note("addConfiguration"); }
    void deleteConfiguration(const std::shared_ptr<host::ImprinterConfiguration>&) override {
        note("deleteConfiguration");
    }
    std::shared_ptr<host::ImprinterFont> createFontToken() override {
        return note("createFontToken"), makeFont ? makeFont() : nullptr;
    }
    host::NSInteger duplicateRecord() const override { return note("duplicateRecord"), values.duplicateRecord; }
    void setDuplicateRecord(host::NSInteger code) override {
        note("setDuplicateRecord " + std::to_string(code)), values.duplicateRecord = code;
    }
    host::NSArray<host::TitleToken> titleTokens() const override { return note("titleTokens"), values.titleTokens; }
    void setTitleTokens(const host::NSArray<host::TitleToken>& tokens) override {
        note("setTitleTokens"), values.titleTokens = tokens;
    }
    host::NSInteger position() const override { return note("position"), values.position; }
    void setPosition(host::NSInteger anchor) override {
        note("setPosition " + std::to_string(anchor)), values.position = anchor;
    }
    host::NSPoint offset() const override { return note("offset"), values.offset; }
    void setOffset(host::NSPoint offset) override {
        note("setOffset " + plain(offset.x) + " " + plain(offset.y)), values.offset = offset;
    }
    double rotation() const override { return note("rotation"), values.rotation; }
    void setRotation(double degrees) override { note("setRotation " + plain(degrees)), values.rotation = degrees; }
    host::NSInteger occurance() const override { return note("occurance"), values.occurance; }
    void setOccurance(host::NSInteger code) override {
        note("setOccurance " + std::to_string(code)), values.occurance = code;
    }
    std::optional<std::u16string> customOccurance() const override {
        return note("customOccurance"), values.customOccurance;
    }
    void setCustomOccurance(const std::u16string& pages) override {
        note("setCustomOccurance " + platform::toUtf8(pages)), values.customOccurance = pages;
    }
    bool borderEnabled() const override { return note("borderEnabled"), values.borderEnabled; }
    void setBorderEnabled(bool enabled) override {
        note(std::string("setBorderEnabled ") + (enabled ? "YES" : "NO")), values.borderEnabled = enabled;
    }
    host::NSInteger borderStyle() const override { return note("borderStyle"), values.borderStyle; }
    void setBorderStyle(host::NSInteger style) override {
        note("setBorderStyle " + std::to_string(style)), values.borderStyle = style;
    }
    double borderThickness() const override { return note("borderThickness"), values.borderThickness; }
    void setBorderThickness(double points) override {
        note("setBorderThickness " + plain(points)), values.borderThickness = points;
    }
    std::shared_ptr<const host::NSColor> borderColour() const override {
        return note("borderColour"), values.borderColour;
    }
    void setBorderColour(const std::shared_ptr<const host::NSColor>& colour) override {
        note("setBorderColour"), values.borderColour = colour;
    }
    bool fillEnabled() const override { return note("fillEnabled"), values.fillEnabled; }
    void setFillEnabled(bool enabled) override {
        note(std::string("setFillEnabled ") + (enabled ? "YES" : "NO")), values.fillEnabled = enabled;
    }
    std::shared_ptr<const host::NSColor> fillColour() const override { return note("fillColour"), values.fillColour; }
    void setFillColour(const std::shared_ptr<const host::NSColor>& colour) override {
        note("setFillColour"), values.fillColour = colour;
    }
    double fillOpacity() const override { return note("fillOpacity"), values.fillOpacity; }
    void setFillOpacity(double opacity) override {
        note("setFillOpacity " + plain(opacity)), values.fillOpacity = opacity;
    }

private:
    void note(const std::string& message) const { arrive(m_log, platform::toUtf8(m_id) + " " + message); }
    static std::string plain(double number) { return platform::toUtf8(platform::textOfValue(number)); }

    MessageLog& m_log;
    std::u16string m_id;
    bool m_combined;
    std::u16string m_name;
    host::ConfigurationArray m_members;
};

/// A host that honours the contract and records every message.
class RecordingImprinter final : public host::Imprinter {
public:
    explicit RecordingImprinter(MessageLog& log) : m_log(log) {}

    /// nil until a test sets a list.
    void setList(std::vector<std::shared_ptr<RecordingConfiguration>> list) {
        m_list = std::make_shared<std::vector<std::shared_ptr<host::ImprinterConfiguration>>>(list.begin(), list.end());
    }
    void setNilList() { m_list.reset(); }
    /// Whatever identifier is asked for, listed or not; none: what the list has.
    std::shared_ptr<host::ImprinterConfiguration> answerForID;
    /// The one created or copied last.
    std::shared_ptr<RecordingConfiguration> made;
    void setStampResult(std::optional<host::NSURL> url) { m_stampResult = std::move(url); }

    host::ConfigurationArray configurations() const override { return note("configurations"), m_list; }
    std::shared_ptr<host::ImprinterConfiguration> configurationForID(const std::u16string& uniqueID) const override {
        note("configurationForID " + platform::toUtf8(uniqueID));
        if (answerForID)
            return answerForID;
        const MessageLog before = m_log;
        std::shared_ptr<host::ImprinterConfiguration> found;
        for (std::size_t i = 0; m_list && i < m_list->size() && !found; ++i)
            if ((*m_list)[i]->uniqueID() == uniqueID)
                found = (*m_list)[i];
        m_log = before;
        return found;
    }
    /// Goes to the end of the list; its identifier is "new 1" and so on.
    std::shared_ptr<host::ImprinterConfiguration> createConfiguration(bool combined) override {
        note(std::string("createConfiguration ") + (combined ? "YES" : "NO"));
        made = std::make_shared<RecordingConfiguration>(m_log, nextIdentifier(), combined);
        auto list = copied();
        list.push_back(made);
        m_list = std::make_shared<List>(std::move(list));
        return made;
    }
    /// The copy follows its original.
    std::shared_ptr<host::ImprinterConfiguration> duplicateConfigurationAtIndex(host::NSInteger row) override {
        note("duplicateConfigurationAtIndex " + std::to_string(row));
        auto list = copied();
        if (row < 0 || static_cast<std::size_t>(row) >= list.size())
            return nullptr;
        made = std::make_shared<RecordingConfiguration>(m_log, nextIdentifier(), false);
        list.insert(list.begin() + row + 1, made);
        m_list = std::make_shared<List>(std::move(list));
        return made;
    }
    host::NSUInteger indexOfConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& wanted) const override {
        note("indexOfConfiguration");
        return platform::indexOfObject(host::ConfigurationArray(m_list), wanted);
    }
    /// An index the list does not have is ignored, here and below.
    void deleteConfigurationAtIndex(host::NSUInteger index) override {
        note("deleteConfigurationAtIndex " + numberOf(index));
        auto list = copied();
        if (index >= list.size())
            return;
        list.erase(list.begin() + static_cast<host::NSInteger>(index));
        m_list = std::make_shared<List>(std::move(list));
    }
    void moveConfigurationAtIndexTo(host::NSUInteger index, host::NSUInteger row) override {
        note("moveConfigurationAtIndexTo " + numberOf(index) + " " + numberOf(row));
        auto list = copied();
        if (index >= list.size() || row > list.size())
            return;
        const auto moved = list[index];
        list.insert(list.begin() + static_cast<host::NSInteger>(row), moved);
        list.erase(list.begin() + static_cast<host::NSInteger>(index < row ? index : index + 1));
        m_list = std::make_shared<List>(std::move(list));
    }
    void saveConfigurations() override {
        note("saveConfigurations");
        if (onSave)
            onSave();
    }
    std::function<void()> onSave;
    host::ConfigurationArray nonCombinedConfigurations() const override {
        return note("nonCombinedConfigurations"), m_list;
    }
    std::optional<host::NSURL>
    imprintFileAtURLWithIndex(const std::optional<host::NSURL>& url,
                              const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                              host::NSInteger index) override {
        note("imprintFileAtURLWithIndex " + (url ? url->path().filename().string() : "nil") + " " +
             (configuration ? nameOf(*configuration) : "nil") + " " + std::to_string(index));
        m_stampedFrom = url;
        return m_stampResult;
    }
    /// The page that was to be stamped last.
    const std::optional<host::NSURL>& stampedFrom() const { return m_stampedFrom; }

private:
    using List = std::vector<std::shared_ptr<host::ImprinterConfiguration>>;

    // Lists handed out are never changed.
    List copied() const { return m_list ? *m_list : List(); }
    std::u16string nextIdentifier() { return u"new " + platform::fromUtf8(std::to_string(++m_numberMade)); }
    static std::string numberOf(host::NSUInteger index) {
        return index == platform::NSNotFound ? "NSNotFound" : std::to_string(index);
    }

    void note(const std::string& message) const { arrive(m_log, "imprinter " + message); }
    std::string nameOf(const host::ImprinterConfiguration& configuration) const {
        const MessageLog before = m_log;
        auto id = platform::toUtf8(configuration.uniqueID());
        m_log = before;
        return id;
    }

    MessageLog& m_log;
    std::shared_ptr<std::vector<std::shared_ptr<host::ImprinterConfiguration>>> m_list;
    std::optional<host::NSURL> m_stampResult;
    std::optional<host::NSURL> m_stampedFrom;
    int m_numberMade = 0;
};

/// Registers the recording host under the name that panes look up.
class RecordingPlugin final : public host::VelImprinterPlugin {
public:
    explicit RecordingPlugin(std::shared_ptr<host::Imprinter> imprinter, MessageLog& log)
        : m_imprinter(std::move(imprinter)), m_log(log) {}
    std::shared_ptr<host::Imprinter> imprinter() override {
        arrive(m_log, "plugin imprinter");
        return m_imprinter;
    }
    static platform::NSClass describe(const std::shared_ptr<RecordingPlugin>& plugin) {
        platform::NSClass description;
        description.name = u"VelImprinterPlugin";
        description.classObject = plugin;
        return description;
    }

private:
    std::shared_ptr<host::Imprinter> m_imprinter;
    MessageLog& m_log;
};

} // namespace testing_support
