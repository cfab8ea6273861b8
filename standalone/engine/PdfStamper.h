// SPDX-License-Identifier: MIT
#pragma once

#include "StampPlan.h"

#include <engine/Stamper.h>

namespace engine {

/// Stamps a PDF document, which is rewritten, and answers how many pages were stamped. `facts` are those that hold for
/// the whole file. Throws `Failure`, or std::system_error where the output cannot be written.
std::size_t stampPdf(const StampJob& job, const Facts& facts, Report& report);

} // namespace engine
