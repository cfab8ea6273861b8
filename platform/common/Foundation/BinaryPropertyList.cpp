// SPDX-License-Identifier: MIT
#include "PropertyList.h"

#include <algorithm>

namespace platform {

namespace {

// Layout: "bplist00", objects, a table of their offsets, and a trailer of 32 bytes: 6 unused, the size of an offset and
// of a reference, then the number of objects, the root and the place of the table as 64-bit numbers. All numbers are
// big-endian. Described in the comments of CFBinaryPList.c of the CoreFoundation sources.

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;

enum Marker : std::uint8_t {
    integerMarker = 0x1,
    dataMarker = 0x4,
    asciiMarker = 0x5,
    utf16Marker = 0x6,
    uidMarker = 0x8,
    arrayMarker = 0xA,
    dictionaryMarker = 0xD
};

class BinaryPropertyList final : public PropertyList {
public:
    explicit BinaryPropertyList(NSData data) : m_data(std::move(data)) {}

    bool open() {
        const auto& data = *m_data;
        if (data.size() < magic.size() + 1 + trailerSize || !std::equal(magic.begin(), magic.end(), data.begin()))
            return false;
        const auto trailer = data.size() - trailerSize;
        m_offsetSize = data[trailer + 6];
        m_referenceSize = data[trailer + 7];
        m_count = number(trailer + 8, 8);
        m_root = number(trailer + 16, 8);
        m_table = number(trailer + 24, 8);
        const auto fits = [](std::uint64_t size) { return size >= 1 && size <= 8; };
        return fits(m_offsetSize) && fits(m_referenceSize) && m_root < m_count && m_table > magic.size() &&
               m_table <= trailer && m_count <= (trailer - m_table) / m_offsetSize;
    }

    Object root() const override { return m_root; }

    std::optional<Object> valueForKey(Object dictionary, std::string_view key) const override {
        const auto entries = list(dictionary, dictionaryMarker, 2);
        for (std::uint64_t i = 0; entries && i < entries->count; ++i)
            if (isString(referenceAt(*entries, i), key))
                return referenceAt(*entries, entries->count + i);
        return std::nullopt;
    }

    std::optional<Object> elementAt(Object array, std::uint64_t index) const override {
        const auto elements = list(array, arrayMarker, 1);
        return elements && index < elements->count ? std::optional(referenceAt(*elements, index)) : std::nullopt;
    }

    std::optional<std::uint64_t> reference(Object object) const override {
        const auto at = place(object);
        if (!at || (*m_data)[*at] >> 4 != uidMarker)
            return std::nullopt;
        const std::uint64_t size = ((*m_data)[*at] & 0xF) + 1U;
        return size <= 8 && size < m_table - *at ? std::optional(number(*at + 1, size)) : std::nullopt;
    }

    std::optional<std::int64_t> integer(Object object) const override {
        const auto at = place(object);
        return at ? integerAt(*at) : std::nullopt;
    }

    std::optional<std::vector<std::uint8_t>> bytes(Object object) const override {
        const auto content = list(object, dataMarker, 0);
        if (!content)
            return std::nullopt;
        const auto* first = m_data->data() + content->start;
        return std::vector<std::uint8_t>(first, first + content->count);
    }

    bool isString(Object object, std::string_view text) const override {
        if (const auto ascii = list(object, asciiMarker, 0))
            return ascii->count == text.size() &&
                   std::equal(text.begin(), text.end(), m_data->begin() + static_cast<std::ptrdiff_t>(ascii->start));
        const auto wide = list(object, utf16Marker, 0);
        if (!wide || wide->count != text.size())
            return false;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (number(wide->start + 2 * i, 2) != static_cast<std::uint8_t>(text[i]))
                return false;
        return true;
    }

private:
    /// What follows a marker with a count.
    struct Content {
        std::uint64_t start;
        std::uint64_t count;
    };

    std::uint64_t number(std::uint64_t at, std::uint64_t size) const {
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < size; ++i)
            value = value << 8 | (*m_data)[at + i];
        return value;
    }

    /// Where the object's marker stands; none where that is not among the objects.
    std::optional<std::uint64_t> place(Object object) const {
        if (object >= m_count)
            return std::nullopt;
        const auto at = number(m_table + object * m_offsetSize, m_offsetSize);
        return at >= magic.size() && at < m_table ? std::optional(at) : std::nullopt;
    }

    std::optional<std::int64_t> integerAt(std::uint64_t at) const {
        const auto marker = (*m_data)[at];
        if (marker >> 4 != integerMarker || (marker & 0xF) > 4)
            return std::nullopt;
        const std::uint64_t size = 1ULL << (marker & 0xF);
        if (size >= m_table - at)
            return std::nullopt;
        // Up to four bytes are unsigned, eight are signed, and sixteen hold what eight cannot.
        const auto value = number(at + 1 + (size - std::min<std::uint64_t>(size, 8)), std::min<std::uint64_t>(size, 8));
        if (size == 16 && (number(at + 1, 8) != 0 || value > INT64_MAX))
            return std::nullopt;
        return static_cast<std::int64_t>(value);
    }

    /// The content of an object of that kind, all of it within the objects. `width` is the number of references an
    /// element takes; 0 means plain bytes, or units of UTF-16.
    std::optional<Content> list(Object object, Marker kind, std::uint64_t width) const {
        const auto at = place(object);
        if (!at || (*m_data)[*at] >> 4 != kind)
            return std::nullopt;
        Content content{*at + 1, static_cast<std::uint64_t>((*m_data)[*at] & 0xF)};
        if (content.count == 0xF) {
            const auto length = content.start < m_table ? integerAt(content.start) : std::nullopt;
            if (!length || *length < 0)
                return std::nullopt;
            content.count = static_cast<std::uint64_t>(*length);
            content.start += 1 + (1ULL << ((*m_data)[content.start] & 0xF));
        }
        const std::uint64_t size = width ? width * m_referenceSize : kind == utf16Marker ? 2 : 1;
        return content.count <= (m_table - content.start) / size ? std::optional(content) : std::nullopt;
    }

    Object referenceAt(const Content& content, std::uint64_t index) const {
        return number(content.start + index * m_referenceSize, m_referenceSize);
    }

    NSData m_data;
    std::uint64_t m_offsetSize = 0;
    std::uint64_t m_referenceSize = 0;
    std::uint64_t m_count = 0;
    std::uint64_t m_root = 0;
    std::uint64_t m_table = 0;
};

} // namespace

std::unique_ptr<const PropertyList> readBinaryPropertyList(const NSData& data, std::string& error) {
    auto list = std::make_unique<BinaryPropertyList>(data);
    if (list->open())
        return list;
    error = "the binary property list is damaged";
    return nullptr;
}

std::unique_ptr<const PropertyList> PropertyList::read(const NSData& data, std::string& error) {
    constexpr std::size_t largest = std::size_t(16) << 20;
    if (!data || data->empty()) {
        error = "there is no data";
        return nullptr;
    }
    if (data->size() > largest) {
        error = "the property list is too large";
        return nullptr;
    }
    const bool binary = data->size() >= magic.size() && std::equal(magic.begin(), magic.begin() + 6, data->begin());
    return binary ? readBinaryPropertyList(data, error) : readXmlPropertyList(data, error);
}

} // namespace platform
