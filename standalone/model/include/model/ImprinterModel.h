// SPDX-License-Identifier: MIT
#pragma once

#include <host/Imprinter.h>
#include <model/Configuration.h>

#include <set>
#include <unordered_map>

namespace model {

/// What a copy of something called `name` is called: "… copy", or "… copy 2" and so on where that is taken.
std::u16string nameOfCopy(const std::u16string& name, const std::set<std::u16string>& taken);

/// The model of the stand-alone host: the ordered list of configurations, in memory.
///
/// The program owns it and gives it what it cannot do itself: a saver and a stamper. Without a saver nothing is stored,
/// without a stamper nothing is stamped. Asking for the list or for a row costs nothing as long as the list does not
/// change. To be used on the main thread only.
class ImprinterModel final : public host::Imprinter {
public:
    /// Stores every configuration of the model; tells people about a failure itself. What others stored in the meantime
    /// may come into the model.
    using Saver = std::function<void(ImprinterModel& model)>;
    /// As `imprintFileAtURLWithIndex`.
    using Stamper = std::function<std::optional<host::NSURL>(
        const std::optional<host::NSURL>& url, const std::shared_ptr<host::ImprinterConfiguration>& configuration,
        host::NSInteger index)>;

    ImprinterModel();
    ~ImprinterModel() override;

    /// Never nil.
    host::ConfigurationArray configurations() const override;
    /// Identifiers are told apart by case.
    std::shared_ptr<host::ImprinterConfiguration> configurationForID(const std::u16string& uniqueID) const override;
    /// Goes to the end of the list and has no name yet.
    std::shared_ptr<host::ImprinterConfiguration> createConfiguration(bool combined) override;
    /// The copy follows its original and is called "… copy", or "… copy 2" and so on where that name is taken.
    std::shared_ptr<host::ImprinterConfiguration> duplicateConfigurationAtIndex(host::NSInteger row) override;
    host::NSUInteger
    indexOfConfiguration(const std::shared_ptr<host::ImprinterConfiguration>& configuration) const override;
    /// Takes it out of every combined configuration too.
    void deleteConfigurationAtIndex(host::NSUInteger index) override;
    /// A row beyond the end is ignored, as an index is.
    void moveConfigurationAtIndexTo(host::NSUInteger index, host::NSUInteger row) override;
    void saveConfigurations() override;
    host::ConfigurationArray nonCombinedConfigurations() const override;
    std::optional<host::NSURL>
    imprintFileAtURLWithIndex(const std::optional<host::NSURL>& url,
                              const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                              host::NSInteger index) override;

    /// Replaces the whole list. Raises NSInvalidArgumentException, and changes nothing, where one of the configurations
    /// is null or two have the same identifier.
    void setConfigurations(std::vector<std::shared_ptr<Configuration>> configurations);

    void setSaver(Saver saver) { m_saver = std::move(saver); }
    void setStamper(Stamper stamper) { m_stamper = std::move(stamper); }
    /// Told after every change: with the configuration of which a value or a font run changed, and with null when the
    /// list changed. It is not told about a value that is set to what it was.
    void setOnChange(Configuration::ChangeNotice onChange);
    /// Told before a value, a font run or the members of a configuration of the list change. A change of the list has
    /// no such notice: who knew the former list still has it.
    void setBeforeChange(Configuration::ChangeNotice beforeChange);

private:
    void adopt(const std::shared_ptr<Configuration>& configuration);
    void listChanged();
    void setNotices(Configuration::Notices notices);

    std::vector<std::shared_ptr<Configuration>> m_list;
    std::unordered_map<std::u16string, std::shared_ptr<Configuration>> m_byIdentifier;
    // Made when first asked for after a change of the list.
    mutable host::ConfigurationArray m_handedOut;
    mutable std::unordered_map<const host::ImprinterConfiguration*, host::NSUInteger> m_rows;
    std::shared_ptr<const Configuration::Notices> m_notices;
    Saver m_saver;
    Stamper m_stamper;
};

} // namespace model
