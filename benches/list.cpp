// SPDX-License-Identifier: MIT
// What selecting a row costs, in the real pane on the real model, with 10 and with 10,000 configurations in the list,
// at its beginning and at its end; and how long the long list takes to open. Rows are chosen as the user does, through
// the proposal.

#include "PaneHost.h"

#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>
#include <model/HostClasses.h>
#include <store/Store.h>

#include "PlaceholderTokenField.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMainWindow>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <iostream>

namespace {

using Clock = std::chrono::steady_clock;
using platform::NSIndexSet;

double milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class MemoryDefaults final : public platform::NSUserDefaults {
public:
    std::optional<std::u16string> stringForKey(const std::u16string&) const override { return std::nullopt; }
    void setObjectForKey(const std::u16string&, const std::u16string&) override {}
    void removeObjectForKey(const std::u16string&) override {}
};

/// A pane in a window, on a model with `count` configurations.
struct Opened {
    std::shared_ptr<model::ImprinterModel> model = std::make_shared<model::ImprinterModel>();
    std::unique_ptr<app::PaneHost> pane;
    QMainWindow window;
    double openingTime = 0;

    explicit Opened(int count) {
        for (int i = 0; i < count; ++i)
            model->createConfiguration(false)->setName(u"Configuration");
        const auto start = Clock::now();
        const model::HostClasses classes(model);
        std::string error;
        pane = app::PaneHost::load(PANE_BUNDLE, error);
        if (!pane) {
            std::cerr << error << '\n';
            std::exit(1);
        }
        pane->willShow();
        window.setCentralWidget(platform::widgetOf(*pane->view()));
        window.show();
        pane->didShow();
        QApplication::processEvents();
        openingTime = milliseconds(start);
    }

    QAbstractItemView& list() { return *window.findChild<QAbstractItemView*>(QStringLiteral("tableView")); }

    /// From now on rows at the end are selected.
    void goToEnd() {
        list().scrollToBottom();
        QApplication::processEvents();
        m_first = static_cast<int>(model->configurations()->size()) - 8;
    }

    /// One selection, painted, in milliseconds. Rows of one screen only, so that nothing scrolls.
    double select(int step) {
        const auto row = static_cast<platform::NSInteger>(m_first) + step % 8;
        const auto start = Clock::now();
        pane->table()->userSelects(NSIndexSet(static_cast<platform::NSUInteger>(row)), row);
        QApplication::processEvents();
        return milliseconds(start);
    }

private:
    int m_first = 0;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    platform::NSUserDefaults::setStandardUserDefaults(std::make_shared<MemoryDefaults>());
    const platform::ClassRegistration tokenField(app::PlaceholderTokenField::describeClass());

    Opened few(10);
    Opened many(10000);
    std::cout << "opening a list of 10: " << few.openingTime << " ms, of 10,000: " << many.openingTime << " ms\n";
    bool grows = false;
    for (const char* end : {"first", "last"}) {
        std::vector<double> timesFew;
        std::vector<double> timesMany;
        for (int i = 0; i < 2000; ++i) {
            timesFew.push_back(few.select(i + 1));
            timesMany.push_back(many.select(i + 1));
        }
        const double ratio = median(timesMany) / median(timesFew);
        std::cout << "selecting one of the " << end << " rows of 10: " << median(timesFew)
                  << " ms, of 10,000: " << median(timesMany) << " ms, ratio " << ratio << " (claim: at most 1.1)\n";
        grows = grows || ratio > 1.1;
        few.goToEnd();
        many.goToEnd();
    }
    auto* table = &many.list();
    std::vector<double> steps;
    auto* bar = table->verticalScrollBar();
    for (int value = 0; value <= bar->maximum(); value += std::max(bar->maximum() / 200, 1)) {
        const auto start = Clock::now();
        bar->setValue(value);
        QApplication::processEvents();
        steps.push_back(milliseconds(start));
    }
    const double slowest = *std::max_element(steps.begin(), steps.end());
    std::cout << "scrolling through 10,000 rows in " << steps.size() << " steps: median " << median(steps)
              << " ms a step, slowest " << slowest << " ms (claim: opening and every step at most 100 ms)\n";
    return !grows && many.openingTime <= 100 && slowest <= 100 ? 0 : 1;
}
