// SPDX-License-Identifier: MIT
#include "HostBundle.h"

#include <Foundation/NSBundle.h>

namespace app {

namespace fs = std::filesystem;

fs::path bundleFolder() {
    std::error_code error;
    const auto program = fs::read_symlink("/proc/self/exe", error).parent_path();
    const auto installed = program / "../lib/imprinter";
    return (fs::exists(installed, error) ? installed : program / "../lib").lexically_normal();
}

QString text(const char16_t* english) {
    static const auto bundle = platform::NSBundle::bundleWithPath(bundleFolder() / "ImprinterHost.bundle");
    return toQt(bundle ? bundle->localizedStringForKeyValueTable(english, u"", u"") : english);
}

QString toQt(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace app
