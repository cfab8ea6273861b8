// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSAttributedString.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSObject.h>

namespace platform {

class NSImage;
class NSMenu;

/// Something that sends an action, as whoever enables it sees it.
class NSValidatedUserInterfaceItem {
public:
    virtual ~NSValidatedUserInterfaceItem();
    virtual const std::u16string& action() const = 0;
    virtual NSInteger tag() const = 0;
};

/// A target that says which of its items are enabled.
class NSUserInterfaceValidations {
public:
    virtual ~NSUserInterfaceValidations();
    /// Asked for each item each time before a menu shows.
    virtual bool validateUserInterfaceItem(const NSValidatedUserInterfaceItem& item) = 0;
};

/// Whoever a menu tells about itself. There is nothing it would have to answer.
class NSMenuDelegate {
public:
    virtual ~NSMenuDelegate();
};

/// A line of a menu. It belongs to one menu at a time.
class NSMenuItem final : public NSObject, public NSValidatedUserInterfaceItem {
public:
    explicit NSMenuItem(std::u16string title = {}, std::u16string action = {}, std::u16string keyEquivalent = {});
    ~NSMenuItem() override;
    static std::shared_ptr<NSMenuItem> separatorItem();

    bool isSeparatorItem() const { return m_separator; }
    /// The menu it is in, or null.
    std::shared_ptr<NSMenu> menu() const { return m_menu.lock(); }

    const std::u16string& title() const { return m_title; }
    /// A text other than the attributed title's drops that.
    void setTitle(const std::u16string& title);
    /// What is drawn in place of the title; null where there is none.
    const std::shared_ptr<const NSAttributedString>& attributedTitle() const { return m_attributedTitle; }
    /// Its text becomes the title too; null leaves the title as it is.
    void setAttributedTitle(const std::shared_ptr<const NSAttributedString>& title);
    /// A selector of the target's class table; empty sends nothing.
    const std::u16string& action() const override { return m_action; }
    void setAction(const std::u16string& selector) { m_action = selector; }
    std::shared_ptr<NSObject> target() const { return m_target.lock(); }
    void setTarget(const std::shared_ptr<NSObject>& target) { m_target = target; }
    /// Empty means none.
    const std::u16string& keyEquivalent() const { return m_keyEquivalent; }
    NSInteger tag() const override { return m_tag; }
    void setTag(NSInteger tag) { m_tag = tag; }
    const NSValue& representedObject() const { return m_representedObject; }
    void setRepresentedObject(const NSValue& object) { m_representedObject = object; }

    /// The platform's image of this name, such as "NSActionTemplate", or the picture in the file of this path, drawn in
    /// the colour of the title; empty, or a name it does not know, shows none.
    const std::u16string& imageName() const { return m_imageName; }
    void setImageNamed(const std::u16string& name);
    /// Shown in the place of the title, or before it; null for none.
    const std::shared_ptr<NSImage>& image() const { return m_image; }
    void setImage(const std::shared_ptr<NSImage>& image);
    /// On (1) draws a check mark.
    NSInteger state() const { return m_state; }
    void setState(NSInteger state) { m_state = state; }
    /// A hidden item is left out of the menu when that shows.
    bool isHidden() const { return m_hidden; }
    void setHidden(bool hidden) { m_hidden = hidden; }
    /// As it was found when the menu was last about to show; there is no other way to set it.
    bool isEnabled() const { return m_enabled; }

    const std::shared_ptr<NSMenu>& submenu() const { return m_submenu; }
    void setSubmenu(const std::shared_ptr<NSMenu>& submenu) { m_submenu = submenu; }

private:
    friend class NSMenu;
    void changed() const;

    std::u16string m_title;
    std::shared_ptr<const NSAttributedString> m_attributedTitle;
    std::u16string m_action;
    std::u16string m_keyEquivalent;
    std::u16string m_imageName;
    std::shared_ptr<NSImage> m_image;
    std::weak_ptr<NSObject> m_target;
    std::weak_ptr<NSMenu> m_menu;
    std::shared_ptr<NSMenu> m_submenu;
    NSValue m_representedObject;
    NSInteger m_tag = 0;
    NSInteger m_state = 0;
    bool m_separator = false;
    bool m_hidden = false;
    bool m_enabled = true;
};

/// A menu, which a view shows by a right click and a pop-up button by a click.
///
/// Where nothing has an item, the position answered is -1.
class NSMenu final : public NSObject {
public:
    explicit NSMenu(std::u16string title = {}) : m_title(std::move(title)) {}
    ~NSMenu() override;
    const std::u16string& title() const { return m_title; }

    void setDelegate(const std::shared_ptr<NSMenuDelegate>& delegate) { m_delegate = delegate; }
    std::shared_ptr<NSMenuDelegate> delegate() const { return m_delegate.lock(); }

    /// Raises NSInternalInconsistencyException for an item that is in a menu.
    void addItem(const std::shared_ptr<NSMenuItem>& item);
    std::shared_ptr<NSMenuItem> addItemWithTitleActionKeyEquivalent(const std::u16string& title,
                                                                    const std::u16string& action,
                                                                    const std::u16string& keyEquivalent);
    /// Raises NSRangeException for an index below 0 or above the number of items.
    void insertItemAtIndex(const std::shared_ptr<NSMenuItem>& item, NSInteger index);
    std::shared_ptr<NSMenuItem> insertItemWithTitleActionKeyEquivalentAtIndex(const std::u16string& title,
                                                                              const std::u16string& action,
                                                                              const std::u16string& keyEquivalent,
                                                                              NSInteger index);
    /// Raises NSRangeException beyond the items.
    void removeItemAtIndex(NSInteger index);
    void removeAllItems();

    const std::vector<std::shared_ptr<NSMenuItem>>& itemArray() const { return m_items; }
    NSInteger numberOfItems() const { return static_cast<NSInteger>(m_items.size()); }
    /// Raises NSRangeException beyond the items.
    std::shared_ptr<NSMenuItem> itemAtIndex(NSInteger index) const;
    /// The first one, or null.
    std::shared_ptr<NSMenuItem> itemWithTag(NSInteger tag) const;
    std::shared_ptr<NSMenuItem> itemWithTitle(const std::u16string& title) const;
    NSInteger indexOfItem(const std::shared_ptr<NSMenuItem>& item) const;
    NSInteger indexOfItemWithTag(NSInteger tag) const;
    NSInteger indexOfItemWithTitle(const std::u16string& title) const;
    /// Texts and numbers are compared by content, objects by identity.
    NSInteger indexOfItemWithRepresentedObject(const NSValue& object) const;

    /// Sent before the menu shows, submenus included: finds out which items are enabled. An item without action is
    /// not, save in the menu of a pop-up button; one whose target has no such action is not; else the target is asked
    /// if it can be, and else the item is enabled.
    void update(bool ofPopUpButton = false);

    /// The user chose an item of this menu or of a submenu: sends its action to its target, the item as sender. A
    /// disabled item sends nothing.
    static void userChooses(const std::shared_ptr<NSMenuItem>& item);

    /// Told after each change of what the items show; for the pop-up button that shows the menu.
    void setOnChange(std::function<void()> onChange) { m_onChange = std::move(onChange); }

private:
    friend class NSMenuItem;
    template <class Wanted>
    NSInteger indexWhere(Wanted wanted) const;
    void changed() const;

    std::u16string m_title;
    std::weak_ptr<NSMenuDelegate> m_delegate;
    std::vector<std::shared_ptr<NSMenuItem>> m_items;
    std::function<void()> m_onChange;
};

} // namespace platform
