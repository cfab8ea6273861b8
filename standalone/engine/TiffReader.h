// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace engine {

/// Reads numbers of a TIFF structure, as Exif and others embed it; answers 0 outside it.
class TiffReader {
public:
    explicit TiffReader(std::string_view bytes) : m_bytes(bytes), m_bigEndian(bytes.starts_with("MM")) {}

    bool isBigEndian() const { return m_bigEndian; }

    /// Of `size` bytes, at most 4.
    std::uint32_t number(std::size_t at, unsigned size) const;

    /// The offset of an entry of the first directory.
    std::optional<std::size_t> entry(unsigned tag) const;

    double rational(unsigned tag) const;

private:
    std::string_view m_bytes;
    bool m_bigEndian;
};

} // namespace engine
