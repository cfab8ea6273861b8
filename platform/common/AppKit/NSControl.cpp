// SPDX-License-Identifier: MIT
#include <AppKit/NSControl.h>

#include <AppKit/NSCell.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

#include "Actions.h"
#include "Peers.h"
#include "ValueBinding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace platform {

namespace {

/// What `%.*g` prints in the classic locale.
std::u16string textOfReal(double number, int digits) {
    if (std::isnan(number))
        return u"nan";
    if (std::isinf(number))
        return number < 0 ? u"-inf" : u"inf";
    std::array<char, 48> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits).ptr;
    return {text.data(), end};
}

NSInteger towardZero(double number) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(number))
        return 0;
    if (number >= limit)
        return std::numeric_limits<NSInteger>::max();
    if (number < -limit)
        return std::numeric_limits<NSInteger>::min();
    return static_cast<NSInteger>(number);
}

} // namespace

NSControl::NSControl() {
    NSControl::setCell(std::make_shared<NSCell>());
}

NSControl::~NSControl() {
    m_cell->setControlView(nullptr, {});
}

void NSControl::setCell(const std::shared_ptr<NSCell>& cell) {
    if (!cell)
        throw NSInvalidArgumentException("a control needs a cell");
    if (m_cell)
        m_cell->setControlView(nullptr, {});
    m_cell = cell;
    m_cell->setControlView(this, [this] { cellChanged(); });
}

std::u16string_view NSControl::className() const {
    return u"NSControl";
}

void NSControl::setEnabled(bool enabled) {
    if (!enabled)
        abandonEditing();
    m_enabled = enabled;
    if (peer())
        peer()->setEnabled(enabled);
}

std::u16string NSControl::stringValue() {
    validateEditing();
    return shownText();
}

NSInteger NSControl::integerValue() {
    validateEditing();
    if (const auto* whole = std::get_if<NSInteger>(&m_value))
        return *whole;
    if (const auto* text = std::get_if<std::u16string>(&m_value))
        return platform::integerValue(*text);
    return towardZero(platform::doubleValue(m_value));
}

float inSinglePrecision(double number) {
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::isfinite(number) ? std::clamp(number, -largest, largest) : number);
}

float NSControl::floatValue() {
    return inSinglePrecision(doubleValue());
}

double NSControl::doubleValue() {
    validateEditing();
    return platform::doubleValue(m_value);
}

void NSControl::setStringValue(const std::u16string& text) {
    setValue(text);
}
void NSControl::setIntegerValue(NSInteger number) {
    setValue(number);
}
void NSControl::setFloatValue(float number) {
    setValue(number);
}
void NSControl::setDoubleValue(double number) {
    setValue(number);
}

void NSControl::setValue(NSValue value) {
    m_value = std::move(value);
    showValue();
}

std::u16string NSControl::shownText() const {
    return textOfValue(m_value);
}

void NSControl::bindValueToObjectWithKey(const std::shared_ptr<NSObject>& object, const std::u16string& key) {
    m_binding = std::make_shared<ValueBinding>(*this, object, key);
    if (object)
        object->addObserverForKey(m_binding, key);
    m_binding->show();
}

void NSControl::userChose(const std::optional<NSValue>& value, bool sends) {
    const auto binding = m_binding; // the write may run anything
    const bool goesOn = !binding || !value || binding->write(*value);
    if (sends && goesOn)
        sendAction();
}

void NSControl::sendAction() {
    platform::sendAction(m_action, m_target.lock(), shared_from_this());
}

void NSControl::showAll() {
    NSView::showAll();
    peer()->setEnabled(m_enabled);
    showValue();
}

std::u16string textOfValue(const NSValue& value) {
    if (const auto* text = std::get_if<std::u16string>(&value))
        return *text;
    if (const auto* whole = std::get_if<NSInteger>(&value))
        return fromUtf8(std::to_string(*whole));
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? u"1" : u"0";
    if (const auto* single = std::get_if<float>(&value))
        return textOfReal(static_cast<double>(*single), 7);
    if (const auto* real = std::get_if<double>(&value))
        return textOfReal(*real, 16);
    return {};
}

} // namespace platform
