// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Layout.h>

#include <unordered_map>

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
};

/// The ordinary configurations in stamping order: a combined one is replaced by its members, which may be combined
/// themselves. A combined one among its own members is passed over there.
std::vector<StampPlan> planStamps(const std::vector<std::shared_ptr<host::ImprinterConfiguration>>& configurations,
                                  FaceLibrary& faces, Report& report);

/// What the account calls its user: the full name, else the short one.
std::u16string accountName();

/// The laid-out titles of one plan, each distinct one made once.
class StampCache {
public:
    /// Null for a blank title.
    const std::shared_ptr<const Stamp>& stampFor(const StampPlan& plan, const Facts& facts, FaceLibrary& faces,
                                                 Report& report);

private:
    std::unordered_map<std::u16string, std::shared_ptr<const Stamp>> m_stamps;
};

} // namespace engine
