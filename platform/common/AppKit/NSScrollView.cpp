// SPDX-License-Identifier: MIT
#include <AppKit/NSScrollView.h>

#include "Peers.h"

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

constexpr double smallest = 0.25;
constexpr double largest = 4.0;

} // namespace

std::u16string_view NSScrollView::className() const {
    return u"NSScrollView";
}

void NSScrollView::setMagnification(double magnification) {
    m_magnification = std::isnan(magnification) ? 1.0 : std::clamp(magnification, smallest, largest);
    showMagnification();
}

void NSScrollView::userMagnifiesTo(double magnification) {
    if (m_allowsMagnification)
        setMagnification(magnification);
}

void NSScrollView::showMagnification() {
    if (auto* shown = dynamic_cast<ScrollPeer*>(peer()))
        shown->setMagnification(m_magnification);
}

void NSScrollView::showAll() {
    NSView::showAll();
    showMagnification();
}

} // namespace platform
