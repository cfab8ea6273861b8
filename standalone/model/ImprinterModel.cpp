// SPDX-License-Identifier: MIT
#include <model/ImprinterModel.h>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include <algorithm>

namespace model {

namespace {

using host::ConfigurationArray;
using host::NSInteger;
using host::NSUInteger;
using Handed = std::shared_ptr<host::ImprinterConfiguration>;

/// `name` without the " copy" or " copy 2" that an earlier duplication put at its end.
std::u16string_view withoutCopySuffix(std::u16string_view name) {
    constexpr std::u16string_view suffix = u" copy";
    auto rest = name;
    const auto digits = rest.size() - std::min(rest.size(), rest.find_last_not_of(u"0123456789") + 1);
    if (digits > 0 && digits < rest.size() && rest[rest.size() - digits - 1] == u' ')
        rest.remove_suffix(digits + 1);
    if (!rest.ends_with(suffix) || rest.size() == suffix.size())
        return name;
    rest.remove_suffix(suffix.size());
    return rest;
}

} // namespace

std::u16string nameOfCopy(const std::u16string& name, const std::set<std::u16string>& taken) {
    const auto first = std::u16string(withoutCopySuffix(name)) + u" copy";
    auto candidate = first;
    for (std::size_t number = 2; taken.contains(candidate); ++number)
        candidate = first + u" " + platform::fromUtf8(std::to_string(number));
    return candidate;
}

ImprinterModel::ImprinterModel() : m_notices(std::make_shared<const Configuration::Notices>()) {}

ImprinterModel::~ImprinterModel() {
    for (const auto& configuration : m_list)
        configuration->setNotices(nullptr);
}

ConfigurationArray ImprinterModel::configurations() const {
    if (!m_handedOut)
        m_handedOut = std::make_shared<const std::vector<Handed>>(m_list.begin(), m_list.end());
    return m_handedOut;
}

Handed ImprinterModel::configurationForID(const std::u16string& uniqueID) const {
    const auto found = m_byIdentifier.find(uniqueID);
    return found == m_byIdentifier.end() ? nullptr : found->second;
}

Handed ImprinterModel::createConfiguration(bool combined) {
    const auto made = Configuration::make(combined);
    adopt(made);
    m_list.push_back(made);
    listChanged();
    return made;
}

Handed ImprinterModel::duplicateConfigurationAtIndex(NSInteger row) {
    if (row < 0 || static_cast<NSUInteger>(row) >= m_list.size())
        return nullptr;
    const auto original = m_list.begin() + row;
    const auto made = (*original)->copy();
    std::set<std::u16string> taken;
    for (const auto& configuration : m_list)
        taken.insert(configuration->name());
    made->setName(nameOfCopy((*original)->name(), taken));
    adopt(made);
    m_list.insert(original + 1, made);
    listChanged();
    return made;
}

NSUInteger ImprinterModel::indexOfConfiguration(const Handed& configuration) const {
    if (m_rows.empty())
        for (NSUInteger row = 0; row < m_list.size(); ++row)
            m_rows.emplace(m_list[row].get(), row);
    const auto found = m_rows.find(configuration.get());
    return found == m_rows.end() ? platform::NSNotFound : found->second;
}

void ImprinterModel::deleteConfigurationAtIndex(NSUInteger index) {
    if (index >= m_list.size())
        return;
    const auto gone = m_list[index];
    m_list.erase(m_list.begin() + static_cast<NSInteger>(index));
    m_byIdentifier.erase(gone->uniqueID());
    gone->setNotices(nullptr);
    // The list is true again before anybody is told that a combined configuration changed.
    m_handedOut = nullptr;
    m_rows.clear();
    const auto rest = m_list;
    for (const auto& configuration : rest)
        configuration->deleteConfiguration(gone);
    listChanged();
}

void ImprinterModel::moveConfigurationAtIndexTo(NSUInteger index, NSUInteger row) {
    if (index >= m_list.size() || row > m_list.size() || row == index || row == index + 1)
        return;
    const auto from = m_list.begin() + static_cast<NSInteger>(index);
    const auto to = m_list.begin() + static_cast<NSInteger>(row);
    if (row > index)
        std::rotate(from, from + 1, to);
    else
        std::rotate(to, from, from + 1);
    listChanged();
}

void ImprinterModel::saveConfigurations() {
    if (m_saver)
        m_saver(*this);
}

ConfigurationArray ImprinterModel::nonCombinedConfigurations() const {
    std::vector<Handed> ordinary;
    std::copy_if(m_list.begin(), m_list.end(), std::back_inserter(ordinary),
                 [](const auto& configuration) { return !configuration->combinedConfiguration(); });
    return std::make_shared<const std::vector<Handed>>(std::move(ordinary));
}

std::optional<host::NSURL> ImprinterModel::imprintFileAtURLWithIndex(const std::optional<host::NSURL>& url,
                                                                     const Handed& configuration, NSInteger index) {
    return m_stamper ? m_stamper(url, configuration, index) : std::nullopt;
}

void ImprinterModel::setConfigurations(std::vector<std::shared_ptr<Configuration>> configurations) {
    std::set<std::u16string> identifiers;
    for (const auto& configuration : configurations) {
        if (!configuration)
            throw platform::NSInvalidArgumentException("A configuration of the list is null");
        if (!identifiers.insert(configuration->uniqueID()).second)
            throw platform::NSInvalidArgumentException("Two configurations have the identifier " +
                                                       platform::toUtf8(configuration->uniqueID()));
    }
    for (const auto& configuration : m_list)
        configuration->setNotices(nullptr);
    m_list = std::move(configurations);
    m_byIdentifier.clear();
    for (const auto& configuration : m_list)
        adopt(configuration);
    listChanged();
}

void ImprinterModel::setOnChange(Configuration::ChangeNotice onChange) {
    setNotices({m_notices->before, std::move(onChange)});
}

void ImprinterModel::setBeforeChange(Configuration::ChangeNotice beforeChange) {
    setNotices({std::move(beforeChange), m_notices->after});
}

void ImprinterModel::setNotices(Configuration::Notices notices) {
    m_notices = std::make_shared<const Configuration::Notices>(std::move(notices));
    for (const auto& configuration : m_list)
        configuration->setNotices(m_notices);
}

void ImprinterModel::adopt(const std::shared_ptr<Configuration>& configuration) {
    m_byIdentifier[configuration->uniqueID()] = configuration;
    configuration->setNotices(m_notices);
}

void ImprinterModel::listChanged() {
    m_handedOut = nullptr;
    m_rows.clear();
    if (const auto notices = m_notices; notices->after)
        notices->after(nullptr);
}

} // namespace model
