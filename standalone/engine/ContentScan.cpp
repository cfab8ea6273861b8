// SPDX-License-Identifier: MIT
#include "ContentScan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace engine {

namespace {

enum Class : unsigned char { regular, space, delimiter };

constexpr std::array<Class, 256> classes = [] {
    std::array<Class, 256> table{};
    for (const unsigned char c : {'\0', '\t', '\n', '\f', '\r', ' '})
        table[c] = space;
    for (const unsigned char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'})
        table[c] = delimiter;
    return table;
}();

Class classOf(char c) {
    return classes[static_cast<unsigned char>(c)];
}

/// The offset after the string whose parenthesis opens at `at`. `depth`: how many are open where the content ends.
std::size_t skipString(std::string_view content, std::size_t at, std::size_t& depth) {
    depth = 0;
    for (; at < content.size(); ++at) {
        if (content[at] == '\\')
            ++at;
        else if (content[at] == '(')
            ++depth;
        else if (content[at] == ')' && --depth == 0)
            return at + 1;
    }
    return content.size();
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// What the dictionary of an inline image says about the extent of its data.
struct ImageKeys {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bits = 0;
    std::size_t channels = 0; ///< 0 where a resource would tell.
    std::string_view filter;  ///< The one that the data meets first; empty for none.
};

std::size_t skipSpace(std::string_view text, std::size_t at) {
    while (at < text.size() && classOf(text[at]) == space)
        ++at;
    return at;
}

std::string_view regularAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && classOf(text[end]) == regular)
        ++end;
    return text.substr(at, end - at);
}

ImageKeys readImageKeys(std::string_view dictionary) {
    ImageKeys keys;
    for (auto at = dictionary.find('/'); at != std::string_view::npos; at = dictionary.find('/', at)) {
        const auto key = regularAt(dictionary, at + 1);
        at = skipSpace(dictionary, at + 1 + key.size());
        // Of a list its first name counts.
        const bool isList = at < dictionary.size() && dictionary[at] == '[';
        const auto end = isList ? std::min(dictionary.find(']', at), dictionary.size()) : std::string_view::npos;
        auto value = at;
        if (isList)
            value = std::min(dictionary.find('/', at), end);
        const bool isName = value < dictionary.size() && dictionary[value] == '/';
        const auto text = regularAt(dictionary, isName ? value + 1 : value);
        std::size_t number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        if (isOneOf(key, {"W", "Width"}))
            keys.width = number;
        else if (isOneOf(key, {"H", "Height"}))
            keys.height = number;
        else if (isOneOf(key, {"BPC", "BitsPerComponent"}))
            keys.bits = number;
        else if (isOneOf(key, {"IM", "ImageMask"}) && text == "true")
            keys.bits = keys.channels = 1;
        else if (isOneOf(key, {"CS", "ColorSpace"}))
            keys.channels = isOneOf(text, {"G", "DeviceGray", "CalGray", "I", "Indexed"}) ? 1
                            : isOneOf(text, {"RGB", "DeviceRGB", "CalRGB"})               ? 3
                            : isOneOf(text, {"CMYK", "DeviceCMYK"})                       ? 4
                                                                                          : 0;
        else if (isOneOf(key, {"F", "Filter"}))
            keys.filter = text;
        at = isList ? end : std::max(at, value + (isName ? 1 : 0) + text.size());
    }
    return keys;
}

/// The offset after the data of an image starting at `at`, where the data says it or what is known of the image does.
std::optional<std::size_t> endOfData(std::string_view content, std::size_t at, const ImageKeys& keys) {
    const auto after = [&](std::string_view mark) {
        const auto found = content.find(mark, at);
        return found == std::string_view::npos ? std::nullopt : std::optional(found + mark.size());
    };
    if (isOneOf(keys.filter, {"A85", "ASCII85Decode"}))
        return after("~>");
    if (isOneOf(keys.filter, {"AHx", "ASCIIHexDecode"}))
        return after(">");
    if (isOneOf(keys.filter, {"RL", "RunLengthDecode"})) {
        while (at < content.size()) {
            const auto length = static_cast<unsigned char>(content[at]);
            if (length == 128)
                return at + 1;
            at += length < 128 ? std::size_t{length} + 2 : 2;
        }
        return std::nullopt;
    }
    constexpr std::size_t most = 1 << 20; // of a side, so that nothing overflows
    if (!keys.filter.empty() || keys.channels == 0 || keys.bits == 0 || keys.bits > 16 || keys.width > most ||
        keys.height > most)
        return std::nullopt;
    return at + (keys.width * keys.channels * keys.bits + 7) / 8 * keys.height;
}

/// Whether content goes on at `at` as operators do, not as the data of an image.
bool looksLikeOperators(std::string_view content, std::size_t at) {
    for (const char c : content.substr(at, 16))
        if (const auto code = static_cast<unsigned char>(c); code >= 0x7F || (code < 0x20 && classOf(c) != space))
            return false;
    return true;
}

/// The offset after the `EI` that ends the data starting at `at`; none where nothing ends it.
std::optional<std::size_t> skipImage(std::string_view content, std::size_t at, std::string_view dictionary) {
    const auto ends = [content](std::size_t end) {
        return content.substr(end, 2) == "EI" && (end + 2 == content.size() || classOf(content[end + 2]) != regular);
    };
    // 1. Where it is known. Some begin the data with two characters of a line's end.
    const auto keys = readImageKeys(dictionary);
    for (std::size_t begin = at; begin <= at + 1 && begin < content.size(); ++begin) {
        if (begin > at && content[at] != '\n')
            break;
        const auto known = endOfData(content, begin, keys);
        if (!known || *known > content.size())
            break;
        if (const auto end = skipSpace(content, *known); ends(end))
            return end + 2;
    }
    // 2. Else where it looks like the end, first of all on its own between spaces.
    for (const bool alone : {true, false})
        for (auto end = content.find("EI", at); end != std::string_view::npos; end = content.find("EI", end + 1)) {
            const bool begins = !alone || end == at || classOf(content[end - 1]) == space;
            if (begins && ends(end) && looksLikeOperators(content, end + 2))
                return end + 2;
        }
    return std::nullopt;
}

/// Calls `meet` with each operator and name of the content and where it stands, and with the offset where its operands
/// begin. Strings, comments and the data of inline images are passed over. Answers what would close that which is open
/// at the end, a line each.
template <class Meet>
std::string walk(std::string_view content, Meet meet) {
    std::string brackets;
    std::string closing;
    std::size_t parentheses = 0;
    std::size_t image = std::string_view::npos; // where its dictionary begins
    for (std::size_t at = 0; at < content.size();) {
        const char c = content[at];
        if (classOf(c) == space) {
            ++at;
        } else if (c == '%') {
            at = content.find_first_of("\r\n", at);
            if (at == std::string_view::npos)
                break;
        } else if (c == '(') {
            at = skipString(content, at, parentheses);
        } else if (c == '<' && content.substr(at, 2) != "<<") {
            at = content.find('>', at);
            if (at == std::string_view::npos) {
                closing = ">\n";
                break;
            }
            ++at;
        } else if (c == '<' || c == '[') {
            brackets += c;
            at += c == '<' ? 2 : 1;
        } else if (c == ']' || content.substr(at, 2) == ">>") {
            if (brackets.ends_with(c == ']' ? '[' : '<'))
                brackets.pop_back();
            at += c == ']' ? 1 : 2;
        } else if (c == '/' || classOf(c) == regular) {
            const std::size_t begin = at++;
            while (at < content.size() && classOf(content[at]) == regular)
                ++at;
            const auto token = content.substr(begin, at - begin);
            if (token == "BI") {
                image = at;
            } else if (token == "ID" && image != std::string_view::npos) {
                const auto end = skipImage(content, at + 1, content.substr(image, begin - image));
                image = std::string_view::npos;
                if (!end) {
                    closing = "EI\n";
                    break;
                }
                at = *end;
            } else {
                meet(token, begin);
            }
        } else {
            ++at;
        }
    }
    for (; parentheses > 0; --parentheses)
        closing += ")\n";
    for (auto bracket = brackets.rbegin(); bracket != brackets.rend(); ++bracket)
        closing += *bracket == '[' ? "]\n" : ">>\n";
    // Some readers give an image up where its dictionary has a key that is no name; others go on to its data, and draw
    // it unless its keys are wrong.
    if (image != std::string_view::npos)
        closing += "() () /IM 0 ID \nEI\n";
    return closing;
}

} // namespace

ContentBalance scanContent(std::string_view content) {
    ContentBalance balance;
    balance.closing = walk(content, [&balance](std::string_view token, std::size_t at) {
        if (token == "q") {
            ++balance.openStates;
        } else if (token == "Q") {
            if (balance.openStates > 0)
                --balance.openStates;
            else
                balance.surplusRestores.push_back(at);
        } else if (token == "BT") {
            balance.openText = true;
        } else if (token == "ET") {
            balance.openText = false;
        } else if (token == "BDC" || token == "BMC") {
            ++balance.openMarks;
        } else if (token == "EMC") {
            balance.openMarks -= balance.openMarks > 0 ? 1 : 0;
        }
    });
    return balance;
}

std::vector<ContentMark> findMarks(std::string_view content) {
    std::vector<ContentMark> marks;
    std::size_t depth = 0;
    std::size_t tagAt = 0;
    std::string_view tag;
    std::string_view lastName;
    walk(content, [&](std::string_view token, std::size_t at) {
        if (token.starts_with('/')) {
            // The first name after an operator is the tag, if a mark follows.
            if (tag.empty()) {
                tag = token;
                tagAt = at;
            }
            lastName = token;
            return;
        }
        const bool isOperand = token.find_first_not_of("+-.0123456789") == std::string_view::npos || token == "true" ||
                               token == "false" || token == "null";
        if (isOperand)
            return;
        if (token == "BDC" || token == "BMC") {
            if (depth++ == 0) {
                const auto begin = tag.empty() ? at : tagAt;
                const auto properties = tag.empty() || token == "BMC"
                                            ? std::string_view()
                                            : content.substr(tagAt + tag.size(), at - tagAt - tag.size());
                marks.push_back({begin, 0, tag, properties, {}});
            }
        } else if (token == "EMC" && depth > 0) {
            if (--depth == 0)
                marks.back().end = at + token.size();
        } else if (token == "Do" && depth > 0) {
            marks.back().drawn.emplace_back(lastName);
        }
        tag = {};
        lastName = {};
    });
    if (depth > 0)
        marks.pop_back();
    return marks;
}

} // namespace engine
