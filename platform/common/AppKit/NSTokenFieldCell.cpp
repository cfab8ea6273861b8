// SPDX-License-Identifier: MIT
#include <AppKit/NSTokenFieldCell.h>

#include <AppKit/NSImage.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

namespace {

constexpr double gap = 4; // between two tokens

} // namespace

NSTokenFieldCell::~NSTokenFieldCell() = default;

std::vector<std::u16string> NSTokenFieldCell::tokens() const {
    std::vector<std::u16string> parts;
    std::size_t start = 0;
    while (start <= title().size()) {
        const auto end = std::min(title().find_first_of(m_tokenizingCharacterSet, start), title().size());
        if (end > start)
            parts.push_back(title().substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

NSSize NSTokenFieldCell::cellSizeForBounds(NSRect bounds) const {
    NSSize size;
    for (const auto& part : tokens()) {
        const auto one = sizeOfToken(part, m_controlSize);
        size.width += one.width + (size.width > 0 ? gap : 0);
        size.height = std::max(size.height, one.height);
    }
    return {std::min(size.width, bounds.size.width), std::min(size.height, bounds.size.height)};
}

void NSTokenFieldCell::drawWithFrameInView(NSRect frame, const std::shared_ptr<NSView>& view) const {
    const auto canvas = NSImage::focusedCanvas();
    if (view || !canvas)
        return;
    auto left = frame.origin.x;
    const auto right = frame.origin.x + frame.size.width;
    for (const auto& part : tokens()) {
        const auto width = std::min(sizeOfToken(part, m_controlSize).width, right - left);
        if (width <= 0)
            break;
        canvas->drawToken(part, m_controlSize, {{left, frame.origin.y}, {width, frame.size.height}});
        left += width + gap;
    }
}

} // namespace platform
