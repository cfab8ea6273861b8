// SPDX-License-Identifier: MIT
#include <AppKit/NSFontCollection.h>

#include <AppKit/FontSource.h>

namespace platform {

std::shared_ptr<NSFontCollection> NSFontCollection::fontCollectionWithLocale(const NSLocale& locale) {
    return std::make_shared<NSFontCollection>(locale);
}

NSArray<std::shared_ptr<NSFontDescriptor>> NSFontCollection::matchingDescriptors() const {
    auto names = FontSource::current()->namesForLocale(m_locale);
    auto descriptors = std::make_shared<std::vector<std::shared_ptr<NSFontDescriptor>>>();
    descriptors->reserve(names.size());
    for (auto& name : names) {
        NSFontDescriptor::Attributes attributes;
        if (!name.empty())
            attributes.emplace(NSFontNameAttribute, std::move(name));
        descriptors->push_back(std::make_shared<NSFontDescriptor>(std::move(attributes)));
    }
    return descriptors;
}

} // namespace platform
