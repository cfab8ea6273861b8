// SPDX-License-Identifier: MIT
#pragma once

#include "StampPlan.h"

#include <engine/Stamper.h>

namespace engine {

/// Stamps a PDF document, and answers how many pages were stamped. `facts` are those that hold for
/// the whole file. Throws `Failure`, or std::system_error where the output cannot be written.
std::size_t stampPdf(const StampJob& job, const Facts& facts, Report& report);

/// Removes the stamps of the job's configurations, or all where it has none, and answers from how many pages. Throws as
/// `stampPdf` does.
std::size_t unstampPdf(const StampJob& job, Report& report);

/// What stamps the job's document bears, and in `pageCount` how many pages do. Throws `Failure`.
std::vector<FoundStamp> findPdfStamps(const StampJob& job, std::size_t& pageCount);

/// Throws `Failure`.
std::size_t countPdfPages(const StampJob& job);

} // namespace engine
