// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cli {

/// Exit statuses of the program.
enum Status : int {
    done = 0,
    failed = 1,           ///< the program itself could not go on
    badInput = 2,         ///< a document cannot be read, or not stamped as asked
    cannotWrite = 3,      ///< a result cannot be written
    noConfiguration = 4,  ///< no configuration, or more than one, has the name, or the store cannot be read
    changedElsewhere = 6, ///< another program changed the same configurations; nothing was written
    usage = 64,           ///< the command line is not understood
    interrupted = 130,    ///< ended by an interrupt
};

/// Whether a window could be shown: the session has a display, or the environment names a platform to show it on.
bool hasDisplay();

/// Whether these arguments of a command ask for help.
bool askForHelp(const std::vector<std::string>& arguments);
/// Whether these arguments of a command name a store, which has to be done before the command.
bool nameAStore(const std::vector<std::string>& arguments);

/// Whether the configurations of the store, or the supplied ones before there is a store, can be used; else says why
/// not. Nothing on disk changes.
bool isUsable(const std::filesystem::path& store);

/// A command that works with the configurations of a store and without a window. Answers the exit status.
using Command = int (*)(const std::filesystem::path& store, const std::vector<std::string>& arguments);

/// The command of that name; null for none.
Command commandCalled(const std::string& name);

int list(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int show(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int exportConfigurations(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int importConfigurations(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int preview(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int stamp(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int unstamp(const std::filesystem::path& store, const std::vector<std::string>& arguments);

extern const char* const helpText;

} // namespace cli
