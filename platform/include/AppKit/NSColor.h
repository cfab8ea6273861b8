// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace platform {

/// An immutable colour with alpha. Components lie between 0 and 1; what lies outside is kept as it is and clamped only
/// when it is drawn. A missing colour is a null pointer.
class NSColor {
public:
    /// Grey colours have equal components; the space is kept, because two colours are equal only in the same one.
    enum class Space { sRGB, gray };

    static std::shared_ptr<const NSColor> colorWithSRGB(double red, double green, double blue, double alpha);
    static std::shared_ptr<const NSColor> colorWithWhite(double white, double alpha);
    static std::shared_ptr<const NSColor> blackColor();
    static std::shared_ptr<const NSColor> whiteColor();

    Space colorSpace() const { return m_space; }
    double redComponent() const { return m_red; }
    double greenComponent() const { return m_green; }
    double blueComponent() const { return m_blue; }
    double alphaComponent() const { return m_alpha; }

    bool operator==(const NSColor&) const = default;

private:
    NSColor(Space space, double red, double green, double blue, double alpha)
        : m_space(space), m_red(red), m_green(green), m_blue(blue), m_alpha(alpha) {}

    Space m_space;
    double m_red;
    double m_green;
    double m_blue;
    double m_alpha;
};

} // namespace platform
