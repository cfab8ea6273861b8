// SPDX-License-Identifier: MIT
#include "PictureFile.h"

#include "TiffReader.h"

namespace engine {

Failure nothingToStamp(bool chosen, bool listed, const Report& report, const std::string& otherwise) {
    if (chosen && report.warnings.empty())
        return {Code::nothingToStamp, "The title is empty."};
    return {Code::nothingToStamp, listed && !chosen ? "The page list names no page of the file." : otherwise};
}

std::string readWhole(const std::filesystem::path& path, std::optional<InputState>& state) {
    const InputFile file(path);
    state.emplace(file);
    return file.read(state->size());
}

std::string readWhole(const std::filesystem::path& path) {
    std::optional<InputState> none;
    return readWhole(path, none);
}

bool isPng(std::string_view bytes) {
    return bytes.starts_with("\x89PNG\r\n\x1a\n");
}

bool isJpeg(std::string_view bytes) {
    return bytes.starts_with("\xff\xd8\xff");
}

int exifOrientation(std::string_view tiff) {
    const TiffReader reader(tiff);
    const auto at = reader.entry(0x0112);
    const auto value = at && reader.number(*at + 2, 2) == 3 ? reader.number(*at + 8, 2) : 1;
    return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

std::pair<double, double> exifResolution(std::string_view tiff) {
    const TiffReader reader(tiff);
    const auto unit = reader.entry(0x0128);
    const auto code = unit ? reader.number(*unit + 8, 2) : 2;
    const double perInch = code == 3 ? 2.54 : code == 2 ? 1 : 0;
    return {reader.rational(0x011A) * perInch, reader.rational(0x011B) * perInch};
}

void checkSize(long long width, long long height) {
    if (width <= 0 || height <= 0)
        throw Failure(Code::damaged, "The picture has no pixels.");
    if (width > kLargestPicture / height) // a product may be more than a number can hold
        throw Failure(Code::tooLarge, "The picture has more than 100 million pixels.");
}

} // namespace engine
