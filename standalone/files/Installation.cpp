// SPDX-License-Identifier: MIT
#include <files/Installation.h>

namespace files {

namespace fs = std::filesystem;

fs::path bundleFolder() {
    std::error_code error;
    const auto program = fs::read_symlink("/proc/self/exe", error).parent_path();
    const auto installed = program / "../lib/imprinter";
    return (fs::exists(installed, error) ? installed : program / "../lib").lexically_normal();
}

fs::path samplePage() {
    return bundleFolder() / "ImprinterPrefPane.prefPane" / "Preview.jpg";
}

} // namespace files
