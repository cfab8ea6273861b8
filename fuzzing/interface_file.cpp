// SPDX-License-Identifier: MIT
// An interface file of a bundle: whatever is wrong with it is a problem that is named, and what could be made of it can
// be shown.

#include "Require.h"
#include "ScratchFile.h"

#include <AppKit/NSNib.h>
#include <Foundation/NSBundle.h>
#include <PlatformQt/Bridge.h>

#include <QApplication>
#include <QWidget>

namespace {

class Owner final : public platform::NSObject {
public:
    std::u16string_view className() const override { return u"Owner"; }
};

QApplication& application() {
    static int count = 1;
    static std::string name = "fuzz";
    static char* arguments[] = {name.data(), nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication made(count, arguments);
    return made;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    application();
    // A number of widgets that takes long to make is no fault of the reader.
    if (size > 20'000)
        return 0;
    static const ScratchFolder bundle("Bundle");
    static constexpr std::string_view information = "<plist version=\"1.0\"><dict/></plist>";
    bundle.write("Info.plist", reinterpret_cast<const std::uint8_t*>(information.data()), information.size());
    bundle.write("Main.ui", data, size);
    const auto opened = platform::NSBundle::bundleWithPath(bundle.path());
    require(opened != nullptr, "the bundle is there");
    const auto contents = platform::loadNibNamedOwner(*opened, u"Main", std::make_shared<Owner>());
    require(contents.window || !contents.problems.empty(), "a file without a root is a problem");
    if (auto* root = contents.window ? platform::widgetOf(*contents.window->contentView()) : nullptr) {
        root->resize(400, 300);
        root->grab({0, 0, 400, 300}); // of a window that is larger than any screen no more is ever painted
    }
    QApplication::processEvents();
    return 0;
}
