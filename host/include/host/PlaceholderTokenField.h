// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTokenField.h>

namespace host {

/// Whoever completes the menu of placeholders before it shows.
class PlaceholderMenuDelegate {
public:
    virtual ~PlaceholderMenuDelegate();
    /// `menu` is what pops up, and `placeholderMenu` the menu of placeholders: that one itself, or a submenu of it.
    virtual void
    tokenFieldWillPopUpMenuWithPlaceholderMenu(const std::shared_ptr<platform::NSTokenField>& field,
                                               const std::shared_ptr<platform::NSMenu>& menu,
                                               const std::shared_ptr<platform::NSMenu>& placeholderMenu) = 0;
};

/// The title field. The host registers a class "PlaceholderTokenField" that is one.
///
/// It says how texts and placeholders are shown, and has a menu of placeholders. It makes that menu afresh each time
/// and hands it to the menu delegate before showing it; among its items there is one whose represented object is
/// "%recordPageCount%".
class PlaceholderTokenField : public platform::NSTokenField {
public:
    PlaceholderTokenField();
    ~PlaceholderTokenField() override;

    /// Looked on weakly; null for nobody.
    void setMenuDelegate(const std::shared_ptr<PlaceholderMenuDelegate>& delegate) { m_menuDelegate = delegate; }
    std::shared_ptr<PlaceholderMenuDelegate> menuDelegate() const { return m_menuDelegate.lock(); }

private:
    std::weak_ptr<PlaceholderMenuDelegate> m_menuDelegate;
};

} // namespace host
