// SPDX-License-Identifier: MIT
#include <AppKit/NSDragging.h>

#include <algorithm>

namespace platform {

NSDraggingInfo::NSDraggingInfo(std::shared_ptr<NSObject> source, std::shared_ptr<NSPasteboard> pasteboard)
    : m_source(std::move(source)), m_pasteboard(std::move(pasteboard)) {}
NSDraggingInfo::~NSDraggingInfo() = default;

bool NSDraggingInfo::carries(const std::vector<std::u16string>& types) const {
    const auto carried = tell(m_pasteboard, &NSPasteboard::types);
    return std::any_of(types.begin(), types.end(), [&](const auto& type) {
        return std::find(carried.begin(), carried.end(), type) != carried.end();
    });
}

} // namespace platform
