// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>
#include <host/ImprinterFont.h>
#include <host/PlaceholderTokenField.h>

#include <functional>

namespace app {

/// The stand-alone host's title field, found by panes under its name.
///
/// What begins and ends with "%" is a placeholder, shown as a token with a readable title. Its button and its context
/// menu offer those that the engine fills in.
class PlaceholderTokenField final : public host::PlaceholderTokenField {
public:
    std::u16string_view className() const override { return u"PlaceholderTokenField"; }
    static platform::NSClass describeClass() {
        return platform::ClassTable<PlaceholderTokenField>(u"PlaceholderTokenField", u"NSTokenField");
    }

    platform::NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<platform::NSTokenField>& field,
                                                               const platform::RepresentedObject& object) override;
    std::optional<std::u16string>
    tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<platform::NSTokenField>& field,
                                                const platform::RepresentedObject& object) override;

    bool hasInsertMenu() const override { return true; }
    std::u16string insertButtonLabel() const override;
    std::shared_ptr<platform::NSMenu> insertMenu() override;
    /// Editing commands, and the insert menu as a submenu.
    std::shared_ptr<platform::NSMenu> contextMenu() override;

    /// Told after a user has brought back, taken away or inserted font runs: the one inserted, null for anything else.
    using OnRunsChanged = std::function<void(const std::shared_ptr<host::ImprinterFont>& inserted)>;
    void setOnRunsChanged(OnRunsChanged handler) { m_onRunsChanged = std::move(handler); }

    /// Beyond what every field does: where the font runs are others then, or in another order, they are numbered anew.
    void userUndid(const platform::TokenText& text) override;
    void userChoosesMenuItem(const std::shared_ptr<platform::NSMenuItem>& item) override;

private:
    std::shared_ptr<platform::NSMenu> placeholderMenu() const;
    void complete(const std::shared_ptr<platform::NSMenu>& menu,
                  const std::shared_ptr<platform::NSMenu>& placeholderMenu);

    OnRunsChanged m_onRunsChanged;
};

} // namespace app
