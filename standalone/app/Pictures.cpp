// SPDX-License-Identifier: MIT
#include "Pictures.h"

#include "DocumentsProgress.h"
#include "ExchangeCommands.h"
#include "HostBundle.h"
#include "MainWindow.h"
#include "Preflight.h"
#include "Questions.h"
#include "SamplePdf.h"
#include "Sentences.h"
#include "SettingsDialog.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTabView.h>
#include <Foundation/NSException.h>
#include <app/Window.h>
#include <engine/Stamper.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMenuBar>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <iostream>

namespace app {

using namespace platform;
namespace fs = std::filesystem;

namespace {

std::shared_ptr<NSTabView> tabs(PaneHost& pane, std::u16string_view outletName) {
    const auto* outlet = pane.pane().classTable()->outlet(outletName);
    return outlet ? std::dynamic_pointer_cast<NSTabView>(outlet->object(pane.pane())) : nullptr;
}

bool written(bool success, const fs::path& file) {
    if (success)
        std::cout << file.string() << '\n';
    else
        std::cerr << "imprinter: " << file.string() << " cannot be written\n";
    return success;
}

bool grab(QWidget& window, const fs::path& file) {
    QApplication::processEvents();
    return written(window.grab().save(shown(file)), file);
}

/// Windows as they stand on the screen, the later ones above.
QPixmap together(const std::vector<QWidget*>& windows) {
    QRect whole;
    for (const auto* window : windows)
        whole = whole.united(window->geometry());
    const auto scale = windows.front()->devicePixelRatioF();
    QPixmap all(whole.size() * scale);
    all.setDevicePixelRatio(scale);
    all.fill(Qt::transparent);
    QPainter painter(&all);
    for (auto* window : windows) {
        const auto place = window->geometry().translated(-whole.topLeft());
        painter.drawPixmap(place.topLeft(), window->grab());
        if (window != windows.front() && window->windowType() != Qt::Popup) {
            painter.setPen(window->palette().color(QPalette::Mid)); // the frame that a desktop would draw
            painter.drawRect(place.adjusted(-1, -1, 0, 0));
        }
    }
    return all;
}

/// A picture of each tab of the editor, then of the pages that take its place.
bool grabPages(MainWindow& window, Session& session, const fs::path& folder) {
    bool all = true;
    const auto editor = tabs(window.pane(), u"tabView");
    for (const char16_t* page : {u"Appearance", u"Location"}) {
        tell(editor, &NSTabView::selectTabViewItemWithIdentifier, page);
        all = grab(window,
                   folder / (page == std::u16string_view(u"Location") ? "pane-location.png" : "pane-appearance.png")) &&
              all;
    }
    // A combined one for the picture alone; nothing here is stored.
    auto& model = session.model();
    const auto first = window.pane().currentConfiguration();
    const auto combined = model.createConfiguration(true);
    combined->setName(text(u"Received, with page numbers").toStdU16String());
    const auto ordinary = model.nonCombinedConfigurations();
    for (std::size_t i = 0; i < std::min<std::size_t>(ordinary->size(), 2); ++i)
        combined->addConfiguration((*ordinary)[i]);
    window.pane().show(combined, model);
    all = grab(window, folder / "pane-combined.png") && all;
    model.deleteConfigurationAtIndex(model.indexOfConfiguration(combined));
    window.pane().show(nullptr, model);
    all = grab(window, folder / "pane-empty.png") && all;
    window.pane().show(first, model);
    tell(editor, &NSTabView::selectTabViewItemWithIdentifier, u"Appearance");
    return all;
}

/// The window with the preview above its button, as they stand on the screen.
bool grabPreview(MainWindow& window, const fs::path& file) {
    window.move(0, 300); // the preview is taller than the window
    QApplication::processEvents();
    auto* button = window.findChild<QWidget*>(QStringLiteral("previewBtn"));
    QTimer::singleShot(0, button, [button] { static_cast<QAbstractButton*>(button)->click(); });
    NSPopover::setAnimationDuration(0);
    QApplication::processEvents();
    auto* preview = QApplication::activePopupWidget();
    if (!preview)
        return written(false, file);
    QApplication::processEvents(); // it has just been given its size
    const auto both = together({&window, preview});
    preview->close();
    QApplication::processEvents();
    return written(both.save(shown(file)), file);
}

/// The window with a menu open, and a menu in that one where `inner` names it; both by their places.
bool grabMenu(MainWindow& window, int menu, const QString& inner, const fs::path& file) {
    window.move(0, 0);
    QApplication::processEvents();
    auto* title = window.menuBar()->actions().at(menu);
    const auto place = window.menuBar()->actionGeometry(title);
    const auto below = window.layoutDirection() == Qt::RightToLeft
                           ? place.bottomRight() - QPoint(title->menu()->sizeHint().width(), 0)
                           : place.bottomLeft();
    title->menu()->popup(window.menuBar()->mapToGlobal(below));
    QApplication::processEvents();
    std::vector<QWidget*> widgets{&window, title->menu()};
    for (auto* action : title->menu()->actions())
        if (!inner.isEmpty() && action->menu() && action->text() == inner) {
            title->menu()->setActiveAction(action);
            action->menu()->popup(title->menu()->mapToGlobal(title->menu()->actionGeometry(action).topRight()));
            QApplication::processEvents();
            widgets.push_back(action->menu());
        }
    const auto all = together(widgets);
    for (auto widget = widgets.rbegin(); *widget != &window; ++widget)
        (*widget)->close();
    QApplication::processEvents();
    return written(all.save(shown(file)), file);
}

/// The window with a dialog that `ask` opens, which is then closed.
bool grabQuestion(MainWindow& window, const fs::path& file, const std::function<void()>& ask) {
    QPixmap both;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        poll.stop();
        QApplication::processEvents();
        dialog->move(window.geometry().center() - dialog->rect().center());
        both = together({&window, dialog});
        dialog->reject();
    });
    poll.start(1);
    ask();
    return written(both.save(shown(file)), file);
}

/// Of what is asked and told over the window. Nothing is stamped, imported or taken over.
bool grabQuestions(MainWindow& window, Session& session, const fs::path& folder) {
    const auto name = session.model().configurations()->front()->name();
    bool all = grabQuestion(window, folder / "preflight.png", [&] {
        Preflight found;
        found.stampable = 2;
        const auto remark = [&](const QString& document, const QString& sentence) {
            found.lines.append(document + QStringLiteral(": ") + sentence);
        };
        engine::Outcome locked;
        locked.code = engine::Code::encrypted;
        locked.sentence = "The document needs a password.";
        remark(QStringLiteral("contract.pdf"), sentenceOf(locked));
        remark(QStringLiteral("letter.pdf"),
               sentenceOf(engine::Warning{engine::Warning::Kind::beyondEdge, {"3", "4"}}));
        remark(QStringLiteral("scan.tif"),
               sentenceOf(engine::Warning{engine::Warning::Kind::characterElsewhere,
                                          {"DejaVuSans-Bold", "U+5370", "NotoSansCJKjp-Bold"}}));
        goesOn(&window, found);
    });
    all = grabQuestion(window, folder / "import.png",
                       [&] { askAboutPresent(window, "office/configurations.json", {name}); }) &&
          all;
    all = grabQuestion(window, folder / "unsaved.png",
                       [&] {
                           store::Unsaved unsaved;
                           unsaved.journal = folder / "pane-location.png"; // of just now
                           unsaved.configurations = 2;
                           askAboutUnsaved(window, unsaved);
                       }) &&
          all;
    DocumentsProgress progress(&window, text(u"Stamp Document"), 3);
    progress.begin("contract.pdf");
    progress.begin("letter.pdf");
    progress.goesOn(30, 100);
    progress.show();
    QApplication::processEvents();
    progress.move(window.geometry().center() - progress.rect().center());
    return written(together({&window, &progress}).save(shown(folder / "progress.png")), folder / "progress.png") && all;
}

/// The menus that work on what was done, and on the sample.
bool grabMenus(MainWindow& window, Session& session, const fs::path& folder) {
    const auto first = session.model().configurations()->front();
    const auto degrees = first->rotation();
    first->setRotation(30);
    session.history().endStep();
    const bool undo = grabMenu(window, 1, {}, folder / "menu-edit.png");
    window.undo(false);
    first->setRotation(degrees);
    return grabMenu(window, 0, text(u"Sample &Document"), folder / "menu-sample.png") && undo;
}

/// Of the palette of the order and of the settings, which stand beside the window.
bool grabOthers(MainWindow& window, const fs::path& folder) {
    auto* order = window.findChild<QWidget*>(QStringLiteral("orderPalette"));
    order->show();
    bool all = grab(*order, folder / "order.png");
    order->hide();
    SettingsDialog settings(&window);
    settings.show();
    all = grab(settings, folder / "settings.png") && all;
    return all;
}

/// Of the window before there is anything in it.
bool grabFirst(MainWindow& window, Session& session, const fs::path& file) {
    auto& model = session.model();
    while (count(model.configurations()) > 1)
        model.deleteConfigurationAtIndex(0);
    window.pane().show(model.configurations()->front(), model);
    // The last one goes as a user deletes it.
    NSAlert::setAnswerer([](const NSAlert&) { return NSAlertFirstButtonReturn; });
    window.pane().perform(u"deleteConfiguration:");
    NSAlert::setAnswerer({});
    return grab(window, file);
}

bool stamp(const fs::path& input, const fs::path& output, Session& session) {
    engine::StampJob job;
    job.input = input;
    job.output = output;
    job.recordName = u"Sample";
    for (const auto& configuration : *session.model().configurations())
        job.configurations.push_back(configuration);
    const auto outcome = engine::stampFile(job);
    if (outcome)
        std::cout << output.string() << '\n';
    else
        std::cerr << "imprinter: " << outcome.path.string() << ": " << outcome.sentence << '\n';
    return outcome.code == engine::Code::ok;
}

} // namespace

void chooseLook(const std::string& look) {
    const auto choose = [](QPalette palette, QRgb text, QRgb base, QRgb highlight, QRgb highlightedText,
                           QRgb disabled) {
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
            palette.setColor(role, QColor(text));
            palette.setColor(QPalette::Disabled, role, QColor(disabled));
        }
        palette.setColor(QPalette::Base, QColor(base));
        palette.setColor(QPalette::ToolTipBase, QColor(base));
        palette.setColor(QPalette::Highlight, QColor(highlight));
        palette.setColor(QPalette::HighlightedText, QColor(highlightedText));
        palette.setColor(QPalette::PlaceholderText, QColor(disabled));
        QApplication::setPalette(palette);
    };
    if (look == "dark")
        choose(QPalette(QColor(0x3A3A3CU), QColor(0x2C2C2EU)), 0xE8E8E8, 0x1E1E20, 0x3D8EC9, 0xFFFFFF, 0x808084);
    else if (look == "contrast")
        choose(QPalette(QColor(0x484848U), QColor(0x2C2C2CU)), 0xFFFFFF, 0x000000, 0xFFE000, 0x000000, 0xA0A0A0);
}

bool leavePictures(MainWindow& window, Session& session, const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        std::cerr << "imprinter: " << folder.string() << ": " << error.message() << '\n';
        return false;
    }
    window.show();
    window.afterFirstPaint();
    bool all = grabPages(window, session, folder);
    all = grabPreview(window, folder / "window-preview.png") && all;
    all = grabOthers(window, folder) && all;
    all = grabQuestions(window, session, folder) && all;
    all = grabMenus(window, session, folder) && all;

    const auto sample = files::samplePage();
    const auto plain = folder / "sample.pdf";
    try {
        writeSamplePdf(sample, plain);
        std::cout << plain.string() << '\n';
    } catch (const std::exception& exception) {
        std::cerr << "imprinter: " << exception.what() << '\n';
        return false;
    }
    all = stamp(sample, folder / "sample-stamped.jpg", session) && all;
    all = stamp(plain, folder / "sample-stamped.pdf", session) && all;
    return grabFirst(window, session, folder / "window-first.png") && all; // nothing here is stored
}

} // namespace app
