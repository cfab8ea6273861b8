// SPDX-License-Identifier: MIT
#include "TiffReader.h"

namespace engine {

std::uint32_t TiffReader::number(std::size_t at, unsigned size) const {
    if (at > m_bytes.size() || m_bytes.size() - at < size)
        return 0;
    std::uint32_t value = 0;
    for (unsigned i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(m_bytes[at + (m_bigEndian ? i : size - 1 - i)]);
    return value;
}

std::optional<std::size_t> TiffReader::entry(unsigned tag) const {
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

double TiffReader::rational(unsigned tag) const {
    const auto at = entry(tag);
    if (!at || number(*at + 2, 2) != 5)
        return 0;
    const std::size_t value = number(*at + 8, 4);
    const double denominator = number(value + 4, 4);
    return denominator > 0 ? number(value, 4) / denominator : 0;
}

} // namespace engine
