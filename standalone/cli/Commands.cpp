// SPDX-License-Identifier: MIT
#include "Commands.h"

#include <Foundation/NSString.h>
#include <engine/Stamper.h>
#include <store/Store.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>

#include <sys/stat.h>

namespace cli {

namespace fs = std::filesystem;
using platform::fromUtf8;
using platform::toUtf8;

namespace {

int complain(int status, const std::string& sentence) {
    std::cerr << "imprinter: " << sentence << '\n';
    return status;
}

using Configurations = std::vector<std::shared_ptr<model::Configuration>>;

/// None, after having said why, where the supplied configurations would stand in for those of the file.
std::optional<Configurations> read(const fs::path& file) {
    auto result = store::Store(file).read();
    for (const auto& message : result.messages)
        complain(0, toUtf8(message.sentence));
    return result.standIns ? std::nullopt : std::optional(std::move(result.configurations));
}

bool takesValue(const std::string& option) {
    return option == "--configuration" || option == "--output";
}

/// Whether `isMeant` answers true for one of the arguments that are neither values of options nor files.
template <class IsMeant>
bool anyOption(const std::vector<std::string>& arguments, IsMeant isMeant) {
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
        if (isMeant(arguments[i]))
            return true;
        if (takesValue(arguments[i]))
            ++i;
    }
    return false;
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

struct StampArguments {
    std::vector<std::string> configurations;
    fs::path output;
    engine::Saving saving = engine::Saving::automatic;
    std::vector<fs::path> files;
};

/// None, with the sentence in `problem`, where the command line is not understood.
std::optional<StampArguments> parse(const std::vector<std::string>& arguments, std::string& problem) {
    StampArguments parsed;
    bool options = true;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& argument = arguments[i];
        if (options && argument == "--") {
            options = false;
        } else if (options && takesValue(argument)) {
            if (i + 1 == arguments.size()) {
                problem = argument + " needs a value";
                return std::nullopt;
            }
            if (argument == "--output")
                parsed.output = arguments[++i];
            else
                parsed.configurations.push_back(arguments[++i]);
        } else if (options && argument == "--incremental") {
            parsed.saving = engine::Saving::update;
        } else if (options && argument == "--rewrite") {
            parsed.saving = engine::Saving::rewrite;
        } else if (options && argument.starts_with("-")) {
            problem = "unknown option " + argument;
            return std::nullopt;
        } else {
            parsed.files.emplace_back(argument);
        }
    }
    if (parsed.configurations.empty())
        problem = "which configuration? Name one with --configuration; `imprinter list` shows them";
    else if (parsed.output.empty())
        problem = "where to? Name a file, or a folder for several files, with --output";
    else if (parsed.files.empty())
        problem = "which file is to be stamped?";
    return problem.empty() ? std::optional(parsed) : std::nullopt;
}

struct Paths {
    fs::path input;
    fs::path output;
};

/// What tells files apart whatever they are called; none where there is no such file.
std::optional<std::pair<dev_t, ino_t>> identityOf(const fs::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return std::pair(status.st_dev, status.st_ino);
}

std::string inQuotes(const fs::path& path) {
    return '"' + path.string() + '"';
}

/// A sentence about two files of which one would be lost, or stamped twice; empty where there are none.
std::string collisionIn(const std::vector<Paths>& files) {
    std::map<fs::path, const Paths*> byOutput;
    std::map<std::pair<dev_t, ino_t>, const Paths*> byInput;
    for (const auto& file : files) {
        if (const auto identity = identityOf(file.input))
            if (const auto [other, isNew] = byInput.emplace(*identity, &file); !isNew)
                return inQuotes(other->second->input) + " and " + inQuotes(file.input) + " are the same file";
        if (const auto [other, isNew] = byOutput.emplace(file.output.lexically_normal(), &file); !isNew)
            return inQuotes(other->second->input) + " and " + inQuotes(file.input) + " would both be stamped into " +
                   inQuotes(file.output);
    }
    for (const auto& file : files) {
        const auto identity = identityOf(file.output);
        const auto other = identity ? byInput.find(*identity) : byInput.end();
        // A file that is its own output is the engine's to refuse.
        if (other != byInput.end() && other->second != &file)
            return inQuotes(file.input) + " would be stamped into " + inQuotes(file.output) + ", which is the input " +
                   inQuotes(other->second->input);
    }
    return {};
}

/// One line about a stamp that failed.
std::string sentenceOf(const engine::Outcome& outcome) {
    auto sentence = outcome.path.string() + ": " + outcome.sentence;
    if (outcome.code == engine::Code::nothingToStamp)
        for (const auto& reason : outcome.warnings)
            sentence += ' ' + reason;
    return sentence;
}

int statusOf(engine::Code code) {
    switch (code) {
    case engine::Code::ok:
        return done;
    case engine::Code::cannotWrite:
    case engine::Code::sameFile:
        return cannotWrite;
    default:
        return badInput;
    }
}

} // namespace

const char* const helpText =
    R"(Imprinter stamps titles such as page numbers and "Received" onto PDF documents and pictures.

    imprinter                                      open the window
    imprinter list                                 list the configurations
    imprinter stamp --configuration NAME --output PATH FILE...
                                                   stamp files; PATH is a file for one, a folder for several
    imprinter pictures FOLDER                      leave pictures of the program and of stamped samples

    --store FILE    before any command: use the configurations in FILE
    --configuration may be given several times; the stamps are put on in that order
    --help, also after a command; --version

Examples:
    imprinter stamp --configuration Received --output letter-received.pdf letter.pdf
    imprinter stamp --configuration "Page of Pages" --configuration Confidential --output stamped/ *.pdf

Exit status: 0 done, 1 the program could not go on, 2 a document could not be read or stamped, 3 a result could not
be written, 4 no such configuration or none that can be read, 64 the command line was not understood.
)";

bool hasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(name); value && *value)
            return true;
    return false;
}

bool askForHelp(const std::vector<std::string>& arguments) {
    return anyOption(arguments, [](const auto& option) { return option == "--help" || option == "-h"; });
}

bool nameAStore(const std::vector<std::string>& arguments) {
    return anyOption(arguments,
                     [](const auto& option) { return option == "--store" || option.starts_with("--store="); });
}

bool isUsable(const fs::path& store) {
    return read(store).has_value();
}

int list(const fs::path& store, const std::vector<std::string>& arguments) {
    if (!arguments.empty())
        return complain(usage, "`list` takes no arguments");
    const auto configurations = read(store);
    if (!configurations)
        return noConfiguration;
    for (const auto& configuration : *configurations)
        std::cout << toUtf8(configuration->name()) << '\n';
    return done;
}

int stamp(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto wanted = parse(arguments, problem);
    if (!wanted)
        return complain(usage, problem);

    std::error_code none;
    const bool intoFolder =
        wanted->files.size() > 1 || fs::is_directory(wanted->output, none) || !wanted->output.has_filename();
    std::vector<Paths> files;
    for (const auto& file : wanted->files)
        files.push_back({file, intoFolder ? wanted->output / file.filename() : wanted->output});
    if (const auto collision = collisionIn(files); !collision.empty())
        return complain(usage, collision);

    engine::StampJob job;
    job.saving = wanted->saving;
    const auto configurations = read(store);
    if (!configurations)
        return noConfiguration;
    for (const auto& name : wanted->configurations) {
        std::shared_ptr<model::Configuration> found;
        for (const auto& configuration : *configurations) {
            if (configuration->name() != fromUtf8(name) && configuration->uniqueID() != fromUtf8(name))
                continue;
            if (found)
                return complain(noConfiguration, "several configurations are called \"" + name +
                                                     "\"; rename one, or give its identifier");
            found = configuration;
        }
        if (!found)
            return complain(noConfiguration,
                            "no configuration is called \"" + name + "\"; " + namesOf(*configurations));
        job.configurations.push_back(found);
    }

    if (intoFolder) {
        std::error_code error;
        fs::create_directories(wanted->output, error);
        if (error)
            return complain(cannotWrite, wanted->output.string() + ": " + error.message());
    }
    int status = done;
    for (const auto& file : files) {
        job.input = file.input;
        job.output = file.output;
        const auto outcome = engine::stampFile(job);
        if (!outcome) {
            status = complain(statusOf(outcome.code), sentenceOf(outcome));
            continue;
        }
        for (const auto& warning : outcome.warnings)
            complain(0, file.input.string() + ": " + warning);
    }
    return status;
}

} // namespace cli
