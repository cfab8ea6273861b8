// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterConfiguration.h>
#include <model/FontRun.h>

namespace model {

/// A configuration of the stand-alone host, ordinary or combined. The model owns it; a combined one holds its members.
///
/// A new ordinary one has a title of one font run, stands at the top left without offset or rotation on every page, and
/// has border style 1, 1 point thick, with border and fill switched off, and a fill opacity of 1. A new combined one
/// has no members and an empty title. What a combined one is told about title, place and appearance it holds as long as
/// it lives; nothing is stamped or stored of it.
///
/// To be used on the main thread only, like the model.
class Configuration final : public host::ImprinterConfiguration {
public:
    /// Told about a change of a value, with the configuration that changes.
    using ChangeNotice = std::function<void(const std::shared_ptr<Configuration>& configuration)>;
    /// Whom changes are told to. Either may be empty.
    struct Notices {
        ChangeNotice before; ///< The value is still what it was; the one who is told must not change anything.
        ChangeNotice after;
    };
    /// What can be changed, to tell what was.
    enum Field : unsigned {
        nameField = 1,
        duplicateField = 2,
        titleField = 4,
        positionField = 8,
        offsetField = 16,
        rotationField = 32,
        pagesField = 64,
        borderField = 128,
        fillField = 256,
        membersField = 512,
    };

    /// A new one with an identifier of its own: a random UUID, in capitals.
    static std::shared_ptr<Configuration> make(bool combined);
    /// A new one that has this identifier already.
    static std::shared_ptr<Configuration> makeWithID(std::u16string uniqueID, bool combined);

    /// A copy with an identifier of its own. The title's font runs are copied too, the members are shared.
    std::shared_ptr<Configuration> copy() const;

    /// As it is now: with the same identifier, font runs of its own, and nobody who is told about changes.
    std::shared_ptr<Configuration> snapshot() const;

    /// Takes over every value of `other`, with font runs of its own; identifier, kind and members stay. One change for
    /// whoever is told.
    void setValuesOf(const Configuration& other);
    /// The same, and the members too.
    void restore(const Configuration& snapshot);
    /// The fields, joined by "or", in which the two say something else. Titles are compared by what they say.
    unsigned differencesFrom(const Configuration& other) const;
    /// Roughly what the configuration takes in memory, in bytes.
    std::size_t weight() const;

    std::u16string uniqueID() const override { return m_uniqueID; }
    std::u16string name() const override { return m_values.name; }
    void setName(const std::u16string& name) override;
    bool combinedConfiguration() const override { return m_combined; }

    host::ConfigurationArray configurations() const override;
    /// A member may be appended more than once. Null, a combined configuration, and whatever is sent to an ordinary one
    /// is ignored.
    void addConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& member) override;
    /// Afterwards it is no member, however often it was appended.
    void deleteConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& member) override;
    /// All members at once, as appending each to none would put them; one change, or none where they are the same.
    void setMembers(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& members);

    /// Numbered as the last run of the title as it stands, so that its name is a new one.
    std::shared_ptr<host::ImprinterFont> createFontToken() override;

    host::NSInteger duplicateRecord() const override { return m_values.duplicateRecord; }
    void setDuplicateRecord(host::NSInteger code) override;
    /// What was set, nil included.
    host::NSArray<host::TitleToken> titleTokens() const override { return m_values.titleTokens; }
    void setTitleTokens(const host::NSArray<host::TitleToken>& tokens) override;

    host::NSInteger position() const override { return m_values.position; }
    void setPosition(host::NSInteger anchor) override;
    host::NSPoint offset() const override { return m_values.offset; }
    void setOffset(host::NSPoint offset) override;
    double rotation() const override { return m_values.rotation; }
    void setRotation(double degrees) override;
    host::NSInteger occurance() const override { return m_values.occurance; }
    void setOccurance(host::NSInteger code) override;
    std::optional<std::u16string> customOccurance() const override { return m_values.customOccurance; }
    void setCustomOccurance(const std::u16string& pages) override;

    bool borderEnabled() const override { return m_values.borderEnabled; }
    void setBorderEnabled(bool enabled) override;
    host::NSInteger borderStyle() const override { return m_values.borderStyle; }
    void setBorderStyle(host::NSInteger style) override;
    double borderThickness() const override { return m_values.borderThickness; }
    void setBorderThickness(double points) override;
    std::shared_ptr<const host::NSColor> borderColour() const override { return m_values.borderColour; }
    void setBorderColour(const std::shared_ptr<const host::NSColor>& colour) override;
    bool fillEnabled() const override { return m_values.fillEnabled; }
    void setFillEnabled(bool enabled) override;
    std::shared_ptr<const host::NSColor> fillColour() const override { return m_values.fillColour; }
    void setFillColour(const std::shared_ptr<const host::NSColor>& colour) override;
    double fillOpacity() const override { return m_values.fillOpacity; }
    void setFillOpacity(double opacity) override;

    /// Sets whom changes of the configuration and of the runs it made are told to; null for nobody.
    void setNotices(std::shared_ptr<const Notices> notices) { m_notices = std::move(notices); }
    /// Passes a change of one of its font runs on, before and after it.
    void aboutToChange();
    void changed();

private:
    struct Values {
        std::u16string name;
        host::NSInteger duplicateRecord = 0;
        host::NSArray<host::TitleToken> titleTokens;
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
    };

    Configuration(std::u16string uniqueID, bool combined);
    std::shared_ptr<Configuration> self();
    /// A run that comes from another configuration, by the pasteboard, is this one's from now on.
    void takeOver(const std::shared_ptr<FontRun>& run);
    /// Puts a run of its own in the place of one that has become another configuration's.
    void partFrom(const FontRun& run);
    std::shared_ptr<Configuration> copyCalled(std::u16string uniqueID) const;
    template <class T>
    void set(T& member, const T& value);

    std::u16string m_uniqueID;
    bool m_combined;
    std::vector<std::shared_ptr<host::ImprinterConfiguration>> m_members;
    mutable host::ConfigurationArray m_handedOut; // made when first asked for after a change of the members
    Values m_values;
    std::shared_ptr<const Notices> m_notices;
};

} // namespace model
