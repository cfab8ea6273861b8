// SPDX-License-Identifier: MIT
#include "MultiPicture.h"

#include "TiffReader.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace engine {

namespace {

/// Where in a JPEG stream the TIFF structure of its index lies, and how long it is. Offsets in the index, those of
/// other pictures too, count from there. (CIPA DC-007, 5.)
std::optional<std::pair<std::size_t, std::size_t>> indexIn(std::string_view jpeg) {
    constexpr unsigned startOfScan = 0xDA;
    constexpr unsigned index = 0xE2; // and colour profiles
    constexpr std::string_view name("MPF\0", 4);
    const auto byte = [jpeg](std::size_t at) { return unsigned{static_cast<unsigned char>(jpeg[at])}; };
    for (std::size_t at = 2; at + 4 <= jpeg.size();) {
        if (byte(at) != 0xFF)
            return std::nullopt;
        const auto marker = byte(at + 1);
        if (marker == 0xFF) { // a marker may be led by several of them
            ++at;
            continue;
        }
        const std::size_t length = byte(at + 2) << 8 | byte(at + 3);
        if (marker == startOfScan || length < 2 || length + 2 > jpeg.size() - at)
            return std::nullopt;
        if (marker == index && length >= 2 + name.size() && jpeg.substr(at + 4, name.size()) == name)
            return std::pair(at + 4 + name.size(), length - 2 - name.size());
        at += 2 + length;
    }
    return std::nullopt;
}

struct Correction {
    std::size_t at; ///< In the index.
    std::uint32_t value;
};

} // namespace

void correctIndex(std::string& first, std::string_view file, std::size_t length) {
    const auto before = indexIn(file.substr(0, length));
    const auto now = indexIn(first);
    if (!before || !now)
        return;
    const auto index = file.substr(before->first, before->second);
    if (std::string_view(first).substr(now->first, now->second) != index)
        return;
    const TiffReader reader(index);
    constexpr unsigned listOfPictures = 0xB002;
    constexpr unsigned rawBytes = 7;
    constexpr std::size_t entrySize = 16; // attributes, size and offset of 4 bytes each, two numbers of 2
    const auto list = reader.entry(listOfPictures);
    if (!list || reader.number(*list + 2, 2) != rawBytes)
        return;
    const std::size_t size = reader.number(*list + 4, 4);
    const std::size_t begin = reader.number(*list + 8, 4);
    if (size % entrySize != 0 || size < 2 * entrySize || begin > index.size() || index.size() - begin < size)
        return;

    // How much farther pictures are from the index, and how much longer the first one is.
    const auto longer = static_cast<std::int64_t>(first.size()) - static_cast<std::int64_t>(length);
    const auto farther = longer - (static_cast<std::int64_t>(now->first) - static_cast<std::int64_t>(before->first));
    std::vector<Correction> corrections;
    bool isWhole = true;
    const auto add = [&](std::size_t at, std::int64_t by) {
        const auto value = reader.number(at, 4) + by;
        isWhole = isWhole && value > 0 && value <= UINT32_MAX;
        corrections.push_back({at, static_cast<std::uint32_t>(value)});
    };
    for (auto entry = begin; entry < begin + size; entry += entrySize) {
        const std::size_t offset = reader.number(entry + 8, 4);
        if (entry == begin) {
            isWhole = offset == 0;
            add(entry + 4, longer);
            continue;
        }
        if (offset == 0) // a place that no picture takes
            continue;
        isWhole = isWhole && before->first + offset >= length && before->first + offset < file.size();
        add(entry + 8, farther);
    }
    if (!isWhole)
        return;
    for (const auto& correction : corrections)
        for (unsigned i = 0; i < 4; ++i) {
            const auto shift = 8 * (reader.isBigEndian() ? 3 - i : i);
            first[now->first + correction.at + i] = static_cast<char>(correction.value >> shift & 0xFF);
        }
}

} // namespace engine
