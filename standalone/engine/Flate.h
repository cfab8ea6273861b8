// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace engine {

/// Deflates and inflates many small pieces, with one set of tables for all of them.
class Flate {
public:
    Flate();
    ~Flate();

    std::string deflate(std::string_view plain);
    /// None where the data is broken, breaks off or becomes larger than 64 MB.
    std::optional<std::string> inflate(std::string_view deflated);

private:
    struct Streams;
    std::unique_ptr<Streams> m_streams;
};

} // namespace engine
