// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSMenu.h>
#include <AppKit/NSPasteboard.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSTextView.h>
#include <AppKit/TokenText.h>

#include <set>

namespace platform {

class NSTokenField;
class TokenPeer;

/// How an object is shown: as plain text (`none`), or as a token with an outline. `defaultStyle` is `rounded`.
enum class NSTokenStyle : NSInteger { defaultStyle = 0, none = 1, rounded = 2, squared = 3, plainSquared = 4 };

/// What a token field asks. Each of the inherited answers is that of a delegate without the message.
class NSTokenFieldDelegate : public NSControlTextEditingDelegate {
public:
    using Field = std::shared_ptr<NSTokenField>;
    using Objects = NSArray<RepresentedObject>;

    ~NSTokenFieldDelegate() override;
    /// How to show an object; the field's own answer is inherited.
    virtual NSTokenStyle tokenFieldStyleForRepresentedObject(const Field& field, const RepresentedObject& object);
    /// The text that stands for an object; none is the object's own.
    virtual std::optional<std::u16string> tokenFieldDisplayStringForRepresentedObject(const Field& field,
                                                                                      const RepresentedObject& object);
    /// What a run of text becomes; none is the text itself.
    virtual std::optional<RepresentedObject>
    tokenFieldRepresentedObjectForEditingString(const Field& field, const std::u16string& editingString);
    /// What is to be put in for `objects` before the element at `index`; an empty list drops them, nil is an error.
    virtual Objects tokenFieldShouldAddObjectsAtIndex(const Field& field, const Objects& objects, NSUInteger index);
    /// Whether it wrote the objects; else the field writes them as plain text.
    virtual bool tokenFieldWriteRepresentedObjectsToPasteboard(const Field& field, const Objects& objects,
                                                               const std::shared_ptr<NSPasteboard>& pasteboard);
    /// The objects on the pasteboard; nil where the field is to read the plain texts itself.
    virtual Objects tokenFieldReadFromPasteboard(const Field& field, const std::shared_ptr<NSPasteboard>& pasteboard);
};

/// A field of text and tokens, edited as one text in which a token is one character.
///
/// The delegate, where it is an NSTokenFieldDelegate, says how objects are shown and what runs of text become. Outside
/// an edit the object value is the very list last set. While the user edits it is made anew from the text: each token
/// is its object, each run of text between two tokens one element. The notification of a change is posted while the
/// object value is still the one from before; it is taken over by `validateEditing`, and by the field itself as soon as
/// the delegate has heard.
///
/// What is set inside an act of the user is undone together with it; what is set otherwise ends what can be undone.
/// Escape does nothing: every change has been told.
class NSTokenField : public NSTextField, public NSUserInterfaceValidations {
public:
    NSTokenField();
    ~NSTokenField() override;
    std::u16string_view className() const override;

    /// nil before anything was set.
    const NSArray<RepresentedObject>& objectValue();
    /// nil or an empty list clears the field.
    void setObjectValue(const NSArray<RepresentedObject>& objects);

    /// Asks for the display strings of the tokens again: what they stand for may have got another name.
    void refreshTokenTitles();

    /// What the field shows.
    const TokenText& attributedStringValue() const { return m_content; }
    /// Tokens become their objects again, runs of text strings. Posts nothing; while the field has the focus, the
    /// change is told together with the next one, or before the edit ends.
    void setAttributedStringValue(const TokenText& text);

    /// The characters that, when typed, end the run of text before the caret; "," at first.
    const std::u16string& tokenizingCharacterSet() const { return m_tokenizingCharacterSet; }
    void setTokenizingCharacterSet(const std::u16string& characters) { m_tokenizingCharacterSet = characters; }

    /// The editor while the field has the focus, else null.
    std::shared_ptr<NSTextView> currentEditor();

    // The field's own answers, for a delegate that leaves an object to it.
    virtual NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>& field,
                                                             const RepresentedObject& object);
    virtual std::optional<std::u16string>
    tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<NSTokenField>& field,
                                                const RepresentedObject& object);

    /// Whether a button in the field opens a menu of what can be inserted.
    virtual bool hasInsertMenu() const { return false; }
    /// That menu, made afresh for each opening; null where there is none.
    virtual std::shared_ptr<NSMenu> insertMenu();
    /// What a right click shows, made afresh for each opening; null shows what the view's own menu is.
    virtual std::shared_ptr<NSMenu> contextMenu();
    /// What assistive technology calls the button.
    virtual std::u16string insertButtonLabel() const { return {}; }

    // Actions, for menus: on the selection, or where the caret is.
    void cut(const std::shared_ptr<NSObject>& sender);
    void copy(const std::shared_ptr<NSObject>& sender);
    void paste(const std::shared_ptr<NSObject>& sender);
    void selectAll(const std::shared_ptr<NSObject>& sender);
    void undo(const std::shared_ptr<NSObject>& sender);
    void redo(const std::shared_ptr<NSObject>& sender);
    bool validateUserInterfaceItem(const NSValidatedUserInterfaceItem& item) override;

    void validateEditing() override;

    // What the user did, as the peer tells it.

    /// The user typed: the editor shows `text` now. Of what came in, the characters of the tokenizing set are taken out
    /// again, and end the run before them.
    void userTyped(const TokenText& text);
    /// The user undid something, or did it again: the editor shows `text` now.
    virtual void userUndid(const TokenText& text);
    /// Backspace, or Delete, without a selection. Answers whether that selected a token; if not, the editor deletes.
    bool userSelectsTokenToDelete(bool forward);
    /// The texts of the selection, one item each, and all of them as `plainText`: what the window system offers of a
    /// selection that nobody copied, so that the delegate hears nothing of it. Never null.
    std::shared_ptr<NSPasteboard> selectedTexts(std::u16string& plainText) const;
    void userCuts();
    void userCopies();
    /// Puts what is on the pasteboard in the place of the selection.
    void userPastes(const std::shared_ptr<NSPasteboard>& pasteboard);
    /// The user begins to drag the selection. Answers what it carries and how that reads as plain text; null for an
    /// empty selection.
    std::shared_ptr<NSPasteboard> userDrags(std::u16string& plainText);
    void userEndedDrag() { m_dragged.reset(); }
    /// Something was dropped before the character at `position`; where the drag began in this field, its texts leave
    /// their old place, and its objects are left to the delegate. Answers whether it was taken.
    bool userDrops(const std::shared_ptr<NSPasteboard>& pasteboard, NSUInteger position);
    /// Sends the action of an item of the field's menus; the change it makes is one step to undo.
    virtual void userChoosesMenuItem(const std::shared_ptr<NSMenuItem>& item);
    bool userEndsEditing(Ending ending) override;
    void userCancelsEditing() override {}

    /// Whether a drag that carries one of these may be dropped.
    bool takesDraggedTypes(const std::vector<std::u16string>& types) const;
    NSTokenStyle styleOf(const RepresentedObject& object);
    std::u16string displayStringOf(const RepresentedObject& object);

protected:
    void setValue(NSValue value) override;
    void abandonEditing() override;
    void showValue() override;
    std::u16string shownText() const override;
    void delegateHasHeard() override;
    void cellChanged() override;
    void showAll() override;

private:
    friend class NSTextView;
    using Objects = std::vector<RepresentedObject>;

    std::shared_ptr<NSTokenField> self();
    std::shared_ptr<NSTokenFieldDelegate> tokenDelegate() const;
    TokenPeer* tokenPeer() const;
    TokenText contentOf(const NSArray<RepresentedObject>& objects);
    Objects objectsOf(const TokenText& content);
    /// Shows `content`; that can be undone as part of the act that runs, or ends what can be undone where none does.
    void show(const TokenText& content);
    /// Makes a change of the user's, of which nobody has been told yet.
    void change(const TokenText& content, NSUInteger caret);
    /// The editor shows `text`, which the user made of the content. Answers NO, and shows the content again, where that
    /// must not be.
    bool takesChange(const TokenText& text);
    /// Tells the delegate, and everybody else, of a change of the content.
    void tellChange();
    /// Turns the run of text before the character at `position` into what the delegate makes of it.
    void endRunBefore(NSUInteger position);
    bool isTooLong(NSUInteger length) const;
    NSRange selection() const;
    std::shared_ptr<NSPasteboard> write(const TokenText& selected, std::u16string& plainText);
    NSArray<RepresentedObject> read(const std::shared_ptr<NSPasteboard>& pasteboard);
    NSArray<RepresentedObject> shouldAdd(const NSArray<RepresentedObject>& objects, NSUInteger index);
    bool takeFrom(const std::shared_ptr<NSPasteboard>& pasteboard, NSRange replaced,
                  const std::optional<NSRange>& moved);

    NSArray<RepresentedObject> m_objects;
    TokenText m_content;
    std::shared_ptr<NSTextView> m_editor;
    std::u16string m_tokenizingCharacterSet = u",";
    std::optional<NSRange> m_dragged; // in the field, while the drag runs
    std::set<std::u16string> m_keys;  // items last written that stand for objects other than texts
    NSUInteger m_lastAct = 0;         // the one whose changes are the last that can be undone
    bool m_untaken = false;           // the content was edited and is not yet the object value
    bool m_untold = false;            // the content changed and nobody was told
    bool m_telling = false;           // the delegate still sees the former object value
};

} // namespace platform
