// SPDX-License-Identifier: MIT
// A host for the settings pane: it keeps two configurations in memory, shows the pane in a window, and says on the
// standard output what the pane lists and when it saves. With --once it closes the window again as a user would.

#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSException.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>
#include <PreferencePanes/NSPreferencePane.h>
#include <host/VelImprinterPlugin.h>

#include <QApplication>
#include <QCloseEvent>
#include <QMainWindow>
#include <QTimer>

#include <iostream>
#include <map>

using namespace platform;
using host::ConfigurationArray;
using std::shared_ptr;
using std::u16string;

namespace {

/// A member with its getter and its setter; names as the contract has them.
#define PROPERTY(type, argument, name, setter)                                                                         \
    type name() const override {                                                                                       \
        return m_##name;                                                                                               \
    }                                                                                                                  \
    void setter(argument value) override {                                                                             \
        m_##name = value;                                                                                              \
    }                                                                                                                  \
    type m_##name

using Colour = shared_ptr<const NSColor>;
using Item = shared_ptr<host::ImprinterConfiguration>;
using List = std::vector<Item>;

struct Run final : host::ImprinterFont {
    std::u16string_view className() const override { return u"VelIFontType"; }
    u16string name() const override { return u"Font " + fromUtf8(std::to_string(m_fontNumber + 1)); }
    u16string fullFontName() const override { return m_face; }
    void setFullFontName(const u16string& face) override { m_face = face; }
    shared_ptr<NSFont> font() const override { return NSFont::fontWithNameSize(m_face, m_fontSize); }
    PROPERTY(NSUInteger, NSUInteger, fontNumber, setFontNumber) = 0;
    PROPERTY(double, double, fontSize, setFontSize) = 12;
    PROPERTY(double, double, strokeWidth, setStrokeWidth) = 1;
    PROPERTY(bool, bool, outline, setOutline) = false;
    PROPERTY(bool, bool, underline, setUnderline) = false;
    PROPERTY(bool, bool, strikethrough, setStrikethrough) = false;
    PROPERTY(Colour, const Colour&, colour, setColour);
    u16string m_face = NSFont::userFontOfSize(0)->fontName();
};

struct Configuration final : host::ImprinterConfiguration {
    Configuration(u16string identifier, const u16string& name, bool combined)
        : m_name(name), m_identifier(std::move(identifier)), m_combined(combined) {
        using Title = std::vector<host::TitleToken>;
        m_titleTokens = std::make_shared<const Title>(Title{createFontToken(), u"Page ", u"%pageNumber%"});
    }
    u16string uniqueID() const override { return m_identifier; }
    bool combinedConfiguration() const override { return m_combined; }
    ConfigurationArray configurations() const override {
        return m_combined ? std::make_shared<const List>(m_members) : nullptr;
    }
    void addConfiguration(const Item& member) override { m_members.push_back(member); }
    void deleteConfiguration(const Item& member) override { std::erase(m_members, member); }
    shared_ptr<host::ImprinterFont> createFontToken() override { return std::make_shared<Run>(); }
    std::optional<u16string> customOccurance() const override { return m_pages; }
    void setCustomOccurance(const u16string& pages) override { m_pages = pages; }
    PROPERTY(u16string, const u16string&, name, setName);
    PROPERTY(NSArray<host::TitleToken>, const NSArray<host::TitleToken>&, titleTokens, setTitleTokens);
    PROPERTY(NSInteger, NSInteger, duplicateRecord, setDuplicateRecord) = 0;
    PROPERTY(NSInteger, NSInteger, position, setPosition) = 0;
    PROPERTY(NSPoint, NSPoint, offset, setOffset) = {};
    PROPERTY(double, double, rotation, setRotation) = 0;
    PROPERTY(NSInteger, NSInteger, occurance, setOccurance) = 0;
    PROPERTY(bool, bool, borderEnabled, setBorderEnabled) = false;
    PROPERTY(NSInteger, NSInteger, borderStyle, setBorderStyle) = 1;
    PROPERTY(double, double, borderThickness, setBorderThickness) = 1;
    PROPERTY(bool, bool, fillEnabled, setFillEnabled) = false;
    PROPERTY(double, double, fillOpacity, setFillOpacity) = 1;
    PROPERTY(Colour, const Colour&, borderColour, setBorderColour);
    PROPERTY(Colour, const Colour&, fillColour, setFillColour);
    u16string m_identifier;
    bool m_combined;
    std::optional<u16string> m_pages;
    List m_members;
};

struct Imprinter final : host::Imprinter {
    ConfigurationArray configurations() const override { return std::make_shared<const List>(m_list); }
    Item configurationForID(const u16string& identifier) const override {
        for (const auto& each : m_list)
            if (each->uniqueID() == identifier)
                return each;
        return nullptr;
    }
    Item createConfiguration(bool combined) override {
        return m_list.emplace_back(std::make_shared<Configuration>(globallyUniqueString(), u"", combined));
    }
    Item duplicateConfigurationAtIndex(NSInteger) override { return nullptr; }
    NSUInteger indexOfConfiguration(const Item& item) const override { return indexOfObject(configurations(), item); }
    void deleteConfigurationAtIndex(NSUInteger index) override {
        if (index >= m_list.size())
            return;
        for (const auto& each : m_list)
            each->deleteConfiguration(m_list[index]); // from those that combine it
        m_list.erase(m_list.begin() + static_cast<NSInteger>(index));
    }
    void moveConfigurationAtIndexTo(NSUInteger index, NSUInteger row) override {
        if (index >= m_list.size() || row > m_list.size())
            return;
        const auto moved = m_list[index]; // its own place still counts in `row`
        m_list.insert(m_list.begin() + static_cast<NSInteger>(row), moved);
        m_list.erase(m_list.begin() + static_cast<NSInteger>(index < row ? index : index + 1));
    }
    void saveConfigurations() override { std::cout << "saveConfigurations" << std::endl; }
    ConfigurationArray nonCombinedConfigurations() const override {
        List ordinary = m_list;
        std::erase_if(ordinary, [](const auto& each) { return each->combinedConfiguration(); });
        return std::make_shared<const List>(std::move(ordinary));
    }
    std::optional<NSURL> imprintFileAtURLWithIndex(const std::optional<NSURL>&, const Item&, NSInteger) override {
        return std::nullopt; // this host has no engine, so that there is no preview
    }
    List m_list{std::make_shared<Configuration>(u"1", u"First", false),
                std::make_shared<Configuration>(u"2", u"Both", true)};
};

struct Plugin final : host::VelImprinterPlugin {
    shared_ptr<host::Imprinter> imprinter() override { return m_imprinter; }
    shared_ptr<Imprinter> m_imprinter = std::make_shared<Imprinter>();
};

/// Settings of this host alone, as long as it runs. Without them the pane would read those of the program `imprinter`.
struct Defaults final : NSUserDefaults {
    std::optional<u16string> stringForKey(const u16string& key) const override {
        return m_values.contains(key) ? std::optional(m_values.at(key)) : std::nullopt;
    }
    void setObjectForKey(const u16string& value, const u16string& key) override { m_values[key] = value; }
    void removeObjectForKey(const u16string& key) override { m_values.erase(key); }
    std::map<u16string, u16string> m_values;
};

/// Closing the window leaves the pane, which then saves.
struct Window final : QMainWindow {
    explicit Window(shared_ptr<NSPreferencePane> shown) : pane(std::move(shown)) {
        pane->willSelect();
        setCentralWidget(widgetOf(*pane->mainView()));
        pane->didSelect();
    }
    void closeEvent(QCloseEvent* event) override {
        runGuarded([this] { pane->mainView()->window()->makeFirstResponder(nullptr); }); // ends the edit in progress
        if (pane->shouldUnselect() == NSPreferencePaneUnselectReply::cancel)
            return event->ignore();
        runGuarded([this] { pane->willUnselect(); });
        takeCentralWidget();
        runGuarded([this] { pane->didUnselect(); });
    }
    shared_ptr<NSPreferencePane> pane;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    NSUserDefaults::setStandardUserDefaults(std::make_shared<Defaults>());
    // The pane finds these two by their names, so they stand before it is loaded.
    const ClassRegistration runs{ClassTable<Run>(u"VelIFontType")};
    const ClassRegistration plugin{
        ClassTable<host::VelImprinterPlugin>(u"VelImprinterPlugin").classObject(std::make_shared<Plugin>())};

    const auto bundle = NSBundle::bundleWithPath(PANE);
    std::string problem = "there is no bundle";
    if (!bundle || !bundle->load(problem)) {
        std::cerr << problem << '\n';
        return 1;
    }
    const auto pane = std::dynamic_pointer_cast<NSPreferencePane>(bundle->principalClass()->make());
    pane->setBundle(bundle);
    if (!pane->loadMainView())
        return 1;
    Window window(pane);
    window.show();
    std::cout << "opened" << std::endl;

    const auto table = std::dynamic_pointer_cast<NSTableView>(pane->classTable()->outlet(u"tableView")->object(*pane));
    for (NSInteger row = 0; row < table->numberOfRows(); ++row)
        std::cout << "listed " << toUtf8(table->viewAtColumnRow(0, row)->textField()->stringValue()) << std::endl;
    if (application.arguments().contains(QStringLiteral("--once")))
        QTimer::singleShot(0, &window, &QWidget::close);
    return QApplication::exec();
}
