// SPDX-License-Identifier: MIT
// What choosing a font costs on a machine with 3,000 faces, which FONTCONFIG_FILE has to name: building the catalog,
// beside fontconfig's own listing of the same names, and opening the list of families in the real pane for the first
// time, with every line that comes into view drawn in its own font.

#include "PaneHost.h"

#include <Foundation/NSUserDefaults.h>
#include <PlatformQt/Bridge.h>
#include <VelIFonts.h>
#include <model/HostClasses.h>

#include "PlaceholderTokenField.h"

#include <QApplication>
#include <QComboBox>
#include <QListView>
#include <QMainWindow>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

class MemoryDefaults final : public platform::NSUserDefaults {
public:
    std::optional<std::u16string> stringForKey(const std::u16string&) const override { return std::nullopt; }
    void setObjectForKey(const std::u16string&, const std::u16string&) override {}
    void removeObjectForKey(const std::u16string&) override {}
};

/// fontconfig's listing of the faces for English; answers how many there are.
int listFaces() {
    FcPattern* const english = FcPatternCreate();
    FcPatternAddString(english, FC_LANG, reinterpret_cast<const FcChar8*>("en"));
    FcObjectSet* const wanted = FcObjectSetBuild(FC_POSTSCRIPT_NAME, FC_FAMILY, FC_FULLNAME, FC_STYLE, nullptr);
    FcFontSet* const found = FcFontList(nullptr, english, wanted);
    const int faces = found->nfont;
    FcFontSetDestroy(found);
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(english);
    return faces;
}

bool measureCatalog() {
    const int faces = listFaces();
    std::vector<double> listings;
    std::vector<double> catalogs;
    std::size_t families = 0;
    for (int run = 0; run < 31; ++run) {
        auto start = Clock::now();
        listFaces();
        listings.push_back(milliseconds(start));
        platform::FontSource::setCurrent(nullptr); // what it knew is forgotten
        start = Clock::now();
        families = std::make_shared<pane::VelIFonts>()->init()->fontInfoLookup()->size();
        catalogs.push_back(milliseconds(start));
    }
    const double ratio = median(catalogs) / median(listings);
    std::cout << "listing " << faces << " faces: " << median(listings) << " ms, catalog of their " << families
              << " families: " << median(catalogs) << " ms, ratio " << ratio << " (claim: at most 2)\n";
    return ratio <= 2 && families > 0;
}

/// Runs `act` when the list of families stands and has been drawn.
class WhenDrawn final : public QObject {
public:
    explicit WhenDrawn(std::function<void(QListView&)> act) : m_act(std::move(act)) { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const popUp = QApplication::activePopupWidget();
        auto* const list = popUp ? popUp->findChild<QListView*>() : nullptr;
        if (list && watched == list->viewport() && event->type() == QEvent::Paint && m_act)
            QTimer::singleShot(0, list, [list, act = std::exchange(m_act, {})] { act(*list); });
        return false;
    }

private:
    std::function<void(QListView&)> m_act;
};

void click(QWidget& widget) {
    const auto at = QPointF(widget.rect().center());
    QMouseEvent press(QEvent::MouseButtonPress, at, widget.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &press);
}

bool measureMenu() {
    const auto model = std::make_shared<model::ImprinterModel>();
    model->createConfiguration(false)->setName(u"Configuration");
    const model::HostClasses classes(model);
    std::string error;
    const auto pane = app::PaneHost::load(PANE_BUNDLE, error);
    if (!pane) {
        std::cerr << error << '\n';
        return false;
    }
    QMainWindow window;
    pane->willShow();
    window.setCentralWidget(platform::widgetOf(*pane->view()));
    window.show();
    pane->didShow();
    auto* const families = window.findChild<QComboBox*>(QStringLiteral("fontPopup"));
    families->setEnabled(true);
    QApplication::processEvents();

    double first = 0;
    double again = 0;
    int lines = 0;
    std::vector<double> steps;
    double typing = 0;
    const auto start = Clock::now();
    {
        const WhenDrawn drawn([&](QListView& list) {
            first = milliseconds(start);
            lines = list.model()->rowCount();
            for (int value = 0; value <= list.verticalScrollBar()->maximum(); value += 24) {
                const auto step = Clock::now();
                list.verticalScrollBar()->setValue(value);
                list.viewport()->repaint();
                steps.push_back(milliseconds(step));
            }
            const auto search = Clock::now();
            list.keyboardSearch(QStringLiteral("zi"));
            list.viewport()->repaint();
            typing = milliseconds(search);
            list.window()->close();
        });
        click(*families);
    }
    const auto second = Clock::now();
    {
        const WhenDrawn drawn([&](QListView& list) {
            again = milliseconds(second);
            list.window()->close();
        });
        click(*families);
    }
    const double slowest = steps.empty() ? 0 : *std::max_element(steps.begin(), steps.end());
    std::cout << "opening the list of " << lines << " families: " << first
              << " ms (claim: at most 100), again: " << again << " ms\nscrolling it by a page: median "
              << (steps.empty() ? 0 : median(steps)) << " ms, slowest " << slowest
              << " ms; finding a family by two letters: " << typing << " ms\n";
    return first > 0 && first <= 100 && lines >= 1500;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    platform::NSUserDefaults::setStandardUserDefaults(std::make_shared<MemoryDefaults>());
    const platform::ClassRegistration tokenField(app::PlaceholderTokenField::describeClass());
    const bool catalogHolds = measureCatalog();
    const bool menuHolds = measureMenu();
    return catalogHolds && menuHolds ? 0 : 1;
}
