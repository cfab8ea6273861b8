// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTextField.h>

#include <variant>

namespace platform {

/// What a token field holds: text, or an object that stands for a token.
using RepresentedObject = std::variant<std::u16string, std::shared_ptr<NSObject>>;

/// A field of text and tokens.
class NSTokenField : public NSTextField {
public:
    std::u16string_view className() const override;

    /// The very objects last set; nil before.
    const NSArray<RepresentedObject>& objectValue() const { return m_objects; }
    /// nil or an empty list clears the field.
    void setObjectValue(const NSArray<RepresentedObject>& objects);

protected:
    void cellChanged() override;
    void showAll() override;

private:
    NSArray<RepresentedObject> m_objects;
};

} // namespace platform
