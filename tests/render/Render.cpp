// SPDX-License-Identifier: MIT
#include "Render.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace render {

Folder::Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "imprinter-render-XXXXXX").string();
    m_path = ::mkdtemp(name.data());
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> Folder::names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Run run(const std::string& command) {
    Run result;
    std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return result;
    char buffer[4096];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, pipe))
        result.output.append(buffer, count);
    const int status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::string quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::shared_ptr<support::PlainConfiguration> configuration(const std::u16string& text) {
    return std::make_shared<support::PlainConfiguration>(
        std::vector<host::TitleToken>{support::fontRun(u"DejaVuSans", 12), text});
}

engine::StampJob job(const std::filesystem::path& input, const std::filesystem::path& output,
                     std::vector<std::shared_ptr<support::PlainConfiguration>> configurations) {
    engine::StampJob result;
    result.input = input;
    result.output = output;
    result.configurations.assign(configurations.begin(), configurations.end());
    return result;
}

QRect differingArea(const QImage& a, const QImage& b) {
    EXPECT_EQ(a.size(), b.size());
    if (a.size() != b.size())
        return {};
    QRect area;
    const QImage first = a.convertToFormat(QImage::Format_RGBA64);
    const QImage second = b.convertToFormat(QImage::Format_RGBA64);
    for (int y = 0; y < first.height(); ++y) {
        const auto* one = reinterpret_cast<const QRgba64*>(first.constScanLine(y));
        const auto* other = reinterpret_cast<const QRgba64*>(second.constScanLine(y));
        for (int x = 0; x < first.width(); ++x)
            if (!(one[x] == other[x]))
                area = area.united(QRect(x, y, 1, 1));
    }
    return area;
}

QImage white(int width, int height, QImage::Format format, int dotsPerInch) {
    QImage image(width, height, format);
    if (format == QImage::Format_Mono || format == QImage::Format_Indexed8) {
        image.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
        image.fill(0);
    } else {
        image.fill(Qt::white);
    }
    image.setDotsPerMeterX(static_cast<int>(std::lround(dotsPerInch / 0.0254)));
    image.setDotsPerMeterY(static_cast<int>(std::lround(dotsPerInch / 0.0254)));
    return image;
}

QImage shownPage(const std::filesystem::path& document, int page, int dotsPerInch, const std::string& options) {
    Folder folder;
    const auto number = std::to_string(page);
    const auto result =
        run("pdftoppm -cropbox -singlefile -f " + number + " -l " + number + " -r " + std::to_string(dotsPerInch) +
            " " + options + " " + quoted(document) + " " + quoted(folder / "page"));
    EXPECT_EQ(result.status, 0) << result.output;
    QImage image((folder / "page.ppm").c_str());
    EXPECT_FALSE(image.isNull());
    return image;
}

} // namespace render
