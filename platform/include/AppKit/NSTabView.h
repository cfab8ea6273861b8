// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

namespace platform {

class NSTabView;

/// One page of a tab view.
class NSTabViewItem final : public NSObject {
public:
    NSTabViewItem(std::u16string identifier, std::shared_ptr<NSView> view)
        : m_identifier(std::move(identifier)), m_view(std::move(view)) {}

    const std::u16string& identifier() const { return m_identifier; }
    const std::shared_ptr<NSView>& view() const { return m_view; }
    const std::u16string& label() const { return m_label; }
    void setLabel(const std::u16string& label);

private:
    friend class NSTabView;
    std::u16string m_identifier;
    std::u16string m_label;
    std::shared_ptr<NSView> m_view;
    std::weak_ptr<NSTabView> m_tabView;
};

class NSTabViewDelegate {
public:
    virtual ~NSTabViewDelegate();
    /// Asked for a click and for every selection by program, while the page being left is still selected. NO changes
    /// nothing.
    virtual bool tabViewShouldSelectTabViewItem(const std::shared_ptr<NSTabView>& tabView,
                                                const std::shared_ptr<NSTabViewItem>& item);
};

/// A stack of pages, with or without visible tabs. With at least one page there is always a selected one.
class NSTabView final : public NSView {
public:
    std::u16string_view className() const override;

    void addTabViewItem(const std::shared_ptr<NSTabViewItem>& item);
    NSInteger numberOfTabViewItems() const { return static_cast<NSInteger>(m_items.size()); }

    void setDelegate(const std::shared_ptr<NSTabViewDelegate>& delegate) { m_delegate = delegate; }

    std::shared_ptr<NSTabViewItem> selectedTabViewItem() const { return m_selected; }
    /// NSNotFound for an identifier that no page has; case matters.
    NSUInteger indexOfTabViewItemWithIdentifier(const std::u16string& identifier) const;
    /// Raises NSRangeException beyond the end.
    std::shared_ptr<NSTabViewItem> tabViewItemAtIndex(NSInteger index) const;
    /// Raises NSRangeException for an identifier that no page has.
    void selectTabViewItemWithIdentifier(const std::u16string& identifier);

    /// The user clicked a tab. A click on the selected one asks nothing. An edit on the page being left is committed
    /// after the delegate has agreed; a field that refuses to end keeps its page. Answers whether the page is shown.
    bool userSelects(NSInteger index);

protected:
    void showAll() override;

private:
    friend class NSTabViewItem;
    bool select(const std::shared_ptr<NSTabViewItem>& item, bool byUser);
    void showLabel(const NSTabViewItem& item);
    void showSelected();

    std::vector<std::shared_ptr<NSTabViewItem>> m_items;
    std::shared_ptr<NSTabViewItem> m_selected;
    std::weak_ptr<NSTabViewDelegate> m_delegate;
};

} // namespace platform
