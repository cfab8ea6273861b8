// SPDX-License-Identifier: MIT
#include <Foundation/NSNumberFormatter.h>

#include <Foundation/NSString.h>

#include <array>
#include <charconv>
#include <cmath>

namespace platform {

namespace {

constexpr int significantDigits = 7;
constexpr int largestPlainExponent = 14;
constexpr int smallestPlainExponent = -7;

/// A number's digits without trailing noughts, and the power of ten of the first.
struct Decimal {
    std::string digits;
    int exponent = 0;
};

Decimal decimalOf(double magnitude) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific,
                                   significantDigits - 1)
                         .ptr;
    const std::string_view written(text.data(), static_cast<std::size_t>(end - text.data()));
    const auto mark = written.find('e');
    Decimal out;
    for (const char character : written.substr(0, mark))
        if (character != '.')
            out.digits.push_back(character);
    while (out.digits.size() > 1 && out.digits.back() == '0')
        out.digits.pop_back();
    auto power = written.substr(mark + 1);
    if (power.front() == '+')
        power.remove_prefix(1);
    std::from_chars(power.data(), power.data() + power.size(), out.exponent);
    return out;
}

std::string plainText(const Decimal& number) {
    const auto& digits = number.digits;
    if (number.exponent < 0)
        return "0." + std::string(static_cast<std::size_t>(-number.exponent - 1), '0') + digits;
    const auto whole = static_cast<std::size_t>(number.exponent) + 1;
    if (digits.size() <= whole)
        return digits + std::string(whole - digits.size(), '0');
    return digits.substr(0, whole) + "." + digits.substr(whole);
}

std::string exponentText(const Decimal& number) {
    const auto& digits = number.digits;
    return digits.substr(0, 1) + (digits.size() > 1 ? "." + digits.substr(1) : "") + "E" +
           std::to_string(number.exponent);
}

/// Left-to-right and right-to-left marks, which some locales put around their signs.
bool isDirectionMark(char16_t character) {
    return character == 0x200E || character == 0x200F || character == 0x061C;
}

std::u16string withoutMarks(std::u16string_view text) {
    std::u16string out;
    for (const char16_t character : text)
        if (!isDirectionMark(character))
            out.push_back(character);
    return stringByTrimmingWhitespaceAndNewlines(out);
}

/// Takes `part` off the front of `text`, if it stands there.
bool take(std::u16string_view& text, std::u16string_view part) {
    if (!hasPrefix(text, part))
        return false;
    text.remove_prefix(part.size());
    return true;
}

} // namespace

NSNumberFormatter::NSNumberFormatter(NSNumberFormatterStyle style, NSLocale locale)
    : m_style(style), m_locale(std::move(locale)) {}

void NSNumberFormatter::setRange(double minimum, double maximum) {
    m_minimum = minimum;
    m_maximum = maximum;
}

std::u16string NSNumberFormatter::stringFromNumber(double number) const {
    if (!std::isfinite(number))
        return std::isnan(number) ? u"" : number < 0 ? m_locale.minusSign + u"\u221E" : u"\u221E";
    const double shown = m_style == NSNumberFormatterStyle::percent ? number * 100 : number;
    const auto decimal = decimalOf(std::abs(std::isfinite(shown) ? shown : number));
    const bool plain = decimal.exponent <= largestPlainExponent && decimal.exponent >= smallestPlainExponent;
    std::u16string out;
    if (number < 0)
        out += m_locale.minusSign;
    for (const char character : plain ? plainText(decimal) : exponentText(decimal)) {
        if (character == '.')
            out += m_locale.decimalSeparator;
        else if (character == '-')
            out += m_locale.minusSign;
        else if (character == 'E')
            out += u'E';
        else
            out += static_cast<char16_t>(m_locale.zeroDigit + (character - '0'));
    }
    if (m_style == NSNumberFormatterStyle::percent)
        out += m_locale.percentSign;
    return out;
}

std::optional<double> NSNumberFormatter::numberFromString(std::u16string_view text) const {
    const auto clean = withoutMarks(text);
    std::u16string_view rest = clean;
    std::string plain;
    const auto takeSign = [&] {
        if (take(rest, withoutMarks(m_locale.minusSign)) || take(rest, u"-") || take(rest, u"\u2212"))
            plain.push_back('-');
        else
            take(rest, u"+");
    };
    const auto takeDigits = [&] {
        const auto before = plain.size();
        for (; !rest.empty(); rest.remove_prefix(1)) {
            const char16_t character = rest.front();
            if (character >= u'0' && character <= u'9')
                plain.push_back(static_cast<char>(character));
            else if (character >= m_locale.zeroDigit && character < m_locale.zeroDigit + 10)
                plain.push_back(static_cast<char>('0' + (character - m_locale.zeroDigit)));
            else
                break;
        }
        return plain.size() - before;
    };

    takeSign();
    auto digits = takeDigits();
    if (take(rest, m_locale.decimalSeparator)) {
        plain.push_back('.');
        digits += takeDigits();
    }
    if (digits == 0)
        return std::nullopt;
    if (take(rest, u"E") || take(rest, u"e")) {
        plain.push_back('e');
        takeSign();
        if (takeDigits() == 0)
            return std::nullopt;
    }
    if (m_style == NSNumberFormatterStyle::percent) {
        const auto trimmed = stringByTrimmingWhitespaceAndNewlines(rest);
        if (trimmed == withoutMarks(m_locale.percentSign) || trimmed == u"%")
            rest = {};
    }
    if (!rest.empty())
        return std::nullopt;

    double number = 0;
    const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        // Too large to be held is refused, too small to be told from nought is nought.
        const auto mark = plain.find('e');
        if (mark == std::string::npos || plain[mark + 1] != '-')
            return std::nullopt;
        number = 0;
    }
    if (m_style == NSNumberFormatterStyle::percent)
        number /= 100;
    if (number < m_minimum || number > m_maximum)
        return std::nullopt;
    return number;
}

} // namespace platform
