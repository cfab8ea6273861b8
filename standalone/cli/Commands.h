// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cli {

/// Exit statuses of the program.
enum Status : int {
    done = 0,
    failed = 1,          ///< the program itself could not go on
    badInput = 2,        ///< a document cannot be read, or not stamped as asked
    cannotWrite = 3,     ///< a result cannot be written
    noConfiguration = 4, ///< no configuration, or more than one, has the name
    usage = 64,          ///< the command line is not understood
};

/// Whether a window could be shown: the session has a display, or the environment names a platform to show it on.
bool hasDisplay();

int list(const std::filesystem::path& store, const std::vector<std::string>& arguments);
int stamp(const std::filesystem::path& store, const std::vector<std::string>& arguments);

extern const char* const helpText;

} // namespace cli
