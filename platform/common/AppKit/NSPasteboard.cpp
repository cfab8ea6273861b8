// SPDX-License-Identifier: MIT
#include <AppKit/NSPasteboard.h>

#include <algorithm>

namespace platform {

NSPasteboard::NSPasteboard() = default;
NSPasteboard::~NSPasteboard() = default;

void NSPasteboard::clearContents() {
    m_items.clear();
    ++m_changeCount;
}

void NSPasteboard::setDataForType(const NSData& data, const std::u16string& type) {
    if (m_items.empty())
        m_items.emplace_back();
    auto& item = m_items.front();
    std::erase_if(item, [&](const auto& entry) { return entry.first == type; });
    if (data)
        item.emplace_back(type, data);
}

std::vector<std::u16string> NSPasteboard::types() const {
    std::vector<std::u16string> found;
    for (const auto& item : m_items)
        for (const auto& [type, data] : item)
            if (std::find(found.begin(), found.end(), type) == found.end())
                found.push_back(type);
    return found;
}

NSData NSPasteboard::dataForType(const std::u16string& type) const {
    for (const auto& item : m_items)
        for (const auto& [known, data] : item)
            if (known == type)
                return data;
    return nullptr;
}

} // namespace platform
