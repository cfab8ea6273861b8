// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>
#include <Foundation/NSRange.h>

namespace platform {

class NSTokenField;

/// The editor of the field that has the focus. It belongs to the field and outlives it as an empty one.
class NSTextView final : public NSView {
public:
    explicit NSTextView(std::weak_ptr<NSTokenField> field) : m_field(std::move(field)) {}
    ~NSTextView() override;

    /// In UTF-16 units of the field's text, a token as one; an empty one is the caret.
    NSRange selectedRange() const;
    /// What lies beyond the end of the text is cut off.
    void setSelectedRange(NSRange range);

private:
    std::weak_ptr<NSTokenField> m_field;
};

} // namespace platform
