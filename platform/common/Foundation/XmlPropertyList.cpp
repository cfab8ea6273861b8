// SPDX-License-Identifier: MIT
#include "PropertyList.h"

#include <Foundation/NSString.h>

#include <expat.h>

#include <array>
#include <limits>

namespace platform {

namespace {

/// Property lists that people write are a few levels deep; a keyed archive has three.
constexpr std::size_t deepest = 64;
constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

enum class Kind : std::uint8_t { array, dictionary, string, integer, data, other };

/// One value of the list. Texts stand in one buffer, one behind the other.
struct Node {
    Kind kind;
    std::uint32_t keyStart = 0; // of the key under which a dictionary holds it
    std::uint32_t keyLength = none;
    std::uint32_t textStart = 0;
    std::uint32_t textLength = 0;
    std::uint32_t firstChild = none;
    std::uint32_t next = none;
};

std::optional<Kind> kindOf(std::string_view element) {
    static constexpr std::array<std::pair<std::string_view, Kind>, 9> kinds{{{"array", Kind::array},
                                                                             {"dict", Kind::dictionary},
                                                                             {"string", Kind::string},
                                                                             {"integer", Kind::integer},
                                                                             {"data", Kind::data},
                                                                             {"real", Kind::other},
                                                                             {"date", Kind::other},
                                                                             {"true", Kind::other},
                                                                             {"false", Kind::other}}};
    for (const auto& [name, kind] : kinds)
        if (name == element)
            return kind;
    return std::nullopt;
}

bool isContainer(Kind kind) {
    return kind == Kind::array || kind == Kind::dictionary;
}

class XmlPropertyList final : public PropertyList {
public:
    bool parse(const std::vector<std::uint8_t>& xml) {
        const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
        if (!parser)
            return false;
        m_parser = parser.get();
        XML_SetUserData(m_parser, this);
        XML_SetElementHandler(m_parser, begin, end);
        XML_SetCharacterDataHandler(m_parser, characters);
        XML_SetEntityDeclHandler(m_parser, declaration);
        XML_SetSkippedEntityHandler(m_parser, skipped);
        const bool read = XML_Parse(m_parser, reinterpret_cast<const char*>(xml.data()), // NOLINT
                                    static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
        m_parser = nullptr;
        m_open = {};
        return read && !m_failed && m_plists == 1 && !m_nodes.empty();
    }

    Object root() const override { return 0; }

    std::optional<Object> valueForKey(Object dictionary, std::string_view key) const override {
        if (!is(dictionary, Kind::dictionary))
            return std::nullopt;
        for (auto child = m_nodes[dictionary].firstChild; child != none; child = m_nodes[child].next)
            if (std::string_view(m_text).substr(m_nodes[child].keyStart, m_nodes[child].keyLength) == key)
                return child;
        return std::nullopt;
    }

    std::optional<Object> elementAt(Object array, std::uint64_t index) const override {
        if (!is(array, Kind::array))
            return std::nullopt;
        auto child = m_nodes[array].firstChild;
        for (; child != none && index > 0; --index)
            child = m_nodes[child].next;
        return child == none ? std::nullopt : std::optional<Object>(child);
    }

    std::optional<std::uint64_t> reference(Object object) const override {
        const auto value = valueForKey(object, "CF$UID");
        const auto number = value ? integer(*value) : std::nullopt;
        return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
    }

    std::optional<std::int64_t> integer(Object object) const override {
        if (!is(object, Kind::integer))
            return std::nullopt;
        return integerOf(text(object));
    }

    std::optional<std::vector<std::uint8_t>> bytes(Object object) const override {
        return is(object, Kind::data) ? base64(text(object)) : std::nullopt;
    }

    bool isString(Object object, std::string_view wanted) const override {
        return is(object, Kind::string) && text(object) == wanted;
    }

private:
    bool is(Object object, Kind kind) const { return object < m_nodes.size() && m_nodes[object].kind == kind; }
    std::string_view text(Object object) const {
        return std::string_view(m_text).substr(m_nodes[object].textStart, m_nodes[object].textLength);
    }

    /// Decimal with an optional sign, between white space.
    static std::optional<std::int64_t> integerOf(std::string_view text) {
        constexpr std::string_view space = " \t\r\n";
        const auto first = text.find_first_not_of(space);
        if (first == std::string_view::npos)
            return std::nullopt;
        text = text.substr(first, text.find_last_not_of(space) + 1 - first);
        const bool negative = text.front() == '-';
        if (negative || text.front() == '+')
            text.remove_prefix(1);
        if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos)
            return std::nullopt;
        std::uint64_t value = 0;
        for (const char digit : text) {
            const auto next = static_cast<std::uint64_t>(digit - '0');
            if (value > (static_cast<std::uint64_t>(INT64_MAX) - next) / 10)
                return std::nullopt;
            value = value * 10 + next;
        }
        return negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
    }

    static std::optional<std::vector<std::uint8_t>> base64(std::string_view text) {
        constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::vector<std::uint8_t> out;
        out.reserve(text.size() / 4 * 3);
        std::uint32_t bits = 0;
        int held = 0;
        bool ended = false;
        for (const char character : text) {
            if (character == ' ' || character == '\t' || character == '\r' || character == '\n')
                continue;
            const auto value = alphabet.find(character);
            ended = ended || character == '=';
            if (character != '=' && (ended || value == std::string_view::npos))
                return std::nullopt;
            if (ended)
                continue;
            bits = (bits << 6 | static_cast<std::uint32_t>(value)) & 0xFFFFFF;
            held += 6;
            if (held >= 8) {
                held -= 8;
                out.push_back(static_cast<std::uint8_t>(bits >> held));
            }
        }
        return out;
    }

    // What the parser tells

    void stop() {
        m_failed = true;
        XML_StopParser(m_parser, XML_FALSE);
    }

    void beginElement(std::string_view element) {
        if (m_depth++ == 0) {
            ++m_plists;
            if (element != "plist")
                stop();
            return;
        }
        if (m_depth > deepest || m_inText)
            return stop();
        if (element == "key") {
            if (m_open.empty() || m_nodes[m_open.back().node].kind != Kind::dictionary || m_keyLength != none)
                return stop();
            m_keyStart = static_cast<std::uint32_t>(m_text.size());
            m_inText = m_inKey = true;
            return;
        }
        const auto kind = kindOf(element);
        const bool inDictionary = !m_open.empty() && m_nodes[m_open.back().node].kind == Kind::dictionary;
        if (!kind || inDictionary != (m_keyLength != none) || (m_open.empty() && !m_nodes.empty()))
            return stop();
        add({*kind, m_keyStart, m_keyLength, static_cast<std::uint32_t>(m_text.size())});
        m_keyLength = none;
        m_inText = !isContainer(*kind);
    }

    void add(const Node& node) {
        const auto at = static_cast<std::uint32_t>(m_nodes.size());
        m_nodes.push_back(node);
        if (!m_open.empty()) {
            auto& parent = m_open.back();
            (parent.last == none ? m_nodes[parent.node].firstChild : m_nodes[parent.last].next) = at;
            parent.last = at;
        }
        if (isContainer(node.kind))
            m_open.push_back({at, none});
    }

    void endElement() {
        --m_depth;
        if (m_inKey) {
            m_keyLength = static_cast<std::uint32_t>(m_text.size()) - m_keyStart;
        } else if (m_inText) {
            m_nodes.back().textLength = static_cast<std::uint32_t>(m_text.size()) - m_nodes.back().textStart;
        } else if (!m_open.empty()) {
            if (m_keyLength != none) // a key without value
                return stop();
            m_open.pop_back();
        }
        m_inText = m_inKey = false;
    }

    static XmlPropertyList& self(void* data) { return *static_cast<XmlPropertyList*>(data); }
    static void XMLCALL begin(void* data, const XML_Char* name, const XML_Char**) { self(data).beginElement(name); }
    static void XMLCALL end(void* data, const XML_Char*) {
        if (!self(data).m_failed)
            self(data).endElement();
    }
    static void XMLCALL characters(void* data, const XML_Char* text, int length) {
        if (self(data).m_inText)
            self(data).m_text.append(text, static_cast<std::size_t>(length));
    }
    // No entity is ever expanded: a list that declares one, or uses one that is not XML's own, is refused.
    static void XMLCALL declaration(void* data, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                    const XML_Char*, const XML_Char*, const XML_Char*) {
        self(data).stop();
    }
    static void XMLCALL skipped(void* data, const XML_Char*, int) { self(data).stop(); }

    struct Open {
        std::uint32_t node;
        std::uint32_t last; // child
    };
    std::vector<Node> m_nodes;
    std::string m_text;
    // While parsing
    XML_Parser m_parser = nullptr;
    std::vector<Open> m_open;
    std::size_t m_depth = 0;
    int m_plists = 0;
    std::uint32_t m_keyStart = 0;
    std::uint32_t m_keyLength = none; // a key that waits for its value
    bool m_inText = false;
    bool m_inKey = false;
    bool m_failed = false;
};

} // namespace

std::unique_ptr<const PropertyList> readXmlPropertyList(const NSData& data, std::string& error) {
    auto list = std::make_unique<XmlPropertyList>();
    if (list->parse(*data))
        return list;
    error = "it is no property list";
    return nullptr;
}

} // namespace platform
