// SPDX-License-Identifier: MIT
#include "PrivateFolder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace app {

namespace fs = std::filesystem;

PrivateFolder::PrivateFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    const fs::path parent = runtime && fs::is_directory(runtime, error) ? fs::path(runtime) : fs::temp_directory_path();
    std::string name = (parent / "imprinter-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    m_path = name;
}

PrivateFolder::~PrivateFolder() {
    std::error_code error;
    fs::remove_all(m_path, error);
}

} // namespace app
