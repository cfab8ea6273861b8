// SPDX-License-Identifier: MIT
#pragma once

#include "Arguments.h"

namespace cli {

/// The options that say what a stamp made on the command line looks like; all of them take a value.
const std::vector<std::string>& titleOptions();

/// The configuration that the title options describe, or null with what is wrong in `problem`; null without a problem
/// where there is no --title. Text in the title that stands between percent signs and consists of letters is a
/// placeholder.
///
/// Its identifier is always the same, so that a later run can take its stamps away, and its item is duplicated.
std::shared_ptr<model::Configuration> configurationFromOptions(const Arguments& arguments, std::string& problem);

} // namespace cli
