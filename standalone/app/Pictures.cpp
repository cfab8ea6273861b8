// SPDX-License-Identifier: MIT
#include "Pictures.h"

#include "HostBundle.h"
#include "MainWindow.h"
#include "SamplePdf.h"

#include <AppKit/NSTabView.h>
#include <Foundation/NSException.h>
#include <app/Window.h>
#include <engine/Stamper.h>

#include <QApplication>

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
    return written(window.grab().save(QString::fromStdString(file.string())), file);
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
    return all;
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

fs::path samplePage() {
    return bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg";
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

    const auto sample = samplePage();
    const auto plain = folder / "sample.pdf";
    try {
        writeSamplePdf(sample, plain);
        std::cout << plain.string() << '\n';
    } catch (const std::exception& exception) {
        std::cerr << "imprinter: " << exception.what() << '\n';
        return false;
    }
    all = stamp(sample, folder / "sample-stamped.jpg", session) && all;
    return stamp(plain, folder / "sample-stamped.pdf", session) && all;
}

} // namespace app
