// SPDX-License-Identifier: MIT
#include "InformationList.h"

#include <Foundation/NSString.h>

#include <expat.h>

#include <memory>

namespace platform {

namespace {

constexpr int deepest = 32;

struct Reader {
    TextMap texts;
    std::string content;
    std::optional<std::u16string> key;
    int depth = 0;
    bool isList = false;
    bool failed = false;
    XML_Parser parser = nullptr;

    void stop() {
        failed = true;
        XML_StopParser(parser, XML_FALSE);
    }
};

void XMLCALL begin(void* data, const XML_Char* name, const XML_Char**) {
    auto& reader = *static_cast<Reader*>(data);
    ++reader.depth;
    const std::string_view element(name);
    if (reader.depth > deepest || (reader.depth == 1 && element != "plist") || (reader.depth == 2 && element != "dict"))
        return reader.stop();
    if (reader.depth == 2)
        reader.isList = true;
    reader.content.clear();
}

void XMLCALL end(void* data, const XML_Char* name) {
    auto& reader = *static_cast<Reader*>(data);
    const std::string_view element(name);
    if (reader.depth == 3) {
        if (element == "key") {
            reader.key = fromUtf8(reader.content);
        } else {
            if (element == "string" && reader.key)
                reader.texts[*reader.key] = fromUtf8(reader.content);
            reader.key.reset();
        }
    }
    --reader.depth;
}

void XMLCALL characters(void* data, const XML_Char* text, int length) {
    auto& reader = *static_cast<Reader*>(data);
    if (reader.depth == 3)
        reader.content.append(text, static_cast<std::size_t>(length));
}

void XMLCALL entity(void* data, const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*,
                    const XML_Char*, const XML_Char*) {
    static_cast<Reader*>(data)->stop();
}

} // namespace

std::optional<TextMap> textsOfPropertyList(const std::string& xml) {
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
    Reader reader;
    reader.parser = parser.get();
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), begin, end);
    XML_SetCharacterDataHandler(parser.get(), characters);
    XML_SetEntityDeclHandler(parser.get(), entity);
    const bool read = XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
    if (!read || reader.failed || !reader.isList)
        return std::nullopt;
    return std::move(reader.texts);
}

} // namespace platform
