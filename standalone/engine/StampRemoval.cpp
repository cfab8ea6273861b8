// SPDX-License-Identifier: MIT
#include "StampRemoval.h"

#include "ContentReader.h"
#include "ContentScan.h"

#include <qpdf/QPDFExc.hh>

#include <algorithm>
#include <stdexcept>

namespace engine {

namespace {

constexpr std::string_view kTag = "/ImprinterStamp";

/// The identifier that a mark's properties name; none where they are not a stamp's.
std::optional<std::string> identifierOf(std::string_view properties) {
    try {
        auto dictionary = QPDFObjectHandle::parse(std::string(properties));
        auto identifier =
            dictionary.isDictionary() ? dictionary.getKey(std::string(kTag)) : QPDFObjectHandle::newNull();
        return identifier.isString() ? std::optional(identifier.getUTF8Value()) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// The content of streams, as far as it can be decoded.
struct Decoded {
    std::string text;                ///< Behind the last stream that cannot be decoded, of each a line at least.
    std::vector<std::size_t> starts; ///< Of each stream in it.
    std::size_t unread = 0;          ///< How many streams there are up to that last one.
};

Decoded decode(const std::vector<QPDFObjectHandle>& streams, Flate& flate) {
    Decoded result;
    for (const auto& stream : streams) {
        const auto start = result.text.size();
        try {
            result.text += decodedStream(stream, flate);
            result.text += '\n';
            result.starts.push_back(start);
        } catch (const QPDFExc&) {
            result = {{}, {}, static_cast<std::size_t>(&stream - streams.data()) + 1};
        }
    }
    return result;
}

struct MarkedStamp {
    ContentMark mark; ///< Refers to the content.
    std::string identifier;
};

std::vector<MarkedStamp> stampsIn(std::string_view content) {
    std::vector<MarkedStamp> stamps;
    if (content.find(kTag) == std::string_view::npos)
        return stamps;
    for (auto& mark : findMarks(content))
        if (auto identifier = mark.tag == "/Artifact" ? identifierOf(mark.properties) : std::optional<std::string>())
            stamps.push_back({std::move(mark), std::move(*identifier)});
    return stamps;
}

/// Whether a stream does nothing but close what the content before it left open.
bool onlyCloses(std::string_view text) {
    const auto isSpace = [](char c) { return std::string_view("\0\t\n\f\r ", 6).find(c) != std::string_view::npos; };
    std::size_t at = 0;
    while (at < text.size()) {
        if (isSpace(text[at])) {
            ++at;
            continue;
        }
        auto end = at;
        while (end < text.size() && !isSpace(text[end]))
            ++end;
        const auto token = text.substr(at, end - at);
        static const std::string_view closers[] = {"Q", "ET", "EMC", ")", ">", "]", ">>", "()", "/IM", "0", "ID", "EI"};
        if (std::find(std::begin(closers), std::end(closers), token) == std::end(closers))
            return false;
        at = end;
    }
    return true;
}

/// How many of the first `count` streams, from the first one on, do nothing but save the state.
std::size_t savesBefore(const std::vector<QPDFObjectHandle>& streams, std::size_t count, Flate& flate) {
    std::size_t saves = 0;
    try {
        while (saves < count && decodedStream(streams[saves], flate) == "q\n")
            ++saves;
    } catch (const QPDFExc&) {
        // The first that is not one of them.
    }
    return saves;
}

} // namespace

std::vector<std::string> stampsIn(const std::vector<QPDFObjectHandle>& streams, Flate& flate) {
    std::vector<std::string> identifiers;
    const auto content = decode(streams, flate);
    for (const auto& stamp : stampsIn(content.text))
        if (std::find(identifiers.begin(), identifiers.end(), stamp.identifier) == identifiers.end())
            identifiers.push_back(stamp.identifier);
    return identifiers;
}

StrippedContent stripStamps(const std::vector<QPDFObjectHandle>& streams, const std::set<std::string>* wanted,
                            Flate& flate) {
    StrippedContent result;
    auto [text, starts, unread] = decode(streams, flate);
    std::vector<ContentMark> gone;
    for (auto& [mark, identifier] : stampsIn(text)) {
        const bool goes = !wanted || wanted->count(identifier) > 0;
        (goes ? result.names : result.kept).insert(mark.drawn.begin(), mark.drawn.end());
        if (goes)
            gone.push_back(std::move(mark));
    }
    if (gone.empty())
        return result;
    result.found = true;
    for (const auto& name : result.kept)
        result.names.erase(name);

    if (unread > 0) {
        for (auto mark = gone.rbegin(); mark != gone.rend(); ++mark)
            text.erase(mark->begin, mark->end - mark->begin);
        // With the last of the stamps goes what restores the state behind the content, and what saves it before.
        const auto saved = savesBefore(streams, unread, flate);
        const auto restored = static_cast<std::size_t>(std::count(text.begin(), text.end(), 'Q'));
        const bool unwraps = onlyCloses(text) && restored <= saved;
        result.streams.assign(streams.begin() + static_cast<std::ptrdiff_t>(unwraps ? restored : 0),
                              streams.begin() + static_cast<std::ptrdiff_t>(unread));
        if (!unwraps)
            result.tail = std::move(text);
        return result;
    }

    // 1. Where the last stream is nothing but ours, so is the one that saves the state before the page's own.
    std::string last = text.substr(starts.back());
    std::size_t insideLast = 0;
    for (auto mark = gone.rbegin(); mark != gone.rend() && mark->begin >= starts.back(); ++mark) {
        last.erase(mark->begin - starts.back(), mark->end - mark->begin);
        ++insideLast;
    }
    if (insideLast == gone.size() && onlyCloses(last)) {
        const bool closes = last.find('Q') != std::string::npos;
        const bool saves = streams.size() > 1 && text.substr(0, starts[1]) == "q\n\n";
        if (closes == saves) {
            result.streams.assign(streams.begin() + (saves ? 1 : 0), streams.end() - 1);
            return result;
        }
    }
    // 2. Else only what draws the stamps goes.
    for (auto mark = gone.rbegin(); mark != gone.rend(); ++mark)
        text.erase(mark->begin, mark->end - mark->begin);
    result.text = std::move(text);
    return result;
}

} // namespace engine
