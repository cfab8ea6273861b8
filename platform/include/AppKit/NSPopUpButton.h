// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSCell.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSMenu.h>

#include <optional>

namespace platform {

inline const std::u16string NSPopUpButtonWillPopUpNotification = u"NSPopUpButtonWillPopUpNotification";
inline const std::u16string NSPopUpButtonCellWillPopUpNotification = u"NSPopUpButtonCellWillPopUpNotification";

/// The cell of a pop-up button: it has the menu and knows which of its items is selected.
///
/// A button that pops up shows the selected item; one that pulls down shows the first item always, hides it in the
/// menu, and does not care what is selected. Where the button pops up, the selected item has the state On and the one
/// selected before loses it; a state set on another item stays.
class NSPopUpButtonCell : public NSCell {
public:
    NSPopUpButtonCell();
    ~NSPopUpButtonCell() override;
    std::u16string_view className() const override;

    bool pullsDown() const { return m_pullsDown; }
    void setPullsDown(bool pullsDown);

    /// Takes the menu itself. A different one selects its first item that is On, else its first item, else nothing; the
    /// same one changes nothing.
    void setMenu(const std::shared_ptr<NSMenu>& menu) override;

    /// Null where nothing is selected, or the item selected is no longer in the menu.
    std::shared_ptr<NSMenuItem> selectedItem() const;
    /// Null, or an item of another menu, deselects.
    void selectItem(const std::shared_ptr<NSMenuItem>& item);
    /// Empty where nothing is selected.
    std::u16string titleOfSelectedItem() const;
    /// The item the closed button shows, or null.
    std::shared_ptr<NSMenuItem> faceItem() const;

    /// Sent once for each opening, when the menu has closed: after the choice was selected, before its action is sent.
    virtual void dismissPopUp();

private:
    void hideFace(bool hide) const;
    std::shared_ptr<NSMenuItem> m_selected;
    bool m_pullsDown = false;
};

/// A button that opens a menu.
///
/// The selection messages send no action, and none of them calls another one that a subclass could override. There is
/// no change of selection by the user without opening the menu.
class NSPopUpButton : public NSControl {
public:
    NSPopUpButton();
    ~NSPopUpButton() override;
    std::u16string_view className() const override;

    /// Takes an NSPopUpButtonCell only; the menu and the kind of the button go over to it.
    void setCell(const std::shared_ptr<NSCell>& cell) override;

    bool pullsDown() const { return popUpCell().pullsDown(); }
    void setPullsDown(bool pullsDown) { popUpCell().setPullsDown(pullsDown); }

    /// The menu of the cell.
    std::shared_ptr<NSMenu> menu() const override { return popUpCell().menu(); }
    void setMenu(const std::shared_ptr<NSMenu>& menu) override { popUpCell().setMenu(menu); }

    /// Where there is an item of that title, it is replaced by one at the end. The first item added is selected.
    void addItemWithTitle(const std::u16string& title);
    void removeAllItems();
    NSInteger numberOfItems() const;
    /// Raises NSRangeException beyond the items.
    std::shared_ptr<NSMenuItem> itemAtIndex(NSInteger index) const;
    /// Null where no item has the title.
    std::shared_ptr<NSMenuItem> itemWithTitle(const std::u16string& title) const;
    /// -1 where no item has the title.
    NSInteger indexOfItemWithTitle(const std::u16string& title) const;

    std::shared_ptr<NSMenuItem> selectedItem() const { return popUpCell().selectedItem(); }
    /// -1 where nothing is selected.
    NSInteger indexOfSelectedItem() const;
    /// The selected item's tag; -1 where nothing is selected.
    NSInteger selectedTag() const;
    /// nil where nothing is selected.
    std::optional<std::u16string> titleOfSelectedItem() const;

    /// Null, or an item of another menu, deselects.
    virtual void selectItem(const std::shared_ptr<NSMenuItem>& item);
    /// -1 deselects; raises NSRangeException beyond the items.
    virtual void selectItemAtIndex(NSInteger index);
    /// NO, and the selection as it was, for a tag no item has.
    virtual bool selectItemWithTag(NSInteger tag);
    /// A title no item has deselects.
    virtual void selectItemWithTitle(const std::u16string& title);

    /// The user wants the menu. Posts that it will pop up, from the cell and from the button: observers may change or
    /// replace the menu. Then finds out which items are enabled. Answers the menu to show, null for a disabled button;
    /// for another one `userChose` must follow, whatever was shown.
    std::shared_ptr<NSMenu> userOpens();
    /// The menu was closed with `item`, of it or of a submenu, or with null for none. Selects the item, sends the cell
    /// `dismissPopUp`, then the item's own action if it has one and else the button's.
    void userChose(const std::shared_ptr<NSMenuItem>& item);

protected:
    void cellChanged() override;
    void showAll() override;

private:
    NSPopUpButtonCell& popUpCell() const { return *m_popUpCell; }
    std::shared_ptr<NSPopUpButtonCell> m_popUpCell;
};

} // namespace platform
