// SPDX-License-Identifier: MIT
#include "PasteboardItems.h"

#include <Foundation/NSProcessInfo.h>

namespace platform {

namespace {

constexpr std::size_t lengthBytes = 4;

/// Tells this run of the program from every other one.
const std::u16string& mark() {
    static const auto text = globallyUniqueString();
    return text;
}

void append(std::vector<std::uint8_t>& data, const std::u16string& text) {
    for (std::size_t i = 0; i < lengthBytes; ++i)
        data.push_back(static_cast<std::uint8_t>(text.size() >> (8 * i)));
    for (const auto unit : text) {
        data.push_back(static_cast<std::uint8_t>(unit));
        data.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
}

std::optional<std::u16string> take(const std::vector<std::uint8_t>& data, std::size_t& at) {
    if (data.size() - at < lengthBytes)
        return std::nullopt;
    std::size_t length = 0;
    for (std::size_t i = 0; i < lengthBytes; ++i)
        length |= static_cast<std::size_t>(data[at + i]) << (8 * i);
    at += lengthBytes;
    if ((data.size() - at) / 2 < length)
        return std::nullopt;
    std::u16string text(length, u'\0');
    for (auto& unit : text) {
        unit = static_cast<char16_t>(data[at] | data[at + 1] << 8);
        at += 2;
    }
    return text;
}

} // namespace

std::vector<std::uint8_t> encodedItems(const std::vector<std::u16string>& texts) {
    std::vector<std::uint8_t> data;
    append(data, mark());
    for (const auto& text : texts)
        append(data, text);
    return data;
}

std::optional<std::vector<std::u16string>> decodedItems(const std::vector<std::uint8_t>& data) {
    std::size_t at = 0;
    if (take(data, at) != mark())
        return std::nullopt;
    std::vector<std::u16string> texts;
    while (at < data.size()) {
        auto text = take(data, at);
        if (!text)
            return std::nullopt;
        texts.push_back(*std::move(text));
    }
    return texts;
}

} // namespace platform
