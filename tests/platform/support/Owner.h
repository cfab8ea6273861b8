// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSButton.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSClass.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace testing_support {

using Log = std::vector<std::string>;

/// The owner of an interface file: keeps what is connected to it and writes down, in order, every message it gets.
class Owner : public platform::NSObject,
              public platform::NSTableViewDataSource,
              public platform::NSTableViewDelegate,
              public platform::NSTabViewDelegate,
              public platform::NSControlTextEditingDelegate {
public:
    /// The table of the class "Owner": `outlets`, of which those that end in "?" are not needed, the actions "act:" and
    /// "rename:", the key "number".
    static platform::NSClass describe(const std::vector<std::string>& outlets);

    std::u16string_view className() const override { return u"Owner"; }
    void awakeFromNib() override { log.push_back("awake"); }

    template <class T>
    std::shared_ptr<T> outlet(const std::string& name) const {
        const auto found = connected.find(name);
        return found == connected.end() ? nullptr : std::dynamic_pointer_cast<T>(found->second.lock());
    }

    /// What was written down since the last call.
    Log taken() { return std::exchange(log, {}); }

    std::function<void()> onAction;

    // A table of `rows`, whose first column is edited.
    platform::NSInteger numberOfRowsInTableView(const std::shared_ptr<platform::NSTableView>& table) override;
    std::shared_ptr<platform::NSTableCellView>
    tableViewViewForTableColumnRow(const std::shared_ptr<platform::NSTableView>& table,
                                   const std::shared_ptr<platform::NSTableColumn>& column,
                                   platform::NSInteger row) override;
    bool tableViewShouldSelectRow(const std::shared_ptr<platform::NSTableView>& table,
                                  platform::NSInteger row) override;
    void tableViewSelectionDidChange(const platform::NSNotification& notification) override;
    std::vector<std::u16string> rows;
    std::set<platform::NSInteger> refusedRows;
    std::set<platform::NSInteger> disabledRows;
    int cellsAsked = 0;
    std::function<void()> onSelection;

    bool tabViewShouldSelectTabViewItem(const std::shared_ptr<platform::NSTabView>& tabView,
                                        const std::shared_ptr<platform::NSTabViewItem>& item) override;
    bool refusesTabs = false;

    bool controlTextShouldBeginEditing(const std::shared_ptr<platform::NSControl>& control) override;
    bool controlTextShouldEndEditing(const std::shared_ptr<platform::NSControl>& control) override;
    void controlTextDidChange(const platform::NSNotification& notification) override;
    bool refusesBegin = false;
    bool refusesEnd = false;
    std::function<void()> onTextChange;

    Log log;
    std::map<std::string, std::weak_ptr<platform::NSObject>> connected;
};

/// A controller of a page.
class Controller final : public platform::NSViewController {
public:
    static platform::NSClass describe();

    std::u16string_view className() const override { return u"PageController"; }
    void awakeFromNib() override { log.push_back("awake"); }
    void viewDidLoad() override { log.push_back("viewDidLoad"); }
    void act(const std::shared_ptr<platform::NSObject>&) { log.push_back("act"); }

    std::weak_ptr<platform::NSButton> button;
    Log log;
};

} // namespace testing_support
