// SPDX-License-Identifier: MIT
#include "StampPlan.h"

#include <Foundation/NSString.h>

#include <pwd.h>
#include <unistd.h>

#include <algorithm>

namespace engine {

namespace {

using Configurations = std::vector<std::shared_ptr<host::ImprinterConfiguration>>;

void collect(const Configurations& configurations, std::vector<const host::ImprinterConfiguration*>& above,
             FaceLibrary& faces, Report& report, std::vector<StampPlan>& plans) {
    for (const auto& configuration : configurations) {
        if (!configuration)
            continue;
        if (!configuration->combinedConfiguration()) {
            plans.push_back({platform::toUtf8(configuration->uniqueID()), readAppearance(*configuration, faces, report),
                             configuration->position(), configuration->offset(), configuration->rotation(),
                             configuration->occurance(), configuration->customOccurance(), std::nullopt});
            continue;
        }
        const auto members = configuration->configurations();
        if (!members || std::find(above.begin(), above.end(), configuration.get()) != above.end())
            continue;
        above.push_back(configuration.get());
        collect(*members, above, faces, report, plans);
        above.pop_back();
    }
}

} // namespace

std::vector<StampPlan> planStamps(const Configurations& configurations,
                                  const std::optional<std::vector<PageRange>>& ranges, FaceLibrary& faces,
                                  Report& report) {
    std::vector<StampPlan> plans;
    std::vector<const host::ImprinterConfiguration*> above;
    collect(configurations, above, faces, report, plans);
    for (auto& plan : plans)
        plan.ranges = ranges;
    return plans;
}

std::vector<std::size_t> StampPlan::pagesOf(std::size_t pageCount) const {
    return ranges ? choosePages(*ranges, pageCount) : choosePages(occurrence, customPages, pageCount);
}

std::u16string accountName() {
    passwd entry{};
    passwd* account = nullptr;
    std::vector<char> room(16 * 1024);
    if (::getpwuid_r(::getuid(), &entry, room.data(), room.size(), &account) != 0 || !account)
        return {};
    // The first of the comma-separated personal details is the full name.
    const std::string full = account->pw_gecos ? account->pw_gecos : "";
    const auto name = full.substr(0, full.find(','));
    return platform::fromUtf8(name.empty() ? account->pw_name : name);
}

} // namespace engine
