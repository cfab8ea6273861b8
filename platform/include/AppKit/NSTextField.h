// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSNumberFormatter.h>

namespace platform {

inline const std::u16string NSControlTextDidBeginEditingNotification = u"NSControlTextDidBeginEditingNotification";
inline const std::u16string NSControlTextDidChangeNotification = u"NSControlTextDidChangeNotification";
inline const std::u16string NSControlTextDidEndEditingNotification = u"NSControlTextDidEndEditingNotification";

class NSTextField;
enum class Refusal;

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
///
/// A field with a number formatter does not end an edit while its text is no number: it is marked and keeps the focus,
/// and its value stays the last good one, also where the edit is ended by force. A blank text is none, not a number.
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

    /// Shows numbers through it and takes nothing but numbers; null shows and takes texts.
    void setFormatter(std::shared_ptr<const NSNumberFormatter> formatter);
    const std::shared_ptr<const NSNumberFormatter>& formatter() const { return m_formatter; }

    /// In UTF-16 units; 0 is no limit. A change that makes the text longer than this is refused as a whole and the
    /// field marked; nothing is ever cut off. A longer text set by program is shown, and the user can make it shorter.
    std::size_t maximumLength() const { return m_maximumLength; }
    void setMaximumLength(std::size_t units) { m_maximumLength = units; }

    bool isBeingEdited() const { return m_editing; }
    void validateEditing() override;

    /// The user changed the text to `text`. Answers NO, and shows the old text again, where the change is refused.
    bool userChangedText(const std::u16string& text);
    /// The user is about to leave the field or pressed Return. Answers NO where the focus must stay.
    virtual bool userEndsEditing(Ending ending);
    /// Whether the user changed the text, and the change was neither written nor replaced since.
    bool isChangedByUser() const { return m_unwritten; }
    /// The user pressed Escape: the text from before the edit comes back, even where somebody asked for the value
    /// meanwhile, but never over a value that was set meanwhile. Nothing is sent.
    virtual void userCancelsEditing();

protected:
    /// The user is about to change something: where no edit runs, asks and tells that one begins. NO where it must not.
    bool userBeginsEditing();
    /// The delegate has heard of a change; others may be told after it.
    virtual void delegateHasHeard() {}
    void showRefusal(Refusal refusal);
    void setValue(NSValue value) override;
    void abandonEditing() override;
    void showValue() override;
    std::u16string shownText() const override;

private:
    /// Makes the edited text the value. NO where it is no number; the value is then as it was.
    bool takeOverText();

    std::weak_ptr<NSControlTextEditingDelegate> m_delegate;
    NSNotificationCenter::Token m_delegateToken;
    std::shared_ptr<const NSNumberFormatter> m_formatter;
    std::u16string m_editedText;
    std::optional<std::u16string> m_typedText; // the value as the user wrote it
    /// What the field had before this edit was taken over.
    struct Former {
        NSValue value;
        std::optional<std::u16string> typedText;
    };
    std::optional<Former> m_former;
    std::size_t m_maximumLength = 0;
    bool m_editing = false;
    bool m_textPending = false; // edited text not yet taken over
    bool m_unwritten = false;   // a change by the user not yet written under the bound key
    bool m_refused = false;
    bool m_editable = true;
    bool m_sendsActionOnEndEditing = false;
};

} // namespace platform
