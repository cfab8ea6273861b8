// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSLocale.h>

#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

enum class NSNumberFormatterStyle {
    decimal = 1,
    /// 0 to 1 is shown as 0 to 100 %.
    percent = 3,
};

/// Writes numbers for a field and reads what the user typed there, as the user's locale has them.
///
/// Numbers have at most seven significant digits and no grouping; very large and very small ones have an exponent.
/// A text is a number only as a whole, white space around it apart: one with a separator of thousands is refused, not
/// guessed at, because another locale's decimals look the same.
class NSNumberFormatter {
public:
    explicit NSNumberFormatter(NSNumberFormatterStyle style, NSLocale locale = NSLocale::currentLocale());

    /// Texts whose number lies outside are refused. In the number's own unit, so that 1 is 100 %.
    void setRange(double minimum, double maximum);
    double minimum() const { return m_minimum; }
    double maximum() const { return m_maximum; }

    std::u16string stringFromNumber(double number) const;
    /// Empty for a text that is no number, and for one outside the range.
    std::optional<double> numberFromString(std::u16string_view text) const;

private:
    NSNumberFormatterStyle m_style;
    NSLocale m_locale;
    double m_minimum = std::numeric_limits<double>::lowest();
    double m_maximum = std::numeric_limits<double>::max();
};

} // namespace platform
