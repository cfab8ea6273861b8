// SPDX-License-Identifier: MIT
// Uses the program at random, with chosen numbers behind every choice: types, clicks, drags, switches, makes and
// deletes configurations, closes the window and opens it again, and lets another program change the store. Beside it
// runs an account of what each act may have changed; whatever else changed is a fault, and so is a store that does not
// hold the account at the end.
//
//   monkey SECONDS SEED [FIRST-SECONDS [ACTS]]
//
// Memory is compared from FIRST-SECONDS on (a tenth of the time without); after so many ACTS it ends before its time.

#include "../support/DragUser.h"
#include "../support/FakeQueue.h"
#include "../support/MemoryDefaults.h"

#include "HostBundle.h"
#include "MainWindow.h"
#include "OrderPalette.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTokenField.h>
#include <Foundation/NSString.h>
#include <PlatformQt/Bridge.h>
#include <store/Exchange.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <limits>
#include <random>
#include <set>

using namespace platform;
namespace fs = std::filesystem;

namespace {

using Properties = std::map<std::string, std::string>;
/// The properties of each configuration, in the order of the list.
using Account = std::vector<Properties>;
using Names = std::set<std::string>;

std::string number(double value) {
    return toUtf8(textOfValue(value));
}

std::string textOf(const std::shared_ptr<const NSColor>& colour) {
    return colour ? number(colour->redComponent()) + " " + number(colour->greenComponent()) + " " +
                        number(colour->blueComponent()) + " " + number(colour->alphaComponent())
                  : "none";
}

std::string textOf(const host::NSArray<host::TitleToken>& title) {
    std::string text;
    for (std::size_t i = 0; i < count(title); ++i) {
        if (const auto* piece = std::get_if<std::u16string>(&(*title)[i])) {
            text += "[" + toUtf8(*piece) + "]";
        } else if (const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&(*title)[i])) {
            const auto& font = **run;
            // Showing a title numbers its runs anew, so their numbers are no part of the account.
            text += "[" + toUtf8(font.fullFontName()) + " " + number(font.fontSize()) + " " + textOf(font.colour()) +
                    " " + number(font.strokeWidth()) + (font.underline() ? " u" : "") +
                    (font.strikethrough() ? " s" : "") + (font.outline() ? " o" : "") + "]";
        }
    }
    return text;
}

Properties propertiesOf(const host::ImprinterConfiguration& configuration) {
    Properties properties{
        {"identifier", toUtf8(configuration.uniqueID())},
        {"name", toUtf8(configuration.name())},
        {"combined", configuration.combinedConfiguration() ? "yes" : "no"},
        {"duplicate", std::to_string(configuration.duplicateRecord())},
    };
    if (configuration.combinedConfiguration()) {
        // What the pane leaves in a combined one when it goes is kept out of the file.
        std::string members;
        const auto list = configuration.configurations();
        for (std::size_t i = 0; i < count(list); ++i)
            members += toUtf8((*list)[i]->uniqueID()) + " ";
        properties["members"] = members;
        return properties;
    }
    properties["title"] = textOf(configuration.titleTokens());
    properties["position"] = std::to_string(configuration.position());
    properties["x"] = number(configuration.offset().x);
    properties["y"] = number(configuration.offset().y);
    properties["rotation"] = number(static_cast<float>(configuration.rotation()));
    properties["occurrence"] = std::to_string(configuration.occurance());
    const auto pages = configuration.customOccurance();
    properties["pages"] = pages ? "\"" + toUtf8(*pages) + "\"" : "none";
    properties["border"] = configuration.borderEnabled() ? "on" : "off";
    properties["style"] = std::to_string(configuration.borderStyle());
    properties["thickness"] = number(configuration.borderThickness());
    properties["border colour"] = textOf(configuration.borderColour());
    properties["fill"] = configuration.fillEnabled() ? "on" : "off";
    properties["fill colour"] = textOf(configuration.fillColour());
    properties["opacity"] = number(configuration.fillOpacity());
    return properties;
}

Account accountOf(const host::ConfigurationArray& list) {
    Account account;
    for (std::size_t i = 0; i < count(list); ++i)
        account.push_back(propertiesOf(*(*list)[i]));
    return account;
}

/// Resident memory in MB.
double memory() {
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

class Monkey {
public:
    Monkey(fs::path folder, unsigned seed) : m_folder(std::move(folder)), m_random(seed) {
        NSUserDefaults::setStandardUserDefaults(m_defaults);
        setMainQueue(m_queue);
        NSAlert::setAnswerer([this](const NSAlert&) {
            m_agreed = chance(2);
            return *m_agreed ? NSAlertFirstButtonReturn : 1001;
        });
        // Whatever opens a loop of its own, a menu, a panel, a message, is answered or put away.
        QObject::connect(&m_butler, &QTimer::timeout, [this] { serve(); });
        m_butler.start(0);
    }
    ~Monkey() {
        m_butler.stop();
        m_window.reset();
        m_session.reset();
        NSAlert::setAnswerer({});
        setMainQueue(nullptr);
        NSUserDefaults::setStandardUserDefaults(nullptr);
    }
    Monkey(const Monkey&) = delete;
    Monkey& operator=(const Monkey&) = delete;

    void open() {
        m_session = std::make_unique<app::Session>(store());
        std::string error;
        auto pane = app::PaneHost::load(app::bundleFolder() / "ImprinterPrefPane.prefPane", error);
        if (!pane)
            fail(error);
        m_window = std::make_unique<app::MainWindow>(*m_session, std::move(pane));
        m_window->resize(900, 640);
        m_window->show();
        QApplication::processEvents();
        m_session->allowPreviews();
        if (m_account.empty() && m_acts == 0)
            m_account = now();
        m_act = "opening";
        expectAccount();
    }

    void act() {
        ++m_acts;
        struct Choice {
            unsigned weight;
            const char* name;
            void (Monkey::*act)();
        };
        static constexpr Choice choices[] = {
            {6, "selecting a row", &Monkey::selectRow},
            {2, "making one", &Monkey::make},
            {1, "making a combined one", &Monkey::combine},
            {2, "duplicating", &Monkey::duplicate},
            {3, "deleting", &Monkey::remove},
            {3, "renaming", &Monkey::rename},
            {8, "typing into the title", &Monkey::typeTitle},
            {4, "inserting by menu", &Monkey::insertByMenu},
            {6, "a number field", &Monkey::typeNumber},
            {4, "an anchor", &Monkey::clickAnchor},
            {4, "a check box", &Monkey::clickBox},
            {3, "a pop-up", &Monkey::choose},
            {3, "the page list", &Monkey::typePages},
            {2, "an occurrence", &Monkey::clickOccurrence},
            {3, "a page of the editor", &Monkey::switchPage},
            {3, "members", &Monkey::changeMembers},
            {2, "the preview", &Monkey::preview},
            {4, "waiting", &Monkey::wait},
            {2, "a click anywhere", &Monkey::clickAnywhere},
            {1, "another size", &Monkey::resize},
            {2, "dragging in the title", &Monkey::dragTitle},
            {2, "dragging a row", &Monkey::dragRow},
            {1, "another program", &Monkey::shareStore},
            {1, "closing and opening", &Monkey::reopen},
        };
        unsigned total = 0;
        for (const auto& choice : choices)
            total += choice.weight;
        auto place = pick(total);
        const auto* chosen = choices;
        while (place >= chosen->weight)
            place -= chosen++->weight;
        m_act = chosen->name;
        m_choices.clear();
        (this->*chosen->act)();
        QApplication::processEvents();
        expectAccount();
    }

    /// Leaves, and reads what the store holds.
    void end() {
        m_act = "the end";
        close();
        const auto stored = store::Store(store()).read();
        Account read;
        for (const auto& configuration : stored.configurations)
            read.push_back(propertiesOf(*configuration));
        compare(read, "the store");
    }

    std::size_t acts() const { return m_acts; }

private:
    struct Known {
        std::map<std::string, std::set<std::size_t>> values; // of each property
        std::size_t last = 0;                                // act after which it was there
    };

    fs::path store() const { return m_folder / "configurations.json"; }
    unsigned pick(std::size_t below) { return below == 0 ? 0 : static_cast<unsigned>(m_random() % below); }
    bool chance(unsigned oneIn) { return pick(oneIn) == 0; }

    [[noreturn]] void fail(const std::string& sentence) {
        std::fprintf(stderr, "act %zu, %s%s, row %zd: %s\n", m_acts, m_act.c_str(), m_choices.c_str(),
                     m_window ? static_cast<std::ptrdiff_t>(currentRow()) : -1, sentence.c_str());
        std::abort();
    }

    Account now() { return accountOf(m_session->model().configurations()); }
    void expectAccount() {
        compare(now(), "the model");
        remember(m_account);
    }
    static std::string orderOf(const Account& account) {
        std::string order;
        for (const auto& properties : account)
            order += " " + properties.at("identifier").substr(0, 4);
        return order;
    }
    void compare(const Account& found, const std::string& where) {
        if (found.size() != m_account.size())
            fail(where + " has " + std::to_string(found.size()) + " configurations, not " +
                 std::to_string(m_account.size()));
        for (std::size_t i = 0; i < found.size(); ++i)
            for (const auto& [name, value] : m_account[i])
                if (const auto at = found[i].find(name); at == found[i].end() || at->second != value)
                    fail((name == "identifier" ? "in the order" + orderOf(m_account) + " became" + orderOf(found) + "; "
                                               : std::string()) +
                         where + ": row " + std::to_string(i) + ", " + name + " is " +
                         (at == found[i].end() ? "missing" : at->second) + ", not " + value);
    }

    /// What configurations were, for as long as undoing may bring it back.
    void remember(const Account& account) {
        constexpr std::size_t undoable = 5000; // acts; a hundred steps are far fewer
        for (const auto& properties : account) {
            auto& known = m_known[properties.at("identifier")];
            known.last = m_acts;
            for (const auto& [name, value] : properties)
                if (!isTyped(name))
                    known.values[name].insert(std::hash<std::string>()(value));
        }
        std::erase_if(m_known, [&](const auto& known) { return known.second.last + undoable < m_acts; });
    }
    /// Takes over what the window has undone or done again: each configuration is there once and as it had been at some
    /// time, but for what was typed, which is undone in smaller steps than acts are.
    void concedeFormer() {
        const auto found = now();
        Names identifiers;
        for (const auto& properties : found) {
            const auto& identifier = properties.at("identifier");
            if (!identifiers.insert(identifier).second)
                fail("there are two configurations " + identifier);
            const auto known = m_known.find(identifier);
            if (known == m_known.end())
                fail("what was undone brought a configuration that never was: " + properties.at("name"));
            for (const auto& [name, value] : properties)
                if (!isTyped(name) && !known->second.values[name].contains(std::hash<std::string>()(value)))
                    fail("what was undone gave " + properties.at("name") + " a " + name +
                         " that it never had: " + value);
        }
        m_account = found;
    }
    static bool isTyped(const std::string& name) { return location().contains(name) || appearance().contains(name); }

    // What may have changed

    std::size_t currentRow() {
        const auto current = m_window->pane().currentConfiguration();
        return current ? m_session->model().indexOfConfiguration(current) : NSNotFound;
    }
    Properties* current() {
        const auto row = currentRow();
        return row < m_account.size() ? &m_account[row] : nullptr;
    }
    /// Takes these properties of the configuration in `row` over from the model.
    void concede(std::size_t row, const Names& names) {
        const auto list = m_session->model().configurations();
        if (row >= m_account.size() || row >= count(list))
            return;
        const auto found = propertiesOf(*(*list)[row]);
        for (const auto& name : names)
            if (const auto at = found.find(name); at != found.end())
                m_account[row][name] = at->second;
    }
    /// The run being edited may be one of another configuration: it stays where a title without runs is shown.
    void concedeRuns() {
        for (std::size_t row = 0; row < m_account.size(); ++row)
            concede(row, {"title"});
    }
    /// What ending an edit in the configuration of this row may change: the field that had the focus was its own.
    static const Names& location() {
        static const Names names{"x", "y", "rotation", "pages"};
        return names;
    }
    static const Names& appearance() {
        static const Names names{"title", "thickness", "opacity"};
        return names;
    }

    // The window

    template <class T>
    std::shared_ptr<T> outlet(const char16_t* name) {
        auto& pane = m_window->pane().pane();
        const auto* described = pane.classTable()->outlet(name);
        return described ? std::dynamic_pointer_cast<T>(described->object(pane)) : nullptr;
    }
    /// Null for one that is not to be seen or not to be used.
    QWidget* widget(const char16_t* name) {
        const auto view = outlet<NSView>(name);
        auto* found = view ? widgetOf(*view) : nullptr;
        return found && found->isVisible() && found->isEnabled() ? found : nullptr;
    }
    void press(std::u16string_view action, const std::shared_ptr<NSObject>& sender = nullptr) {
        auto& pane = m_window->pane().pane();
        (*pane.classTable()->action(action))(pane, sender);
    }
    void serve() {
        if (auto* popup = QApplication::activePopupWidget()) {
            if (!chance(3)) {
                for (auto steps = 1 + pick(4); steps > 0 && QApplication::activePopupWidget() == popup; --steps)
                    QTest::keyClick(popup, Qt::Key_Down);
                if (QApplication::activePopupWidget() == popup)
                    QTest::keyClick(popup, Qt::Key_Return);
            }
            if (auto* left = QApplication::activePopupWidget(); left == popup)
                left->close();
        } else if (auto* panel = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            if (auto* box = qobject_cast<QMessageBox*>(panel); box && box->buttons().size() == 4) {
                ++m_asked; // whose changes stay
                for (auto* button : box->buttons())
                    if (button->text() == app::text(m_answer))
                        return button->click();
            }
            if (const auto* box = qobject_cast<QMessageBox*>(panel))
                m_said = box->text().toStdString() + " " + box->informativeText().toStdString();
            panel->reject();
        }
    }
    std::u16string text(std::size_t most) {
        static constexpr std::u16string_view letters =
            u"abc XYZ 019 %\u00E9\u0301\u05D0\u05D1\u0627\u4E00\u3042\u2014\"\\\u200F";
        std::u16string made;
        for (auto left = pick(most + 1); left > 0; --left)
            made += letters[pick(letters.size())];
        if (chance(10))
            made += u"\U0001F600";
        return made;
    }
    void commit(QWidget& at, const std::u16string& text) {
        QInputMethodEvent event;
        event.setCommitString(QString::fromStdU16String(text));
        QApplication::sendEvent(&at, &event);
    }

    // Acts

    void selectRow() {
        const auto row = currentRow();
        const auto table = m_window->pane().table();
        if (table->numberOfRows() == 0)
            return;
        const auto next = pick(static_cast<std::size_t>(table->numberOfRows()));
        table->userSelects(NSIndexSet(next), static_cast<NSInteger>(next));
        concede(row, location());
        concede(row, appearance());
    }

    void made(std::size_t expected) {
        auto found = now();
        if (found.size() != m_account.size() + expected)
            fail(std::to_string(found.size()) + " configurations");
        // The new ones are at the end, or behind the one they were made from; nothing else may differ.
        for (std::size_t i = 0; i < found.size() && expected > 0; ++i)
            if (i >= m_account.size() || found[i].at("identifier") != m_account[i].at("identifier")) {
                m_account.insert(m_account.begin() + static_cast<std::ptrdiff_t>(i), found[i]);
                --expected;
            }
    }
    void settle() {
        if (chance(4))
            return; // the blocks meet whatever comes next
        const auto row = currentRow();
        m_queue->advance(0.3);
        concede(row, location());
        concede(row, appearance());
    }
    void make() {
        if (m_account.size() >= 40)
            return;
        press(u"addConfiguration:");
        made(1);
        const auto& fresh = m_account.back();
        if (fresh.at("name") != "New Imprinter" || fresh.at("border") != "off" || fresh.at("position") != "0")
            fail("a new configuration has other values than new ones have");
        settle();
    }
    void combine() {
        if (m_account.size() >= 40)
            return;
        press(u"createCombinedConfiguration:");
        made(1);
        if (!m_account.back().at("members").empty())
            fail("a new combined configuration has members");
        settle();
    }
    void duplicate() {
        const auto row = m_window->pane().table()->selectedRow();
        if (row < 0 || m_account.size() >= 40)
            return;
        press(u"duplicateConfiguration:");
        auto copy = m_account[static_cast<std::size_t>(row)];
        made(1);
        for (const auto& [name, value] : m_account[static_cast<std::size_t>(row) + 1])
            if (name != "identifier" && name != "name" && copy[name] != value)
                fail("the copy's " + name + " is " + value + ", not " + copy[name]);
    }
    void remove() {
        const auto row = currentRow();
        const auto before = m_account.size();
        if (before <= 1 && chance(2))
            return;
        m_agreed.reset();
        press(u"deleteConfiguration:");
        if (!m_agreed)
            fail("nobody was asked");
        if (*m_agreed && row < before)
            removed(row);
        if (now().size() != m_account.size())
            fail(*m_agreed ? "nothing was deleted" : "what was to stay was deleted");
        settle();
    }
    /// Takes the configuration in this row out of the account, and out of the combined ones.
    void removed(std::size_t row) {
        const auto identifier = m_account[row].at("identifier") + " ";
        m_account.erase(m_account.begin() + static_cast<std::ptrdiff_t>(row));
        for (auto& properties : m_account)
            if (const auto members = properties.find("members"); members != properties.end())
                for (auto at = members->second.find(identifier); at != std::string::npos;
                     at = members->second.find(identifier))
                    members->second.erase(at, identifier.size());
    }
    void rename() {
        const auto table = m_window->pane().table();
        const auto row = table->selectedRow();
        if (row < 0)
            return;
        const auto name = text(12);
        const auto field = table->viewAtColumnRow(0, row)->textField();
        field->setStringValue(name);
        press(u"onConfigurationNameChanged:", field);
        if (!name.empty())
            m_account[static_cast<std::size_t>(row)]["name"] = toUtf8(name);
    }
    QTextEdit* title() { return qobject_cast<QTextEdit*>(widget(u"titleTokenField")); }
    /// Where the title has nothing to undo the window undoes what was done last, whatever that was.
    void undo(QTextEdit& editor, bool again) {
        const auto* document = editor.document();
        const bool ofTitle = again ? document->isRedoAvailable() : document->isUndoAvailable();
        remember(now());
        QTest::keyClick(&editor, Qt::Key_Z,
                        again ? Qt::ControlModifier | Qt::ShiftModifier : Qt::KeyboardModifiers(Qt::ControlModifier));
        if (!ofTitle)
            concedeFormer();
    }
    void typeTitle() {
        auto* editor = title();
        if (!editor)
            return;
        if (!editor->hasFocus())
            editor->setFocus();
        const auto row = currentRow();
        for (auto keys = 1 + pick(8); keys > 0; --keys)
            switch (pick(14)) {
            case 0:
                QTest::keyClick(editor, Qt::Key_Backspace);
                break;
            case 1:
                QTest::keyClick(editor, Qt::Key_Delete);
                break;
            case 2:
                undo(*editor, false);
                break;
            case 3:
                undo(*editor, true);
                break;
            case 4:
                QTest::keyClick(editor, chance(2) ? Qt::Key_C : Qt::Key_X, Qt::ControlModifier);
                break;
            case 5:
                if (chance(4))
                    QApplication::clipboard()->setText(QString::fromStdU16String(text(30)));
                QTest::keyClick(editor, Qt::Key_V, Qt::ControlModifier);
                break;
            case 6:
            case 7:
                QTest::keyClick(editor, chance(2) ? Qt::Key_Left : Qt::Key_Right,
                                chance(2) ? Qt::ShiftModifier : Qt::NoModifier);
                break;
            case 8:
                QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
                break;
            case 9:
                QTest::keyClick(editor, Qt::Key_Return, chance(2) ? Qt::ControlModifier : Qt::NoModifier);
                break;
            case 10:
                m_queue->advance(0.02);
                break;
            default:
                commit(*editor, text(6));
            }
        concede(row, appearance());
        concede(currentRow(), appearance()); // undoing may show another one
    }
    void insertByMenu() {
        auto* editor = title();
        auto* button = editor ? editor->findChild<QAbstractButton*>() : nullptr;
        if (!button)
            return;
        const auto row = currentRow();
        QTest::mouseClick(button, Qt::LeftButton);
        concede(row, appearance());
    }
    void typeNumber() {
        struct Field {
            const char16_t* outlet;
            const char* property;
            const char* emptied;
        };
        static constexpr Field fields[] = {{u"xOffset", "x", "0"},          {u"yOffset", "y", "0"},
                                           {u"rotation", "rotation", "0"},  {u"borderThickness", "thickness", "1"},
                                           {u"fontSizeField", "title", ""}, {u"outlineTextThickness", "title", ""}};
        const auto& field = fields[pick(std::size(fields))];
        auto* edit = qobject_cast<QLineEdit*>(widget(field.outlet));
        auto* properties = current();
        if (!edit || !properties)
            return;
        const auto row = currentRow();
        edit->setFocus();
        concede(row, location());
        concede(row, appearance());
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        const auto typed = chance(6) ? std::string() : std::to_string(1 + pick(99));
        QTest::keyClicks(edit, QString::fromStdString(typed));
        QTest::keyClick(edit, chance(2) ? Qt::Key_Return : Qt::Key_Tab);
        if (std::string_view(field.property) == "title")
            concedeRuns();
        else
            (*properties)[field.property] = typed.empty() ? field.emptied : typed;
    }
    void clickAnchor() {
        static constexpr const char16_t* buttons[] = {u"topLeftBtn",    u"topCenterBtn",    u"topRightBtn",
                                                      u"centerLeftBtn", u"centerBtn",       u"centerRightBtn",
                                                      u"bottomLeftBtn", u"bottomCenterBtn", u"bottomRightBtn"};
        const auto chosen = pick(std::size(buttons));
        auto* button = widget(buttons[chosen]);
        auto* properties = current();
        if (!button || !properties)
            return;
        const auto row = currentRow();
        QTest::mouseClick(button, Qt::LeftButton);
        concede(row, location());
        concede(row, appearance());
        (*properties)["position"] = std::to_string(outlet<NSControl>(buttons[chosen])->tag());
    }
    void clickBox() {
        static constexpr std::pair<const char16_t*, const char*> boxes[] = {
            {u"borderEnableBtn", "border"}, {u"fillEnableBtn", "fill"}, {u"duplicateRecBtn", "duplicate"}};
        const auto& [name, property] = boxes[pick(std::size(boxes))];
        auto* box = qobject_cast<QAbstractButton*>(widget(name));
        auto* properties = current();
        if (!box || !properties)
            return;
        const auto row = currentRow();
        const bool on = !box->isChecked();
        box->click();
        concede(row, location());
        concede(row, appearance());
        if (std::string_view(property) == "duplicate")
            (*properties)[property] = on ? "1" : "2";
        else
            (*properties)[property] = on ? "on" : "off";
    }
    void choose() {
        static constexpr const char16_t* popups[] = {u"borderStylePopup", u"fontTokensPopup", u"fontPopup",
                                                     u"fontAttributePopup"};
        const auto chosen = pick(std::size(popups));
        auto* popup = widget(popups[chosen]);
        if (!popup)
            return;
        const auto row = currentRow();
        QTest::mouseClick(popup, Qt::LeftButton);
        concede(row, location());
        concede(row, appearance());
        if (chosen == 0)
            concede(row, {"style"});
        else
            concedeRuns();
    }
    void typePages() {
        auto* edit = qobject_cast<QLineEdit*>(widget(u"customOccurance"));
        if (!edit)
            return;
        const auto row = currentRow();
        edit->setFocus();
        if (chance(3))
            edit->selectAll();
        static constexpr std::string_view letters = "123,- x";
        for (auto keys = pick(6); keys > 0; --keys)
            QTest::keyClick(edit, letters[pick(letters.size())]);
        if (chance(2))
            QTest::keyClick(edit, Qt::Key_Tab);
        concede(row, location());
        concede(row, appearance());
    }
    void clickOccurrence() {
        auto* matrix = widget(u"occuranceMatrix");
        if (!matrix)
            return;
        const auto buttons = matrix->findChildren<QAbstractButton*>();
        if (buttons.isEmpty())
            return;
        const auto row = currentRow();
        QTest::mouseClick(buttons[static_cast<int>(pick(static_cast<std::size_t>(buttons.size())))], Qt::LeftButton);
        concede(row, location());
        concede(row, appearance());
        concede(row, {"occurrence"});
    }
    void switchPage() {
        const auto tabs = outlet<NSTabView>(u"tabView");
        auto* shown = widget(u"tabView");
        if (!shown)
            return;
        const auto row = currentRow();
        if (auto* bar = shown->findChild<QTabBar*>())
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(static_cast<int>(pick(2))).center());
        m_queue->advance(0);
        concede(row, location());
        concede(row, appearance());
    }
    void changeMembers() {
        auto* properties = current();
        if (!properties || !properties->contains("members"))
            return;
        const bool adds = chance(2);
        const auto table = outlet<NSTableView>(adds ? u"allConfigsTableView" : u"combinedTableView");
        if (!table || table->numberOfRows() == 0)
            return;
        NSIndexSet rows;
        for (auto left = 1 + pick(3); left > 0; --left)
            rows.addIndex(pick(static_cast<std::size_t>(table->numberOfRows())));
        table->userSelects(rows, static_cast<NSInteger>(rows.firstIndex()));
        auto* button =
            m_window->findChild<QAbstractButton*>(adds ? QStringLiteral("addBtn") : QStringLiteral("removeBtn"));
        if (!button->isEnabled())
            return; // these rows were selected already, when the last act disabled it
        button->click();
        const auto row = currentRow();
        const auto before = (*properties)["members"];
        concede(row, {"members"});
        const auto& after = m_account[row]["members"];
        // A removal that was ended by an index beyond the members left the table as it was, which may ask for them
        // again. Whatever it removes comes first.
        const auto count = static_cast<std::size_t>(std::count(before.begin(), before.end(), ' '));
        const bool changes = adds || rows.firstIndex() < count;
        if (adds ? !after.starts_with(before) : after.size() > before.size())
            fail("members were " + before + "and are " + after);
        if (changes && after == before)
            fail("members are still " + before);
    }
    void preview() {
        if (auto* button = qobject_cast<QAbstractButton*>(widget(u"previewBtn"))) {
            const auto row = currentRow();
            button->click();
            concede(row, location());
            concede(row, appearance());
        }
    }
    void wait() {
        const auto row = currentRow();
        m_queue->advance(0.1 * (1 + pick(4)));
        concede(row, location());
        concede(row, appearance());
    }
    void dragTitle() {
        auto* editor = title();
        const auto field = m_window->pane().titleField();
        if (!editor || !field)
            return;
        if (!editor->hasFocus())
            editor->setFocus();
        const auto row = currentRow();
        // Where a user can get to: not in the midst of a character.
        const auto place = [&] {
            const auto at = static_cast<int>(pick(static_cast<std::size_t>(editor->document()->characterCount())));
            return editor->document()->characterAt(at).isLowSurrogate() ? at - 1 : at;
        };
        auto cursor = editor->textCursor();
        cursor.setPosition(place());
        cursor.setPosition(place(), QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
        if (chance(3)) {
            NSPasteboard carried;
            const auto text = toUtf8(this->text(8));
            carried.setDataForType(std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end()),
                                   u"text/plain");
            cursor.setPosition(place());
            testing_support::DragUser(*editor->viewport(), carried).dropsAt(editor->cursorRect(cursor).center());
        } else {
            std::u16string plain;
            if (const auto carried = field->userDrags(plain))
                field->userDrops(carried, static_cast<NSUInteger>(place()));
            field->userEndedDrag();
        }
        if (chance(2))
            m_queue->advance(0.02);
        concede(row, appearance());
    }
    void dragRow() {
        const auto table = m_window->pane().table();
        auto* shown = qobject_cast<QTableView*>(widget(u"tableView"));
        if (!shown || m_account.size() < 2)
            return;
        const auto row = pick(m_account.size());
        const auto pasteboard = app::OrderList::pasteboardOf(NSIndexSet(row));
        const auto at = shown->visualRect(shown->model()->index(static_cast<int>(pick(m_account.size())), 0));
        {
            const RunningDrag running(m_session->model().shared_from_this(), pasteboard);
            testing_support::DragUser(*shown->viewport(), *pasteboard)
                .dropsAt({at.x() + 5, at.y() + static_cast<int>(pick(static_cast<std::size_t>(at.height())))});
        }
        // As the one who began the drag does: the pane shows the new order.
        m_window->pane().refresh(m_session->model());
        // One has moved at most, and it is that one.
        const auto found = now();
        auto rest = m_account;
        const auto moved = rest[row];
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(row));
        std::size_t place = 0;
        while (place < found.size() && found[place].at("identifier") != moved.at("identifier"))
            ++place;
        if (place > rest.size())
            fail("the dragged one is gone");
        rest.insert(rest.begin() + static_cast<std::ptrdiff_t>(place), moved);
        m_account = rest;
        concede(currentRow(), location());
        concede(currentRow(), appearance());
    }

    /// The store changes elsewhere, partly where it changes here too, and is joined with what is here.
    void shareStore() {
        const auto row = currentRow();
        m_window->pane().commitEditing();
        concede(row, location());
        concede(row, appearance());
        expectAccount();
        m_session->model().saveConfigurations();
        QApplication::processEvents();
        if (m_account.empty() || m_account.size() >= 40)
            return;

        // There: one gets another rotation or name, one is new, and now and then one goes that nobody needs.
        store::Store other(store());
        model::ImprinterModel theirs;
        theirs.setConfigurations(other.load().configurations);
        const auto changed = pick(m_account.size());
        const auto theirName = "theirs " + std::to_string(m_acts);
        const auto configuration = (*theirs.configurations())[changed];
        configuration->setName(fromUtf8(theirName));
        const auto fresh = theirs.createConfiguration(false);
        fresh->setName(u"new there");
        const store::Configurations sent{std::dynamic_pointer_cast<model::Configuration>(configuration),
                                         std::dynamic_pointer_cast<model::Configuration>(fresh)};
        auto expectedNew = propertiesOf(*fresh);
        auto gone = pick(m_account.size());
        const bool deletes = chance(3) && gone != changed && !isMember(m_account[gone].at("identifier"));
        if (chance(4)) {
            // The program itself, as it is called from a shell.
            const auto file = m_folder / "sent.json";
            if (const auto failure = store::exportTo(file, store::withMembers(sent)))
                fail(toUtf8(failure->sentence));
            const auto command = "env -u DISPLAY LC_ALL=C.UTF-8 " IMPRINTER " --store '" + store().string() +
                                 "' import --replace '" + file.string() + "' >'" + (m_folder / "said").string() +
                                 "' 2>&1";
            if (std::system(command.c_str()) != 0)
                fail("the import failed: " + command);
        } else {
            if (deletes)
                theirs.deleteConfigurationAtIndex(gone);
            if (const auto failure = other.save(theirs))
                fail(toUtf8(failure->sentence));
        }
        const auto stored = store::Store(store()).read().configurations;
        const bool deleted = stored.size() == m_account.size();

        // Here: another one, or the same, or the one that is gone there, gets another name.
        const auto mine = chance(3) ? changed : pick(m_account.size());
        const auto myName = "mine " + std::to_string(m_acts);
        (*m_session->model().configurations())[mine]->setName(fromUtf8(myName));
        static constexpr const char16_t* answers[] = {u"Keep &Mine", u"Take &Theirs", u"Keep &Both"};
        const auto answer = pick(3);
        m_answer = answers[answer];
        m_asked = 0;
        m_choices = " (changed there " + std::to_string(changed) + ", here " + std::to_string(mine) + ", gone " +
                    (deleted ? std::to_string(gone) : "none") + ", answer " + std::to_string(answer) + ")";
        m_session->model().saveConfigurations();
        QApplication::processEvents();
        if (m_session->hasUnsaved())
            fail("it could not be saved: " + m_said);
        if (m_asked != (mine == changed ? 1 : 0))
            fail("asked " + std::to_string(m_asked) + " times whose changes stay");

        if (mine != changed || answer == 1)
            m_account[changed]["name"] = theirName;
        if (mine != changed || answer != 1)
            m_account[mine]["name"] = myName;
        m_account.push_back(expectedNew);
        if (mine == changed && answer == 2) {
            auto copy = m_account[changed];
            copy["name"] = theirName + " copy";
            copy["identifier"] = now().at(changed + 1).at("identifier");
            m_account.insert(m_account.begin() + static_cast<std::ptrdiff_t>(changed) + 1, copy);
            gone += gone > changed ? 1 : 0;
        }
        if (deleted && mine != gone)
            removed(gone);
        // The pane shows what came, and with it the title of the one it shows.
        concede(currentRow(), appearance());
        expectAccount();
        const auto after = store::Store(store()).read();
        Account read;
        for (const auto& left : after.configurations)
            read.push_back(propertiesOf(*left));
        compare(read, "the store");
    }
    bool isMember(const std::string& identifier) const {
        return std::any_of(m_account.begin(), m_account.end(), [&](const Properties& properties) {
            const auto members = properties.find("members");
            return members != properties.end() && members->second.find(identifier + " ") != std::string::npos;
        });
    }

    void clickAnywhere() {
        std::set<std::string> touched;
        const auto touch = [&] {
            if (const auto current = m_window->pane().currentConfiguration())
                touched.insert(toUtf8(current->uniqueID()));
            const auto table = m_window->pane().table();
            const auto list = m_session->model().configurations();
            if (const auto row = table ? table->selectedRow() : -1;
                row >= 0 && static_cast<std::size_t>(row) < count(list))
                touched.insert(toUtf8((*list)[static_cast<std::size_t>(row)]->uniqueID()));
        };
        touch();
        auto* inside = m_window->centralWidget();
        const QPoint at(static_cast<int>(pick(static_cast<std::size_t>(inside->width()))),
                        static_cast<int>(pick(static_cast<std::size_t>(inside->height()))));
        if (const QPointer<QWidget> hit = inside->childAt(at)) {
            const auto button = chance(5) ? Qt::RightButton : Qt::LeftButton;
            const auto place = hit->mapFrom(inside, at);
            const bool twice = chance(4);
            QTest::mouseClick(hit, button, {}, place);
            remember(now());
            if (twice && hit) {
                QMouseEvent second(QEvent::MouseButtonDblClick, place, hit->mapToGlobal(place), button, button, {});
                QApplication::sendEvent(hit, &second);
                if (hit)
                    QTest::mouseRelease(hit, button, {}, place);
                remember(now());
            }
            if (chance(3) && QApplication::focusWidget())
                QTest::keyClick(QApplication::focusWidget(), chance(2) ? Qt::Key_Return : Qt::Key_Tab);
        }
        touch();
        // Whatever is there may have been meant, but only for what is or was being edited, or is new; and one or two at
        // most have come or gone.
        const auto found = now();
        const auto identifiersIn = [](const Account& account) {
            std::vector<std::string> identifiers;
            for (const auto& properties : account)
                identifiers.push_back(properties.at("identifier"));
            return identifiers;
        };
        const auto there = identifiersIn(found);
        int came = static_cast<int>(found.size());
        int went = 0;
        for (std::size_t row = m_account.size(); row-- > 0;) {
            const auto identifier = m_account[row].at("identifier");
            if (std::find(there.begin(), there.end(), identifier) == there.end()) {
                if (!touched.contains(identifier))
                    fail("another one than that being edited is gone");
                removed(row);
                ++went;
            } else {
                --came;
            }
        }
        if (came + went > 2)
            fail(std::to_string(came) + " came and " + std::to_string(went) + " went");
        const auto known = identifiersIn(m_account);
        for (std::size_t row = 0; row < found.size(); ++row) {
            const auto& identifier = found[row].at("identifier");
            const bool isNew = std::find(known.begin(), known.end(), identifier) == known.end();
            if (isNew)
                m_account.insert(m_account.begin() + static_cast<std::ptrdiff_t>(std::min(row, m_account.size())),
                                 found[row]);
            else if (touched.contains(identifier) && row < m_account.size() &&
                     m_account[row].at("identifier") == identifier)
                m_account[row] = found[row];
        }
        concedeRuns();
    }
    void resize() { m_window->resize(static_cast<int>(400 + pick(900)), static_cast<int>(300 + pick(700))); }
    void close() {
        const auto row = currentRow();
        const auto leaving = row < m_account.size() ? &m_account[row] : nullptr;
        m_window->close();
        if (m_window->isVisible())
            fail("the window does not close");
        concede(row, location());
        concede(row, appearance());
        // A page list left empty stamps every page.
        if (leaving && leaving->contains("pages") && leaving->at("occurrence") == "4" &&
            leaving->at("pages") != "none" && leaving->at("pages").find_first_not_of("\" ") == std::string::npos)
            (*leaving)["occurrence"] = "0";
        expectAccount();
        QApplication::processEvents();
        m_window.reset();
        m_queue->advance(1);
        m_session.reset();
    }
    void reopen() {
        close();
        open();
    }

    fs::path m_folder;
    std::mt19937 m_random;
    std::shared_ptr<testing_support::MemoryDefaults> m_defaults = std::make_shared<testing_support::MemoryDefaults>();
    std::shared_ptr<testing_support::FakeQueue> m_queue = std::make_shared<testing_support::FakeQueue>();
    QTimer m_butler;
    std::unique_ptr<app::Session> m_session;
    std::unique_ptr<app::MainWindow> m_window;
    Account m_account;
    std::map<std::string, Known> m_known; // by identifier
    std::optional<bool> m_agreed;         // to the last alert
    const char16_t* m_answer = u"";
    int m_asked = 0;
    std::string m_said; // by the last message
    std::string m_act;
    std::string m_choices; // that the act made
    std::size_t m_acts = 0;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: monkey SECONDS SEED [FIRST-SECONDS [ACTS]]\n");
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const double seconds = std::stod(argv[1]);
    const auto seed = static_cast<unsigned>(std::stoul(argv[2]));
    const double warm = argc > 3 ? std::stod(argv[3]) : seconds / 10;
    const std::size_t most = argc > 4 ? std::stoul(argv[4]) : std::numeric_limits<std::size_t>::max();
    auto pattern = (fs::temp_directory_path() / "imprinter-monkey-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        return 1;

    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const auto passed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    double before = 0;
    double after = 0;
    std::size_t acts = 0;
    {
        Monkey monkey(pattern, seed);
        monkey.open();
        while (passed() < seconds && monkey.acts() < most) {
            monkey.act();
            if (before == 0 && passed() > warm)
                before = memory();
        }
        after = memory();
        monkey.end();
        acts = monkey.acts();
    }
    fs::remove_all(pattern);
    std::printf("seed %u: %zu acts in %.0f s; memory %.0f MB after %.0f s, %.0f MB at the end\n", seed, acts, passed(),
                before, warm, after);
    // What is kept for good, caches of fonts and glyphs among it, is there after the warming up.
    constexpr double mayGrow = 40; // MB
    if (after > before + mayGrow) {
        std::fprintf(stderr, "memory grew by %.0f MB\n", after - before);
        return 1;
    }
    return 0;
}
