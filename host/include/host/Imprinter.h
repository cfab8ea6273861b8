// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSURL.h>
#include <host/ImprinterConfiguration.h>

namespace host {

using platform::NSURL;

/// The host's model: the configurations and the engine that stamps them.
///
/// The pane asks for the list afresh every time, so the host may change it between two messages. An index the list does
/// not have is ignored.
class Imprinter : public platform::NSObject {
public:
    /// In the host's order; nil counts as no configurations.
    virtual ConfigurationArray configurations() const = 0;
    /// Null when no configuration has that identifier.
    virtual std::shared_ptr<ImprinterConfiguration> configurationForID(const std::u16string& uniqueID) const = 0;
    /// The new configuration, already part of the list.
    virtual std::shared_ptr<ImprinterConfiguration> createConfiguration(bool combined) = 0;
    /// Adds a copy of the configuration at `row` to the list and answers it; null for a row the list does not have.
    virtual std::shared_ptr<ImprinterConfiguration> duplicateConfigurationAtIndex(NSInteger row) = 0;
    /// NSNotFound for what is not in the list.
    virtual NSUInteger indexOfConfiguration(const std::shared_ptr<ImprinterConfiguration>& configuration) const = 0;
    virtual void deleteConfigurationAtIndex(NSUInteger index) = 0;
    /// Puts it in front of what stands in `row` as long as it has not left its own place; a `row` that equals the
    /// length of the list means its end.
    virtual void moveConfigurationAtIndexTo(NSUInteger index, NSUInteger row) = 0;
    /// Stores every configuration.
    virtual void saveConfigurations() = 0;
    /// A fresh list of the ordinary configurations.
    virtual ConfigurationArray nonCombinedConfigurations() const = 0;
    /// Stamps `configuration` onto a copy of the file and answers where the copy is; none when nothing could be made.
    /// `index` is always 0.
    virtual std::optional<NSURL> imprintFileAtURLWithIndex(const std::optional<NSURL>& url,
                                                           const std::shared_ptr<ImprinterConfiguration>& configuration,
                                                           NSInteger index) = 0;
};

} // namespace host
