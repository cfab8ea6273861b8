// SPDX-License-Identifier: MIT
// How soon an open preview shows a change of the title: from a key press in the title field to the new picture loaded
// in the image view. Measured in the real program's window, over 300 changes, with the sample page that ships with the
// pane. Also how long it takes until the picture is painted, for which nothing is claimed.

#include "MainWindow.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>

#include <QApplication>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <iostream>

namespace {

using Clock = std::chrono::steady_clock;
using namespace platform;

constexpr int changes = 300;
constexpr int lettersInARow = 40;
constexpr double medianClaim = 8; // milliseconds
constexpr double p99Claim = 16;

double milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class MemoryDefaults final : public NSUserDefaults {
public:
    std::optional<std::u16string> stringForKey(const std::u16string&) const override { return std::nullopt; }
    void setObjectForKey(const std::u16string&, const std::u16string&) override {}
    void removeObjectForKey(const std::u16string&) override {}
};

template <class T>
std::shared_ptr<T> outlet(NSObject& owner, std::u16string_view name) {
    const auto* described = owner.classTable()->outlet(name);
    return described ? std::dynamic_pointer_cast<T>(described->object(owner)) : nullptr;
}

double at(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, static_cast<std::size_t>(share * static_cast<double>(values.size())))];
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    NSUserDefaults::setStandardUserDefaults(std::make_shared<MemoryDefaults>());
    const auto store = std::filesystem::temp_directory_path() / "imprinter-bench-preview.json";
    std::filesystem::remove(store);
    app::Session session(store);
    std::string error;
    auto pane = app::PaneHost::load(PANE_BUNDLE, error);
    if (!pane) {
        std::cerr << error << '\n';
        return 1;
    }
    app::MainWindow window(session, std::move(pane));
    window.show();
    window.afterFirstPaint();
    QApplication::processEvents();

    auto& owner = window.pane().pane();
    const auto configuration = window.pane().currentConfiguration();
    const auto field = outlet<NSTextField>(owner, u"titleTokenField");
    const auto button = outlet<NSButton>(owner, u"previewBtn");
    if (!configuration || !field || !button) {
        std::cerr << "there is nothing to preview\n";
        return 1;
    }
    NSPopover::setAnimationDuration(0);
    button->performClick();
    QApplication::processEvents();
    auto* popover = QApplication::activePopupWidget();
    if (!popover) {
        std::cerr << "the preview did not open\n";
        return 1;
    }

    QTest::keyClick(widgetOf(*field), Qt::Key_End, Qt::ControlModifier);
    std::vector<double> loaded;
    std::vector<double> painted;
    QImage before = popover->grab().toImage();
    auto* const edit = widgetOf(*field);
    for (int change = 0; change < changes; ++change) {
        // As somebody types, who starts again from time to time.
        if (change % lettersInARow == 0)
            for (int letter = 0; change > 0 && letter < lettersInARow; ++letter)
                QTest::keyClick(edit, Qt::Key_Backspace);
        QApplication::processEvents();
        const auto start = Clock::now();
        QTest::keyClick(edit, static_cast<char>('a' + change % 26));
        loaded.push_back(milliseconds(start));
        QApplication::processEvents();
        painted.push_back(milliseconds(start));
        if (change % 50 == 0) {
            auto after = popover->grab().toImage();
            if (after == before) {
                std::cerr << "change " << change << " is not seen\n";
                return 1;
            }
            before = std::move(after);
        }
    }
    const double median = at(loaded, 0.5);
    const double p99 = at(loaded, 0.99);
    std::cout << "preview: a key press in the title is loaded in " << median << " ms at the median (claim: at most "
              << medianClaim << "), " << p99 << " ms at p99 (claim: at most " << p99Claim << "); painted in "
              << at(painted, 0.5) << " ms\n";
    window.close();
    std::filesystem::remove(store);
    return median <= medianClaim && p99 <= p99Claim ? 0 : 1;
}
