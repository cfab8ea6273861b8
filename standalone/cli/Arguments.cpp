// SPDX-License-Identifier: MIT
#include "Arguments.h"

#include "Commands.h"
#include "TitleOptions.h"

#include <Foundation/NSString.h>
#include <store/Store.h>

#include <algorithm>
#include <iostream>

namespace cli {

using platform::fromUtf8;
using platform::toUtf8;

namespace {

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// "there are "A", "B" and "C"".
std::string namesOf(const Configurations& configurations) {
    if (configurations.empty())
        return "there are none";
    std::string names = configurations.size() == 1 ? "there is " : "there are ";
    for (std::size_t i = 0; i < configurations.size(); ++i) {
        if (i > 0)
            names += i + 1 == configurations.size() ? " and " : ", ";
        names += '"' + toUtf8(configurations[i]->name()) + '"';
    }
    return names;
}

} // namespace

int complain(int status, const std::string& sentence) {
    std::cerr << "imprinter: " + sentence + "\n";
    return status;
}

std::string Arguments::value(const std::string& option) const {
    const auto all = values(option);
    return all.empty() ? std::string() : all.back();
}

std::vector<std::string> Arguments::values(const std::string& option) const {
    std::vector<std::string> result;
    const auto [begin, end] = options.equal_range(option);
    for (auto place = begin; place != end; ++place)
        result.push_back(place->second);
    return result;
}

bool takesValue(const std::string& option) {
    return contains(
               {"--configuration", "--output", "--pages", "--password-file", "--first-number", "--jobs", "--stamp"},
               option) ||
           contains(titleOptions(), option);
}

std::optional<Arguments> sortArguments(const std::vector<std::string>& arguments,
                                       const std::vector<std::string>& withValue,
                                       const std::vector<std::string>& switches, std::string& problem) {
    Arguments sorted;
    bool options = true;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& argument = arguments[i];
        if (options && argument == "--") {
            options = false;
            continue;
        }
        if (!options || argument == "-" || !argument.starts_with("-")) {
            sorted.files.push_back(argument);
            continue;
        }
        const auto equals = argument.find('=');
        const auto name = argument.substr(0, equals);
        if (contains(withValue, name)) {
            if (sorted.has(name) && !contains({"--configuration", "--pages", "--stamp"}, name)) {
                problem = name + " is given twice";
                return std::nullopt;
            }
            if (equals == std::string::npos && i + 1 == arguments.size()) {
                problem = name + " needs a value";
                return std::nullopt;
            }
            sorted.options.emplace(name, equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1));
        } else if (contains(switches, argument)) {
            sorted.options.emplace(argument, std::string());
        } else {
            problem = "unknown option " + argument;
            return std::nullopt;
        }
    }
    return sorted;
}

bool isLost(const std::filesystem::path& store) {
    std::error_code none;
    return store != store::Store::defaultPath() && !std::filesystem::exists(store, none);
}

std::optional<Configurations> readStore(const std::filesystem::path& file) {
    if (isLost(file)) {
        complain(0, file.string() + ": There is no such file of configurations; `import` makes one");
        return std::nullopt;
    }
    auto result = store::Store(file).read();
    for (const auto& message : result.messages)
        complain(0, toUtf8(message.sentence));
    return result.standIns ? std::nullopt : std::optional(std::move(result.configurations));
}

std::shared_ptr<model::Configuration> configurationCalled(const std::string& name,
                                                          const Configurations& configurations) {
    std::shared_ptr<model::Configuration> found;
    for (const auto& configuration : configurations) {
        if (configuration->name() != fromUtf8(name) && configuration->uniqueID() != fromUtf8(name))
            continue;
        if (found) {
            complain(noConfiguration,
                     "several configurations are called \"" + name + "\"; rename one, or give its identifier");
            return nullptr;
        }
        found = configuration;
    }
    if (!found) {
        std::string others;
        for (const auto& configuration : configurations)
            if (platform::caseInsensitiveCompare(configuration->name(), fromUtf8(name)) == 0)
                others += (others.empty() ? "but one \"" : ", one \"") + toUtf8(configuration->name()) + '"';
        complain(noConfiguration, "no configuration is called \"" + name +
                                      (others.empty() ? "\"; " + namesOf(configurations) : "\", " + others));
    }
    return found;
}

} // namespace cli
