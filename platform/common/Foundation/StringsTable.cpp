// SPDX-License-Identifier: MIT
#include "StringsTable.h"

#include <Foundation/NSString.h>

#include <algorithm>

namespace platform {

namespace {

bool isWordCharacter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') ||
           std::u16string_view(u"_$/:.-").find(unit) != std::u16string_view::npos;
}

int hexadecimal(char16_t unit) {
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    return -1;
}

class Scanner {
public:
    explicit Scanner(const std::u16string& text) : m_text(text) {}

    bool atEnd() const { return m_at >= m_text.size(); }
    /// What went wrong, with the line in which the faulty piece begins.
    std::string problem(const std::string& expected) const {
        const auto place = m_text.begin() + static_cast<std::ptrdiff_t>(m_unended ? m_opening : m_at);
        return "line " + std::to_string(1 + std::count(m_text.begin(), place, u'\n')) + ": " +
               (m_unended ? m_unended : expected);
    }

    /// NO for a comment that does not end.
    bool skipSpace() {
        while (!atEnd()) {
            if (isWhitespaceOrNewline(m_text[m_at])) {
                ++m_at;
            } else if (m_text.compare(m_at, 2, u"//") == 0) {
                while (!atEnd() && m_text[m_at] != u'\n' && m_text[m_at] != u'\r')
                    ++m_at;
            } else if (m_text.compare(m_at, 2, u"/*") == 0) {
                const auto close = m_text.find(u"*/", m_at + 2);
                if (close == std::u16string::npos)
                    return fail(m_at, "a comment does not end");
                m_at = close + 2;
            } else {
                break;
            }
        }
        return true;
    }

    bool take(char16_t unit) {
        if (atEnd() || m_text[m_at] != unit)
            return false;
        ++m_at;
        return true;
    }

    std::optional<std::u16string> takeText() {
        if (atEnd())
            return std::nullopt;
        if (m_text[m_at] == u'"' || m_text[m_at] == u'\'')
            return takeQuoted(m_text[m_at++]);
        std::u16string word;
        while (!atEnd() && isWordCharacter(m_text[m_at]))
            word.push_back(m_text[m_at++]);
        return word.empty() ? std::nullopt : std::optional(word);
    }

private:
    bool fail(std::size_t opening, const char* unended) {
        m_opening = opening;
        m_unended = unended;
        return false;
    }

    std::optional<std::u16string> takeQuoted(char16_t quote) {
        const std::size_t opening = m_at - 1;
        std::u16string text;
        while (!atEnd()) {
            const char16_t unit = m_text[m_at++];
            if (unit == quote)
                return text;
            if (unit != u'\\')
                text.push_back(unit);
            else if (!atEnd())
                text.push_back(takeEscape());
        }
        fail(opening, "a quoted text does not end");
        return std::nullopt;
    }

    char16_t takeEscape() {
        static constexpr std::u16string_view letters = u"nrtabfv";
        static constexpr std::u16string_view meanings = u"\n\r\t\a\b\f\v";
        const char16_t unit = m_text[m_at++];
        if (const auto known = letters.find(unit); known != std::u16string_view::npos)
            return meanings[known];
        const bool octal = unit >= u'0' && unit <= u'7';
        if (!octal && unit != u'U')
            return unit;
        const int base = octal ? 8 : 16;
        int digits = octal ? 2 : 4;
        int value = octal ? unit - u'0' : 0;
        for (; digits > 0 && !atEnd() && hexadecimal(m_text[m_at]) >= 0 && hexadecimal(m_text[m_at]) < base; --digits)
            value = value * base + hexadecimal(m_text[m_at++]);
        return static_cast<char16_t>(value);
    }

    const std::u16string& m_text;
    std::size_t m_at = 0;
    std::size_t m_opening = 0;
    const char* m_unended = nullptr;
};

} // namespace

std::optional<TextMap> readStringsTable(const std::u16string& text, std::string& problem) {
    Scanner scanner(text);
    TextMap table;
    const auto fail = [&](const char* expected) {
        problem = scanner.problem(expected);
        return std::nullopt;
    };
    for (;;) {
        if (!scanner.skipSpace())
            return fail("an entry is expected");
        if (scanner.atEnd())
            return table;
        const auto key = scanner.takeText();
        if (!key)
            return fail("a key is expected");
        auto value = key;
        if (scanner.skipSpace() && scanner.take(u'=')) {
            value = scanner.skipSpace() ? scanner.takeText() : std::nullopt;
            if (!value)
                return fail("a value is expected");
        }
        if (!scanner.skipSpace() || !scanner.take(u';'))
            return fail("a semicolon is expected");
        table[*key] = *value;
    }
}

std::u16string textOfFile(const std::string& bytes) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const bool bigEndian = bytes.size() >= 2 && byte(0) == 0xFE && byte(1) == 0xFF;
    const bool littleEndian = bytes.size() >= 2 && byte(0) == 0xFF && byte(1) == 0xFE;
    if (!bigEndian && !littleEndian)
        return fromUtf8(bytes.starts_with("\xEF\xBB\xBF") ? std::string_view(bytes).substr(3)
                                                          : std::string_view(bytes));
    std::u16string text;
    for (std::size_t at = 2; at + 1 < bytes.size(); at += 2)
        text.push_back(static_cast<char16_t>(bigEndian ? byte(at) << 8 | byte(at + 1) : byte(at + 1) << 8 | byte(at)));
    return text;
}

} // namespace platform
