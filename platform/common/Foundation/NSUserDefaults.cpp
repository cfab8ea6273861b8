// SPDX-License-Identifier: MIT
#include <Foundation/NSUserDefaults.h>

namespace platform {

NSUserDefaults::~NSUserDefaults() = default;

bool NSUserDefaults::boolForKey(const std::u16string& key) const {
    const auto text = stringForKey(key).value_or(u"");
    std::size_t at = text.find_first_not_of(u" \t");
    if (at != std::u16string::npos && (text[at] == u'+' || text[at] == u'-'))
        ++at;
    at = at == std::u16string::npos ? at : text.find_first_not_of(u'0', at);
    return at != std::u16string::npos &&
           std::u16string_view(u"YyTt123456789").find(text[at]) != std::u16string_view::npos;
}

void NSUserDefaults::setBoolForKey(bool value, const std::u16string& key) {
    setObjectForKey(value ? u"YES" : u"NO", key);
}

} // namespace platform
