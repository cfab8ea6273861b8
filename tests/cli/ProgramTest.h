// SPDX-License-Identifier: MIT
#pragma once

#include "../render/Documents.h"
#include "../render/Render.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace cli_test {

namespace fs = std::filesystem;
using render::document;
using render::quoted;
using render::readFile;
using render::writeFile;

/// The program in a folder of its own, with data and settings of its own.
class ProgramTest : public ::testing::Test {
protected:
    std::string environment() const {
        return "env -u DISPLAY -u WAYLAND_DISPLAY HOME=" + quoted(folder.path()) +
               " XDG_DATA_HOME=" + quoted(folder / "data") + " XDG_CONFIG_HOME=" + quoted(folder / "config") +
               " LC_ALL=C.UTF-8 ";
    }
    /// Runs a command in the folder; both of its streams are in `output`. `before` goes before the program's name.
    render::Run imprinter(const std::string& arguments, const std::string& before = {}) {
        return shell(before + environment() + quoted(IMPRINTER) + " " + arguments);
    }
    render::Run shell(const std::string& command) {
        return render::run("cd " + quoted(folder.path()) + " && { " + command + "; }");
    }

    fs::path letter(const std::string& name = "letter.pdf", int pages = 3) {
        writeFile(folder / name, document(pages, "/MediaBox [0 0 595 842]", "BT ET"));
        return folder / name;
    }
    std::string textOf(const fs::path& file) {
        return render::run("pdftotext -layout " + quoted(folder / file.string()) + " -").output;
    }
    bool bears(const fs::path& file, const std::string& text) { return textOf(file).find(text) != std::string::npos; }

    /// Everything in the working folder but the program's own data.
    std::vector<std::string> files() {
        auto names = folder.names();
        std::erase(names, "data");
        std::erase(names, "config");
        return names;
    }

    render::Folder folder;
};

inline long lines(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

} // namespace cli_test
