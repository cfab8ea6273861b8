// SPDX-License-Identifier: MIT
// Nothing on any screen stays in English where the language of the environment is another one; numbers, the direction
// of the layout and the toolkit's own dialogs follow it.

#include "Screens.h"

#include "HostBundle.h"
#include "Sentences.h"

#include <Foundation/NSBundle.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>

#include <fstream>
#include <set>

using namespace platform;
using namespace testing_support;

namespace {

/// What is read on a screen, heard, or shown while the pointer rests there; marks of shortcuts taken out.
std::set<QString> textsOf(QWidget& screen) {
    std::set<QString> texts;
    const auto add = [&](const QString& text) {
        for (const auto& line : text.split(u'\n'))
            texts.insert(QString(line).remove(u'&'));
    };
    QList<QWidget*> widgets = screen.findChildren<QWidget*>();
    widgets.append(&screen);
    for (auto* widget : widgets) {
        if (widget->isWindow() && widget != &screen && !qobject_cast<QMenu*>(widget))
            continue;
        if (widget == &screen)
            add(widget->windowTitle());
        add(widget->accessibleName());
        add(widget->toolTip());
        for (const auto* action : widget->actions())
            add(action->text());
        if (const auto* label = qobject_cast<QLabel*>(widget))
            add(label->text());
        else if (const auto* button = qobject_cast<QAbstractButton*>(widget))
            add(button->text());
        else if (const auto* box = qobject_cast<QComboBox*>(widget))
            for (int i = 0; i < box->count(); ++i)
                add(box->itemText(i));
        else if (const auto* tabs = qobject_cast<QTabBar*>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                add(tabs->tabText(i));
        else if (const auto* header = qobject_cast<QHeaderView*>(widget); header && header->isVisible())
            for (int i = 0; i < header->count(); ++i)
                add(header->model()->headerData(i, Qt::Horizontal).toString());
        else if (const auto* field = qobject_cast<QLineEdit*>(widget))
            add(field->placeholderText());
    }
    return texts;
}

bool hasLetters(const QString& text) {
    int inARow = 0;
    for (const auto character : text) {
        inARow = character.isLetter() ? inARow + 1 : 0;
        if (inARow == 2)
            return true;
    }
    return false;
}

/// Names that are the user's, the program's, or keys of the keyboard; and the toolkit's words, which has no such
/// language.
bool staysAsItIs(const QString& text) {
    static const std::set<QString> known{"Imprinter", "DejaVu Sans", "Bold",        "letter.png",
                                         "Ctrl+Up",   "Ctrl+Down",   "OK",          "Cancel",
                                         "Yes",       "No",          "Scroll Left", "Scroll Right"};
    return known.contains(text) || text.contains(QLatin1String(".pdf")) || text.startsWith(QLatin1String("<html>"));
}

class Words : public Screens {
protected:
    static std::shared_ptr<NSBundle> paneBundle() {
        return NSBundle::bundleWithPath(app::bundleFolder() / "ImprinterPrefPane.prefPane");
    }
};

TEST_F(Words, NothingStaysInEnglish) {
    open();
    std::set<std::string> found;
    const auto look = [&](const std::string& name, QWidget& screen) {
        for (const auto& text : textsOf(screen)) {
            bool english = false;
            if (language() == "qps") {
                english = hasLetters(text) && !staysAsItIs(text) && !text.contains(QChar(0x27E6));
            } else {
                // What the table translates otherwise has not been looked up.
                for (const auto& bundle : {paneBundle(), app::hostBundle()}) {
                    const auto local =
                        app::toQt(bundle->localizedStringForKeyValueTable(text.toStdU16String(), u"", u""));
                    english = english || local != text;
                }
                // Where a translation reads like another English key.
                english = english && language() != "en" && text.toLatin1() == text.toUtf8() && !staysAsItIs(text);
            }
            if (english)
                found.insert(name + ": " + text.toStdString());
        }
    };
    visitDialogs(look);
    window->pane().show(session->model().configurations()->front(), session->model());
    visitPages(look);
    std::string lines;
    for (const auto& each : found)
        lines += "\n  " + each;
    EXPECT_TRUE(found.empty()) << lines;
}

TEST_F(Words, WhatFailsIsSaidInTheLanguage) {
    const auto isLocal = [](const QString& sentence) {
        return !sentence.isEmpty() && (language() == "en" || !sentence.contains(QStringLiteral("English")));
    };
    engine::Outcome outcome;
    outcome.path = "/"; // which is there
    outcome.sentence = "English, by the engine.";
    for (const auto code :
         {engine::Code::unreadable, engine::Code::unsupported, engine::Code::damaged, engine::Code::encrypted,
          engine::Code::notPermitted, engine::Code::isSigned, engine::Code::certified, engine::Code::tooLarge,
          engine::Code::nothingToStamp, engine::Code::sameFile, engine::Code::writeProtected, engine::Code::changed,
          engine::Code::cancelled}) {
        outcome.code = code;
        EXPECT_TRUE(isLocal(app::sentenceOf(outcome))) << static_cast<int>(code);
    }
    // The system's reason is kept beside the sentence.
    outcome.code = engine::Code::cannotWrite;
    EXPECT_TRUE(app::sentenceOf(outcome).contains("English, by the engine."));
    outcome.code = engine::Code::unreadable;
    outcome.path = "/nowhere/letter.pdf";
    EXPECT_EQ(app::sentenceOf(outcome), app::text(u"The file does not exist."));

    for (const auto code :
         {store::Code::unreadable, store::Code::damaged, store::Code::foreign, store::Code::invalid, store::Code::newer,
          store::Code::tooLarge, store::Code::unstorable, store::Code::readOnly, store::Code::changedElsewhere,
          store::Code::contested, store::Code::unwritable, store::Code::busy}) {
        const store::Failure failure{
            code, u"English, by the store.", "/some/file.json", {{store::Detail::Kind::keptAside, u"/some/else"}}};
        EXPECT_TRUE(isLocal(app::sentenceOf(failure))) << static_cast<int>(code);
        // Elsewhere the file is named, and what else there is to say stands below.
        if (language() != "en") {
            EXPECT_TRUE(app::sentenceOf(failure).contains("/some/file.json"));
            EXPECT_TRUE(app::detailOf(failure).contains("/some/else"));
            EXPECT_TRUE(isLocal(app::detailOf(failure)));
        } else {
            EXPECT_TRUE(app::detailOf(failure).isEmpty());
        }
    }
}

TEST_F(Words, EveryKindOfRemarkIsSaidInTheLanguage) {
    // In another one than English nothing of the English sentence is looked at; what is in none of the tables would be
    // found by the check of the tables.
    const auto expectLocal = [](const QString& said, const QString& english, const std::string& which) {
        EXPECT_FALSE(said.isEmpty()) << which;
        EXPECT_EQ(said == english, language() == "en") << which << ' ' << said.toStdString();
        EXPECT_FALSE(said.contains(u'%')) << which << ' ' << said.toStdString();
    };
    for (std::size_t kind = 0; kind < engine::Warning::kinds; ++kind) {
        const engine::Warning warning{static_cast<engine::Warning::Kind>(kind), {"3", "4", "5"}};
        ASSERT_FALSE(warning.sentence().empty()) << kind;
        expectLocal(app::sentenceOf(warning), QString::fromStdString(warning.sentence()),
                    "warning " + std::to_string(kind));
    }
    using Deleted = store::Notice::Deleted;
    std::set<QString> notices;
    for (const auto kind : {store::Notice::Kind::outlivedDeletion, store::Notice::Kind::outlivedDeletionByUse,
                            store::Notice::Kind::leftOut})
        for (const auto deleted :
             {Deleted::here, Deleted::byAnotherProgram, Deleted::beforeTheProgramEnded, Deleted::since}) {
            const auto said = app::sentenceOf(store::Notice{kind, u"Inner", u"Outer", deleted, u"English"});
            expectLocal(said, "English", "notice");
            notices.insert(said);
        }
    EXPECT_EQ(notices.size(), language() == "en" ? 1U : 9U);
    std::set<QString> details;
    for (std::size_t kind = 0; kind < store::Detail::kinds; ++kind) {
        const store::Failure failure{
            store::Code::damaged, u"English", "/file", {{static_cast<store::Detail::Kind>(kind), u"7"}}};
        const auto said = app::detailOf(failure);
        EXPECT_EQ(said.isEmpty(), language() == "en") << kind;
        details.insert(said);
    }
    EXPECT_EQ(details.size(), language() == "en" ? 1U : store::Detail::kinds);
}

TEST_F(Words, RemarksFollowTheOrderOfWordsOfTheLanguage) {
    const engine::Warning character{engine::Warning::Kind::characterElsewhere, {"Serif", "U+3042", "Gothic"}};
    const engine::Warning pages{engine::Warning::Kind::beyondEdge, {"3", "1200"}};
    const store::Notice notice{store::Notice::Kind::leftOut, u"A", u"B", store::Notice::Deleted::here, u"English"};
    const std::map<std::string, std::vector<QString>> said{
        {"en",
         {"The font \"Serif\" lacks the character U+3042; it is taken from \"Gothic\".",
          "The stamp reaches beyond the edge of page 3 and 1200 others.", "English"}},
        {"de",
         {"In der Schrift „Serif“ fehlt das Zeichen U+3042; es wird aus „Gothic“ genommen.",
          "Der Stempel ragt über den Rand der Seite hinaus (Seite 3 und 1.200 weitere).",
          "„A“ gehört nicht zu „B“, denn sie ist jetzt selbst eine kombinierte Konfiguration."}},
        {"ja",
         {"文字 U+3042 はフォント「Serif」にないため、「Gothic」の文字を使います。",
          "スタンプがページの端からはみ出しています（ページ 3 ほか 1,200 ページ）。",
          "「A」は組み合わせた設定になったため、「B」には含まれません。"}}};
    if (!said.contains(language()))
        GTEST_SKIP() << "shown in three languages";
    EXPECT_EQ((std::vector<QString>{app::sentenceOf(character), app::sentenceOf(pages), app::sentenceOf(notice)}),
              said.at(language()));
}

TEST_F(Words, ADamagedFileIsToldOfInTheLanguage) {
    const auto file = folder / "configurations.json";
    std::ofstream(file) << "{\"format\": \"imprinter-configurations\",\n\"version\": 1,\n\"configurations\": [7]}";
    session = std::make_unique<app::Session>(file);
    ASSERT_EQ(session->messages().size(), 1U);
    const auto& failure = session->messages().front();
    EXPECT_EQ(failure.code, store::Code::invalid);
    const auto name = QString::fromStdString(file.string());
    QString aside;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path() != file)
            aside = QString::fromStdString(entry.path().string());
    if (language() == "de") {
        EXPECT_EQ(app::sentenceOf(failure).toStdString(),
                  QString::fromUtf8("Die Konfigurationen in „%1“ sind beschädigt.").arg(name).toStdString());
        EXPECT_EQ(app::detailOf(failure).toStdString(),
                  QString::fromUtf8("Der Fehler steht bei „configurations[0]“.\nDie Datei wird als „%1“ aufgehoben; an "
                                    "ihre Stelle treten die mitgelieferten Konfigurationen.")
                      .arg(aside)
                      .toStdString());
    } else if (language() == "ja") {
        EXPECT_EQ(app::detailOf(failure).toStdString(),
                  QString::fromUtf8("誤りは「configurations[0]」にあります。\nファイルは「%1」"
                                    "として残され、付属の設定が代わりに使われます。")
                      .arg(aside)
                      .toStdString());
    } else if (language() == "en") {
        EXPECT_TRUE(app::sentenceOf(failure).contains("configurations[0] is not an object"));
    }
}

TEST_F(Words, TheSuppliedConfigurationsAreCalledInTheLanguageAtTheFirstStart) {
    open();
    const auto names = [this] {
        QStringList all;
        for (const auto& configuration : *session->model().configurations())
            all << app::toQt(configuration->name());
        return all;
    };
    const QStringList local{app::text(u"Received"), app::text(u"Page of Pages"), app::text(u"Confidential")};
    EXPECT_EQ(names(), local);
    session->model().configurations()->front()->setName(u"Received");
    window->close();
    window.reset();
    session.reset();
    open();
    EXPECT_EQ(names().front(), "Received") << "what is stored stays";
}

TEST_F(Words, TheProgramAndThePaneSpeakTheLanguageOfTheEnvironment) {
    const std::map<std::string, std::string> languages{
        {"en_US", "en"}, {"de_DE", "de"}, {"fr_FR", "fr"},      {"es_ES", "es"}, {"it_IT", "it"}, {"pt_BR", "pt"},
        {"nl_NL", "nl"}, {"ja_JP", "ja"}, {"zh_CN", "zh-Hans"}, {"ar_EG", "ar"}, {"qps", "qps"}};
    const auto environment = qgetenv("LC_ALL").toStdString();
    const auto found = languages.find(environment.substr(0, environment.find('.')));
    ASSERT_NE(found, languages.end()) << environment;
    EXPECT_EQ(language(), found->second);
    EXPECT_EQ(paneBundle()->preferredLocalization(), found->second);
}

TEST_F(Words, TheToolkitsOwnButtonsSpeakTheSameLanguage) {
    const std::map<std::string, QString> cancels{{"en", "Cancel"},    {"de", "Abbrechen"},  {"fr", "Annuler"},
                                                 {"es", "Cancelar"},  {"it", "Annulla"},    {"pt", "Cancelar"},
                                                 {"nl", "Annuleren"}, {"ja", "キャンセル"}, {"zh-Hans", "取消"},
                                                 {"ar", "ألغِ"},       {"qps", "Cancel"}};
    QDialogButtonBox box(QDialogButtonBox::Cancel);
    EXPECT_EQ(box.button(QDialogButtonBox::Cancel)->text().remove(u'&'), cancels.at(language()));
}

TEST_F(Words, TheLayoutRunsAsTheLanguageDoes) {
    open();
    const bool mirrored = language() == "ar";
    EXPECT_EQ(QApplication::layoutDirection(), mirrored ? Qt::RightToLeft : Qt::LeftToRight);
    const auto at = [&](const char* name) { return child(name)->mapTo(window.get(), QPoint(0, 0)).x(); };
    EXPECT_EQ(at("tableView") > at("tabView"), mirrored);
    EXPECT_EQ(at("actionPopupMenu") > at("deleteConfigurationBtn"), mirrored);
    showEditor(u"Location");
    EXPECT_EQ(at("rotation") > at("rotationStepper"), mirrored);
    EXPECT_LT(at("topLeftBtn"), at("topRightBtn")) << "a page has its left on the left in every language";
}

/// Whether something is drawn between `from` and `to` of a row's own colour.
bool isDrawnOn(const QImage& picture, QRect place) {
    for (int x = place.left(); x <= place.right(); ++x)
        for (int y = place.top(); y <= place.bottom(); ++y)
            if (picture.pixel(x, y) != picture.pixel(place.topLeft()))
                return true;
    return false;
}

TEST_F(Words, TheMarkOfAListStandsWhereTheLineBegins) {
    if (language() == "ja" || language() == "zh-Hans")
        GTEST_SKIP() << "the fonts of the sample lack the letters, so that none of the list is marked";
    open();
    showEditor(u"Appearance");
    auto* button = child("fontAttributePopup");
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* popup = QApplication::activePopupWidget();
        auto* list = popup ? popup->findChild<QListView*>() : nullptr;
        if (!list)
            return;
        poll.stop();
        seen = true;
        const auto picture = list->viewport()->grab().toImage();
        auto row = list->visualRect(list->currentIndex());
        const int mark = list->fontMetrics().height();
        const QRect left(row.left() + 2, row.top() + 2, mark, row.height() - 4);
        const QRect right(row.right() - 1 - mark, row.top() + 2, mark, row.height() - 4);
        const bool mirrored = language() == "ar";
        EXPECT_TRUE(isDrawnOn(picture, mirrored ? right : left));
        EXPECT_FALSE(isDrawnOn(picture, mirrored ? left : right));
        QTest::keyClick(list, Qt::Key_Escape);
    });
    poll.start(1);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen; }));
}

TEST_F(Words, NumbersAreWrittenAndReadAsTheLocaleHasThem) {
    open();
    showEditor(u"Location");
    auto* field = child<QLineEdit>("rotation");
    ASSERT_TRUE(field);
    const auto written = QLocale().toString(-12.5).remove(QChar(0x061C)).remove(QChar(0x200E)).remove(QChar(0x200F));
    if (language() == "de") {
        EXPECT_EQ(written, QStringLiteral("-12,5"));
    }
    field->setFocus();
    field->selectAll();
    QKeyEvent typed(QEvent::KeyPress, 0, Qt::NoModifier, written); // digits of any script
    QApplication::sendEvent(field, &typed);
    child("xOffset")->setFocus();
    EXPECT_EQ(window->pane().currentConfiguration()->rotation(), -12);
    window->pane().currentConfiguration()->setRotation(-12.5);
    window->pane().refresh(session->model());
    EXPECT_EQ(field->text(), written);
    EXPECT_EQ(app::text(u"%@ documents stamped.", {app::written(12)}),
              app::text(u"%@ documents stamped.", {QLocale().toString(12)}));
}

} // namespace
