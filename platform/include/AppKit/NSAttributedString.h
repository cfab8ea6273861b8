// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSFont.h>

#include <map>

namespace platform {

inline const std::u16string NSFontAttributeName = u"NSFont";

/// A text with attributes, which hold for the whole of it; immutable.
class NSAttributedString final : public NSObject {
public:
    using Attributes = std::map<std::u16string, std::shared_ptr<NSFont>>;

    /// Raises NSInvalidArgumentException for an attribute that is null.
    NSAttributedString(std::u16string string, Attributes attributes);

    const std::u16string& string() const { return m_string; }
    const Attributes& attributes() const { return m_attributes; }
    /// Under NSFontAttributeName; null without.
    std::shared_ptr<NSFont> font() const;

    /// The same text with the same attributes.
    friend bool operator==(const NSAttributedString& a, const NSAttributedString& b);

private:
    std::u16string m_string;
    Attributes m_attributes;
};

} // namespace platform
