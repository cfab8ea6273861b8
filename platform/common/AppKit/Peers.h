// SPDX-License-Identifier: MIT
#pragma once

// What a toolkit provides for each kind of view: it shows what it is told and tells the view what the user did, nothing
// else. A setter here never leads to a message back.

#include <AppKit/NSAlert.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTokenFieldCell.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <AppKit/TokenText.h>
#include <Foundation/NSIndexSet.h>

#include <filesystem>
#include <functional>

namespace platform {

class NSImage;
class NSMatrix;
class NSPasteboard;
class NSPopUpButton;

class ViewPeer {
public:
    virtual ~ViewPeer() = default;
    virtual void setHidden(bool hidden) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual std::shared_ptr<NSWindow> window() = 0;
    /// Takes the focus; a text field selects all of its text. NO where the field that has it refused to end its
    /// editing.
    virtual bool focus() = 0;
    virtual void setMenu(const std::shared_ptr<NSMenu>&) {}
    virtual void setToolTip(const std::u16string&) {}
    virtual void setAccessibilityLabel(const std::u16string&) {}
    virtual void setDraggedTypes(const std::vector<std::u16string>&) {}
    virtual NSSize size() { return {}; }
};

class WindowPeer {
public:
    virtual ~WindowPeer() = default;
    /// Takes the focus from whatever has it. NO where a field refused to end its editing.
    virtual bool clearFocus() = 0;
    /// Whether the view whose peer this is stands in the window, on no page that is not shown.
    virtual bool contains(ViewPeer& peer) = 0;
    /// Shows the window in front of the program's others and gives it the keyboard.
    virtual void orderFront() {}
};

class ButtonPeer : public virtual ViewPeer {
public:
    virtual void setTitle(const std::u16string& title) = 0;
    virtual void setOn(bool on) = 0;
};

/// Why a field does not take what was typed.
enum class Refusal { none, notANumber, tooLong };

class TextPeer : public virtual ViewPeer {
public:
    /// Shows `text`. While the field has the focus it keeps it, and the caret its distance from the end; the text
    /// already shown leaves the caret alone.
    virtual void setText(const std::u16string& text) = 0;
    virtual void setWraps(bool) {}
    /// Marks the field, and says why; `none` takes the mark away.
    virtual void showRefusal(Refusal) {}
};

/// What becomes of a change that the editor is told to make.
enum class Undoing {
    forgotten, ///< Nothing can be undone any more.
    newStep,   ///< It can be undone.
    sameStep,  ///< It is undone together with the change before it.
};

/// The editor of a token field: a text in which a token is one character. It tells of what the user changes after the
/// change.
class TokenPeer : public virtual TextPeer {
public:
    /// Puts `replacement` in the place of the characters in `range`.
    virtual void replaceCharacters(NSRange range, const TokenText& replacement, Undoing undoing) = 0;
    virtual NSRange selectedRange() = 0;
    virtual void setSelectedRange(NSRange range) = 0;
    virtual bool isFirstResponder() = 0;
    /// Nothing can be undone any more.
    virtual void forgetUndo() = 0;
    virtual bool canUndo(bool again) = 0;
    /// Takes the last step back, or makes it again, and tells so.
    virtual void undo(bool again) = 0;
    /// Titles of tokens may have changed.
    virtual void retitle() = 0;
    virtual std::shared_ptr<NSPasteboard> clipboard() = 0;
    /// `plainText` is for other programs.
    virtual void setClipboard(const NSPasteboard& pasteboard, const std::u16string& plainText) = 0;
};

class MatrixPeer : public virtual ViewPeer {
public:
    /// Titles and the selected one of the matrix's cells.
    virtual void showCells(const NSMatrix& matrix) = 0;
};

class SegmentedPeer : public virtual ViewPeer {
public:
    virtual void setSelected(NSInteger segment, bool selected) = 0;
};

class ColorWellPeer : public virtual ViewPeer {
public:
    virtual void setColor(const NSColor& color) = 0;
};

class PopUpPeer : public virtual ViewPeer {
public:
    /// What the button shows while its menu is closed.
    virtual void showFace(const NSPopUpButton& button) = 0;
};

class TabPeer : public virtual ViewPeer {
public:
    virtual void setLabel(NSInteger index, const std::u16string& label) = 0;
    virtual void select(NSInteger index) = 0;
};

class TablePeer : public virtual ViewPeer {
public:
    virtual void setColumnTitle(NSInteger column, const std::u16string& title) = 0;
    virtual void setHeader(bool visible, bool bottomBorder) = 0;
    virtual void reload(NSInteger rows) = 0;
    virtual void setSelection(const NSIndexSet& rows, NSInteger current) = 0;
    /// Commits the cell being edited. NO where it refused to end.
    virtual bool commitEditing() = 0;
    virtual void abandonEditing() = 0;
};

class ImagePeer : public virtual ViewPeer {
public:
    /// Null shows nothing.
    virtual void setImage(const std::shared_ptr<const NSImage>& image) = 0;
    /// Answers in words what the picture shows; may be empty.
    virtual void setDescriber(std::function<std::u16string()>) {}
};

class ScrollPeer : public virtual ViewPeer {
public:
    virtual void setMagnification(double magnification) = 0;
};

/// Shows a popover's content; the popover says when.
class PopoverPeer {
public:
    virtual ~PopoverPeer() = default;
    /// Whether the view is on screen.
    virtual bool canShowBeside(NSView& view) = 0;
    /// Shows the content, or moves it, and tells the popover that it has appeared: after `seconds`, or inside the call
    /// where that is 0. Calls off a hiding that has not ended.
    virtual void show(NSRect rect, NSView& view, NSRectEdge edge, double seconds) = 0;
    /// Takes the content off the screen and tells the popover that it has disappeared, in the same way. A second call
    /// ends the first.
    virtual void hide(double seconds) = 0;
};

/// A decoded picture.
class Picture {
public:
    virtual ~Picture() = default;
};

/// A picture that can be drawn into.
class Canvas {
public:
    virtual ~Canvas() = default;
    virtual void drawToken(const std::u16string& title, NSControlSize size, NSRect frame) = 0;
    /// As drawn so far.
    virtual std::shared_ptr<const Picture> picture() const = 0;
};

/// The toolkit's side of the things that are not views.
std::shared_ptr<Canvas> makeCanvas(NSSize size);
/// In points.
NSSize sizeOfToken(const std::u16string& title, NSControlSize size);
std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover);
/// Null for a file that is missing, unreadable or no picture.
std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file);
NSInteger runAlertModally(const NSAlert& alert);

} // namespace platform
