// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <ctime>
#include <map>
#include <optional>
#include <string>

namespace support {

/// Variables of the environment that are as they were when it goes.
class Environment {
public:
    Environment() = default;
    Environment(const std::string& name, const std::optional<std::string>& value) { set(name, value); }
    ~Environment() {
        for (const auto& [name, value] : m_former)
            put(name, value);
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    /// Without a value the variable is none.
    void set(const std::string& name, const std::optional<std::string>& value) {
        const char* const former = std::getenv(name.c_str());
        m_former.try_emplace(name, former ? std::optional<std::string>(former) : std::nullopt);
        put(name, value);
    }

private:
    static void put(const std::string& name, const std::optional<std::string>& value) {
        value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
        if (name == "TZ")
            ::tzset();
    }

    std::map<std::string, std::optional<std::string>> m_former;
};

} // namespace support
