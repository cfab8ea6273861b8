// SPDX-License-Identifier: MIT
#include <model/Configuration.h>

#include "Assign.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace model {

namespace {

using host::ConfigurationArray;
using host::TitleToken;
using Member = std::shared_ptr<host::ImprinterConfiguration>;
using Title = host::NSArray<TitleToken>;

/// A random UUID (RFC 4122, version 4), in capitals.
std::u16string newIdentifier() {
    static std::random_device source;
    std::array<std::uint32_t, 4> words;
    for (auto& word : words)
        word = source();
    words[1] = (words[1] & 0xFFFF0FFF) | 0x00004000;
    words[2] = (words[2] & 0x3FFFFFFF) | 0x80000000;
    std::u16string text;
    for (std::size_t digit = 0; digit < 32; ++digit) {
        if (digit == 8 || digit == 12 || digit == 16 || digit == 20)
            text.push_back(u'-');
        text.push_back(u"0123456789ABCDEF"[(words[digit / 8] >> (28 - 4 * (digit % 8))) & 0xF]);
    }
    return text;
}

host::NSUInteger fontRunCount(const Title& title) {
    if (!title)
        return 0;
    return static_cast<host::NSUInteger>(std::count_if(title->begin(), title->end(), [](const TitleToken& token) {
        return std::holds_alternative<std::shared_ptr<host::ImprinterFont>>(token);
    }));
}

/// The title with font runs of `owner`'s own; a run that stands in the title twice stays one run.
Title copyOfTitle(const Title& title, const std::shared_ptr<Configuration>& owner) {
    if (!title)
        return nullptr;
    auto copy = std::make_shared<std::vector<TitleToken>>(*title);
    std::map<std::shared_ptr<host::ImprinterFont>, std::shared_ptr<FontRun>> copies;
    for (auto& token : *copy) {
        const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&token);
        if (!run || !*run)
            continue;
        auto& replacement = copies[*run];
        if (!replacement) {
            replacement = std::make_shared<FontRun>(owner, 0);
            replacement->setAttributesOf(**run);
        }
        token = std::shared_ptr<host::ImprinterFont>(replacement);
    }
    return copy;
}

} // namespace

Configuration::Configuration(std::u16string uniqueID, bool combined)
    : m_uniqueID(std::move(uniqueID)), m_combined(combined) {}

std::shared_ptr<Configuration> Configuration::make(bool combined) {
    return makeWithID(newIdentifier(), combined);
}

std::shared_ptr<Configuration> Configuration::makeWithID(std::u16string uniqueID, bool combined) {
    std::shared_ptr<Configuration> made(new Configuration(std::move(uniqueID), combined));
    std::vector<TitleToken> title;
    if (!combined)
        title.emplace_back(made->createFontToken());
    made->m_values.titleTokens = std::make_shared<const std::vector<TitleToken>>(std::move(title));
    return made;
}

std::shared_ptr<Configuration> Configuration::copy() const {
    std::shared_ptr<Configuration> made(new Configuration(newIdentifier(), m_combined));
    made->m_members = m_members;
    made->m_values = m_values;
    made->m_values.titleTokens = copyOfTitle(m_values.titleTokens, made);
    return made;
}

void Configuration::setValuesOf(const Configuration& other) {
    m_values = other.m_values;
    m_values.titleTokens = copyOfTitle(other.m_values.titleTokens, self());
    changed();
}

void Configuration::setName(const std::u16string& name) {
    set(m_values.name, name);
}

ConfigurationArray Configuration::configurations() const {
    if (m_combined && !m_handedOut)
        m_handedOut = std::make_shared<const std::vector<Member>>(m_members);
    return m_handedOut;
}

void Configuration::addConfiguration(const Member& member) {
    if (!m_combined || !member || member->combinedConfiguration())
        return;
    m_members.push_back(member);
    m_handedOut = nullptr;
    changed();
}

void Configuration::deleteConfiguration(const Member& member) {
    if (std::erase(m_members, member) == 0)
        return;
    m_handedOut = nullptr;
    changed();
}

std::shared_ptr<host::ImprinterFont> Configuration::createFontToken() {
    return std::make_shared<FontRun>(self(), fontRunCount(m_values.titleTokens));
}

void Configuration::setDuplicateRecord(host::NSInteger code) {
    set(m_values.duplicateRecord, code);
}

void Configuration::setTitleTokens(const Title& tokens) {
    set(m_values.titleTokens, tokens);
}

void Configuration::setPosition(host::NSInteger anchor) {
    set(m_values.position, anchor);
}

void Configuration::setOffset(host::NSPoint offset) {
    set(m_values.offset, offset);
}

void Configuration::setRotation(double degrees) {
    set(m_values.rotation, degrees);
}

void Configuration::setOccurance(host::NSInteger code) {
    set(m_values.occurance, code);
}

void Configuration::setCustomOccurance(const std::u16string& pages) {
    set(m_values.customOccurance, std::optional(pages));
}

void Configuration::setBorderEnabled(bool enabled) {
    set(m_values.borderEnabled, enabled);
}

void Configuration::setBorderStyle(host::NSInteger style) {
    set(m_values.borderStyle, style);
}

void Configuration::setBorderThickness(double points) {
    set(m_values.borderThickness, points);
}

void Configuration::setBorderColour(const std::shared_ptr<const host::NSColor>& colour) {
    set(m_values.borderColour, colour);
}

void Configuration::setFillEnabled(bool enabled) {
    set(m_values.fillEnabled, enabled);
}

void Configuration::setFillColour(const std::shared_ptr<const host::NSColor>& colour) {
    set(m_values.fillColour, colour);
}

void Configuration::setFillOpacity(double opacity) {
    set(m_values.fillOpacity, opacity);
}

void Configuration::changed() {
    // A copy of the pointer, because the one who is told may set another notice or let the configuration go.
    if (const auto notice = m_notice; notice && *notice)
        (*notice)(self());
}

std::shared_ptr<Configuration> Configuration::self() {
    return std::static_pointer_cast<Configuration>(shared_from_this());
}

template <class T>
void Configuration::set(T& member, const T& value) {
    if (assign(member, value))
        changed();
}

} // namespace model
