// SPDX-License-Identifier: MIT
#include "WindowLibrary.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace cli {

namespace {

const app::WindowLibrary& open() {
    // Looked for where the program's other libraries are. It stays until the program ends.
    void* const library = dlopen(IMPRINTER_WINDOW, RTLD_NOW | RTLD_LOCAL);
    void* const entry = library ? dlsym(library, app::windowEntry) : nullptr;
    if (!entry)
        throw std::runtime_error(std::string("the window cannot be opened: ") + dlerror());
    return *reinterpret_cast<const app::WindowLibrary* (*)()>(entry)();
}

} // namespace

const app::WindowLibrary& windowLibrary() {
    static const auto& library = open();
    return library;
}

} // namespace cli
