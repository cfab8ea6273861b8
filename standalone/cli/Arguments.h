// SPDX-License-Identifier: MIT
#pragma once

#include <model/Configuration.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// Prints one line to the standard error and answers `status`.
int complain(int status, const std::string& sentence);

/// A command's arguments, sorted.
struct Arguments {
    std::multimap<std::string, std::string> options; ///< Switches have an empty value.
    std::vector<std::string> files;                  ///< What is no option.

    bool has(const std::string& option) const { return options.count(option) > 0; }
    /// The last value given; empty where there is none.
    std::string value(const std::string& option) const;
    /// All values, in order.
    std::vector<std::string> values(const std::string& option) const;
};

/// Sorts `arguments`: an option has a value as its next argument or after "=", what follows "--" are files, and so is
/// "-". None, with the sentence in `problem`, where there is an option that is none of `withValue` and `switches`, one
/// without its value, or one twice that has but one.
std::optional<Arguments> sortArguments(const std::vector<std::string>& arguments,
                                       const std::vector<std::string>& withValue,
                                       const std::vector<std::string>& switches, std::string& problem);

/// Whether an option of any command takes a value.
bool takesValue(const std::string& option);

using Configurations = std::vector<std::shared_ptr<model::Configuration>>;

/// Whether this is a file of configurations that somebody named, and that is not there. Where the usual one is not
/// there yet, it has the supplied configurations.
bool isLost(const std::filesystem::path& store);

/// None, after having said why, where the supplied configurations would stand in for those of the file.
std::optional<Configurations> readStore(const std::filesystem::path& file);

/// The configuration with this name or identifier; null, after having said why, where there is not exactly one.
std::shared_ptr<model::Configuration> configurationCalled(const std::string& name,
                                                          const Configurations& configurations);

} // namespace cli
