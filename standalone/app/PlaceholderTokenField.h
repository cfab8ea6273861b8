// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTokenField.h>
#include <Foundation/NSClass.h>

namespace app {

/// The stand-alone host's title field, found by panes under its name.
class PlaceholderTokenField final : public platform::NSTokenField {
public:
    std::u16string_view className() const override { return u"PlaceholderTokenField"; }
    static platform::NSClass describeClass() {
        return platform::ClassTable<PlaceholderTokenField>(u"PlaceholderTokenField", u"NSTokenField");
    }
};

} // namespace app
