// SPDX-License-Identifier: MIT
#include <AppKit/NSTextField.h>

#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>

#include "Peers.h"

namespace platform {

NSControlTextEditingDelegate::~NSControlTextEditingDelegate() = default;
bool NSControlTextEditingDelegate::controlTextShouldBeginEditing(const std::shared_ptr<NSControl>&) {
    return true;
}
bool NSControlTextEditingDelegate::controlTextShouldEndEditing(const std::shared_ptr<NSControl>&) {
    return true;
}
void NSControlTextEditingDelegate::controlTextDidChange(const NSNotification&) {}

NSTextField::~NSTextField() {
    if (m_delegateToken)
        NSNotificationCenter::defaultCenter().removeObserver(m_delegateToken);
}

std::u16string_view NSTextField::className() const {
    return u"NSTextField";
}

void NSTextField::setDelegate(const std::shared_ptr<NSControlTextEditingDelegate>& delegate) {
    auto& center = NSNotificationCenter::defaultCenter();
    if (m_delegateToken)
        center.removeObserver(m_delegateToken);
    m_delegateToken.reset();
    m_delegate = delegate;
    if (!delegate)
        return;
    const auto field = std::static_pointer_cast<NSTextField>(shared_from_this());
    m_delegateToken = center.addObserverForNameObjectQueueUsingBlock(
        NSControlTextDidChangeNotification, field, nullptr,
        [weak = m_delegate, weakField = std::weak_ptr(field)](const NSNotification& notification) {
            if (const auto told = weak.lock())
                told->controlTextDidChange(notification);
            tell(weakField, &NSTextField::delegateHasHeard);
        });
}

void NSTextField::setFormatter(std::shared_ptr<const NSNumberFormatter> formatter) {
    m_formatter = std::move(formatter);
    showValue();
}

bool NSTextField::takeOverText() {
    if (!m_textPending)
        return true;
    NSValue taken = m_editedText;
    if (m_formatter && !isBlank(m_editedText)) {
        const auto number = m_formatter->numberFromString(m_editedText);
        if (!number)
            return false;
        taken = *number;
    }
    m_textPending = false;
    if (!m_former)
        m_former = Former{value(), m_typedText};
    m_typedText = m_editedText;
    NSControl::setValue(std::move(taken));
    return true;
}

void NSTextField::validateEditing() {
    takeOverText();
}

bool NSTextField::userBeginsEditing() {
    if (m_editing)
        return true;
    const auto self = std::static_pointer_cast<NSTextField>(shared_from_this());
    const auto asked = m_delegate.lock();
    if (!isEnabled() || !m_editable || (asked && !asked->controlTextShouldBeginEditing(self)))
        return false;
    m_editing = true;
    m_former.reset();
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidBeginEditingNotification, self);
    return true;
}

bool NSTextField::userChangedText(const std::u16string& text) {
    const auto self = std::static_pointer_cast<NSTextField>(shared_from_this());
    const auto before = m_textPending ? m_editedText : shownText();
    if (m_maximumLength != 0 && text.size() > m_maximumLength && text.size() > before.size()) {
        if (auto* shown = dynamic_cast<TextPeer*>(peer()))
            shown->setText(before);
        showRefusal(Refusal::tooLong);
        return false;
    }
    if (!userBeginsEditing()) {
        showValue();
        return false;
    }
    m_editedText = text;
    m_textPending = true;
    m_unwritten = true;
    showRefusal(Refusal::none);
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, self);
    return true;
}

bool NSTextField::userEndsEditing(Ending ending) {
    const UserAct act; // what a delegate sets meanwhile is part of it
    const auto self = std::static_pointer_cast<NSTextField>(shared_from_this());
    const bool wasEdited = m_editing;
    if (wasEdited) {
        if (const auto asked = m_delegate.lock(); asked && !asked->controlTextShouldEndEditing(self))
            return false;
        if (!takeOverText()) {
            showRefusal(Refusal::notANumber);
            return false;
        }
        m_editing = false;
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidEndEditingNotification, self);
    }
    showRefusal(Refusal::none);
    std::optional<NSValue> chosen;
    if (std::exchange(m_unwritten, false))
        chosen = (m_formatter ? isBlank(shownText()) : shownText().empty()) ? NSValue() : value();
    userChose(chosen, ending == Ending::returnKey || (wasEdited && m_sendsActionOnEndEditing));
    return true;
}

void NSTextField::userCancelsEditing() {
    if (m_editing && m_former) {
        m_typedText = m_former->typedText;
        NSControl::setValue(m_former->value);
    }
    m_former.reset();
    abandonEditing();
}

void NSTextField::setValue(NSValue value) {
    m_textPending = false;
    m_unwritten = false;
    m_typedText.reset();
    m_former.reset();
    showRefusal(Refusal::none);
    NSControl::setValue(std::move(value));
}

void NSTextField::abandonEditing() {
    const bool wasEdited = std::exchange(m_editing, false);
    m_textPending = false;
    m_unwritten = false;
    showRefusal(Refusal::none);
    if (wasEdited)
        showValue();
}

void NSTextField::showValue() {
    if (auto* shown = dynamic_cast<TextPeer*>(peer()))
        shown->setText(shownText());
}

std::u16string NSTextField::shownText() const {
    if (m_typedText)
        return *m_typedText;
    const auto& number = value();
    const bool isNumber = std::holds_alternative<NSInteger>(number) || std::holds_alternative<float>(number) ||
                          std::holds_alternative<double>(number);
    return m_formatter && isNumber ? m_formatter->stringFromNumber(platform::doubleValue(number)) : textOfValue(number);
}

void NSTextField::showRefusal(Refusal refusal) {
    const bool refused = refusal != Refusal::none;
    if (!refused && !m_refused)
        return;
    m_refused = refused;
    if (auto* shown = dynamic_cast<TextPeer*>(peer()))
        shown->showRefusal(refusal);
}

} // namespace platform
