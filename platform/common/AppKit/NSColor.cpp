// SPDX-License-Identifier: MIT
#include <AppKit/NSColor.h>

namespace platform {

std::shared_ptr<const NSColor> NSColor::colorWithSRGB(double red, double green, double blue, double alpha) {
    return std::shared_ptr<const NSColor>(new NSColor(Space::sRGB, red, green, blue, alpha));
}

std::shared_ptr<const NSColor> NSColor::colorWithWhite(double white, double alpha) {
    return std::shared_ptr<const NSColor>(new NSColor(Space::gray, white, white, white, alpha));
}

std::shared_ptr<const NSColor> NSColor::blackColor() {
    static const auto color = colorWithWhite(0, 1);
    return color;
}

std::shared_ptr<const NSColor> NSColor::whiteColor() {
    static const auto color = colorWithWhite(1, 1);
    return color;
}

} // namespace platform
