// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPasteboard.h>

namespace platform {

/// What a drag does where it ends; a bit each.
using NSDragOperation = NSUInteger;
inline constexpr NSDragOperation NSDragOperationNone = 0;
inline constexpr NSDragOperation NSDragOperationCopy = 1;
inline constexpr NSDragOperation NSDragOperationLink = 2;
inline constexpr NSDragOperation NSDragOperationGeneric = 4;
inline constexpr NSDragOperation NSDragOperationPrivate = 8;
inline constexpr NSDragOperation NSDragOperationMove = 16;
inline constexpr NSDragOperation NSDragOperationDelete = 32;

/// A drag over a view: where it comes from and what it carries.
class NSDraggingInfo final : public NSObject {
public:
    NSDraggingInfo(std::shared_ptr<NSObject> source, std::shared_ptr<NSPasteboard> pasteboard);
    ~NSDraggingInfo() override;

    /// What began the drag; null where that was another program.
    const std::shared_ptr<NSObject>& draggingSource() const { return m_source; }
    const std::shared_ptr<NSPasteboard>& draggingPasteboard() const { return m_pasteboard; }
    /// Whether it carries one of these types.
    bool carries(const std::vector<std::u16string>& types) const;

private:
    std::shared_ptr<NSObject> m_source;
    std::shared_ptr<NSPasteboard> m_pasteboard;
};

} // namespace platform
