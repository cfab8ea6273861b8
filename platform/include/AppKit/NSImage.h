// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/NSURL.h>

#include <optional>

namespace platform {

class Picture; // one per toolkit

/// A picture in memory.
class NSImage final : public NSObject {
public:
    /// Reads the file anew each time, since somebody may have written to the same place again. Null for a nil URL and
    /// for a file that is missing, unreadable or no picture.
    static std::shared_ptr<NSImage> initWithContentsOfURL(const std::optional<NSURL>& url);

    /// What the toolkit shows.
    const Picture& picture() const { return *m_picture; }

private:
    std::shared_ptr<const Picture> m_picture;
};

} // namespace platform
