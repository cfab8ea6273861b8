// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>
#include <host/PlaceholderTokenField.h>

namespace app {

/// The stand-alone host's title field, found by panes under its name.
///
/// What begins and ends with "%" and has a name without white space in between is a placeholder, shown as a token with
/// a readable title. Its button and its context menu offer those that the engine fills in.
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

    /// Beyond what every field does: of font runs that share a number since one of them came back, each gets its own.
    void userUndid(const platform::TokenText& text) override;

private:
    std::shared_ptr<platform::NSMenu> placeholderMenu() const;
    void complete(const std::shared_ptr<platform::NSMenu>& menu,
                  const std::shared_ptr<platform::NSMenu>& placeholderMenu);
};

} // namespace app
