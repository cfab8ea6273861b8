// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Layout.h>
#include <engine/PageChoice.h>

namespace engine {

/// One ordinary configuration, read once for a run.
struct StampPlan {
    std::string identifier; ///< UTF-8
    Appearance appearance;
    host::NSInteger anchor = 0;
    host::NSPoint offset;
    double degrees = 0;
    host::NSInteger occurrence = 0;
    std::optional<std::u16string> customPages;
    std::optional<std::vector<PageRange>> ranges; ///< In place of the two before.

    std::vector<std::size_t> pagesOf(std::size_t pageCount) const;
};

/// The ordinary configurations in stamping order: a combined one is replaced by its members, which may be combined
/// themselves. A combined one among its own members is passed over there.
std::vector<StampPlan> planStamps(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& configurations,
                                  const std::optional<std::vector<PageRange>>& ranges, FaceLibrary& faces,
                                  Report& report);

/// What the account calls its user: the full name, else the short one.
std::u16string accountName();

} // namespace engine
