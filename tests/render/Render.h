// SPDX-License-Identifier: MIT
#pragma once

#include "../support/PlainConfiguration.h"

#include <engine/Stamper.h>

#include <QImage>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace render {

/// A folder of its own for each object, gone with it.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    const std::filesystem::path& path() const { return m_path; }
    /// The names in it, sorted.
    std::vector<std::string> names() const;

private:
    std::filesystem::path m_path;
};

/// What a program printed (both streams) and its exit status.
struct Run {
    std::string output;
    int status = -1;
};
Run run(const std::string& command);

/// `path` quoted for the shell.
std::string quoted(const std::filesystem::path& path);

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);

/// A configuration of one text in 12 points black DejaVu Sans.
std::shared_ptr<support::PlainConfiguration> configuration(const std::u16string& text);

engine::StampJob job(const std::filesystem::path& input, const std::filesystem::path& output,
                     std::vector<std::shared_ptr<support::PlainConfiguration>> configurations);

/// The smallest rectangle that holds every pixel in which the pictures, of one size, differ.
QRect differingArea(const QImage& a, const QImage& b);

/// A white picture.
QImage white(int width, int height, QImage::Format format = QImage::Format_RGB32, int dotsPerInch = 72);

/// The page of a PDF document as pdftoppm shows it (its crop box, 72 pixels an inch unless told).
QImage shownPage(const std::filesystem::path& document, int page = 1, int dotsPerInch = 72,
                 const std::string& options = {});

} // namespace render
