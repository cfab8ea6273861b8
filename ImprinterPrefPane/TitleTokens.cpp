// SPDX-License-Identifier: MIT
#include "TitleTokens.h"

#include <algorithm>

namespace pane {

namespace {

using platform::NSInteger;

const std::u16string* textOf(const RepresentedObject& token) {
    return std::get_if<std::u16string>(&token);
}

/// Whether the token has characters of its own that a range can part.
bool isPlainText(const RepresentedObject& token) {
    const auto* text = textOf(token);
    return text && !isTokenString(*text);
}

/// Appends what `text` has from `offset` on. Answers NO where `offset` is beyond its end.
bool appendTail(TitleObjects& title, const std::u16string& text, NSInteger offset) {
    if (offset >= static_cast<NSInteger>(text.size()))
        return false;
    title.emplace_back(text.substr(static_cast<std::size_t>(std::max<NSInteger>(offset, 0))));
    return true;
}

} // namespace

bool isTokenString(std::u16string_view text) {
    return !text.empty() && text.front() == u'%' && text.back() == u'%';
}

std::u16string normalizedTitleTokenString(const std::u16string& text) {
    return !text.empty() && text.front() == u'%' && !isTokenString(text) ? text.substr(1) : text;
}

TitleObjects normalizedTitleTokens(const NSArray<RepresentedObject>& title) {
    TitleObjects normalized;
    normalized.reserve(platform::count(title));
    for (std::size_t i = 0; i < platform::count(title); ++i) {
        const auto* text = textOf((*title)[i]);
        normalized.push_back(text ? RepresentedObject(normalizedTitleTokenString(*text)) : (*title)[i]);
    }
    return normalized;
}

NSUInteger lengthOfToken(const RepresentedObject& token) {
    return isPlainText(token) ? std::max<NSUInteger>(textOf(token)->size(), 1) : 1;
}

TitleObjects titleByInsertingTokenInRange(const NSArray<RepresentedObject>& title, const RepresentedObject& token,
                                          NSRange range) {
    TitleObjects result;
    result.reserve(platform::count(title) + 2);
    const auto insertion = range.location;
    const auto end = insertion + range.length;
    bool inserted = false;
    bool tailDone = false; // nothing behind is in the range any more
    NSUInteger position = 0;
    for (std::size_t i = 0; i < platform::count(title); ++i) {
        const auto& element = (*title)[i];
        const auto length = lengthOfToken(element);
        const auto covered = static_cast<NSInteger>(end - position); // by the range, from the element's start
        const bool holdsInsertion = position <= insertion && insertion < position + length;
        if (!inserted && holdsInsertion && insertion == position) {
            result.push_back(token);
            if (!isPlainText(element) || range.length == 0) {
                result.push_back(element);
                tailDone = true;
            } else if (appendTail(result, *textOf(element), covered)) {
                tailDone = true;
            }
            inserted = true;
        } else if (!inserted && holdsInsertion) {
            const auto& text = *textOf(element);
            result.emplace_back(text.substr(0, insertion - position));
            result.push_back(token);
            tailDone = appendTail(result, text, covered);
            inserted = true;
        } else if (inserted && !tailDone) {
            if (covered > 0 && covered < static_cast<NSInteger>(length)) {
                appendTail(result, *textOf(element), covered);
                tailDone = true;
            } else if (covered <= 0) {
                result.push_back(element);
                tailDone = true;
            }
        } else {
            result.push_back(element);
        }
        position += length;
    }
    if (!inserted)
        result.push_back(token);
    return result;
}

std::shared_ptr<host::ImprinterFont> fontRunOf(const RepresentedObject& token) {
    const auto* object = std::get_if<std::shared_ptr<platform::NSObject>>(&token);
    return object ? std::dynamic_pointer_cast<host::ImprinterFont>(*object) : nullptr;
}

FontRuns fontRunsOf(const NSArray<RepresentedObject>& title) {
    FontRuns runs;
    for (std::size_t i = 0; i < platform::count(title); ++i)
        if (auto run = fontRunOf((*title)[i]))
            runs.push_back(std::move(run));
    return runs;
}

FontRuns fontRunsInRange(const NSArray<RepresentedObject>& title, NSRange range) {
    FontRuns runs;
    const auto end = range.location + range.length;
    NSUInteger position = 0;
    for (std::size_t i = 0; i < platform::count(title) && position <= end; ++i) {
        if (auto run = fontRunOf((*title)[i])) {
            if (range.location <= position && position < end)
                runs.push_back(std::move(run));
            position += 1;
        } else if (const auto* text = textOf((*title)[i])) {
            position += text->size() >= 3 && text->front() == u'%' ? 1 : text->size();
        }
    }
    return runs;
}

TitleObjects titleWithoutFirstOccurrences(const NSArray<RepresentedObject>& title,
                                          const NSArray<RepresentedObject>& dragged) {
    TitleObjects pending = dragged ? *dragged : TitleObjects();
    TitleObjects result;
    result.reserve(platform::count(title));
    for (std::size_t i = 0; i < platform::count(title); ++i) {
        const auto& element = (*title)[i];
        const auto found = textOf(element) ? pending.end() : std::find(pending.begin(), pending.end(), element);
        if (found != pending.end())
            pending.erase(found);
        else
            result.push_back(element);
    }
    return result;
}

NSArray<RepresentedObject> fieldTitle(const NSArray<host::TitleToken>& title) {
    if (!title)
        return nullptr;
    TitleObjects objects;
    objects.reserve(title->size());
    for (const auto& token : *title)
        if (const auto* text = std::get_if<std::u16string>(&token))
            objects.emplace_back(*text);
        else if (const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&token))
            objects.emplace_back(std::shared_ptr<platform::NSObject>(*run));
        else
            objects.emplace_back(std::get<std::shared_ptr<platform::NSObject>>(token));
    return std::make_shared<const TitleObjects>(std::move(objects));
}

NSArray<host::TitleToken> modelTitle(const NSArray<RepresentedObject>& title) {
    if (!title)
        return nullptr;
    std::vector<host::TitleToken> tokens;
    tokens.reserve(title->size());
    for (const auto& object : *title)
        if (const auto* text = textOf(object))
            tokens.emplace_back(*text);
        else if (auto run = fontRunOf(object))
            tokens.emplace_back(std::move(run));
        else
            tokens.emplace_back(std::get<std::shared_ptr<platform::NSObject>>(object));
    return std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens));
}

} // namespace pane
