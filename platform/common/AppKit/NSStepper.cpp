// SPDX-License-Identifier: MIT
#include <AppKit/NSStepper.h>

#include <algorithm>

namespace platform {

NSStepper::NSStepper() {
    NSStepper::setValue(0.0);
}

std::u16string_view NSStepper::className() const {
    return u"NSStepper";
}

void NSStepper::setRange(double minimum, double maximum) {
    m_minimum = minimum;
    m_maximum = std::max(minimum, maximum);
    setValue(value());
}

void NSStepper::userSteps(int direction) {
    if (!isEnabled())
        return;
    setValue(platform::doubleValue(value()) + direction * m_increment);
    userChose(value(), true);
}

void NSStepper::setValue(NSValue value) {
    const double number = platform::doubleValue(value);
    const double clamped = std::clamp(number, m_minimum, m_maximum);
    NSControl::setValue(clamped == number ? std::move(value) : NSValue(clamped));
}

} // namespace platform
