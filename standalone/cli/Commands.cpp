// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "Arguments.h"

#include <Foundation/NSString.h>
#include <engine/PreviewStamper.h>
#include <files/Installation.h>
#include <files/PrivateFolder.h>
#include <store/Exchange.h>

#include <QImage>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>

namespace cli {

namespace fs = std::filesystem;
using platform::toUtf8;

namespace {

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

/// A folder for what is made on the way; none where it cannot be made.
std::optional<files::PrivateFolder> workFolder() {
    try {
        files::PrivateFolder::removeLeftovers();
        return std::optional<files::PrivateFolder>(std::in_place);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// A store's file of just these configurations; a failure's sentence in `problem`.
bool writeStore(const fs::path& file, const Configurations& configurations, std::string& problem) {
    const auto failure = store::exportTo(file, configurations);
    if (failure)
        problem = toUtf8(failure->sentence);
    return !failure;
}

/// The named configurations with the members they need, each once; all where no name is given. None after a complaint.
std::optional<Configurations> chosen(const std::vector<std::string>& names, const Configurations& all) {
    if (names.empty())
        return all;
    Configurations result;
    for (const auto& name : names) {
        const auto found = configurationCalled(name, all);
        if (!found)
            return std::nullopt;
        result.push_back(found);
    }
    return store::withMembers(result);
}

/// Prints the configurations as a file of them.
int print(const Configurations& configurations) {
    const auto folder = workFolder();
    std::string problem = "A folder for temporary files cannot be made.";
    const auto file = folder ? folder->path() / "configurations.json" : fs::path();
    if (!folder || !writeStore(file, configurations, problem))
        return complain(cannotWrite, problem);
    std::cout << std::ifstream(file).rdbuf() << std::flush;
    return std::cout ? done : complain(cannotWrite, "standard output: The output cannot be written.");
}

/// Says that a window ended with changes that only the next window can take over.
void tellOfUnsaved(const store::Store& store) {
    if (store.hasUnsaved())
        complain(0, store.file().string() + ": a window ended before changes were saved; the next one offers them");
}

} // namespace

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
    return isLost(store) || readStore(store).has_value();
}

Command commandCalled(const std::string& name) {
    static const std::map<std::string, Command> commands{{"list", list},
                                                         {"show", show},
                                                         {"export", exportConfigurations},
                                                         {"import", importConfigurations},
                                                         {"preview", preview},
                                                         {"stamp", stamp},
                                                         {"unstamp", unstamp}};
    const auto found = commands.find(name);
    return found == commands.end() ? nullptr : found->second;
}

int list(const fs::path& store, const std::vector<std::string>& arguments) {
    if (!arguments.empty())
        return complain(usage, "`list` takes no arguments");
    const auto configurations = readStore(store);
    if (!configurations)
        return noConfiguration;
    for (const auto& configuration : *configurations)
        std::cout << toUtf8(configuration->name()) << '\n';
    tellOfUnsaved(store::Store(store));
    return done;
}

int show(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto sorted = sortArguments(arguments, {}, {}, problem);
    if (!sorted || sorted->files.empty())
        return complain(usage, sorted ? "`show` takes the name of a configuration" : problem);
    const auto all = readStore(store);
    const auto wanted = all ? chosen(sorted->files, *all) : std::nullopt;
    return wanted ? print(*wanted) : noConfiguration;
}

int exportConfigurations(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto sorted = sortArguments(arguments, {"--output"}, {}, problem);
    if (!sorted)
        return complain(usage, problem);
    const auto all = readStore(store);
    const auto wanted = all ? chosen(sorted->files, *all) : std::nullopt;
    if (!wanted)
        return noConfiguration;
    const auto output = sorted->value("--output");
    if (output.empty() || output == "-")
        return print(*wanted);
    std::error_code none;
    if (fs::equivalent(output, store, none))
        return complain(cannotWrite, output + ": That is the file the configurations come from.");
    if (fs::equivalent(output, store::Store::defaultPath(), none))
        return complain(cannotWrite, output + ": That is the file that the window's configurations are kept in.");
    return writeStore(output, *wanted, problem) ? done : complain(cannotWrite, problem);
}

int importConfigurations(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto sorted = sortArguments(arguments, {}, {"--replace"}, problem);
    if (!sorted || sorted->files.empty())
        return complain(usage, sorted ? "which file is to be imported? `imprinter export` makes one" : problem);

    // What cannot be read is left as it is; whoever opens the window sees what becomes of it.
    store::Store own(store);
    auto present = own.load(store::Damaged::leave);
    for (const auto& message : present.messages)
        complain(0, toUtf8(message.sentence));
    if (present.readOnly || present.standIns)
        return noConfiguration;
    own.setOnWait([&] { complain(0, store.string() + ": waiting for another program that is writing it"); });
    tellOfUnsaved(own);
    auto result = std::move(present.configurations);
    std::error_code none;
    // Supplied configurations that nobody has kept yet are not in the way of anybody's own.
    const bool isBegun = !fs::exists(store, none);
    if (isLost(store))
        result.clear();
    const auto whatIsThere = sorted->has("--replace") || isBegun ? store::Present::replace : store::Present::leave;
    std::size_t imported = 0;
    for (const auto& file : sorted->files) {
        const auto read = store::Store(file).read();
        if (read.standIns || !fs::exists(file)) {
            if (read.messages.empty())
                return complain(badInput, file + ": The file cannot be read.");
            return complain(badInput, file + ": " + toUtf8(read.messages.front().sentence));
        }
        const auto joined = store::importInto(result, read.configurations, whatIsThere);
        for (const auto& name : joined.left)
            complain(0, file + ": \"" + toUtf8(name) + "\" is there already and was left as it is");
        if (const auto& nested = joined.nested)
            return complain(badInput, file + ": \"" + toUtf8(nested->outer) + "\" would contain \"" +
                                          toUtf8(nested->inner) + "\", which is combined itself");
        imported += joined.imported.size();
    }
    model::ImprinterModel model;
    model.setConfigurations(std::move(result));
    if (const auto failure = own.save(model))
        return complain(failure->code == store::Code::contested || failure->code == store::Code::changedElsewhere
                            ? changedElsewhere
                            : cannotWrite,
                        toUtf8(failure->sentence));
    for (const auto& notice : own.notices())
        complain(0, store.string() + ": " + toUtf8(notice.sentence));
    std::cout << imported << (imported == 1 ? " configuration was imported\n" : " configurations were imported\n");
    return done;
}

int preview(const fs::path& store, const std::vector<std::string>& arguments) {
    std::string problem;
    const auto sorted = sortArguments(arguments, {"--configuration", "--output"}, {}, problem);
    if (!sorted)
        return complain(usage, problem);
    if (sorted->values("--configuration").size() != 1)
        return complain(usage, "which configuration? Name one with --configuration; `imprinter list` shows them");
    const auto output = sorted->value("--output");
    if (output.empty())
        return complain(usage, "where to? Name a picture with --output");
    if (sorted->files.size() > 1)
        return complain(usage, "a preview has one sample page only");
    const auto all = readStore(store);
    const auto configuration = all ? configurationCalled(sorted->value("--configuration"), *all) : nullptr;
    if (!configuration)
        return noConfiguration;
    const auto folder = workFolder();
    if (!folder)
        return complain(cannotWrite, "a folder for temporary files cannot be made");
    const fs::path sample = sorted->files.empty() ? files::samplePage() : fs::path(sorted->files.front());
    engine::PreviewStamper stamper(folder->path());
    const auto outcome = stamper.stamp(sample, configuration);
    if (!outcome)
        return complain(badInput, sample.string() + ": " + outcome.sentence);
    const auto extension = fs::path(output).extension().string();
    const bool written = QImage(QString::fromStdString(outcome.path.string()))
                             .save(QString::fromStdString(output), extension.empty() ? "png" : nullptr);
    return written ? done : complain(cannotWrite, output + ": The output cannot be written.");
}

} // namespace cli
