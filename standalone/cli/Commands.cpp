// SPDX-License-Identifier: MIT
#include "Commands.h"

#include <Foundation/NSString.h>
#include <engine/Stamper.h>
#include <store/Store.h>

#include <cstdlib>
#include <iostream>
#include <optional>

namespace cli {

namespace fs = std::filesystem;
using platform::fromUtf8;
using platform::toUtf8;

namespace {

int complain(int status, const std::string& sentence) {
    std::cerr << "imprinter: " << sentence << '\n';
    return status;
}

std::vector<std::shared_ptr<model::Configuration>> load(const fs::path& file) {
    auto loaded = store::Store(file).load();
    for (const auto& message : loaded.messages)
        complain(0, toUtf8(message.sentence));
    return std::move(loaded.configurations);
}

/// "there are "A", "B" and "C"".
std::string namesOf(const std::vector<std::shared_ptr<model::Configuration>>& configurations) {
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
        } else if (options && (argument == "--configuration" || argument == "--output")) {
            if (i + 1 == arguments.size()) {
                problem = argument + " needs a value";
                return std::nullopt;
            }
            if (argument == "--output")
                parsed.output = arguments[++i];
            else
                parsed.configurations.push_back(arguments[++i]);
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
    --help, --version

Examples:
    imprinter stamp --configuration Received --output letter-received.pdf letter.pdf
    imprinter stamp --configuration "Page of Pages" --configuration Confidential --output stamped/ *.pdf

Exit status: 0 done, 2 a document could not be read or stamped, 3 a result could not be written,
4 no such configuration, 64 the command line was not understood.
)";

bool hasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(name); value && *value)
            return true;
    return false;
}

int list(const fs::path& store, const std::vector<std::string>& arguments) {
    if (!arguments.empty())
        return complain(usage, "`list` takes no arguments");
    for (const auto& configuration : load(store))
        std::cout << toUtf8(configuration->name()) << '\n';
    return done;
}

int stamp(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto wanted = parse(arguments, problem);
    if (!wanted)
        return complain(usage, problem);

    engine::StampJob job;
    const auto configurations = load(store);
    for (const auto& name : wanted->configurations) {
        std::shared_ptr<model::Configuration> found;
        for (const auto& configuration : configurations) {
            if (configuration->name() != fromUtf8(name) && configuration->uniqueID() != fromUtf8(name))
                continue;
            if (found)
                return complain(noConfiguration, "several configurations are called \"" + name +
                                                     "\"; rename one, or give its identifier");
            found = configuration;
        }
        if (!found)
            return complain(noConfiguration, "no configuration is called \"" + name + "\"; " + namesOf(configurations));
        job.configurations.push_back(found);
    }

    std::error_code error;
    const bool intoFolder =
        wanted->files.size() > 1 || fs::is_directory(wanted->output, error) || !wanted->output.has_filename();
    if (intoFolder) {
        fs::create_directories(wanted->output, error);
        if (error)
            return complain(cannotWrite, wanted->output.string() + ": " + error.message());
    }
    int status = done;
    for (const auto& file : wanted->files) {
        job.input = file;
        job.output = intoFolder ? wanted->output / file.filename() : wanted->output;
        const auto outcome = engine::stampFile(job);
        for (const auto& warning : outcome.warnings)
            complain(0, file.string() + ": " + warning);
        if (!outcome)
            status = complain(statusOf(outcome.code), outcome.path.string() + ": " + outcome.sentence);
    }
    return status;
}

} // namespace cli
