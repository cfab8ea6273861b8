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

bool NSPasteboard::writeObjects(const std::vector<std::u16string>& texts) {
    for (const auto& text : texts) {
        // The units themselves, so that a half of a surrogate pair comes back as it was.
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()); // NOLINT
        auto data = std::make_shared<const std::vector<std::uint8_t>>(bytes, bytes + text.size() * sizeof(char16_t));
        m_items.push_back({{NSPasteboardTypeString, std::move(data)}});
    }
    return true;
}

NSArray<std::u16string> NSPasteboard::readObjects() const {
    std::vector<std::u16string> texts;
    for (const auto& item : m_items)
        for (const auto& [type, data] : item)
            if (type == NSPasteboardTypeString) {
                auto& text = texts.emplace_back(data->size() / sizeof(char16_t), u'\0');
                std::copy_n(data->begin(), text.size() * sizeof(char16_t),
                            reinterpret_cast<std::uint8_t*>(text.data())); // NOLINT
            }
    return texts.empty() ? nullptr : std::make_shared<const std::vector<std::u16string>>(std::move(texts));
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
