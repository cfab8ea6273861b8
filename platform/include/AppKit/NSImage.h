// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSGeometry.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSURL.h>

#include <optional>

namespace platform {

class Canvas;  // one per toolkit
class Picture; // one per toolkit

/// A picture in memory.
class NSImage final : public NSObject {
public:
    /// Reads the file anew each time, since somebody may have written to the same place again. Null for a nil URL and
    /// for a file that is missing, unreadable or no picture.
    static std::shared_ptr<NSImage> initWithContentsOfURL(const std::optional<NSURL>& url);

    /// An empty, transparent picture of `size` points, at the screen's scale.
    static std::shared_ptr<NSImage> initWithSize(NSSize size);

    /// Makes the picture the one that drawing without a view goes into, until `unlockFocus`. For pictures made with a
    /// size.
    void lockFocus();
    void unlockFocus();
    /// The canvas of the picture that is being drawn into; null for none.
    static std::shared_ptr<Canvas> focusedCanvas();

    /// In points; none for a picture that was read.
    NSSize size() const { return m_size; }

    /// What the toolkit shows.
    const Picture& picture() const { return *m_picture; }

private:
    std::shared_ptr<const Picture> m_picture;
    std::shared_ptr<Canvas> m_canvas;
    NSSize m_size;
};

} // namespace platform
