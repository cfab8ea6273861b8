// SPDX-License-Identifier: MIT
#include "CompactFont.h"

namespace engine {

namespace {

/// Numbers of a CFF table; outside it the reader is spent and answers 0.
class Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    bool spent() const { return m_spent; }
    std::size_t position() const { return m_at; }
    void seek(std::size_t at) { m_at = at; }

    unsigned number(unsigned size) {
        if (m_at > m_bytes.size() || m_bytes.size() - m_at < size) {
            m_spent = true;
            return 0;
        }
        unsigned value = 0;
        for (unsigned i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(m_bytes[m_at++]);
        return value;
    }

    /// Reads an INDEX, leaves the reader behind it and answers its first object.
    std::string_view index() {
        const unsigned count = number(2);
        if (count == 0)
            return {};
        const unsigned size = number(1);
        if (size < 1 || size > 4) {
            m_spent = true;
            return {};
        }
        const std::size_t offsets = m_at;
        const std::size_t data = offsets + std::size_t(count + 1) * size - 1;
        const std::size_t first = number(size);
        const std::size_t second = number(size);
        seek(offsets + std::size_t(count) * size);
        const std::size_t end = number(size);
        seek(data + end);
        if (m_spent || first > second || data + second > m_bytes.size()) {
            m_spent = true;
            return {};
        }
        return m_bytes.substr(data + first, second - first);
    }

private:
    std::string_view m_bytes;
    std::size_t m_at = 0;
    bool m_spent = false;
};

struct TopDictionary {
    bool hasOrdering = false;
    unsigned charset = 0;
};

TopDictionary readTopDictionary(std::string_view bytes) {
    TopDictionary result;
    Reader reader(bytes);
    unsigned operand = 0;
    while (reader.position() < bytes.size() && !reader.spent()) {
        const unsigned b = reader.number(1);
        if (b == 12) {
            result.hasOrdering = result.hasOrdering || reader.number(1) == 30;
        } else if (b <= 21) {
            if (b == 15)
                result.charset = operand;
        } else if (b == 28) {
            operand = reader.number(2);
        } else if (b == 29) {
            operand = reader.number(4);
        } else if (b == 30) {
            while (!reader.spent()) {
                const unsigned pair = reader.number(1);
                if ((pair & 0x0F) == 0x0F || pair >> 4 == 0x0F)
                    break;
            }
        } else if (b >= 32 && b <= 246) {
            operand = b - 139;
        } else if (b >= 247 && b <= 250) {
            operand = (b - 247) * 256 + reader.number(1) + 108;
        } else if (b >= 251 && b <= 254) {
            reader.number(1);
        }
    }
    return result;
}

} // namespace

std::optional<std::vector<unsigned>> compactFontIdentifiers(std::string_view table, unsigned glyphCount) {
    if (table.size() < 4)
        return std::nullopt;
    Reader reader(table);
    reader.seek(static_cast<unsigned char>(table[2]));
    reader.index(); // names
    const auto top = readTopDictionary(reader.index());
    if (reader.spent())
        return std::nullopt;
    if (!top.hasOrdering)
        return std::vector<unsigned>();

    std::vector<unsigned> identifiers{0};
    if (top.charset <= 2) { // predefined; for a CID-keyed font the identity
        for (unsigned glyph = 1; glyph < glyphCount; ++glyph)
            identifiers.push_back(glyph);
        return identifiers;
    }
    reader.seek(top.charset);
    const unsigned format = reader.number(1);
    if (format > 2)
        return std::nullopt;
    while (identifiers.size() < glyphCount && !reader.spent()) {
        const unsigned first = reader.number(2);
        const unsigned more = format == 0 ? 0 : reader.number(format);
        for (unsigned i = 0; i <= more && identifiers.size() < glyphCount; ++i)
            identifiers.push_back(first + i);
    }
    if (reader.spent())
        return std::nullopt;
    return identifiers;
}

} // namespace engine
