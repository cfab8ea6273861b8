// SPDX-License-Identifier: MIT
#include <AppKit/NSTextField.h>

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
    m_delegateToken =
        center.addObserverForNameObjectQueueUsingBlock(NSControlTextDidChangeNotification, shared_from_this(), nullptr,
                                                       [weak = m_delegate](const NSNotification& notification) {
                                                           if (const auto told = weak.lock())
                                                               told->controlTextDidChange(notification);
                                                       });
}

void NSTextField::validateEditing() {
    if (!m_textPending)
        return;
    m_textPending = false;
    NSControl::setValue(m_editedText);
}

bool NSTextField::userChangedText(const std::u16string& text) {
    const auto self = std::static_pointer_cast<NSTextField>(shared_from_this());
    auto& center = NSNotificationCenter::defaultCenter();
    if (!m_editing) {
        const auto asked = m_delegate.lock();
        if (!isEnabled() || !m_editable || (asked && !asked->controlTextShouldBeginEditing(self))) {
            showValue();
            return false;
        }
        m_editing = true;
        center.postNotificationNameObject(NSControlTextDidBeginEditingNotification, self);
    }
    m_editedText = text;
    m_textPending = true;
    center.postNotificationNameObject(NSControlTextDidChangeNotification, self);
    return true;
}

bool NSTextField::userEndsEditing(Ending ending) {
    const auto self = std::static_pointer_cast<NSTextField>(shared_from_this());
    const bool wasEdited = m_editing;
    if (wasEdited) {
        if (const auto asked = m_delegate.lock(); asked && !asked->controlTextShouldEndEditing(self))
            return false;
        validateEditing();
        m_editing = false;
        NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidEndEditingNotification, self);
    }
    if (ending == Ending::returnKey || (wasEdited && m_sendsActionOnEndEditing))
        sendAction();
    return true;
}

void NSTextField::userCancelsEditing() {
    abandonEditing();
}

void NSTextField::setValue(NSValue value) {
    m_textPending = false;
    NSControl::setValue(std::move(value));
}

void NSTextField::abandonEditing() {
    m_textPending = false;
    if (std::exchange(m_editing, false))
        showValue();
}

void NSTextField::showValue() {
    if (auto* shown = dynamic_cast<TextPeer*>(peer()))
        shown->setText(textOfValue(value()));
}

} // namespace platform
