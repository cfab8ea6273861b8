// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Foundation/NSNotification.h>

namespace platform {

inline const std::u16string NSControlTextDidBeginEditingNotification = u"NSControlTextDidBeginEditingNotification";
inline const std::u16string NSControlTextDidChangeNotification = u"NSControlTextDidChangeNotification";
inline const std::u16string NSControlTextDidEndEditingNotification = u"NSControlTextDidEndEditingNotification";

class NSTextField;

/// What a field asks and tells while it is edited. The notifications come through the notification centre, where
/// setting the delegate registers it.
class NSControlTextEditingDelegate {
public:
    virtual ~NSControlTextEditingDelegate();
    /// NO refuses the first change.
    virtual bool controlTextShouldBeginEditing(const std::shared_ptr<NSControl>& control);
    /// NO keeps the focus in the field.
    virtual bool controlTextShouldEndEditing(const std::shared_ptr<NSControl>& control);
    virtual void controlTextDidChange(const NSNotification& notification);
};

/// A label, or a field in which one line of text is edited.
///
/// Editing begins at the first change the user makes, not with the focus. Order of messages: `should begin`, the
/// did-begin notification; a did-change notification after each change; and at the end `should end`, the text is taken
/// over, the did-end notification, and then the action, after Return always and else only if the field is told so.
/// Setting a value while the field is edited abandons what was typed and keeps the focus: the edit goes on with the
/// value, and its end is asked for and told like any other.
class NSTextField : public NSControl {
public:
    enum class Ending { returnKey, tabKey, focusLost };

    ~NSTextField() override;
    std::u16string_view className() const override;

    bool isEditable() const { return m_editable; }
    void setEditable(bool editable) { m_editable = editable; }
    bool acceptsFirstResponder() const override { return m_editable && NSControl::acceptsFirstResponder(); }

    void setDelegate(const std::shared_ptr<NSControlTextEditingDelegate>& delegate);
    std::shared_ptr<NSControlTextEditingDelegate> delegate() const { return m_delegate.lock(); }

    bool sendsActionOnEndEditing() const { return m_sendsActionOnEndEditing; }
    void setSendsActionOnEndEditing(bool sends) { m_sendsActionOnEndEditing = sends; }

    bool isBeingEdited() const { return m_editing; }
    void validateEditing() override;

    /// The user changed the text to `text`. Answers NO, and shows the old text again, where the change is refused.
    bool userChangedText(const std::u16string& text);
    /// The user is about to leave the field or pressed Return. Answers NO where the focus must stay.
    bool userEndsEditing(Ending ending);
    /// The user pressed Escape: the old text comes back, nothing is sent.
    void userCancelsEditing();

protected:
    void setValue(NSValue value) override;
    void abandonEditing() override;
    void showValue() override;

private:
    std::weak_ptr<NSControlTextEditingDelegate> m_delegate;
    NSNotificationCenter::Token m_delegateToken;
    std::u16string m_editedText;
    bool m_editing = false;
    bool m_textPending = false; // edited text not yet taken over
    bool m_editable = true;
    bool m_sendsActionOnEndEditing = false;
};

} // namespace platform
