// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSLocale.h>
#include <Foundation/NSObject.h>

#include <map>

namespace platform {

inline const std::u16string NSFontNameAttribute = u"NSFontNameAttribute";

/// A face as a collection offers it: what is known of it without opening it.
class NSFontDescriptor final : public NSObject {
public:
    using Attributes = std::map<std::u16string, std::u16string>;

    explicit NSFontDescriptor(Attributes attributes) : m_fontAttributes(std::move(attributes)) {}
    /// The PostScript name under NSFontNameAttribute.
    const Attributes& fontAttributes() const { return m_fontAttributes; }

private:
    Attributes m_fontAttributes;
};

/// Fonts that belong together.
class NSFontCollection final : public NSObject {
public:
    /// The fonts offered to users of that locale.
    static std::shared_ptr<NSFontCollection> fontCollectionWithLocale(const NSLocale& locale);

    explicit NSFontCollection(NSLocale locale) : m_locale(std::move(locale)) {}
    /// In no promised order; a face may appear more than once.
    NSArray<std::shared_ptr<NSFontDescriptor>> matchingDescriptors() const;

private:
    NSLocale m_locale;
};

} // namespace platform
