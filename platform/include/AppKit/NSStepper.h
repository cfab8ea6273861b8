// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>

namespace platform {

/// Two small arrows that count a number up and down.
class NSStepper final : public NSControl {
public:
    NSStepper();
    std::u16string_view className() const override;

    double minValue() const { return m_minimum; }
    double maxValue() const { return m_maximum; }
    /// A value outside the range is clamped, now and when it is set.
    void setRange(double minimum, double maximum);
    double increment() const { return m_increment; }
    void setIncrement(double increment) { m_increment = increment; }

    /// The user pressed an arrow: +1 or -1 times the increment, within the range, then the action.
    void userSteps(int direction);

protected:
    void setValue(NSValue value) override;

private:
    double m_minimum = 0;
    double m_maximum = 59;
    double m_increment = 1;
};

} // namespace platform
