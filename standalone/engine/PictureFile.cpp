// SPDX-License-Identifier: MIT
#include "PictureFile.h"

#include <optional>

namespace engine {

namespace {

/// Reads numbers of a TIFF structure; answers 0 outside it.
class TiffReader {
public:
    explicit TiffReader(std::string_view bytes) : m_bytes(bytes), m_bigEndian(bytes.starts_with("MM")) {}

    std::uint32_t number(std::size_t at, unsigned size) const {
        if (at > m_bytes.size() || m_bytes.size() - at < size)
            return 0;
        std::uint32_t value = 0;
        for (unsigned i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(m_bytes[at + (m_bigEndian ? i : size - 1 - i)]);
        return value;
    }

    /// The offset of an entry of the first directory.
    std::optional<std::size_t> entry(unsigned tag) const {
        if (m_bytes.size() < 8 || number(2, 2) != 42)
            return std::nullopt;
        const std::size_t directory = number(4, 4);
        const auto count = number(directory, 2);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = directory + 2 + 12 * i;
            if (at + 12 > m_bytes.size())
                break;
            if (number(at, 2) == tag)
                return at;
        }
        return std::nullopt;
    }

    double rational(unsigned tag) const {
        const auto at = entry(tag);
        if (!at || number(*at + 2, 2) != 5)
            return 0;
        const std::size_t value = number(*at + 8, 4);
        const double denominator = number(value + 4, 4);
        return denominator > 0 ? number(value, 4) / denominator : 0;
    }

private:
    std::string_view m_bytes;
    bool m_bigEndian;
};

} // namespace

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
    if (width * height > kLargestPicture)
        throw Failure(Code::tooLarge, "The picture has more than 100 million pixels.");
}

} // namespace engine
