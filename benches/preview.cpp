// SPDX-License-Identifier: MIT
// How soon an open preview shows a change of the title: from the notification that a key press in the title field sends
// to the new picture loaded in the image view. Measured in the real program's window, over 300 changes, with the sample
// page that ships with the pane. Also how long it takes until the picture is painted, for which nothing is claimed.

#include "MainWindow.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>

#include <QApplication>

#include <algorithm>
#include <chrono>
#include <iostream>

namespace {

using Clock = std::chrono::steady_clock;
using namespace platform;

constexpr int changes = 300;
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

/// The title as somebody types it, one letter more each time.
void type(host::ImprinterConfiguration& configuration, int change) {
    const auto before = configuration.titleTokens();
    std::vector<host::TitleToken> tokens;
    for (const auto& token : *before)
        if (!std::holds_alternative<std::u16string>(token))
            tokens.push_back(token);
    std::u16string text = u"Received ";
    for (int letter = 0; letter <= change % 40; ++letter)
        text += static_cast<char16_t>(u'a' + letter % 26);
    tokens.emplace_back(text);
    configuration.setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens)));
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

    std::vector<double> loaded;
    std::vector<double> painted;
    QImage before = popover->grab().toImage();
    for (int change = 0; change < changes; ++change) {
        type(*configuration, change);
        const auto start = Clock::now();
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, field);
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
    std::cout << "preview: a change of the title loaded in " << median << " ms at the median (claim: at most "
              << medianClaim << "), " << p99 << " ms at p99 (claim: at most " << p99Claim << "); painted in "
              << at(painted, 0.5) << " ms\n";
    window.close();
    std::filesystem::remove(store);
    return median <= medianClaim && p99 <= p99Claim ? 0 : 1;
}
