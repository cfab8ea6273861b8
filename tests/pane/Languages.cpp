// SPDX-License-Identifier: MIT
// The pane in the language of the environment: every text has room at the smallest size of the window.

#include "PaneTest.h"

#include <Foundation/NSBundle.h>

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QToolButton>

using namespace platform;
using namespace testing_support;

namespace {

class Languages : public PaneTest {
protected:
    /// The controls that are seen and have less room than their text needs.
    std::vector<std::string> clipped() {
        std::vector<std::string> found;
        const auto check = [&](const QWidget& widget, const QString& text) {
            // A push button asks for more than its text needs, so that a row of them looks even.
            const int needed = qobject_cast<const QPushButton*>(&widget)
                                   ? widget.fontMetrics().size(Qt::TextShowMnemonic, text).width() + 8
                                   : widget.sizeHint().width();
            if (widget.isVisible() && !text.isEmpty() && needed > widget.width())
                found.push_back(widget.objectName().toStdString() + " \"" + text.toStdString() + "\" needs " +
                                std::to_string(needed) + ", has " + std::to_string(widget.width()));
        };
        for (const auto* label : window->findChildren<QLabel*>())
            if (!label->wordWrap())
                check(*label, label->text());
        for (const auto* button : window->findChildren<QAbstractButton*>())
            check(*button, button->text());
        for (const auto* bar : window->findChildren<QTabBar*>())
            if (bar->isVisible() && bar->sizeHint().width() > bar->parentWidget()->width())
                found.push_back("tabs");
        return found;
    }
};

TEST_F(Languages, EveryTextHasRoomAtTheSmallestSize) {
    imprinter->setList({configuration(u"a"), configuration(u"c", true)});
    start();
    window->resize(window->minimumSizeHint());
    QApplication::processEvents();
    const auto editor = outlet<NSTabView>(u"tabView");
    for (const char16_t* page : {u"Location", u"Appearance"}) {
        editor->selectTabViewItemWithIdentifier(page);
        QApplication::processEvents();
        EXPECT_EQ(clipped(), std::vector<std::string>()) << toUtf8(page);
    }
    for (const char16_t* page : {u"Imprint Combined", u"No Imprint"}) {
        outlet<NSTabView>(u"mainTabView")->selectTabViewItemWithIdentifier(page);
        QApplication::processEvents();
        EXPECT_EQ(clipped(), std::vector<std::string>()) << toUtf8(page);
    }
}

TEST_F(Languages, TheShellSpeaksTheLanguageOfTheUser) {
    imprinter->setList({configuration(u"a")});
    start();
    const std::string language = NSBundle::bundleWithPath(PANE_BUNDLE)->preferredLocalization();
    const std::map<std::string, std::u16string> preview{{"en", u"Preview"}, {"de", u"Vorschau"}, {"ja", u"プレビュー"}};
    EXPECT_EQ(language, qEnvironmentVariable("WANTED_LANGUAGE", QStringLiteral("en")).toStdString());
    ASSERT_TRUE(preview.count(language)) << language;
    EXPECT_EQ(outlet<NSButton>(u"previewBtn")->title(), preview.at(language));
}

TEST_F(Languages, CommandsNamesAndTheAlertSpeakTheLanguageOfTheUser) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto bundle = NSBundle::bundleWithPath(PANE_BUNDLE);
    const auto local = [&](const char16_t* english) {
        const auto text = bundle->localizedStringForKeyValueTable(english, u"", u"");
        EXPECT_EQ(text == english, bundle->preferredLocalization() == "en") << toUtf8(english);
        return text;
    };
    const auto menu = pane->buildActionMenu();
    EXPECT_EQ(menu->itemArray()[1]->title(), local(u"New Configuration"));
    pane->deleteConfiguration(nullptr);
    EXPECT_EQ(alerts.back(), stringWithFormat(local(u"Delete %@?"), {u"a"}));
    EXPECT_EQ(informativeTexts.back(), local(u"Deleted configurations cannot be restored."));
    EXPECT_EQ(buttonTitles.back(), (std::vector<std::u16string>{local(u"Delete"), local(u"Cancel")}));
    pane->addConfiguration(nullptr);
    EXPECT_EQ(imprinter->made->name(), local(u"New Imprinter"));
    pane->createCombinedConfiguration(nullptr);
    EXPECT_EQ(imprinter->made->name(), local(u"New Combined Imprint"));
}

} // namespace
