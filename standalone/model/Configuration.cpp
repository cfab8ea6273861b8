// SPDX-License-Identifier: MIT
#include <model/Configuration.h>

#include "SameContent.h"

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

bool isSameRun(const host::ImprinterFont& left, const host::ImprinterFont& right) {
    return left.fontNumber() == right.fontNumber() && left.fullFontName() == right.fullFontName() &&
           sameContent(left.colour(), right.colour()) && left.fontSize() == right.fontSize() &&
           left.strokeWidth() == right.strokeWidth() && left.outline() == right.outline() &&
           left.underline() == right.underline() && left.strikethrough() == right.strikethrough();
}

/// Whether both say the same, whichever objects their font runs are.
bool isSameTitle(const Title& left, const Title& right) {
    if (left == right || !left || !right)
        return left == right;
    return std::equal(left->begin(), left->end(), right->begin(), right->end(),
                      [](const TitleToken& mine, const TitleToken& theirs) {
                          using Run = std::shared_ptr<host::ImprinterFont>;
                          const auto* run = std::get_if<Run>(&mine);
                          const auto* other = std::get_if<Run>(&theirs);
                          return run && other && *run && *other ? isSameRun(**run, **other) : mine == theirs;
                      });
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
    return copyCalled(newIdentifier());
}

std::shared_ptr<Configuration> Configuration::snapshot() const {
    return copyCalled(m_uniqueID);
}

std::shared_ptr<Configuration> Configuration::copyCalled(std::u16string uniqueID) const {
    std::shared_ptr<Configuration> made(new Configuration(std::move(uniqueID), m_combined));
    made->m_members = m_members;
    made->m_values = m_values;
    made->m_values.titleTokens = copyOfTitle(m_values.titleTokens, made);
    return made;
}

void Configuration::setValuesOf(const Configuration& other) {
    aboutToChange();
    m_values = other.m_values;
    m_values.titleTokens = copyOfTitle(other.m_values.titleTokens, self());
    changed();
}

void Configuration::restore(const Configuration& snapshot) {
    aboutToChange();
    m_members = snapshot.m_members;
    m_handedOut = nullptr;
    m_values = snapshot.m_values;
    m_values.titleTokens = copyOfTitle(snapshot.m_values.titleTokens, self());
    changed();
}

unsigned Configuration::differencesFrom(const Configuration& other) const {
    const auto& mine = m_values;
    const auto& theirs = other.m_values;
    unsigned fields = 0;
    const auto compare = [&fields](Field field, const auto& left, const auto& right) {
        if (!sameContent(left, right))
            fields |= field;
    };
    compare(nameField, mine.name, theirs.name);
    compare(duplicateField, mine.duplicateRecord, theirs.duplicateRecord);
    if (!isSameTitle(mine.titleTokens, theirs.titleTokens))
        fields |= titleField;
    compare(positionField, mine.position, theirs.position);
    compare(offsetField, mine.offset, theirs.offset);
    compare(rotationField, mine.rotation, theirs.rotation);
    compare(pagesField, mine.occurance, theirs.occurance);
    compare(pagesField, mine.customOccurance, theirs.customOccurance);
    compare(borderField, mine.borderEnabled, theirs.borderEnabled);
    compare(borderField, mine.borderStyle, theirs.borderStyle);
    compare(borderField, mine.borderThickness, theirs.borderThickness);
    compare(borderField, mine.borderColour, theirs.borderColour);
    compare(fillField, mine.fillEnabled, theirs.fillEnabled);
    compare(fillField, mine.fillColour, theirs.fillColour);
    compare(fillField, mine.fillOpacity, theirs.fillOpacity);
    compare(membersField, m_members, other.m_members);
    return fields;
}

std::size_t Configuration::weight() const {
    std::size_t bytes = sizeof *this + m_members.size() * sizeof m_members.front() +
                        2 * (m_values.name.size() + (m_values.customOccurance ? m_values.customOccurance->size() : 0));
    if (m_values.titleTokens)
        for (const auto& token : *m_values.titleTokens) {
            const auto* piece = std::get_if<std::u16string>(&token);
            bytes += sizeof token + (piece ? 2 * piece->size() : sizeof(FontRun));
        }
    return bytes;
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
    aboutToChange();
    m_members.push_back(member);
    m_handedOut = nullptr;
    changed();
}

void Configuration::deleteConfiguration(const Member& member) {
    if (std::find(m_members.begin(), m_members.end(), member) == m_members.end())
        return;
    aboutToChange();
    std::erase(m_members, member);
    m_handedOut = nullptr;
    changed();
}

void Configuration::setMembers(const std::vector<Member>& members) {
    std::vector<Member> taken;
    std::copy_if(members.begin(), members.end(), std::back_inserter(taken),
                 [&](const Member& member) { return m_combined && member && !member->combinedConfiguration(); });
    if (taken == m_members)
        return;
    aboutToChange();
    m_members = std::move(taken);
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
    for (std::size_t i = 0; i < platform::count(tokens); ++i)
        if (const auto* token = std::get_if<std::shared_ptr<host::ImprinterFont>>(&(*tokens)[i]))
            takeOver(std::dynamic_pointer_cast<FontRun>(*token));
    set(m_values.titleTokens, tokens);
}

void Configuration::takeOver(const std::shared_ptr<FontRun>& run) {
    if (!run)
        return;
    const auto former = run->setOwner(self());
    if (former && former.get() != this)
        former->partFrom(*run);
}

void Configuration::partFrom(const FontRun& run) {
    auto title = std::make_shared<std::vector<TitleToken>>();
    std::shared_ptr<host::ImprinterFont> own;
    for (std::size_t i = 0; i < platform::count(m_values.titleTokens); ++i) {
        title->push_back((*m_values.titleTokens)[i]);
        const auto* token = std::get_if<std::shared_ptr<host::ImprinterFont>>(&title->back());
        if (!token || token->get() != &run)
            continue;
        if (!own) {
            const auto made = std::make_shared<FontRun>(self(), 0);
            made->setAttributesOf(run);
            own = made;
        }
        title->back() = own;
    }
    if (own)
        set(m_values.titleTokens, Title(title));
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

// A copy of the pointer, because the one who is told may set other notices or let the configuration go.
void Configuration::aboutToChange() {
    if (const auto notices = m_notices; notices && notices->before)
        notices->before(self());
}

void Configuration::changed() {
    if (const auto notices = m_notices; notices && notices->after)
        notices->after(self());
}

std::shared_ptr<Configuration> Configuration::self() {
    return std::static_pointer_cast<Configuration>(shared_from_this());
}

template <class T>
void Configuration::set(T& member, const T& value) {
    const bool same = sameContent(member, value);
    if (!same)
        aboutToChange();
    member = value; // -0 equals 0 and is another number
    if (!same)
        changed();
}

} // namespace model
