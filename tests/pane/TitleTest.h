// SPDX-License-Identifier: MIT
#pragma once

#include "../support/PlainConfiguration.h"
#include "PaneTest.h"

#include <AppKit/NSCell.h>
#include <AppKit/NSPopUpButton.h>

#include <QClipboard>
#include <QMimeData>
#include <QTextEdit>

namespace testing_support {

/// A font run of the host's class, called "Font 1" while its number is 0.
class TitleRun : public host::ImprinterFont {
public:
    std::u16string_view className() const override { return u"VelIFontType"; }
    std::u16string name() const override { return u"Font " + platform::fromUtf8(std::to_string(values.number + 1)); }
    host::NSUInteger fontNumber() const override { return values.fontNumber(); }
    void setFontNumber(host::NSUInteger number) override { values.setFontNumber(number); }
    std::u16string fullFontName() const override { return values.fullFontName(); }
    void setFullFontName(const std::u16string& name) override { values.setFullFontName(name); }
    std::shared_ptr<host::NSFont> font() const override { return nullptr; }
    std::shared_ptr<const host::NSColor> colour() const override { return values.colour(); }
    void setColour(const std::shared_ptr<const host::NSColor>& colour) override { values.setColour(colour); }
    double fontSize() const override { return values.fontSize(); }
    void setFontSize(double points) override { values.setFontSize(points); }
    double strokeWidth() const override { return values.strokeWidth(); }
    void setStrokeWidth(double points) override { values.setStrokeWidth(points); }
    bool outline() const override { return values.outline(); }
    void setOutline(bool outline) override { values.setOutline(outline); }
    bool underline() const override { return values.underline(); }
    void setUnderline(bool underline) override { values.setUnderline(underline); }
    bool strikethrough() const override { return values.strikethrough(); }
    void setStrikethrough(bool strikethrough) override { values.setStrikethrough(strikethrough); }

    support::PlainFont values;
};

class ForeignObject final : public platform::NSObject {};

/// A pane that shows one configuration, with its title field.
class TitleTest : public PaneTest {
protected:
    using Title = std::vector<platform::RepresentedObject>;

    void SetUp() override {
        PaneTest::SetUp();
        edited = configuration(u"a");
        edited->makeFont = [this] { return made = std::make_shared<TitleRun>(); };
        imprinter->setList({edited});
    }

    /// Starts with this title in the model and in the field.
    void startWith(Title title) {
        start();
        field = outlet<platform::NSTokenField>(u"titleTokenField");
        editor = window->findChild<QTextEdit*>(QStringLiteral("titleTokenField"));
        ASSERT_TRUE(field && editor);
        outlet<platform::NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
        QApplication::processEvents();
        setTitle(std::move(title));
        taken();
    }
    void setTitle(Title title) {
        const auto list = listOf(std::move(title));
        field->setObjectValue(list);
        edited->values.titleTokens = modelTitle(*list);
    }
    /// The caret at `position`, in the field with the focus.
    void focusAt(int position, int length = 0) {
        editor->setFocus(Qt::OtherFocusReason);
        auto cursor = editor->textCursor();
        cursor.setPosition(position);
        cursor.setPosition(position + length, QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
    }

    static platform::NSArray<platform::RepresentedObject> listOf(Title title) {
        return std::make_shared<const Title>(std::move(title));
    }
    static platform::RepresentedObject object(const std::shared_ptr<platform::NSObject>& held) { return held; }
    static host::NSArray<host::TitleToken> modelTitle(const Title& title) {
        std::vector<host::TitleToken> tokens;
        for (const auto& token : title)
            if (const auto* text = std::get_if<std::u16string>(&token))
                tokens.emplace_back(*text);
            else if (auto run = std::dynamic_pointer_cast<host::ImprinterFont>(
                         std::get<std::shared_ptr<platform::NSObject>>(token)))
                tokens.emplace_back(std::move(run));
            else
                tokens.emplace_back(std::get<std::shared_ptr<platform::NSObject>>(token));
        return std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens));
    }

    Title shown() { return field->objectValue() ? *field->objectValue() : Title(); }
    /// What the model holds, as the field would.
    Title stored() const {
        Title title;
        const auto& tokens = edited->values.titleTokens;
        for (std::size_t i = 0; i < platform::count(tokens); ++i) {
            const auto& token = (*tokens)[i];
            if (const auto* text = std::get_if<std::u16string>(&token))
                title.emplace_back(*text);
            else if (const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&token))
                title.emplace_back(std::shared_ptr<platform::NSObject>(*run));
            else
                title.emplace_back(std::get<std::shared_ptr<platform::NSObject>>(token));
        }
        return title;
    }
    /// What both are, where they agree.
    Title titleNow() {
        EXPECT_EQ(shown(), stored());
        return stored();
    }

    static std::shared_ptr<platform::NSPasteboard> pasteboard(const std::vector<std::u16string>& texts) {
        auto made = std::make_shared<platform::NSPasteboard>();
        made->writeObjects(texts);
        return made;
    }
    std::vector<std::u16string> fontTitles() {
        std::vector<std::u16string> titles;
        for (const auto& item : outlet<platform::NSPopUpButton>(u"fontTokensPopup")->menu()->itemArray())
            titles.push_back(item->title());
        return titles;
    }

    platform::ClassRegistration fontType{platform::ClassTable<TitleRun>(u"VelIFontType")};
    std::shared_ptr<RecordingConfiguration> edited;
    std::shared_ptr<TitleRun> made; // by the configuration, last
    std::shared_ptr<platform::NSTokenField> field;
    QTextEdit* editor = nullptr;
    const std::shared_ptr<TitleRun> f1 = std::make_shared<TitleRun>();
    const std::shared_ptr<TitleRun> f2 = std::make_shared<TitleRun>();
    const std::shared_ptr<TitleRun> f3 = std::make_shared<TitleRun>();
    const platform::RepresentedObject F1 = object(f1);
    const platform::RepresentedObject F2 = object(f2);
    const platform::RepresentedObject F3 = object(f3);
    const platform::RepresentedObject page = u"%pageNumber%";
};

} // namespace testing_support
