// SPDX-License-Identifier: MIT
#include "Screens.h"

#include "../support/ProgramWindow.h"
#include "ExchangeCommands.h"
#include "HostBundle.h"
#include "Language.h"
#include "Preflight.h"
#include "SettingsDialog.h"
#include "StampRun.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTabView.h>

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QFontDatabase>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>

using namespace platform;
namespace fs = std::filesystem;

namespace testing_support {

std::string language() {
    return app::programLanguage().toStdString();
}

void Screens::SetUp() {
    NSUserDefaults::setStandardUserDefaults(defaults);
    std::string name = (fs::temp_directory_path() / "imprinter-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    NSPopover::setAnimationDuration(0);
}

void Screens::TearDown() {
    window.reset();
    session.reset();
    NSPopover::setAnimationDuration(0.15);
    NSUserDefaults::setStandardUserDefaults(nullptr);
    fs::remove_all(folder);
}

void Screens::open() {
    session = std::make_unique<app::Session>(folder / "configurations.json");
    window = makeWindow(*session);
    ASSERT_TRUE(window);
    window->show();
    window->activateWindow();
    window->afterFirstPaint();
    settle();
}

void Screens::settle() {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QApplication::processEvents();
}

void Screens::perform(std::u16string_view action, const std::shared_ptr<NSObject>& sender) {
    auto& pane = window->pane().pane();
    const auto* performed = pane.classTable()->action(action);
    ASSERT_TRUE(performed);
    (*performed)(pane, sender);
}

void Screens::showEditor(const char16_t* page) {
    outlet<NSTabView>(u"tabView")->selectTabViewItemWithIdentifier(page);
    settle();
}

void Screens::visitPages(const Look& look) {
    const auto smallest = [&](const std::string& name) {
        window->resize(window->minimumSizeHint());
        settle();
        look(name, *window);
    };
    auto& model = session->model();
    const auto first = model.configurations()->front();
    window->pane().show(first, model);

    showEditor(u"Location");
    smallest("location");
    const auto occurrence = outlet<NSMatrix>(u"occuranceMatrix");
    occurrence->userSelects(occurrence->cellWithTag(4));
    smallest("location with a list of pages");
    occurrence->userSelects(occurrence->cellWithTag(0));
    showEditor(u"Appearance");
    smallest("appearance");

    const auto combined = model.createConfiguration(true);
    combined->setName(first->name());
    combined->addConfiguration(first);
    window->pane().show(combined, model);
    smallest("combined");
    window->pane().show(nullptr, model);
    smallest("nothing selected");

    while (count(model.configurations()) > 0)
        model.deleteConfigurationAtIndex(0);
    window->pane().show(nullptr, model);
    smallest("no configurations");
}

void Screens::lookAtModal(const std::string& name, const Look& look, const std::function<void()>& open) {
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* modal = QApplication::activeModalWidget();
        if (!modal)
            return;
        // What follows when it is closed is another screen.
        if (!std::exchange(seen, true)) {
            settle();
            look(name, *modal);
        }
        if (auto* dialog = qobject_cast<QDialog*>(modal))
            dialog->reject();
        else
            modal->close();
    });
    poll.start(1);
    open();
    // What opens later, for one who was not kept waiting.
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen; })) << name << " was not shown";
    settle();
}

void Screens::visitStampingDialogs(const Look& look) {
    app::Preflight found;
    found.lines = QStringList{QStringLiteral("letter.pdf: …"), QStringLiteral("letter.png: …")};
    for (found.stampable = 0; found.stampable < 2; ++found.stampable)
        lookAtModal("what stamping would come upon", look, [&] { app::goesOn(window.get(), found); });

    // A question in the middle, with the progress below it.
    const auto locked = folder / "locked.pdf";
    ASSERT_EQ(std::system(("qpdf --empty --encrypt secret owner 256 -- '" + locked.string() + "'").c_str()), 0);
    const auto both = [&](const std::string& name, QWidget& question) {
        look(name, question);
        auto* progress = window->findChild<QProgressDialog*>(QStringLiteral("stamping"));
        ASSERT_TRUE(progress && progress->isVisible());
        look("progress", *progress);
    };
    lookAtModal("password", both,
                [&] { app::stampDocuments(window.get(), {locked}, window->pane().currentConfiguration(), false); });
}

void Screens::visitStoreDialogs(const Look& look) {
    const auto file = folder / "configurations.json";
    auto& model = session->model();
    const auto theirs = [&](double degrees, bool saves) {
        store::Store other(file);
        model::ImprinterModel read;
        read.setConfigurations(other.load().configurations);
        read.configurations()->front()->setRotation(degrees);
        EXPECT_FALSE(saves ? other.save(read) : other.keepUnsaved(read));
    };
    session->saveChanges();
    theirs(12, false);
    lookAtModal("changes that were not saved", look, [&] { window->offerUnsaved(); });
    for (const auto& unsaved : session->unsaved())
        session->discard(unsaved);

    model.configurations()->front()->setRotation(3);
    session->saveChanges();
    theirs(30, true);
    model.configurations()->front()->setRotation(60);
    lookAtModal("a configuration that was changed twice", look, [&] { session->saveChanges(); });
    lookAtModal("what could not be saved", look, [&] { window->warn({store::Code::unwritable, u"…", file}); });
    lookAtModal("configurations that are here already", look, [&] {
        app::askAboutPresent(*window, file, {u"…", model.configurations()->front()->name()});
    });
    model.configurations()->front()->setRotation(0);
}

void Screens::visitDialogs(const Look& look) {
    {
        app::SettingsDialog settings(window.get());
        settings.show();
        settle();
        settings.resize(settings.minimumSizeHint());
        settle();
        look("settings", settings);
    }
    for (auto* action : window->findChildren<QAction*>())
        if (action->shortcut() == QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O))
            action->trigger();
    settle();
    auto* palette = child("orderPalette");
    ASSERT_TRUE(palette);
    palette->resize(palette->minimumSizeHint());
    settle();
    look("order", *palette);
    palette->hide();

    window->activateWindow();
    perform(u"onPreview:", outlet<NSObject>(u"previewBtn"));
    settle();
    auto* popover = QApplication::activePopupWidget();
    ASSERT_TRUE(popover);
    look("preview", *popover);
    QTest::keyClick(popover, Qt::Key_Escape);
    settle();

    lookAtModal("deletion", look, [&] { perform(u"deleteConfiguration:"); });
    lookAtModal("empty list of pages", look, [&] {
        const auto occurrence = outlet<NSMatrix>(u"occuranceMatrix");
        showEditor(u"Location");
        occurrence->userSelects(occurrence->cellWithTag(4));
        outlet<NSControl>(u"customOccurance")->setStringValue(u"");
        outlet<NSTabView>(u"tabView")->userSelects(1);
        settle();
    });
    const auto occurrence = outlet<NSMatrix>(u"occuranceMatrix");
    occurrence->userSelects(occurrence->cellWithTag(0));

    // A document that was given on the way in, of a long name.
    window->offerDocuments({folder / (std::string(200, 'w') + ".pdf")});
    settle();
    look("a document that waits", *window);

    visitStampingDialogs(look);
    visitStoreDialogs(look);

    engine::Outcome failed;
    failed.code = engine::Code::damaged;
    failed.path = folder / "no.pdf";
    failed.sentence = "…";
    app::StampSummary summary;
    summary.failed = {failed};
    lookAtModal("a failure", look, [&] { app::tellSummary(window.get(), summary); });
    summary.failed.push_back(failed);
    summary.done.resize(2);
    lookAtModal("failures", look, [&] { app::tellSummary(window.get(), summary); });

    QImage(30, 20, QImage::Format_RGB32).save(QString::fromStdString((folder / "letter.png").string()));
    window->pane().currentConfiguration()->setDuplicateRecord(2);
    for (const int files : {1, 2})
        lookAtModal("question about originals", look, [&] {
            QMimeData mime;
            mime.setUrls(
                QList<QUrl>(files, QUrl::fromLocalFile(QString::fromStdString((folder / "letter.png").string()))));
            QDragEnterEvent enters({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
            QApplication::sendEvent(window.get(), &enters);
            QDropEvent drops({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
            QApplication::sendEvent(window.get(), &drops);
            settle();
        });
    window->pane().show(nullptr, session->model());
    lookAtModal("nothing to stamp with", look, [&] {
        for (auto* action : window->findChildren<QAction*>())
            if (action->shortcut() == QKeySequence::Open)
                action->trigger();
    });
}

} // namespace testing_support
