// SPDX-License-Identifier: MIT
// The pane in the language of the environment, on a host of another make.

#include "PaneTest.h"

#include <Foundation/NSBundle.h>

using namespace platform;
using namespace testing_support;

namespace {

class Languages : public PaneTest {};

TEST_F(Languages, TheShellSpeaksTheLanguageOfTheUser) {
    imprinter->setList({configuration(u"a")});
    start();
    const std::string language = NSBundle::bundleWithPath(PANE_BUNDLE)->preferredLocalization();
    const std::map<std::string, std::u16string> preview{{"en", u"Preview"},   {"de", u"Vorschau"},
                                                        {"fr", u"Aperçu"},    {"es", u"Vista previa"},
                                                        {"it", u"Anteprima"}, {"pt", u"Pré-visualização"},
                                                        {"nl", u"Voorbeeld"}, {"ja", u"プレビュー"},
                                                        {"zh-Hans", u"预览"}, {"ar", u"معاينة"}};
    EXPECT_EQ(language, qEnvironmentVariable("WANTED_LANGUAGE", QStringLiteral("en")).toStdString());
    ASSERT_TRUE(preview.count(language)) << language;
    EXPECT_EQ(outlet<NSButton>(u"previewBtn")->title(), preview.at(language));
}

TEST_F(Languages, CommandsNamesAndTheAlertSpeakTheLanguageOfTheUser) {
    imprinter->setList({configuration(u"a")});
    start();
    const auto bundle = NSBundle::bundleWithPath(PANE_BUNDLE);
    const auto local = [&](const char16_t* english) {
        auto text = bundle->localizedStringForKeyValueTable(english, u"", u"");
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
