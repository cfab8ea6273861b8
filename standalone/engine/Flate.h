// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace engine {

/// The CRC-32 of ISO 3309.
std::uint32_t checkSum(std::string_view bytes);

/// Deflates and inflates many small pieces, with one set of tables for all of them.
class Flate {
public:
    /// `effort`: zlib's level, 1 to 9. What is small gains little from more than 3.
    explicit Flate(int effort = 6);
    ~Flate();

    std::string deflate(std::string_view plain);
    /// Appends to `plain`. False where the data is broken, breaks off or becomes larger than 64 MB; `plain` is then of
    /// no use.
    bool inflate(std::string_view deflated, std::string& plain);

private:
    struct Streams;
    std::unique_ptr<Streams> m_streams;
};

} // namespace engine
