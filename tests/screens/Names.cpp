// SPDX-License-Identifier: MIT
// What assistive technology is told: every control of every screen has a name, and says what it holds.

#include "Screens.h"

#include "HostBundle.h"

#include <AppKit/NSControl.h>
#include <AppKit/NSTokenField.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSString.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <set>

using namespace platform;
using namespace testing_support;

namespace {

using Role = QAccessible::Role;

QString nameOf(const QAccessibleInterface& object) {
    return object.text(QAccessible::Name);
}

std::string described(const QAccessibleInterface& object) {
    const auto* widget = object.object();
    return std::string(QMetaEnum::fromType<Role>().valueToKey(object.role())) + " " +
           (widget ? widget->objectName().toStdString() + " (" + widget->metaObject()->className() + ")" : "");
}

/// The objects that are seen from `object` down, it included.
void walk(QAccessibleInterface* object, const std::function<void(QAccessibleInterface&)>& visit) {
    if (!object || !object->isValid() || object->state().invisible)
        return;
    visit(*object);
    // What is inside of these is of the toolkit's making, and said by the whole.
    if (object->role() == Role::ComboBox || object->role() == Role::ScrollBar || object->role() == Role::SpinBox)
        return;
    for (int i = 0; i < object->childCount(); ++i)
        walk(object->child(i), visit);
}

QAccessibleInterface* accessible(QObject* object) {
    return QAccessible::queryAccessibleInterface(object);
}

const std::set<Role>& rolesWithNames() {
    static const std::set<Role> roles{Role::Button,       Role::ButtonMenu,   Role::ButtonDropDown, Role::CheckBox,
                                      Role::RadioButton,  Role::EditableText, Role::ComboBox,       Role::SpinBox,
                                      Role::Slider,       Role::Table,        Role::Tree,           Role::List,
                                      Role::ListItem,     Role::Cell,         Role::PageTab,        Role::MenuItem,
                                      Role::Graphic,      Role::ColorChooser, Role::Dialog,         Role::Window,
                                      Role::ColumnHeader, Role::AlertMessage};
    return roles;
}

std::set<std::string> unnamed(QWidget& screen, const std::string& name) {
    std::set<std::string> found;
    walk(accessible(&screen), [&](QAccessibleInterface& object) {
        // The picture beside a message says nothing that the message does not.
        const bool decorates =
            object.object() && object.object()->objectName() == QLatin1String("qt_msgboxex_icon_label");
        if (!decorates && rolesWithNames().contains(object.role()) && nameOf(object).trimmed().isEmpty())
            found.insert(name + ": " + described(object));
    });
    return found;
}

/// Of the pane's own texts.
QString local(const char16_t* english) {
    const auto bundle = NSBundle::bundleWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane");
    return app::toQt(bundle->localizedStringForKeyValueTable(english, u"", u""));
}

class Names : public Screens {
protected:
    QAccessibleInterface* part(const char* name) {
        auto* widget = child(name);
        return widget ? accessible(widget) : nullptr;
    }
};

TEST_F(Names, EveryControlOfEveryScreenHasOne) {
    open();
    std::set<std::string> found;
    std::size_t seen = 0;
    const auto look = [&](const std::string& name, QWidget& screen) {
        found.merge(unnamed(screen, name));
        ++seen;
    };
    visitDialogs(look);
    window->pane().show(session->model().configurations()->front(), session->model());
    visitPages(look);
    EXPECT_GE(seen, 15U);
    std::string lines;
    for (const auto& each : found)
        lines += "\n  " + each;
    EXPECT_TRUE(found.empty()) << lines;
}

TEST(NamesThemselves, AButtonWithoutOneIsFound) {
    QWidget root;
    root.setWindowTitle(QStringLiteral("root"));
    auto* bare = new QToolButton(&root);
    bare->setObjectName(QStringLiteral("bare"));
    (new QPushButton(QStringLiteral("named"), &root))->move(40, 0);
    root.show();
    const auto found = unnamed(root, "screen");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(*found.begin(), "screen: Button bare (QToolButton)");
}

TEST_F(Names, PositionsAreNamedInTheLanguageOfTheUser) {
    open();
    showEditor(u"Location");
    for (const auto& [button, english] :
         {std::pair("topLeftBtn", u"Top left"), std::pair("topCenterBtn", u"Top center"),
          std::pair("topRightBtn", u"Top right"), std::pair("centerBtn", u"Center"),
          std::pair("bottomRightBtn", u"Bottom right")}) {
        auto* object = part(button);
        ASSERT_TRUE(object) << button;
        EXPECT_EQ(nameOf(*object), local(english));
    }
    EXPECT_TRUE(part("topRightBtn")->state().checked);
    EXPECT_FALSE(part("topLeftBtn")->state().checked);
}

TEST_F(Names, FieldsSteppersWellsAndPopUpsSayWhatTheyHold) {
    open();
    window->pane().currentConfiguration()->setRotation(12.5);
    window->pane().refresh(session->model());
    showEditor(u"Location");
    const auto number = QLocale().toString(12.5);
    ASSERT_TRUE(part("rotation"));
    EXPECT_EQ(part("rotation")->text(QAccessible::Value), number);
    ASSERT_TRUE(part("rotationStepper"));
    EXPECT_EQ(part("rotationStepper")->role(), QAccessible::SpinBox);
    EXPECT_EQ(part("rotationStepper")->text(QAccessible::Value), number);
    EXPECT_EQ(part("rotationStepper")->valueInterface()->currentValue().toDouble(), 12.5);
    showEditor(u"Appearance");
    EXPECT_EQ(part("borderColourWell")->role(), QAccessible::ColorChooser);
    EXPECT_EQ(part("borderColourWell")->text(QAccessible::Value), QStringLiteral("#CC1A1A"));
    EXPECT_EQ(part("borderStylePopup")->text(QAccessible::Value), local(u"Rectangle"));
    // Only fonts that have the letters of the user's language are offered.
    if (language() != "ja" && language() != "zh-Hans") {
        EXPECT_EQ(part("fontPopup")->text(QAccessible::Value), QStringLiteral("DejaVu Sans"));
    }
}

TEST_F(Names, ASteppersArrowsArePressedByName) {
    open();
    showEditor(u"Location");
    auto* stepper = part("rotationStepper");
    stepper->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(window->pane().currentConfiguration()->rotation(), 1);
    stepper->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
    EXPECT_EQ(window->pane().currentConfiguration()->rotation(), 0);
}

TEST_F(Names, RowsOfTheListAreReadAsTheirConfigurations) {
    open();
    QStringList rows;
    walk(part("tableView"), [&](QAccessibleInterface& object) {
        if (object.role() == QAccessible::Cell)
            rows << nameOf(object);
    });
    EXPECT_EQ(rows, QStringList({app::text(u"Received"), app::text(u"Page of Pages"), app::text(u"Confidential")}));
}

TEST_F(Names, ATitleIsReadWithTheTitlesOfItsTokens) {
    open();
    showEditor(u"Appearance");
    auto* title = part("titleTokenField");
    ASSERT_TRUE(title);
    EXPECT_EQ(title->role(), QAccessible::EditableText);
    const auto run = app::text(u"Font %@", {app::written(1)});
    const auto date = app::text(u"Date");
    const auto whole = run + QStringLiteral(" RECEIVED ") + date;
    EXPECT_EQ(title->text(QAccessible::Value), whole);
    auto* text = title->textInterface();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->characterCount(), whole.size());
    EXPECT_EQ(text->text(0, static_cast<int>(whole.size())), whole);
    EXPECT_FALSE(whole.contains(QChar::ObjectReplacementCharacter));
    // The caret goes over a token in one step.
    text->setCursorPosition(static_cast<int>(run.size()) + 1);
    EXPECT_EQ(text->cursorPosition(), run.size() + 1);
    text->setCursorPosition(2);
    EXPECT_EQ(text->cursorPosition(), 0) << "no place inside a token";
    text->setSelection(0, 0, static_cast<int>(whole.size()));
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, whole.size());
}

TEST_F(Names, WhatAssistiveTechnologyTypesIntoATitleIsTaken) {
    open();
    showEditor(u"Appearance");
    auto* title = part("titleTokenField");
    const auto run = app::text(u"Font %@", {app::written(1)});
    title->editableTextInterface()->insertText(static_cast<int>(run.size()) + 1, QStringLiteral("NOT "));
    const auto tokens = *window->pane().currentConfiguration()->titleTokens();
    ASSERT_EQ(tokens.size(), 3U);
    EXPECT_EQ(std::get<std::u16string>(tokens[1]), u"NOT RECEIVED ");
}

TEST_F(Names, ThePreviewSaysWhatItShows) {
    open();
    window->pane().currentConfiguration()->setRotation(45);
    perform(u"onPreview:", outlet<NSObject>(u"previewBtn"));
    settle();
    auto* popover = QApplication::activePopupWidget();
    ASSERT_TRUE(popover);
    std::vector<QString> spoken;
    walk(accessible(popover), [&](QAccessibleInterface& object) {
        if (object.role() == QAccessible::Graphic || object.role() == QAccessible::Pane) {
            EXPECT_EQ(nameOf(object), local(u"Preview"));
            spoken.push_back(object.text(QAccessible::Description));
        }
    });
    const auto number = [](int value) { return QLocale().toString(value).toStdU16String(); };
    const auto expected =
        app::toQt(stringWithFormat(local(u"%@, page %@ of %@, %@, rotated %@ degrees").toStdU16String(),
                                   {app::text(u"Received").toStdU16String(), number(1), number(1),
                                    local(u"top right").toStdU16String(), number(45)}));
    EXPECT_EQ(spoken, (std::vector<QString>{expected, expected}));
    if (language() == "en") {
        EXPECT_EQ(expected, QStringLiteral("Received, page 1 of 1, top right, rotated 45 degrees"));
    }
    if (language() == "de") {
        EXPECT_EQ(expected, QStringLiteral("Eingang, Seite 1 von 1, oben rechts, um 45 Grad gedreht"));
    }
    window->pane().currentConfiguration()->setRotation(0);
    ASSERT_FALSE(spoken.empty());
    walk(accessible(popover), [&](QAccessibleInterface& object) {
        if (object.role() == QAccessible::Graphic) {
            EXPECT_EQ(object.text(QAccessible::Description),
                      app::toQt(stringWithFormat(local(u"%@, page %@ of %@, %@").toStdU16String(),
                                                 {app::text(u"Received").toStdU16String(), number(1), number(1),
                                                  local(u"top right").toStdU16String()})));
        }
    });
}

} // namespace
