// SPDX-License-Identifier: MIT
#include <model/History.h>

#include <Foundation/NSString.h>

#include <algorithm>

namespace model {

namespace {

using host::ConfigurationArray;
using host::NSUInteger;

constexpr std::size_t mostSteps = 100;
constexpr std::chrono::seconds together{1};

} // namespace

std::size_t History::Step::weight() const {
    std::size_t bytes = sizeof *this + (list ? list->size() * sizeof list->front() : 0);
    for (const auto& former : formers)
        bytes += sizeof former + former.was->weight();
    return bytes;
}

History::History(ImprinterModel& model, std::size_t bytes)
    : m_model(model), m_mostBytes(bytes), m_list(model.configurations()) {}

void History::willChange(const std::shared_ptr<Configuration>& configuration) {
    if (m_applying)
        return;
    if (m_changing.insert(configuration).second)
        m_current.formers.push_back({configuration, configuration->snapshot()});
}

void History::changed(const std::shared_ptr<Configuration>& configuration) {
    if (!m_applying && !configuration)
        m_listChanged = true;
}

bool History::areOfOneKind(const Step& step, const Step& other) {
    return !step.list && !other.list && step.formers.size() == 1 && other.formers.size() == 1 &&
           step.formers.front().configuration == other.formers.front().configuration && step.fields == other.fields;
}

bool History::isAsBefore(const Step& step) {
    const auto& former = step.formers.front();
    return former.configuration->differencesFrom(*former.was) == 0;
}

bool History::takeBack(const Step& step) {
    for (auto former = m_done.rbegin(); former != m_done.rend() && areOfOneKind(*former, step); ++former)
        if (isAsBefore(*former)) {
            m_done.erase(former.base() - 1, m_done.end());
            return true;
        }
    return false;
}

History::Step History::takeCurrent() {
    auto step = std::exchange(m_current, {});
    m_changing.clear();
    const auto former = std::exchange(m_list, m_model.configurations());
    if (std::exchange(m_listChanged, false) && *former != *m_list)
        step.list = former;
    // What is new is undone by taking it out of the list, and may have come there without a name yet.
    const std::set<std::shared_ptr<host::ImprinterConfiguration>> old(former->begin(), former->end());
    std::erase_if(step.formers, [&](const Former& each) {
        const auto fields =
            step.list && !old.contains(each.configuration) ? 0 : each.configuration->differencesFrom(*each.was);
        step.fields |= fields;
        return fields == 0;
    });
    return step;
}

void History::endStep(Clock::time_point now) {
    const bool textUndoes = std::exchange(m_textUndoes, false);
    if (!isChanging())
        return;
    auto step = takeCurrent();
    if (step.formers.empty() && !step.list)
        return;
    step.time = now;
    m_undone.clear();
    if (textUndoes && takeBack(step))
        return;
    if (m_done.empty() || !areOfOneKind(m_done.back(), step) || (!textUndoes && now - m_done.back().time >= together)) {
        push(std::move(step));
        return;
    }
    m_done.back().time = now;
    if (isAsBefore(m_done.back()))
        m_done.pop_back();
}

void History::push(Step step) {
    m_done.push_back(std::move(step));
    std::size_t bytes = 0;
    auto oldest = m_done.end();
    while (oldest != m_done.begin() && m_done.end() - oldest < static_cast<std::ptrdiff_t>(mostSteps)) {
        bytes += (oldest - 1)->weight();
        if (bytes > m_mostBytes && oldest != m_done.end())
            break;
        --oldest;
    }
    m_done.erase(m_done.begin(), oldest);
}

void History::clear() {
    m_done.clear();
    m_undone.clear();
    takeCurrent();
    m_textUndoes = false;
}

History::Step History::apply(const Step& step, std::optional<NSUInteger>& row) {
    Step back{{}, step.list ? m_list : nullptr, step.fields, {}};
    for (const auto& former : step.formers)
        back.formers.push_back({former.configuration, former.configuration->snapshot()});
    m_applying = true;
    std::shared_ptr<host::ImprinterConfiguration> shown;
    if (step.list) {
        std::vector<std::shared_ptr<Configuration>> list;
        for (const auto& configuration : *step.list)
            list.push_back(std::static_pointer_cast<Configuration>(configuration));
        m_model.setConfigurations(std::move(list));
        const auto firstMissing = [](const ConfigurationArray& from, const ConfigurationArray& in) {
            const std::set<std::shared_ptr<host::ImprinterConfiguration>> there(in->begin(), in->end());
            return std::find_if(from->begin(), from->end(), [&](const auto& each) { return !there.contains(each); });
        };
        if (const auto returned = firstMissing(step.list, m_list); returned != step.list->end())
            shown = *returned;
        else if (const auto gone = firstMissing(m_list, step.list); gone != m_list->end() && !step.list->empty())
            row = std::min(static_cast<NSUInteger>(gone - m_list->begin()), step.list->size() - 1);
    }
    for (const auto& former : step.formers)
        former.configuration->restore(*former.was);
    m_applying = false;
    m_list = m_model.configurations();
    if (!shown && !row && !step.formers.empty())
        shown = step.formers.front().configuration;
    if (const auto index = m_model.indexOfConfiguration(shown); shown && index != platform::NSNotFound)
        row = index;
    return back;
}

std::optional<NSUInteger> History::undo() {
    endStep();
    std::optional<NSUInteger> row;
    if (m_done.empty())
        return row;
    const auto step = std::move(m_done.back());
    m_done.pop_back();
    m_undone.push_back(apply(step, row));
    return row;
}

std::optional<NSUInteger> History::redo() {
    endStep();
    std::optional<NSUInteger> row;
    if (m_undone.empty())
        return row;
    const auto step = std::move(m_undone.back());
    m_undone.pop_back();
    push(apply(step, row));
    return row;
}

} // namespace model
