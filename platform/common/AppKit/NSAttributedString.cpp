// SPDX-License-Identifier: MIT
#include <AppKit/NSAttributedString.h>

#include <Foundation/NSException.h>

#include <algorithm>

namespace platform {

NSAttributedString::NSAttributedString(std::u16string string, Attributes attributes)
    : m_string(std::move(string)), m_attributes(std::move(attributes)) {
    for (const auto& [name, value] : m_attributes)
        if (!value)
            throw NSInvalidArgumentException("an attribute of the text is nil");
}

std::shared_ptr<NSFont> NSAttributedString::font() const {
    const auto found = m_attributes.find(NSFontAttributeName);
    return found == m_attributes.end() ? nullptr : found->second;
}

bool operator==(const NSAttributedString& a, const NSAttributedString& b) {
    return a.m_string == b.m_string && std::equal(a.m_attributes.begin(), a.m_attributes.end(), b.m_attributes.begin(),
                                                  b.m_attributes.end(), [](const auto& one, const auto& other) {
                                                      return one.first == other.first && *one.second == *other.second;
                                                  });
}

} // namespace platform
