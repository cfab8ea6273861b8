// SPDX-License-Identifier: MIT
#include "TitleTest.h"

#include "../support/ListUser.h"
#include "../support/MadeUpFonts.h"

#include <VelIFontAttributePopupButton.h>
#include <VelIFontPopupButton.h>

#include <QComboBox>
#include <QWheelEvent>

using namespace platform;
using namespace testing_support;

namespace {

using Log = std::vector<std::string>;

std::string textOf(const std::optional<std::u16string>& name) {
    return name ? toUtf8(*name) : "nil";
}

/// The two buttons of the pane's own interface file, on the fonts of this machine, used with the mouse and the keys.
class FontButtonsInPane : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        start();
        const auto first = outlet<NSPopUpButton>(u"fontPopup");
        const auto second = outlet<NSPopUpButton>(u"fontAttributePopup");
        ASSERT_TRUE(first && second);
        ASSERT_EQ(first->className(), u"VelIFontPopupButton");
        ASSERT_EQ(second->className(), u"VelIFontAttributePopupButton");
        families = std::static_pointer_cast<pane::VelIFontPopupButton>(first);
        faces = std::static_pointer_cast<pane::VelIFontAttributePopupButton>(second);
        outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(u"Appearance");
        families->setEnabled(true);
        faces->setEnabled(true);
        familyFace = dynamic_cast<QComboBox*>(widgetOf(*families));
        faceFace = dynamic_cast<QComboBox*>(widgetOf(*faces));
        families->setOnFontChanged(
            [this](const std::optional<std::u16string>& name) { reports.push_back(textOf(name)); });
    }

    std::string shown() const {
        return textOf(families->titleOfSelectedItem()) + " " + textOf(faces->titleOfSelectedItem());
    }
    std::string shownInWidgets() const {
        return (familyFace->currentText() + QLatin1Char(' ') + faceFace->currentText()).toStdString();
    }
    Log taken() { return std::exchange(reports, {}); }

    std::shared_ptr<pane::VelIFontPopupButton> families;
    std::shared_ptr<pane::VelIFontAttributePopupButton> faces;
    QComboBox* familyFace = nullptr;
    QComboBox* faceFace = nullptr;
    Log reports;
};

TEST_F(FontButtonsInPane, AreLinkedAndHaveTheCellThatTellsThemOfClosing) {
    EXPECT_EQ(families->fontAttributePopUpBtn(), faces);
    EXPECT_EQ(faces->fontPopUpBtn(), families);
    EXPECT_EQ(families->cell()->className(), u"VelIFontPopupButtonCell");
    EXPECT_EQ(faces->cell()->className(), u"VelIFontPopupButtonCell");
    EXPECT_TRUE(families->useFonts());
    EXPECT_GE(families->indexOfItemWithTitle(u"DejaVu Sans"), 0) << "fonts-dejavu is needed for the tests";
}

TEST_F(FontButtonsInPane, AFamilyIsFoundByTypingAndReportedOnce) {
    EXPECT_TRUE(withList([&] { QTest::keyClick(familyFace, Qt::Key_Space); },
                         [](QListView& list) {
                             QTest::keyClicks(&list, "dejavu ser");
                             EXPECT_EQ(currentLine(list), "DejaVu Serif");
                             QTest::keyClick(&list, Qt::Key_Return);
                         }));
    EXPECT_EQ(shown(), "DejaVu Serif Regular");
    EXPECT_EQ(shownInWidgets(), "DejaVu Serif Regular");
    EXPECT_EQ(taken(), Log{"DejaVuSerif"});
}

TEST_F(FontButtonsInPane, AFaceIsChosenWithTheMouseAndKeptInTheNextFamily) {
    families->updatePopupForFont(NSFont::fontWithNameSize(u"DejaVuSans", 12));
    EXPECT_TRUE(withList([&] { QTest::mouseClick(faceFace, Qt::LeftButton); },
                         [](QListView& list) {
                             EXPECT_EQ(linesOf(list).front(), "Regular");
                             click(list, "Bold");
                         }));
    EXPECT_EQ(taken(), Log{"DejaVuSans-Bold"});
    EXPECT_TRUE(withList([&] { QTest::mouseClick(familyFace, Qt::LeftButton); },
                         [](QListView& list) { click(list, "DejaVu Serif"); }));
    EXPECT_EQ(taken(), Log{"DejaVuSerif-Bold"});
    EXPECT_EQ(shown(), "DejaVu Serif Bold");
}

/// A run in a face of this machine.
class SetRun final : public TitleRun {
public:
    std::shared_ptr<host::NSFont> font() const override { return NSFont::fontWithNameSize(fullFontName(), fontSize()); }
};

TEST_F(FontButtonsInPane, ShowTheFaceOfTheFirstSelectedRun) {
    const auto first = std::make_shared<SetRun>();
    first->setFullFontName(u"DejaVuSerif-Bold");
    const auto second = std::make_shared<SetRun>();
    second->setFullFontName(u"DejaVuSans");
    pane->updateFontSelections({first, second});
    EXPECT_EQ(shown(), "DejaVu Serif Bold");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontButtonsInPane, TheClosedButtonsShowTheirChoiceInTheMenuFont) {
    families->updatePopupForFont(NSFont::fontWithNameSize(u"DejaVuSerif-Bold", 12));
    bool seen = false;
    withList([&] { QTest::mouseClick(familyFace, Qt::LeftButton); },
             [&](QListView& list) {
                 seen = true;
                 EXPECT_FALSE(families->selectedItem()->attributedTitle()->font()->isMenuFont());
                 QTest::keyClick(&list, Qt::Key_Escape);
             });
    EXPECT_TRUE(seen);
    EXPECT_TRUE(families->selectedItem()->attributedTitle()->font()->isMenuFont());
    EXPECT_TRUE(faces->selectedItem()->attributedTitle()->font()->isMenuFont());
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontButtonsInPane, NeitherWheelNorKeysChangeAClosedButton) {
    families->updatePopupForFont(NSFont::fontWithNameSize(u"DejaVuSerif-Bold", 12));
    for (auto* button : {familyFace, faceFace}) {
        QWheelEvent wheel({5, 5}, button->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(button, &wheel);
        for (const auto key : {Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Left, Qt::Key_Right, Qt::Key_N})
            QTest::keyClick(button, key);
        // The arrows open the list, and moving in it is no choice either.
        EXPECT_TRUE(withList([&] { QTest::keyClick(button, Qt::Key_Down); },
                             [](QListView& list) {
                                 QTest::keyClick(&list, Qt::Key_Down);
                                 QTest::keyClick(&list, Qt::Key_Escape);
                             }));
    }
    EXPECT_EQ(shown(), "DejaVu Serif Bold");
    EXPECT_EQ(shownInWidgets(), "DejaVu Serif Bold");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontButtonsInPane, EveryFontOfTheCatalogIsShownAndReportedUnderItsName) {
    int shownFonts = 0;
    for (const auto& name : families->buildFontList()) {
        const auto font = NSFont::fontWithNameSize(name, 12);
        ASSERT_TRUE(font);
        families->updatePopupForFont(font);
        EXPECT_EQ(textOf(families->currentSelectedFullFontName()), toUtf8(name));
        ++shownFonts;
    }
    EXPECT_GT(shownFonts, 0);
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontButtonsInPane, AMissingFontFileLeavesTheListUsable) {
    // Fonts that have names and no files.
    class Lost final : public FontSource {
    public:
        std::vector<std::u16string> namesForLocale(const NSLocale&) override { return {}; }
        std::shared_ptr<const FontNames> namesOf(const std::u16string& name) override {
            return std::make_shared<FontNames>(FontNames{name, u"Lost", u"Lost"});
        }
        std::vector<FontFile> filesOf(const std::u16string&) override { return {}; }
        std::u16string defaultName() override { return {}; }
    };
    const WithFonts lost(std::make_shared<Lost>());
    EXPECT_TRUE(withList([&] { QTest::mouseClick(familyFace, Qt::LeftButton); },
                         [](QListView& list) {
                             EXPECT_FALSE(list.grab().isNull());
                             click(list, "DejaVu Serif");
                         }));
    EXPECT_EQ(taken(), Log{"DejaVuSerif"});
}

} // namespace
