// SPDX-License-Identifier: MIT
#pragma once

#include "Arguments.h"

namespace cli {

/// The options that say what a stamp made on the command line looks like; all of them take a value.
const std::vector<std::string>& titleOptions();

/// What people call the stamp of a title that was made on the command line, by its identifier: "title-top-right". None
/// for another identifier.
std::optional<std::string> nameOfTitle(const std::string& identifier);
/// The identifier of the title that is called so; none where none is.
std::optional<std::string> titleCalled(const std::string& name);

/// The configuration that the title options describe, or null with what is wrong in `problem`; null without a problem
/// where there is no --title. Text in the title that stands between percent signs and consists of letters is a
/// placeholder.
///
/// Its identifier is always the same for a position, so that a later run can take its stamps away, and its item is
/// duplicated.
std::shared_ptr<model::Configuration> configurationFromOptions(const Arguments& arguments, std::string& problem);

} // namespace cli
