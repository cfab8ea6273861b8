// SPDX-License-Identifier: MIT
#include "ContentScan.h"

#include <array>

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

/// The offset after the string whose parenthesis opens at `at`.
std::size_t skipString(std::string_view content, std::size_t at) {
    int depth = 0;
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

/// Whether content goes on at `at` as operators do, not as the data of an image.
bool looksLikeOperators(std::string_view content, std::size_t at) {
    for (const char c : content.substr(at, 16))
        if (const auto code = static_cast<unsigned char>(c); code >= 0x7F || (code < 0x20 && classOf(c) != space))
            return false;
    return true;
}

/// The offset after the `EI` that ends the data starting at `at`.
std::size_t skipImage(std::string_view content, std::size_t at) {
    for (auto end = content.find("EI", at); end != std::string_view::npos; end = content.find("EI", end + 1)) {
        const bool begins = end == at || classOf(content[end - 1]) == space;
        const bool ends = end + 2 == content.size() || classOf(content[end + 2]) != regular;
        if (begins && ends && looksLikeOperators(content, end + 2))
            return end + 2;
    }
    return content.size();
}

/// Calls `meet` with each operator and name of the content and where it stands, and with the offset where its operands
/// begin. Strings, comments and the data of inline images are passed over.
template <class Meet>
void walk(std::string_view content, Meet meet) {
    bool inImage = false;
    for (std::size_t at = 0; at < content.size();) {
        const char c = content[at];
        if (classOf(c) == space) {
            ++at;
        } else if (c == '%') {
            at = content.find_first_of("\r\n", at);
            if (at == std::string_view::npos)
                break;
        } else if (c == '(') {
            at = skipString(content, at);
        } else if (c == '<' && content.substr(at, 2) != "<<") {
            at = content.find('>', at);
            if (at == std::string_view::npos)
                break;
            ++at;
        } else if (c == '<' || c == '>') {
            at += content.substr(at, 2) == ">>" || c == '<' ? 2 : 1;
        } else if (c == '/' || classOf(c) == regular) {
            const std::size_t begin = at++;
            while (at < content.size() && classOf(content[at]) == regular)
                ++at;
            const auto token = content.substr(begin, at - begin);
            if (token == "BI") {
                inImage = true;
            } else if (token == "ID" && inImage) {
                at = skipImage(content, at + 1);
                inImage = false;
            } else {
                meet(token, begin);
            }
        } else {
            ++at;
        }
    }
}

} // namespace

ContentBalance scanContent(std::string_view content) {
    ContentBalance balance;
    walk(content, [&balance](std::string_view token, std::size_t at) {
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
