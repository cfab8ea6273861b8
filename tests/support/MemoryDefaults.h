// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSUserDefaults.h>

#include <map>

namespace testing_support {

/// User defaults that are forgotten with the object.
class MemoryDefaults final : public platform::NSUserDefaults {
public:
    std::optional<std::u16string> stringForKey(const std::u16string& key) const override {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::nullopt : std::optional(found->second);
    }
    void setObjectForKey(const std::u16string& value, const std::u16string& key) override { m_values[key] = value; }
    void removeObjectForKey(const std::u16string& key) override { m_values.erase(key); }

private:
    std::map<std::u16string, std::u16string> m_values;
};

} // namespace testing_support
